#include "images/PictureDetails.h"

#include "images/Cl_Exif.h"

#include <QFileInfo>
#include <QImageReader>
#include <QLocale>
#include <cmath>
#include <functional>

namespace images {

using namespace Qt::StringLiterals;

namespace {

enum Tag {
    LatitudeSide = 1,
    Latitude = 2,
    LongitudeSide = 3,
    Longitude = 4,
    AltitudeSide = 5,
    Altitude = 6,
    Description = 270,
    Make = 271,
    Model = 272,
    Artist = 315,
    Exposure = 33434,
    Aperture = 33437,
    Sensitivity = 34855,
    DateTaken = 36867,
    Flash = 37385,
    FocalLength = 37386,
};

QVariant property(const Cl_Exif& exif, int tag)
{
    QVariant value;
    return exif.GetExifData(tag, value) ? value : QVariant();
}

QString text(const Cl_Exif& exif, int tag)
{
    return property(exif, tag).toString().trimmed();
}

/// The fractions of a property; empty when one of them is none.
QList<double> fractions(const Cl_Exif& exif, int tag)
{
    QList<double> numbers;
    const QVariantList words = property(exif, tag).toList();
    for (qsizetype at = 0; at + 1 < words.size(); at += 2) {
        const double below = double(quint32(words[at + 1].toInt()));
        if (below == 0)
            return {};
        numbers << double(quint32(words[at].toInt())) / below;
    }
    return numbers;
}

/// Degrees of the three fractions of a coordinate, negative on `negativeSide`.
std::optional<double> degrees(const Cl_Exif& exif, int tag, int sideTag, QChar negativeSide, double most)
{
    const QList<double> parts = fractions(exif, tag);
    if (parts.size() < 3)
        return {};
    const double value = parts[0] + parts[1] / 60 + parts[2] / 3600;
    if (!std::isfinite(value) || value > most)
        return {};
    return text(exif, sideTag).startsWith(negativeSide, Qt::CaseInsensitive) ? -value : value;
}

QString number(double value, int decimals)
{
    QLocale locale(QLocale::French, QLocale::France);
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    QString shown = locale.toString(value, 'f', decimals);
    while (decimals > 0 && (shown.endsWith(u'0') || shown.endsWith(u','))) {
        const bool isMark = shown.endsWith(u',');
        shown.chop(1);
        if (isMark)
            break;
    }
    return shown;
}

QString exposureText(double seconds)
{
    if (seconds > 0 && seconds < 0.3)
        return u"1/"_s + number(1 / seconds, 0) + u" s"_s;
    return number(seconds, 1) + u" s"_s;
}

/// "Canon PowerShot S230": many cameras say their make in the model too.
QString camera(const Cl_Exif& exif)
{
    const QString make = text(exif, Make), model = text(exif, Model);
    return model.startsWith(make.section(u' ', 0, 0), Qt::CaseInsensitive) ? model : QString(make + u' ' + model).trimmed();
}

class Rows {
public:
    explicit Rows(QList<PictureDetail>& rows) : m_rows(rows) {}
    void add(const QString& label, const QString& value)
    {
        if (!value.isEmpty())
            m_rows << PictureDetail{label, value};
    }
    void addFraction(const QString& label, const QList<double>& parts, const std::function<QString(double)>& shown)
    {
        if (!parts.isEmpty() && std::isfinite(parts.first()))
            add(label, shown(parts.first()));
    }

private:
    QList<PictureDetail>& m_rows;
};

void addFile(Rows& rows, const QString& path)
{
    const QLocale french(QLocale::French, QLocale::France);
    const QSize size = QImageReader(path).size();
    if (size.isValid())
        rows.add(u"Dimensions"_s, QString::number(size.width()) + u" × "_s + QString::number(size.height()) + u" pixels"_s);
    rows.add(u"Fichier"_s, french.formattedDataSize(QFileInfo(path).size(), 1, QLocale::DataSizeSIFormat));
}

void addTaking(Rows& rows, const Cl_Exif& exif)
{
    rows.add(u"Appareil"_s, camera(exif));
    rows.addFraction(u"Pose"_s, fractions(exif, Exposure), exposureText);
    rows.addFraction(u"Ouverture"_s, fractions(exif, Aperture), [](double f) { return u"f/"_s + number(f, 1); });
    rows.add(u"Sensibilité"_s, property(exif, Sensitivity).toList().isEmpty()
                                   ? QString()
                                   : property(exif, Sensitivity).toList().first().toString() + u" ISO"_s);
    rows.addFraction(u"Focale"_s, fractions(exif, FocalLength), [](double mm) { return number(mm, 1) + u" mm"_s; });
    const QVariantList flash = property(exif, Flash).toList();
    if (!flash.isEmpty())
        rows.add(u"Flash"_s, flash.first().toInt() & 1 ? u"oui"_s : u"non"_s);
}

void addPosition(Rows& rows, const Cl_Exif& exif, PictureDetails& details)
{
    const auto latitude = degrees(exif, Latitude, LatitudeSide, u'S', 90);
    const auto longitude = degrees(exif, Longitude, LongitudeSide, u'W', 180);
    if (!latitude || !longitude)
        return;
    details.latitude = latitude;
    details.longitude = longitude;
    rows.add(u"Latitude"_s, number(*latitude, 6) + u'°');
    rows.add(u"Longitude"_s, number(*longitude, 6) + u'°');
    const QByteArray side = property(exif, AltitudeSide).toByteArray();
    const bool isBelow = !side.isEmpty() && side[0] == 1;
    rows.addFraction(u"Altitude"_s, fractions(exif, Altitude),
                     [isBelow](double metres) { return number(isBelow ? -metres : metres, 0) + u" m"_s; });
}

} // namespace

PictureDetails pictureDetails(const QString& path)
{
    PictureDetails details;
    Cl_Exif exif;
    if (!exif.OpenFile(path))
        return details;
    Rows rows(details.rows);
    addFile(rows, path);
    details.date = property(exif, DateTaken).toDateTime();
    if (details.date.isValid())
        rows.add(u"Prise de vue"_s, details.date.toString(u"dd/MM/yyyy HH:mm:ss"_s));
    addTaking(rows, exif);
    addPosition(rows, exif, details);
    rows.add(u"Description"_s, text(exif, Description));
    rows.add(u"Auteur"_s, text(exif, Artist));
    return details;
}

} // namespace images
