// A file of the engine seen from inside and from outside, by the shell of SQLite.
#pragma once

#include "jet/Database.h"
#include "jet/Recordset.h"
#include "jet/Store.h"
#include "support/Print.h"

#include <QDir>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

/// The engine's error that `work` fails with; number 0 when it does not fail.
template <typename Work>
jet::Error failureOf(Work&& work)
{
    try {
        work();
    } catch (const jet::Error& error) {
        return error;
    }
    return jet::Error(0, {});
}

/// What the shell of SQLite says to a text of statements: its output, or what it refuses.
struct ShellAnswer {
    QString output;
    QString refusal;
};

class FileFixture : public ::testing::Test {
protected:
    static inline const QString general = u";LANGID=0x0409;CP=1252;COUNTRY=0"_s;

    void SetUp() override
    {
        ASSERT_TRUE(folder.isValid());
        // Damaged files are damaged on purpose here; what is said of them is tested.
        QLoggingCategory::setFilterRules(u"herbora.jet.warning=false"_s);
        path = folder.filePath(u"essai.hbx"_s);
    }

    void create(const QString& locale = general) { db = jet::Database::Create(path, locale); }
    void close() { db.reset(); }
    void open(const jet::OpenOptions& options = {}) { db = jet::Database::Open(path, options); }
    void reopen()
    {
        close();
        open();
    }

    static jet::OpenOptions readOnly()
    {
        jet::OpenOptions options;
        options.readOnly = true;
        return options;
    }
    static jet::OpenOptions checkFirst()
    {
        jet::OpenOptions options;
        options.checkFirst = true;
        return options;
    }

    int errorOfOpening(const jet::OpenOptions& options = {})
    {
        return failureOf([&] { jet::Database::Open(path, options); }).number();
    }

    static jet::Field field(const QString& name, jet::DataType type, int size = 0)
    {
        return {.Name = name, .Type = type, .Size = size};
    }
    static jet::Field counter(const QString& name)
    {
        return {.Name = name, .Type = jet::DataType::Long, .AutoIncrement = true};
    }
    static jet::Index primary(const QString& column)
    {
        return {.Name = u"PrimaryKey"_s, .Fields = {{column}}, .Primary = true};
    }
    static jet::Index unique(const QString& name, const QStringList& columns)
    {
        jet::Index index{.Name = name, .Unique = true};
        for (const QString& column : columns)
            index.Fields.append({column});
        return index;
    }

    void run(const QString& sql) { db->store().run(sql); }
    QVariant single(const QString& sql) { return db->store().single(sql); }

    /// Runs statements in the shell of SQLite, with the file closed here.
    ShellAnswer shell(const QString& sql, const QString& file = {}) const
    {
        QProcess process;
        process.start(u"sqlite3"_s, {u"-batch"_s, u"-bail"_s, file.isEmpty() ? path : file, sql});
        if (!process.waitForFinished(20'000))
            ADD_FAILURE() << "sqlite3 does not answer";
        return {QString::fromUtf8(process.readAllStandardOutput()).trimmed(),
                QString::fromUtf8(process.readAllStandardError())};
    }

    static QByteArray bytesOf(const QString& file)
    {
        QFile read(file);
        return read.open(QIODevice::ReadOnly) ? read.readAll() : QByteArray();
    }
    static void write(const QString& file, const QByteArray& bytes)
    {
        QFile written(file);
        ASSERT_TRUE(written.open(QIODevice::WriteOnly | QIODevice::Truncate));
        ASSERT_EQ(written.write(bytes), bytes.size());
    }
    QStringList filesBeside() const
    {
        return QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }

    QTemporaryDir folder;
    QString path;
    std::unique_ptr<jet::Database> db;
};
