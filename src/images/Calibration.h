// How large a pixel of a picture is.
#pragma once

#include "jet/Database.h"

#include <optional>

namespace images {

/// The record of a picture, as far as its calibration goes.
struct CalibratedRecord {
    QString table = QStringLiteral("Images");
    qint32 id = 0; ///< In its own identifier column: "ID Image" where the table has it, else "ID " and the table's name.
};

/// Whether the table keeps calibrations: it has `TaillePixel`.
bool keepsCalibration(const jet::Database& database, const QString& table);

/// `TaillePixel`: the real length of one pixel, in whatever unit the user thinks; 0 where none was set. Throws jet::Error.
float taillePixel(jet::Database& database, const CalibratedRecord& record);

/// Writes it at once. False when there is no such record. Throws jet::Error.
bool setTaillePixel(jet::Database& database, const CalibratedRecord& record, float size);

/// A single-precision number as it is shown and proposed: seven digits, a French comma.
QString singleText(float value);
/// What the user typed, with a comma or a point; nothing when it is no number.
std::optional<float> singleOf(const QString& text);

} // namespace images
