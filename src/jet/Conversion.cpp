#include "jet/Conversion.h"

#include "jet/Error.h"
#include "jet/text/Values.h"

#include <QDateTime>
#include <cmath>
#include <limits>

namespace jet {

using namespace Qt::StringLiterals;

namespace {

[[noreturn]] void refuse(const QVariant& value, const QString& column)
{
    const QString shown = value.typeId() == QMetaType::QByteArray ? QString() : value.toString();
    fail(3421, shown.left(60), column);
}

double toNumber(const QVariant& value, const QString& column)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool() ? -1 : 0;
    case QMetaType::QDateTime:
        return text::dateToDays(value.toDateTime());
    case QMetaType::QDate:
        return text::dateToDays(value.toDate().startOfDay());
    case QMetaType::QString: {
        const QString text = value.toString().trimmed();
        bool ok = false;
        const double number = text.toDouble(&ok); // C locale: the decimal mark is the point
        if (!ok || !std::isfinite(number))
            refuse(value, column);
        return number;
    }
    case QMetaType::QByteArray:
        refuse(value, column);
    default: {
        bool ok = false;
        const double number = value.toDouble(&ok);
        if (!ok || !std::isfinite(number))
            refuse(value, column);
        return number;
    }
    }
}

int toWhole(const QVariant& value, double lowest, double highest, const QString& column)
{
    if (value.typeId() == QMetaType::Int && lowest == std::numeric_limits<int>::min())
        return value.toInt();
    const double number = text::roundHalfEven(toNumber(value, column));
    if (number < lowest || number > highest)
        refuse(value, column);
    return int(number);
}

bool toBoolean(const QVariant& value, const QString& column)
{
    if (value.typeId() != QMetaType::QString)
        return toNumber(value, column) != 0;
    const QString text = value.toString().trimmed();
    for (const auto* yes : {u"true", u"vrai", u"yes", u"oui", u"on"})
        if (text.compare(QStringView(yes), Qt::CaseInsensitive) == 0)
            return true;
    for (const auto* no : {u"false", u"faux", u"no", u"non", u"off"})
        if (text.compare(QStringView(no), Qt::CaseInsensitive) == 0)
            return false;
    return toNumber(value, column) != 0;
}

QDateTime toMoment(const QVariant& value, const QString& column)
{
    if (value.typeId() == QMetaType::QDateTime || value.typeId() == QMetaType::QDate) {
        const QDateTime moment = value.toDateTime();
        if (!moment.isValid())
            refuse(value, column);
        return moment;
    }
    if (value.typeId() != QMetaType::QString)
        return text::daysToDate(toNumber(value, column));
    const QString written = value.toString().trimmed();
    for (const auto* pattern :
         {u"yyyy-MM-dd HH:mm:ss", u"yyyy-MM-ddTHH:mm:ss", u"yyyy-MM-dd HH:mm", u"yyyy-MM-dd",
          u"d/M/yyyy HH:mm:ss", u"d/M/yyyy HH:mm", u"d/M/yyyy"}) {
        const QDateTime moment = QDateTime::fromString(written, QStringView(pattern).toString());
        if (moment.isValid())
            return moment;
    }
    refuse(value, column);
}

QString toText(const QVariant& value, const QString& column)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        return value.toString();
    case QMetaType::QByteArray:
        refuse(value, column);
    case QMetaType::QDateTime:
    case QMetaType::QDate: {
        const QDateTime moment = value.toDateTime();
        const bool day = moment.time() == QTime(0, 0);
        return moment.toString(day ? u"dd/MM/yyyy"_s : u"dd/MM/yyyy HH:mm:ss"_s);
    }
    default:
        return text::numberText(toNumber(value, column));
    }
}

QByteArray toBytes(const QVariant& value, const QString& column)
{
    if (value.typeId() != QMetaType::QByteArray)
        refuse(value, column);
    return value.toByteArray();
}

} // namespace

QVariant convertTo(DataType type, const QVariant& value, const QString& column)
{
    if (!value.isValid())
        return type == DataType::Boolean ? QVariant(false) : QVariant();
    switch (type) {
    case DataType::Boolean:
        return toBoolean(value, column);
    case DataType::Byte:
        return toWhole(value, 0, 255, column);
    case DataType::Integer:
        return toWhole(value, -32768, 32767, column);
    case DataType::Long:
        return toWhole(value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max(),
                       column);
    case DataType::Single:
        return double(float(toNumber(value, column)));
    case DataType::Currency:
        return text::roundHalfEven(toNumber(value, column), 4);
    case DataType::Double:
        return toNumber(value, column);
    case DataType::Date:
        return toMoment(value, column);
    case DataType::Text:
    case DataType::Memo:
    case DataType::GUID:
        return toText(value, column);
    case DataType::Binary:
    case DataType::LongBinary:
        return toBytes(value, column);
    case DataType::None:
        break;
    }
    return value;
}

QVariant convertFor(const Field& field, const QVariant& value)
{
    QVariant converted = convertTo(field.Type, value, field.Name);
    if (field.Type == DataType::Text) {
        const int width = field.Size > 0 ? field.Size : defaultTextSize;
        if (converted.toString().size() > width)
            fail(3163, field.Name, QString::number(width));
    }
    return converted;
}

} // namespace jet
