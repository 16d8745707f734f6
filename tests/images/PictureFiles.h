// Pictures for tests, and another program that reads them.
#pragma once

#include "images/Cl_Exif.h"
#include "support/Files.h"

#include <QImage>
#include <QProcess>
#include <QStandardPaths>
#include <gtest/gtest.h>
#include <optional>

namespace support {

/// The demo's photographs, whose licences lie beside them.
inline QString photograph(const QString& name)
{
    return qEnvironmentVariable("HERBORA_SOURCE") + QStringLiteral("/demo/images/") + name;
}

inline const QString withThumbnail = QStringLiteral("daisy_canon_s230.jpg");

/// A picture that no camera wrote anything into.
inline QString drawing(const QString& path, const QSize& size = {400, 300}, const QColor& color = Qt::darkGreen)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    EXPECT_TRUE(image.save(path)) << path.toStdString();
    return path;
}

/// The output of exiftool; nothing where it is not installed or failed.
inline std::optional<QString> exiftoolRun(const QStringList& arguments)
{
    const QString program = QStandardPaths::findExecutable(QStringLiteral("exiftool"));
    QProcess process;
    process.start(program, arguments);
    if (program.isEmpty() || !process.waitForFinished(30'000) || process.exitCode() != 0)
        return {};
    return QString::fromLatin1(process.readAllStandardOutput()).trimmed();
}
inline bool exiftool(const QStringList& arguments) { return exiftoolRun(arguments).has_value(); }
inline QString exiftoolText(const QStringList& arguments) { return exiftoolRun(arguments).value_or(QStringLiteral("?")); }

} // namespace support
