// Feeds texts to every format, and as the value of a field of every type to what a field does with its value.
#include "editing/Cl_Edition.h"
#include "editing/Formats.h"

#include <QLoggingCategory>
#include <QDir>
#include <QFile>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;
using editing::Cl_Edition;

namespace {

constexpr int behindTypes = 19; ///< One more than the last type code and one code that is none.

void require(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

class Numbers : public editing::ReferenceNames {
public:
    QString botaniste(qint32 id) const override { return QString::number(id); }
    QString localité(qint32 id) const override { return QString::number(id); }
    QString taxon(qint32 id) const override { return QString::number(id); }
    QString taxonAuteurs(qint32 id) const override { return QString::number(id); }
    QString famille(qint32 id) const override { return QString::number(id); }
    QString rang(qint32 id) const override { return QString::number(id); }
    QString lien(const QString& module, const QString& ids) const override { return module + ids; }
};

editing::EditingContext context()
{
    return {.nextId = [] { return 1; }, .names = std::make_shared<Numbers>(), .records = {}, .rowHeight = 24};
}

void coordinates(const QString& text)
{
    require(std::abs(editing::TextToLongitude(text)) < 182, "a longitude lies on the globe");
    require(std::abs(editing::TextToLatitude(text)) < 92, "a latitude lies on the globe");
    require(std::isfinite(editing::DmsToDegrees(text, 180)), "degrees are finite");
    require(editing::SplitDigitRuns(text).join(QString()) == text, "runs make up the text");
    const double number = text.toDouble();
    const QString longitude = editing::LongitudeToText(number);
    const QString latitude = editing::LatitudeToText(number);
    require(longitude.isEmpty() || std::abs(editing::TextToLongitude(longitude)) <= 180, "a longitude shown is read");
    require(latitude.isEmpty() || std::abs(editing::TextToLatitude(latitude)) <= 90, "a latitude shown is read");
}

void dates(const QString& text)
{
    const QString date = editing::ParseDate(text);
    require(editing::ParseDate(date) == date, "a date read is a date");
    for (int style = -1; style < 7; ++style) {
        editing::FormatDate(text, style);
        const QString shown = editing::FormatDate(date, style);
        require(shown.isEmpty() == date.isEmpty(), "a date is shown");
        require(shown.isEmpty() || !editing::ParseDate(shown).isEmpty(), "a date shown is read");
    }
    const QString lower = editing::DateBound(text, false);
    require(lower.isEmpty() == date.isEmpty(), "a date has bounds");
    require(lower.isEmpty() || lower <= editing::DateBound(text, true), "the bounds are in order");
}

/// What a field shows and answers, whatever its value.
void show(Cl_Edition& field)
{
    for (int format = -1; format <= field.formats().size(); ++format) {
        field.setFormat(format);
        field.TextValue();
        field.FormatedValue();
    }
    field.Operateur();
    field.TextOperateur();
    field.TextError();
    field.SelectedItems();
}

void values(const QString& text)
{
    const editing::EditingContext surroundings = context();
    for (int type = -1; type < behindTypes; ++type) {
        Cl_Edition field(surroundings);
        field.setCtype(type);
        field.ChpEdition()->Descripteurs = {u"sec"_s, u"humide"_s, text};
        field.setOperateur(text);
        field.setTextOperateur(text);
        field.setValue(text);
        const QVariant once = field.value();
        field.setValue(once);
        require(field.value() == once, "a value normalised is normal");
        show(field);
        field.SearchListeItem(text);
        field.SearchListeCheck(text);
        field.report(text, {text});
        // As a file may hold it.
        field.ChpEdition()->value = text;
        show(field);
        field.ChpEdition()->value = text.toDouble();
        show(field);
    }
}

} // namespace

// A few texts of every kind go into the first corpus folder, before the fuzzer reads it.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    QLoggingCategory::setFilterRules(u"*=false"_s);
    const QStringList seeds{u"E012°30'00.00"_s, u"-5°70'"_s, u"06 mars 2001 - 10:30:15"_s, u"2001/03/06 10h30m5.5s"_s,
                            u"oui"_s, u"1 234,5"_s, u"-1.5e3"_s, u"4;7,9"_s, u"sec;humide"_s, u"NOT LIKE"_s,
                            u"C:\\photos\\éTÉ.jpg"_s, u"*m?[a-z]#*"_s, u"&HFF"_s, u"Null"_s};
    for (int i = 1; i < *argc; ++i) {
        const QString argument = QString::fromLocal8Bit((*argv)[i]);
        if (argument.startsWith(u'-') || !QDir(argument).exists())
            continue;
        for (qsizetype seed = 0; seed < seeds.size(); ++seed) {
            QFile file(QDir(argument).filePath(u"graine-%1"_s.arg(seed)));
            if (file.open(QIODevice::WriteOnly))
                file.write(seeds[seed].toUtf8());
        }
        break;
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    coordinates(text);
    dates(text);
    values(text);
    return 0;
}
