// Statements of the dialect, each in two ways: the text that the store is given, and the rows that come.
#include "DialectTables.h"
#include "jet/Error.h"
#include "support/Print.h"

#include <QFile>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class DialectTest : public ::testing::TestWithParam<const char*> {
protected:
    DialectTables tables;

    // What the statement gives, in the words of the file.
    QString outcome(const QString& statement)
    {
        try {
            const jet::Compiled compiled = tables.compile(statement);
            if (!std::holds_alternative<jet::CompiledQuery>(compiled))
                return u'#' + QString::number(tables.execute(statement));
            const auto& query = std::get<jet::CompiledQuery>(compiled);
            const QStringList rows = tables.rows(query);
            checkKeys(query, rows);
            return rows.isEmpty() ? u"none"_s : rows.join(u" / "_s);
        } catch (const jet::Error& error) {
            message = error.description();
            return u'!' + QString::number(error.number());
        }
    }

    // The keys come in the order of the rows, and each leads back to its row.
    void checkKeys(const jet::CompiledQuery& query, const QStringList& rows)
    {
        if (query.sources.empty())
            return;
        const QStringList keys = tables.storeRows(query.keySql);
        ASSERT_EQ(keys.size(), rows.size()) << query.keySql.toStdString();
        for (int i = 0; i < keys.size(); ++i) {
            QVariantList values;
            for (const QString& key : keys[i].split(u'|'))
                values.append(key == u"Null"_s ? QVariant() : QVariant(key.toInt()));
            EXPECT_EQ(tables.storeRows(query.rowSql, values), QStringList{rows[i]}) << query.rowSql.toStdString();
        }
    }

    QString message;
};

// The number of the line, for failures, and its text.
struct Line {
    int number;
    QString text;
};

QList<Line> linesOf(const char* name)
{
    QFile file(qEnvironmentVariable("HERBORA_SOURCE", u"."_s)
               + u"/tests/jet/dialect/"_s + QString::fromLatin1(name));
    QList<Line> lines;
    if (!file.open(QIODevice::ReadOnly))
        return lines;
    int number = 0;
    for (const QString& text : QString::fromUtf8(file.readAll()).split(u'\n')) {
        ++number;
        if (!text.isEmpty() && !text.startsWith(u"--"_s))
            lines.append({number, text});
    }
    return lines;
}

TEST_P(DialectTest, GivesWhatItsLineSays)
{
    const QList<Line> lines = linesOf(GetParam());
    ASSERT_GT(lines.size(), 20);
    QString statement;
    tables.begin();
    for (const Line& line : lines) {
        SCOPED_TRACE(std::string(GetParam()) + ':' + std::to_string(line.number) + ": " + line.text.toStdString());
        if (line.text.startsWith(u"~ "_s)) {
            EXPECT_TRUE(tables.sql(statement).contains(line.text.mid(2))) << tables.sql(statement).toStdString();
            continue;
        }
        if (line.text.startsWith(u"!~ "_s)) {
            EXPECT_FALSE(tables.sql(statement).contains(line.text.mid(3))) << tables.sql(statement).toStdString();
            continue;
        }
        const bool look = line.text.startsWith(u"? "_s);
        if (!look) {
            tables.rollback();
            tables.begin();
        }
        const qsizetype arrow = line.text.lastIndexOf(u" => "_s);
        ASSERT_GT(arrow, 0);
        statement = line.text.mid(look ? 2 : 0, arrow - (look ? 2 : 0));
        message.clear();
        const QString got = outcome(statement);
        EXPECT_EQ(got, line.text.mid(arrow + 4))
            << message.toStdString() << (got.startsWith(u'!') ? std::string() : '\n' + tables.sql(statement).toStdString());
    }
}

INSTANTIATE_TEST_SUITE_P(Files, DialectTest, ::testing::Values("select.txt", "actions.txt"),
                         [](const auto& info) { return std::string(info.param).substr(0, std::string(info.param).find('.')); });

} // namespace
