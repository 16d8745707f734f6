#include "Oracle.h"

#include <QDateTime>
#include <QProcess>
#include <QStandardPaths>
#include <cmath>

namespace oracle {

using namespace Qt::StringLiterals;

namespace {

constexpr char cellEnd = '\x1f';
constexpr char rowEnd = '\x1e';

QByteArray run(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(-1);
    return process.readAllStandardOutput();
}

bool sameNumber(double value, const QString& printed, double tolerance)
{
    bool isNumber = false;
    const double other = printed.toDouble(&isNumber);
    return isNumber && std::abs(value - other) <= tolerance * std::max(std::abs(value), std::abs(other));
}

} // namespace

bool isThere()
{
    return !QStandardPaths::findExecutable(u"mdb-export"_s).isEmpty();
}

QStringList tables(const QString& path)
{
    const QString names = QString::fromUtf8(run(u"mdb-tables"_s, {u"-1"_s, path}));
    return names.split(u'\n', Qt::SkipEmptyParts);
}

Table table(const QString& path, const QString& name)
{
    const QString cell{QLatin1Char(cellEnd)};
    const QString row{QLatin1Char(rowEnd)};
    const QString when = u"%Y-%m-%d %H:%M:%S"_s;
    const QByteArray output = run(u"mdb-export"_s, {u"-Q"_s, u"-d"_s, cell, u"-R"_s, row, u"-b"_s, u"hex"_s, u"-D"_s,
                                                    when, u"-T"_s, when, path, name});
    Table table;
    QList<QByteArray> lines = output.split(rowEnd);
    lines.removeLast();
    for (const QByteArray& line : lines) {
        QStringList cells;
        for (const QByteArray& one : line.split(cellEnd))
            cells << QString::fromUtf8(one);
        if (table.columns.isEmpty())
            table.columns = cells;
        else
            table.rows.append(cells);
    }
    return table;
}

QString shown(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Bool: return value.toBool() ? u"1"_s : u"0"_s;
    case QMetaType::QDateTime: return value.toDateTime().toString(u"yyyy-MM-dd hh:mm:ss"_s);
    case QMetaType::QByteArray: return QString::fromLatin1(value.toByteArray().toHex());
    default: return value.toString();
    }
}

bool agrees(const QVariant& value, jet::DataType type, const QString& printed)
{
    if (!value.isValid() || printed.isEmpty())
        return shown(value) == printed;
    switch (type) {
    case jet::DataType::Single: return sameNumber(value.toDouble(), printed, 1e-7);
    case jet::DataType::Double:
    case jet::DataType::Currency: return sameNumber(value.toDouble(), printed, 1e-15);
    case jet::DataType::LongBinary:
    case jet::DataType::Binary: return shown(value).compare(printed, Qt::CaseInsensitive) == 0;
    default: return shown(value) == printed;
    }
}

} // namespace oracle
