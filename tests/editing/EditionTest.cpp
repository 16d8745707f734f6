#include "editing/Cl_Edition.h"

#include "editing/Cl_Editions.h"
#include "EditingFixture.h"

#include <stdexcept>

namespace {

using namespace Qt::StringLiterals;
using editing::Cl_Edition;

using Words = QList<QStringList>;
const Words textOperators{{u"Egale"_s, u"Différent"_s, u"Contient"_s, u"Ne Contient pas"_s},
                          {u"="_s, u"<>"_s, u"LIKE"_s, u"NOT LIKE"_s}};
const Words numberOperators{{u"Egale"_s, u"Différent"_s, u"Supérieur"_s, u"Inférieur"_s},
                            {u"="_s, u"<>"_s, u">"_s, u"<"_s}};
const Words twoOperators{{u"Egale"_s, u"Différent"_s}, {u"="_s, u"<>"_s}};
const QStringList textFormats{u"Normal"_s, u"Minuscule"_s, u"Majuscule"_s, u"1ère Majuscule"_s};
const QStringList degreeFormats{u"DegréMinutesSecondes"_s, u"DegréMinutes"_s, u"Décimal"_s};
const QStringList numberFormats{u"Normal"_s, u" Valeur absolue"_s};
const QString module = u"Mesures"_s;

struct TypeCase {
    int type;
    QString icon;
    QStringList formats;
    Words operators;
    QString flags; ///< "n" number, "t" typed text, "l" list
    QString control;
    int rows;
};

const QList<TypeCase>& typeCases()
{
    static const QList<TypeCase> cases{
        {0, u"Texte"_s, textFormats, textOperators, u"t"_s, u"Phylar.UserText"_s, 1},
        {1, u"longlat"_s, degreeFormats, numberOperators, u"nt"_s, u"Phylar.UserText"_s, 1},
        {2, u"longlat"_s, degreeFormats, numberOperators, u"nt"_s, u"Phylar.UserText"_s, 1},
        {3, u"Texte"_s, textFormats, textOperators, u"t"_s, u"Phylar.UserText"_s, 1},
        {4, u"Texte"_s, {u"Vrai/Faux"_s, u"Oui/Non"_s, u"True/False"_s}, twoOperators, u"t"_s, u"Phylar.UserText"_s, 1},
        {5, u"Nombre"_s, numberFormats, numberOperators, u"nt"_s, u"Phylar.UserText"_s, 1},
        {6, u"Nombre"_s, numberFormats, numberOperators, u"nt"_s, u"Phylar.UserText"_s, 1},
        {7, u"Date"_s,
         {u"06 mars 2001"_s, u"06/03/01"_s, u"mars 2001"_s, u"03/01"_s, u"2001"_s, u"03/06/01"_s},
         {{u"Egale"_s, u"Différent"_s, u"Contient"_s, u"Ne Contient pas"_s, u"Avant"_s, u"Après"_s},
          {u"="_s, u"<>"_s, u"LIKE"_s, u"NOT LIKE"_s, u"<"_s, u">"_s}},
         u"t"_s, u"Phylar.UserText"_s, 1},
        {8, u"Image"_s, {u"Image"_s}, textOperators, u"t"_s, u"Phylar.UserText"_s, 1},
        {9, u"Textertf"_s, {u"Texte"_s}, {{u"Contient"_s, u"Ne Contient pas"_s}, {u"LIKE"_s, u"NOT LIKE"_s}}, u"t"_s,
         u"Phylar.UserText"_s, 10},
        {10, module, textFormats, textOperators, u""_s, u"Phylar.UserText"_s, 1},
        {11, u"Lschecks"_s, {u"Présence"_s, u"Absence"_s, u"Présence/Absence"_s, u"Ratio"_s}, textOperators, u"l"_s,
         u"Phylar.Listes"_s, 15},
        {12, u"Lsitems"_s, textFormats, textOperators, u"l"_s, u"Phylar.Listes"_s, 15},
        {13, u"Lsbotanistes"_s, textFormats, twoOperators, u"nl"_s, u"Phylar.Botaniste"_s, 15},
        {14, u"Lslocalités"_s, textFormats, {{u"Egale"_s, u"Différent"_s, u"Région de"_s}, {u"="_s, u"<>"_s, u"<"_s}},
         u"nl"_s, u"Phylar.Localités"_s, 15},
        {15, u"Lstaxons"_s, {u"Taxon"_s, u"Taxon auteur(s)"_s, u"Famille"_s, u"Rang taxonomique"_s}, twoOperators,
         u"nl"_s, u"Phylar.Taxons"_s, 15},
        {16, module, textFormats, textOperators, u""_s, u"Phylar.UserText"_s, 1},
        {17, module, textFormats, {{u"Inclus"_s, u"Exclus"_s}, {u"IN"_s, u"NOT IN"_s}}, u"nl"_s, u"Phylar.Liens"_s, 15},
        {18, module, textFormats, textOperators, u""_s, u"Phylar.UserText"_s, 1},
        {-1, module, textFormats, textOperators, u""_s, u"Phylar.UserText"_s, 1},
    };
    return cases;
}

class EditionTest : public ::testing::Test {
protected:
    std::unique_ptr<Cl_Edition> field(int type, const QVariant& value = {})
    {
        auto made = std::make_unique<Cl_Edition>(surroundings.context());
        made->setNomModule(module);
        made->setCtype(type);
        made->setValue(value);
        return made;
    }
    /// The text in a format; the value is put in as a file holds it.
    QString shown(int type, int format, const QVariant& value)
    {
        const auto made = field(type);
        made->ChpEdition()->value = value;
        made->setFormat(format);
        return made->FormatedValue();
    }

