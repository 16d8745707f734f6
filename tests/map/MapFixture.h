// Points with everything that exports have to cope with.
#pragma once

#include "map/Exports.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace support {

/// Three places: one plain, one with all that needs care in text, one with little known.
inline map::Points carefulPoints()
{
    map::Points points;
    points.add({.locality = 7,
                .name = QStringLiteral("Brésil - Forêt « Alta »"),
                .at = {-42.05, -22.123456789},
                .altitude = 1276.5,
                .gpsRef = QStringLiteral("WP 001"),
                .modified = QStringLiteral("2024/03/05 14:30:00"),
                .count = 3});
    points.add({.locality = 8,
                .name = QStringLiteral("a]]>b & <c> \"d\" 'e' \u2014 \u4e2d\v"),
                .at = {163.99999999, 45.5},
                .altitude = -2.25,
                .gpsRef = QStringLiteral("]]>&"),
                .modified = QStringLiteral("1900/01/01 00:00:00"),
                .plot = map::Plot{0, 0, 100, 50},
                .count = 1});
    points.add({.locality = 9, .name = QStringLiteral("Nulle part"), .at = {0.00000001, -0.5}});
    return points;
}

inline map::ExportContext exportContext()
{
    map::ExportContext context;
    context.name = QStringLiteral("Requête <1> & \"2\"");
    context.description = QStringLiteral("SELECT ]]> &");
    context.region = QStringLiteral("Amérique du Sud");
    context.time = QStringLiteral("2026/03/07 14:05:09");
    context.colour = QColor(0x11, 0x22, 0x33);
    context.frame = map::Frame{-60, 5, 110, 35};
    return context;
}

} // namespace support
