#include "app/structure/ValueConversion.h"

#include "data/FieldType.h"
#include "support/Project.h"

namespace {

using namespace Qt::StringLiterals;
using app::ConvertedValue;
using app::ValueConversion;

struct Case {
    int from, to;
    QVariant value, becomes;
    ConvertedValue::Outcome outcome;
};

TEST(ValueConversion, TakesEachValueAsTheNewTypeReadsIt)
{
    support::TestProject project;
    project.create();
    project.db().Execute(u"INSERT INTO Taxons (Taxon, [Nom Complet]) VALUES (\"alpina\", \"Arabis alpina\")"_s);
    project.db().Execute(u"INSERT INTO Collecteurs (Collecteur, Initiales) VALUES (\"Jeanne Baret\", \"JB\")"_s);
    constexpr auto exact = ConvertedValue::Exact;
    constexpr auto near = ConvertedValue::Approximate;
    constexpr auto none = ConvertedValue::Impossible;
    const QString wide(300, u'x');
    const QList<Case> cases{
        {data::Texte, data::Réel, u" 1 234,5 "_s, 1234.5, exact},
        {data::Texte, data::Réel, u"1.5"_s, 1.5, exact},
        {data::Texte, data::Réel, u"1.5 m"_s, {}, none},
        {data::Texte, data::Réel, u"1e999"_s, {}, none},
        {data::Texte, data::Réel, u"   "_s, {}, exact},
        {data::Texte, data::Entier, u"12"_s, 12, exact},
        {data::Texte, data::Entier, u"2,5"_s, 2, near},
        {data::Texte, data::Entier, u"3000000000"_s, {}, none},
        {data::Texte, data::OuiNon, u"Oui"_s, true, exact},
        {data::Texte, data::OuiNon, u"FAUX"_s, false, exact},
        {data::Texte, data::OuiNon, u"peut-être"_s, {}, none},
        {data::Texte, data::Date, u"6 mars 2001"_s, u"2001/03/06"_s, exact},
        {data::Texte, data::Date, u"printemps"_s, {}, none},
        {data::Texte, data::Longitude, u"W012°30'00"_s, -12.5, exact},
        {data::Texte, data::Longitude, u"200"_s, {}, none},
        {data::Texte, data::Latitude, u"vers le nord"_s, {}, none},
        {data::Texte, data::Taxon, u"arabis  ALPINA"_s, 1, exact},
        {data::Texte, data::Taxon, u"Arabis caerulea"_s, {}, none},
        {data::Texte, data::Botaniste, u"JB"_s, 1, exact},
        {data::Texte, data::ListeSimple, u"sec;humide"_s, u"sec"_s, near},
        {data::ListeMultiple, data::Texte, u"sec;humide"_s, u"sec;humide"_s, exact},
        {data::TexteMémo, data::Texte, wide, wide.left(255), near},
        {data::Réel, data::Texte, 1.25, u"1,25"_s, exact},
        {data::Réel, data::Entier, 1.25, 1, near},
        {data::Réel, data::OuiNon, 3.0, {}, none},
        {data::OuiNon, data::Entier, true, 1, exact},
        {data::OuiNon, data::Texte, false, u"Non"_s, exact},
        {data::Entier, data::Date, 2001, u"2001"_s, exact},
        {data::Taxon, data::Texte, 1, u"Arabis alpina"_s, exact},
        {data::Taxon, data::Texte, 7, {}, none},
        {data::Taxon, data::Botaniste, 1, {}, none},
        {data::Taxon, data::Entier, 1, {}, none},
        {data::Entier, data::LienCourant, 1, {}, none},
        {data::Texte, data::OuiNon, {}, false, exact},
        {data::Réel, data::Texte, {}, {}, exact},
    };
    for (const Case& one : cases) {
        const ConvertedValue got = ValueConversion(project.db(), one.from, one.to)(one.value);
        const std::string what = u"%1 → %2: %3"_s.arg(QString::number(one.from), QString::number(one.to),
                                                       one.value.toString().left(20)).toStdString();
        EXPECT_EQ(got.value, one.becomes) << what << " gave " << got.value.toString().toStdString();
        EXPECT_EQ(got.outcome, one.outcome) << what;
    }
}

} // namespace