    fixture::Surroundings surroundings;
};

TEST_F(EditionTest, FollowsTheTableOfTypes)
{
    for (const TypeCase& c : typeCases()) {
        const auto made = field(c.type);
        EXPECT_EQ(made->IconName(), c.icon) << c.type;
        EXPECT_EQ(made->formats(), c.formats) << c.type;
        EXPECT_EQ(made->TabOperateur(), c.operators) << c.type;
        EXPECT_EQ(made->IsNombre(), c.flags.contains(u'n')) << c.type;
        EXPECT_EQ(made->IsUserText(), c.flags.contains(u't')) << c.type;
        EXPECT_EQ(made->IsUserListe(), c.flags.contains(u'l')) << c.type;
        EXPECT_EQ(made->controlClass(), c.control) << c.type;
        EXPECT_EQ(made->HeightMin(), c.rows * surroundings.rowHeight) << c.type;
    }
}

TEST_F(EditionTest, NormalisesWhatIsWritten)
{
    struct Case {
        int type;
        QVariant written, stored;
    };
    const QVariant null;
    const QList<Case> cases{
        {3, u"Null"_s, null}, {3, u""_s, null}, {3, u"NULL"_s, u"NULL"_s}, {3, u" a "_s, u" a "_s}, {3, 2.5, u"2.5"_s},
        {0, u""_s, null}, {9, u""_s, null}, {9, u"mémo"_s, u"mémo"_s},
        {1, u"W12°30'"_s, -12.5}, {1, u"12,5"_s, 12.5}, {1, u"12.5"_s, 12.5}, {1, 3, 3.0}, {1, u" "_s, null}, {1, u"X12°30"_s, 12.5},
        {2, u"S5°30'00"_s, -5.5}, {2, u"-5.5"_s, -5.5}, {2, u"N91°"_s, 1.0},
        // The sign is that of the normal form, which knows no other letter.
        {2, u"X5°30"_s, 5.5},
        {4, u"Oui"_s, u"True"_s}, {4, u"O"_s, u"True"_s}, {4, u"1"_s, u"True"_s}, {4, u"YES"_s, u"True"_s}, {4, u"vrai"_s, u"True"_s},
        {4, u"v"_s, u"True"_s}, {4, u"T"_s, u"True"_s}, {4, u"y"_s, u"True"_s}, {4, true, u"True"_s}, {4, u"True"_s, u"True"_s},
        {4, u"non"_s, u"False"_s}, {4, u"2"_s, u"False"_s}, {4, false, u"False"_s}, {4, u"vraiment"_s, u"False"_s}, {4, u""_s, u"False"_s},
        {5, u"1 234,5"_s, 1234.5}, {5, u"-1.5e3"_s, -1500.0}, {5, 7, 7.0}, {5, u"douze"_s, u"douze"_s}, {5, u"nan"_s, u"nan"_s}, {5, u""_s, u""_s},
        {6, u"12"_s, 12.0}, {6, u"12 m"_s, u"12 m"_s},
        {7, u"6 mars 2001"_s, u"2001/03/06"_s}, {7, u"printemps"_s, null}, {7, u"2001"_s, u"2001"_s},
        {7, QDateTime(QDate(2001, 3, 6), QTime(10, 30)), u"2001/03/06 10:30:00"_s},
        {8, u"C:\\a.JPG"_s, u"C:\\a.JPG"_s}, {8, u""_s, u""_s},
        {11, u"sec;humide"_s, u"sec;humide"_s},
        {13, u"12 Dupont"_s, 12}, {14, u"abc"_s, 0}, {15, -3, -3}, {15, 7.0, 7}, {13, u"99999999999"_s, 2147483647},
        {17, u"4;7,9"_s, u"4,7,9"_s}, {17, 4, u"4"_s},
        {10, u"x"_s, u"x"_s}, {16, 4, 4}, {99, u"y"_s, u"y"_s},
    };
    for (const Case& c : cases) {
        const auto made = field(c.type, c.written);
        EXPECT_EQ(made->value(), c.stored) << c.type << " " << c.written.toString().toStdString();
        EXPECT_EQ(made->value().typeId(), c.stored.typeId()) << c.type << " " << c.written.toString().toStdString();
    }
}

TEST_F(EditionTest, AnUnboundListFieldTakesTheDescriptorMeant)
{
    const auto made = field(12);
    made->setListeItems({u"Très sec"_s, u"Humide"_s, u"a?b"_s});
    const QList<QPair<QString, QString>> cases{{u"humide"_s, u"Humide"_s}, {u"tr*"_s, u"Très sec"_s},
                                               {u"a?b"_s, u"a?b"_s},        {u"h?mide"_s, u"h?mide"_s},
                                               {u"[H]umide"_s, u"[H]umide"_s}, {u"neuf"_s, u"neuf"_s}};
    for (const auto& [typed, stored] : cases) {
        made->setValue(typed);
        EXPECT_EQ(made->value(), stored);
    }
    made->ChpEdition()->IDItem = 4;
    made->setValue(u"humide"_s);
    EXPECT_EQ(made->value(), u"humide"_s);
}

TEST_F(EditionTest, ALockedFieldKeepsItsValueAndChangesAreMarked)
{
    const auto made = field(3, u"a"_s);
    made->ChpEdition()->Changed = false;
    made->setValue(u"a"_s);
    EXPECT_FALSE(made->Changed());
    made->setValue(u"b"_s);
    EXPECT_TRUE(made->Changed());
    made->setLocked(true);
    made->setValue(u"c"_s);
    EXPECT_EQ(made->value(), u"b"_s);
}

TEST_F(EditionTest, ShowsTheTextOfTheValue)
{
    struct Case {
        int type;
        QVariant value;
        QString text;
    };
    const QList<Case> cases{
        {3, {}, u"< Valeur Nulle >"_s}, {1, {}, u"< Valeur Nulle >"_s}, {11, u"NULL"_s, u"< Valeur Nulle >"_s},
        {1, -12.5, u"W012°30'00.00"_s}, {2, 5.1, u"N05°06'00.00"_s}, {2, u"n'importe quoi"_s, u""_s},
        {4, u"True"_s, u"Vrai"_s}, {4, u"False"_s, u"Faux"_s}, {4, u"oui"_s, u"Faux"_s},
        {5, 2, u"2.0000"_s}, {5, 1.23456, u"1.2346"_s}, {5, 0.00015, u"0.0002"_s}, {5, -0.00004, u"0.0000"_s}, {5, -1234567.5, u"-1234567.5000"_s},
        {5, 123456789012.25, u"123456789012.2500"_s}, {5, u"douze"_s, u"douze"_s},
        {6, 12.0, u"12"_s}, {6, 12.5, u"12.5"_s}, {6, 1e20, u"1E+20"_s},
        {7, u"2001/03/06 10:30"_s, u"06 mars 2001 - 10:30"_s}, {7, u"2001"_s, u"2001"_s},
        {8, u"C:\\a.jpg"_s, u"C:\\a.jpg"_s}, {11, QString(300, u'x'), QString(255, u'x')}, {12, u"sec"_s, u"sec"_s},
        {13, 3, u"botaniste 3"_s}, {14, 4, u"localité 4"_s}, {15, 5, u"taxon 5"_s},
        {17, u"4,7,9"_s, u"3 ID(s) dans la sélection"_s}, {10, 3, u"3"_s},
    };
    for (const Case& c : cases) {
        const auto made = field(c.type);
        made->ChpEdition()->value = c.value;
        EXPECT_EQ(made->TextValue(), c.text) << c.type;
    }
    const auto link = field(17, u"4;7"_s);
    link->setIDIndividu(1);
    link->setChamp(u"ID Déterminations"_s);
    EXPECT_EQ(link->TextValue(), u"liens 4,7 de Déterminations"_s);
}

TEST_F(EditionTest, FormatsAsTheListsSay)
{
    struct Case {
        int type, format;
        QVariant value;
        QString text;
    };
    const QString date = u"2001/03/06"_s;
    const QList<Case> cases{
        {3, 0, u"l'Été EN mai"_s, u"l'Été EN mai"_s}, {3, 1, u"Été"_s, u"été"_s}, {3, 2, u"été"_s, u"ÉTÉ"_s},
        {3, 3, u"l'Été EN mai"_s, u"L'été En Mai"_s},
        {3, 4, u"Été"_s, u"Été"_s}, // beyond the list: the first one
        {3, -1, u"Été"_s, u"Été"_s},
        {3, 2, u"NULL"_s, u"< Valeur Nulle >"_s}, {3, 2, u""_s, u"< Valeur Nulle >"_s},
        {1, 0, 12.5, u"E012°30'00.00"_s}, {1, 1, 12.5, u"1"_s}, {1, 1, 12.25, u"12"_s}, {1, 1, 5, u""_s}, {1, 2, 12.5, u""_s},
        {1, 1, u"E012°30'00.00"_s, u"E012°30'00"_s}, {1, 2, u"E012°30'00.00"_s, u"12.5"_s}, {1, 2, u"W012°30'00.00"_s, u"-12.5"_s},
        {2, 2, u"N12°45'00.00"_s, u"13"_s}, {2, 2, u"S12°30'00.00"_s, u"-12"_s}, {2, 2, u"12°45"_s, u""_s},
        {4, 0, u"True"_s, u"Vrai"_s}, {4, 1, u"True"_s, u"Oui"_s}, {4, 2, u"True"_s, u"True"_s}, {4, 0, u"False"_s, u"Faux"_s},
        {4, 1, u"Vrai"_s, u"Oui"_s}, {4, 1, u"Faux"_s, u"Non"_s}, {4, 1, u"1"_s, u"Non"_s},
        {5, 0, -2.5, u"-2.5000"_s}, {5, 1, -2.5, u"-2.5"_s}, {6, 1, -3.0, u"-3"_s},
        {7, 0, date, u"06 mars 2001"_s}, {7, 1, date, date}, {7, 2, date, u"mars 2001"_s}, {7, 3, date, u"03/01"_s}, {7, 4, date, u"2001"_s},
        {7, 5, date, date},
        {8, 0, u"C:\\Photos\\mon IMAGE.JPG"_s, u"Mon Image.jpg"_s}, {8, 0, u"SEULE.jpg"_s, u"Seule.jpg"_s},
        {9, 0, QString(300, u'x'), QString(300, u'x')},
        {11, 0, u"sec;humide"_s, u"sec;humide"_s}, {11, 3, QString(300, u'x'), QString(255, u'x')},
        {15, 0, 5, u"taxon 5"_s}, {15, 1, 5, u"taxon 5 L."_s}, {15, 2, 5, u"FAMILLE DE 5"_s}, {15, 3, 5, u"rang de 5"_s},
        {13, 2, 3, u"BOTANISTE 3"_s}, {10, 2, u"x"_s, u"X"_s},
    };
    for (const Case& c : cases)
        EXPECT_EQ(shown(c.type, c.format, c.value), c.text) << c.type << " format " << c.format << " " << c.value.toString().toStdString();
}

TEST_F(EditionTest, FormattingPutsTheFormatAndTheValueRight)
{
    const auto made = field(4);
    made->ChpEdition()->value = u"Vrai"_s;
    made->setFormat(9);
    EXPECT_EQ(made->FormatedValue(), u"Vrai"_s);
    EXPECT_EQ(made->Format(), 0);
    EXPECT_EQ(made->value(), u"True"_s);
    made->ChpEdition()->value = u""_s;
    made->FormatedValue();
    EXPECT_FALSE(made->value().isValid());
}

TEST_F(EditionTest, WithoutNamesTheIdentifierIsShown)
{
    surroundings.names.reset();
    EXPECT_EQ(field(15, 7)->TextValue(), u"7"_s);
    EXPECT_EQ(field(15, 7)->FormatedValue(), u"7"_s);
    EXPECT_EQ(field(13, 7)->FormatedValue(), u"7"_s);
}

TEST_F(EditionTest, TakesOperatorsAndTheirLabels)
{
    struct Case {
        int type;
        QString written, stored, label;
    };
    const QList<Case> cases{
        {3, u"like"_s, u"LIKE"_s, u"Contient"_s}, {3, u"!="_s, u"="_s, u"Egale"_s}, {3, u" not like "_s, u"NOT LIKE"_s, u"Ne Contient pas"_s},
        {3, u"<>"_s, u"<>"_s, u"Différent"_s}, {5, u"<"_s, u"<"_s, u"Inférieur"_s}, {5, u">"_s, u">"_s, u"Supérieur"_s},
        {7, u"<"_s, u"<"_s, u"Avant"_s}, {7, u">"_s, u">"_s, u"Après"_s}, {14, u"<"_s, u"<"_s, u"Région de"_s},
        {9, u"="_s, u"LIKE"_s, u"Contient"_s}, {9, u"<>"_s, u"NOT LIKE"_s, u"Ne Contient pas"_s},
        {17, u"="_s, u"IN"_s, u"Inclus"_s}, {17, u"<>"_s, u"NOT IN"_s, u"Exclus"_s}, {3, u"is not"_s, u"IS NOT"_s, u""_s},
    };
    for (const Case& c : cases) {
        const auto made = field(c.type, 1);
        made->setOperateur(c.written);
        EXPECT_EQ(made->Operateur(), c.stored) << c.type;
        EXPECT_EQ(made->TextOperateur(), c.label) << c.type;
        made->setOperateur(u"IS"_s);
        made->setTextOperateur(c.label);
        EXPECT_EQ(made->Operateur(), c.label.isEmpty() ? u"IS"_s : c.stored) << c.type;
    }
    const auto null = field(3);
    EXPECT_EQ(null->Operateur(), u"IS"_s);
    null->setOperateur(u"<>"_s);
    EXPECT_EQ(null->Operateur(), u"IS NOT"_s);
    EXPECT_EQ(null->TextOperateur(), u"Différent"_s);
    null->setOperateur(u"LIKE"_s);
    EXPECT_EQ(null->Operateur(), u"LIKE"_s);
}

TEST_F(EditionTest, TellsWhatIsWrongWithTheValue)
{
    const auto made = field(3);
    EXPECT_TRUE(made->valid());
    made->setAllowNull(false);
    EXPECT_FALSE(made->valid());
    EXPECT_EQ(made->TextError(), u"Valeur nulle non autorisée pour ce champ"_s);
    made->setTextError(u" à revoir "_s);
    EXPECT_EQ(made->TextError(), u"à revoir"_s);
    made->setTextError(u"  "_s);
    made->setValue(u"a"_s);
    EXPECT_EQ(made->TextError(), QString());
}

TEST_F(EditionTest, TheMenuEntriesGoTogether)
{
    const QList<std::tuple<int, bool, int>> cases{{0, true, 28}, {28, true, 28}, {28, false, 0}, {0, false, 0},
                                                  {4, true, 24}, {4, false, 4},  {33, true, 61}, {61, false, 33}};
    for (const auto& [before, visible, after] : cases) {
        const auto made = field(3);
        made->setMenuFlags(before);
        made->setMenuVisible(visible);
        EXPECT_EQ(made->MenuFlags(), after) << before << visible;
    }
}

TEST_F(EditionTest, KeysAreCountedOn)
{
    const auto first = field(3);
    const auto second = field(3);
    EXPECT_EQ(second->Idclasse(), first->Idclasse() + 1);
    EXPECT_EQ(first->key(), QString::number(first->Idclasse()) + u"-key"_s);
}

TEST_F(EditionTest, ListItemsAreSearchedAndChecked)
{
    const auto made = field(11, u"sec; humide "_s);
    made->setListeItems({u"secondaire"_s, u"sec"_s, u"Humide"_s});
    EXPECT_EQ(made->SearchListeItem(u"*dair*"_s), u"secondaire"_s);
    EXPECT_EQ(made->SearchListeItem(u"HUM*"_s), u"Humide"_s);
    EXPECT_EQ(made->SearchListeItem(u"rien"_s), QString());
    EXPECT_EQ(made->SelectedItems(), (QStringList{u"sec"_s, u"humide"_s}));
    EXPECT_TRUE(made->SearchListeCheck(u" Humide"_s));
    EXPECT_FALSE(made->SearchListeCheck(u"secondaire"_s));
    EXPECT_EQ(field(17, u"4;7"_s)->SelectedItems(), (QStringList{u"4"_s, u"7"_s}));
}

TEST_F(EditionTest, BindingToARowLoadsItsValue)
{
    surroundings.records->rows[u"5-Mesures"_s] = {{u"Hauteur"_s, 2.5}, {u"Vivant"_s, true}};
    const auto height = field(5, 9);
    height->setChamp(u"Hauteur"_s);
    height->setLocked(true);
    height->setIDItem(5);
    EXPECT_EQ(height->value(), 2.5);
    EXPECT_FALSE(height->Changed());
    const auto living = field(4);
    living->setChamp(u"Vivant"_s);
    living->setIDItem(5);
    EXPECT_EQ(living->value(), u"True"_s);
    living->setIDItem(0); // a new row keeps what is preset
    EXPECT_EQ(living->value(), u"True"_s);
    living->setIDItem(6);
    EXPECT_FALSE(living->value().isValid());
}

TEST_F(EditionTest, AFailingSourceLeavesTheFieldInPeace)
{
    const auto made = field(3, u"a"_s);
    surroundings.records->broken = true;
    made->setIDItem(5);
    EXPECT_EQ(made->value(), u"a"_s);
    EXPECT_EQ(made->ListeItems(), QStringList());
    QString caption;
    EXPECT_EQ(made->GetTabEdition(1, &caption)->Count(), 0);
}

TEST_F(EditionTest, GivesTheFormOfTheLinkedRecord)
{
    surroundings.records->columns[u"Mesures"_s] = {u"Hauteur"_s, u"Auteur"_s};
    surroundings.records->rows[u"5-Mesures"_s] = {{u"Hauteur"_s, u"haut"_s}, {u"Locked"_s, true}};
    surroundings.records->rows[u"6-Mesures"_s] = {{u"Hauteur"_s, u"bas"_s}, {u"Locked"_s, false}};
    const auto link = field(17);
    link->setNomModule(u"Individus"_s);
    link->setChamp(u"ID Mesures"_s);
    link->setIDIndividu(3);
    QString caption;

    const auto added = link->GetTabEdition(0, &caption);
    EXPECT_EQ(caption, u"< Mesures (étiquette) - Ajout >"_s);
    ASSERT_EQ(added->Count(), 2);
    EXPECT_FALSE(added->Item(0)->value().isValid());
    EXPECT_EQ(added->Item(0)->IDIndividu(), 3);

    const auto locked = link->GetTabEdition(5, &caption);
    EXPECT_EQ(caption, u"< Mesures (étiquette) - N° 5 >"_s);
    EXPECT_EQ(locked->Item(0)->value(), u"haut"_s);
    for (const auto& one : *locked)
        EXPECT_EQ(one->TextError(), u"L'enregistrement est verrouillé"_s);
    EXPECT_EQ(link->GetTabEdition(6, nullptr)->Item(1)->TextError(), QString());
}

class FakeContainer : public editing::ControlContainer {
public:
    QStringList names;
    QStringList classes;
    bool refusing = false;

