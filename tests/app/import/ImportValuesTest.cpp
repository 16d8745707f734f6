#include "app/import/ImportValues.h"

#include "data/FieldType.h"

#include <gtest/gtest.h>

namespace app {
namespace {

using namespace Qt::StringLiterals;

/// The value as text, or "! " and why it is refused.
QString read(int type, const QString& cell, QChar decimal = u',', const QStringList& list = {})
{
    editing::EditingContext context{[counter = 0]() mutable { return ++counter; }, {}, {}};
    data::FieldRecord field;
    field.column = u"Champ"_s;
    field.caption = u"Champ"_s;
    field.type = type;
    field.descriptors = list;
    ImportValues values({u"Champ"_s, u"Champ"_s, type, false, {}, u"Module"_s, u"Champ"_s, field}, decimal, context);
    try {
        const QVariant value = values.read(cell);
        if (value.typeId() == QMetaType::Double)
            return QString::number(value.toDouble(), 'g', 10);
        return value.isValid() ? value.toString() : u"∅"_s;
    } catch (const RowRefused& refused) {
        return u"! "_s + refused.reason.section(u" : "_s, 1);
    }
}

TEST(ImportValues, ReadsWhatTablesHold)
{
    using namespace data;
    struct Case {
        int type;
        QString cell;
        QString expected;
        QChar decimal = u',';
    };
    const QString notNumber = u"! ce n'est pas un nombre"_s;
    const Case cases[] = {
        {Réel, u"12,5"_s, u"12.5"_s},
        {Réel, u"1 234,5"_s, u"1234.5"_s},
        {Réel, u"1.234,5"_s, u"1234.5"_s},
        {Réel, u"1.234"_s, notNumber}, // twelve hundred, or one and a bit: nobody knows
        {Réel, u"1.234"_s, u"1.234"_s, u'.'},
        {Réel, u"1,234.5"_s, u"1234.5"_s, u'.'},
        {Réel, u"12,34.5"_s, notNumber, u'.'},
        {Réel, u"haut"_s, notNumber},
        {Réel, u"  "_s, u"∅"_s},
        {Entier, u"12,5"_s, u"! ce n'est pas un nombre entier"_s},
        {Entier, u"12"_s, u"12"_s},
        {OuiNon, u"Oui"_s, u"true"_s},
        {OuiNon, u"x"_s, u"true"_s},
        {OuiNon, u"FAUX"_s, u"false"_s},
        {OuiNon, u"peut-être"_s, u"! ce n'est ni oui ni non"_s},
        {Date, u"12/05/2024"_s, u"2024/05/12"_s},
        {Date, u"mai 2024"_s, u"2024/05"_s},
        {Date, u"hier"_s, u"! ce n'est pas une date"_s},
        {Longitude, u"-6,5"_s, u"-6.5"_s},
        {Longitude, u"250,5"_s, u"! au-delà de 180 degrés"_s},
        {Longitude, u"O006°30'00"_s, u"-6.5"_s},
        {Longitude, u"6°30' W"_s, u"-6.5"_s},
        {Longitude, u"6°75'"_s, u"! degrés, minutes ou secondes hors de leurs limites"_s},
        {Longitude, u"N6°30"_s, u"! ce n'est pas une coordonnée"_s},
        {Latitude, u"45° 30' 00\" S"_s, u"-45.5"_s},
        {Latitude, u"N 45,25"_s, u"45.25"_s},
        {Latitude, u"91"_s, u"! au-delà de 90 degrés"_s},
        {Texte, u" Forêt "_s, u"Forêt"_s},
        {Texte, QString(256, u'x'), u"! texte trop long, 255 caractères au plus"_s},
    };
    for (const Case& c : cases)
        EXPECT_EQ(read(c.type, c.cell, c.decimal), c.expected) << c.cell.toStdString();
}

TEST(ImportValues, TakesListItemsAsTheVocabularyWritesThem)
{
    const QStringList list{u"cf."_s, u"aff."_s};
    EXPECT_EQ(read(data::ListeSimple, u"CF."_s, u',', list), u"cf."_s);
    EXPECT_EQ(read(data::ListeSimple, u"env."_s, u',', list), u"! valeur hors de la liste"_s);
    EXPECT_EQ(read(data::ListeMultiple, u"cf. ; aff."_s, u',', list), u"cf.;aff."_s);
    EXPECT_EQ(read(data::ListeMultiple, u"cf.;env."_s, u',', list), u"! valeur hors de la liste"_s);
}

} // namespace
} // namespace app
