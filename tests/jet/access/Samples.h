// The Access files that the tests read.
#pragma once

#include <QDir>
#include <QString>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace samples {

inline QString folder()
{
    return qEnvironmentVariable("HERBORA_SOURCE") + QStringLiteral("/tests/jet/access/samples");
}

inline QString path(const QString& name) { return folder() + QLatin1Char('/') + name; }

/// All of them, those of HERBORA_ACCESS_SAMPLES among them.
inline QStringList all()
{
    QStringList paths;
    for (const QString& place : {folder(), qEnvironmentVariable("HERBORA_ACCESS_SAMPLES")}) {
        const QDir dir(place);
        const QStringList names = place.isEmpty() ? QStringList()
                                                  : dir.entryList({QStringLiteral("*.mdb"), QStringLiteral("*.accdb"),
                                                                   QStringLiteral("*.hbx")}, QDir::Files);
        for (const QString& name : names) {
            if (place == folder() || !QFile::exists(path(name)))
                paths << dir.filePath(name);
        }
    }
    return paths;
}

inline QByteArray bytes(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

inline void write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    ASSERT_EQ(file.write(bytes), bytes.size());
}

} // namespace samples