    int controlCount() const override { return int(names.size()); }
    bool hasControl(const QString& name) const override { return names.contains(name); }
    void addControl(const QString& className, const QString& name, Cl_Edition&) override
    {
        if (refusing)
            throw std::runtime_error("refused");
        names << name;
        classes << className;
    }
};

TEST_F(EditionTest, ControlsAreNamedByTheFirstFreeNumber)
{
    FakeContainer container;
    container.names = {u"a"_s, u"2Ctrl"_s};
    const auto made = field(15);
    EXPECT_EQ(made->Control(), QString());
    EXPECT_TRUE(made->CreateCtrl(container));
    EXPECT_EQ(made->Control(), u"3Ctrl"_s);
    EXPECT_EQ(container.classes, QStringList{u"Phylar.Taxons"_s});
    const auto next = field(3);
    next->CreateCtrl(container);
    EXPECT_EQ(next->Control(), u"4Ctrl"_s);
    container.refusing = true;
    EXPECT_FALSE(next->CreateCtrl(container));
    EXPECT_EQ(next->Control(), QString());
}

TEST_F(EditionTest, RelaysTheFourActions)
{
    const auto made = field(3);
    QList<editing::EditAction> seen;
    made->onAction = [&](Cl_Edition& sender, editing::EditAction action, bool& cancel) {
        EXPECT_EQ(&sender, made.get());
        seen << action;
        cancel = action == editing::EditAction::Edit;
    };
    EXPECT_FALSE(made->report(u"click"_s));
    EXPECT_FALSE(made->report(u"Refresh"_s));
    EXPECT_TRUE(made->report(u"EDIT"_s));
    EXPECT_FALSE(made->report(u"Change"_s));
    EXPECT_FALSE(made->report(u"autre"_s));
    using enum editing::EditAction;
    EXPECT_EQ(seen, (QList{Click, Refresh, Edit, Change}));
}

TEST_F(EditionTest, ItemActionsGoToTheOwnerThenToTheAddin)
{
    const auto made = field(12);
    QStringList told;
    bool ownerCancels = false;
    made->onItemAction = [&](Cl_Edition&, const QString& action, const QVariantList& arguments, bool& cancel) {
        told << u"owner "_s + action + u' ' + QString::number(arguments.size());
        cancel = ownerCancels;
    };
    made->toAddin = [&](const QString& name, const QString& action, const QVariantList& arguments, bool& cancel) {
        told << name + u' ' + action + u' ' + arguments.at(0).toString() + u' ' + arguments.at(1).toString();
        EXPECT_EQ(arguments.size(), 2);
        cancel = action == u"DELETE_ITEM"_s;
    };
    EXPECT_FALSE(made->report(u"add_item"_s, {u"a"_s}));
    EXPECT_TRUE(made->report(u"DELETE_ITEM"_s, {u"a"_s, u"b"_s, u"c"_s}));
    ownerCancels = true;
    EXPECT_TRUE(made->report(u"EDIT_ITEM"_s));
    EXPECT_EQ(told, (QStringList{u"owner ADD_ITEM 1"_s, u"Mesures ADD_ITEM a "_s, u"owner DELETE_ITEM 3"_s,
                                 u"Mesures DELETE_ITEM a b"_s, u"owner EDIT_ITEM 0"_s}));
    const auto text = field(3);
    text->toAddin = made->toAddin;
    text->report(u"ADD_ITEM"_s);
    EXPECT_EQ(told.size(), 5);
}

} // namespace
