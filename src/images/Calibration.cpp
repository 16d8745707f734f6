#include "images/Calibration.h"

#include "jet/Recordset.h"
#include "jet/SqlText.h"

#include <QLocale>
#include <cmath>

namespace images {

using namespace Qt::StringLiterals;

namespace {

const QString column = u"TaillePixel"_s;
const QString oldIdentifier = u"ID Image"_s;
constexpr int singleDigits = 7;

/// The row alone; at its end when there is none.
std::unique_ptr<jet::Recordset> row(jet::Database& database, const CalibratedRecord& record)
{
    const jet::TableDef* table = database.schema().table(record.table);
    if (!table)
        jet::fail(3078, record.table);
    const QString identifier = table->field(oldIdentifier) ? oldIdentifier : u"ID "_s + record.table;
    return database.OpenRecordset(u"SELECT * FROM "_s + jet::nom(record.table) + u" WHERE "_s + jet::nom(identifier) + u'='
                                  + QString::number(record.id));
}

} // namespace

bool keepsCalibration(const jet::Database& database, const QString& table)
{
    const jet::TableDef* definition = database.schema().table(table);
    return definition && definition->field(column);
}

float taillePixel(jet::Database& database, const CalibratedRecord& record)
{
    const auto rows = row(database, record);
    return rows->EOF_() ? 0.0F : rows->Value(column).toFloat();
}

bool setTaillePixel(jet::Database& database, const CalibratedRecord& record, float size)
{
    jet::Operation operation(database, u"Étalonnage d'une image"_s);
    const auto rows = row(database, record);
    if (rows->EOF_())
        return false;
    rows->Edit();
    rows->SetValue(column, double(size));
    rows->Update();
    operation.commit();
    return true;
}

QString singleText(float value)
{
    QLocale french(QLocale::French, QLocale::France);
    french.setNumberOptions(QLocale::OmitGroupSeparator);
    return french.toString(double(value), 'g', singleDigits);
}

std::optional<float> singleOf(const QString& text)
{
    bool valid = false;
    QString plain = text.simplified();
    const float value = plain.remove(u' ').replace(u',', u'.').toFloat(&valid);
    if (!valid || !std::isfinite(value))
        return {};
    return value;
}

} // namespace images
