// What a camera noted in a picture, for people.
#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <optional>

namespace images {

struct PictureDetail {
    QString label; ///< "Appareil"
    QString value;
};

/// The properties that are worth showing, in French, with those that a record may take over.
struct PictureDetails {
    QList<PictureDetail> rows; ///< Only what the picture has; its dimensions and the size of its file come first.
    QDateTime date;            ///< Of the photograph, by the camera's clock; invalid when it is not noted.
    std::optional<double> longitude; ///< Decimal degrees, east positive; noted with the latitude or not at all.
    std::optional<double> latitude;  ///< North positive.
};

/// Empty for a file that is no picture. Reads from the file alone: may be called on any thread.
PictureDetails pictureDetails(const QString& path);

} // namespace images
