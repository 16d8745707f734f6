#include "editing/FieldTypes.h"

namespace editing {

using namespace Qt::StringLiterals;

namespace {

using Operators = QList<QStringList>;

/// The format of that name. Names are compared exactly: a list that writes one otherwise (with a blank
/// before it, a year of two digits) shows the raw value, and that is how it has always been.
DisplayFormat formatOf(const QString& name)
{
    static const QList<DisplayFormat> known{
        {u"Vrai/Faux"_s, FormatRule::Pair, 0, u"Vrai"_s, u"Faux"_s},
        {u"Oui/Non"_s, FormatRule::Pair, 0, u"Oui"_s, u"Non"_s},
        {u"True/False"_s, FormatRule::Pair, 0, u"True"_s, u"False"_s},
        {u"06 mars 2001"_s, FormatRule::Date, 0, {}, {}},
        {u"06/03/2001"_s, FormatRule::Date, 1, {}, {}},
        {u"mars 2001"_s, FormatRule::Date, 2, {}, {}},
        {u"03/01"_s, FormatRule::Date, 3, {}, {}},
        {u"2001"_s, FormatRule::Date, 4, {}, {}},
        {u"03/06/2001"_s, FormatRule::Date, 5, {}, {}},
        {u"Taxon"_s, FormatRule::Taxon, 0, {}, {}},
        {u"Taxon auteur(s)"_s, FormatRule::TaxonAuthors, 0, {}, {}},
        {u"Famille"_s, FormatRule::Family, 0, {}, {}},
        {u"Rang taxonomique"_s, FormatRule::Rank, 0, {}, {}},
        {u"DegréMinutesSecondes"_s, FormatRule::TextValue, 0, {}, {}},
        {u"DegréMinutes"_s, FormatRule::Shortened, 0, {}, {}},
        {u"Décimal"_s, FormatRule::Decimal, 0, {}, {}},
        {u"Texte"_s, FormatRule::Whole, 0, {}, {}},
        {u"Normal"_s, FormatRule::TextValue, 0, {}, {}},
        {u"Minuscule"_s, FormatRule::Lower, 0, {}, {}},
        {u"Majuscule"_s, FormatRule::Upper, 0, {}, {}},
        {u"1ère Majuscule"_s, FormatRule::Capitals, 0, {}, {}},
        {u"Image"_s, FormatRule::FileName, 0, {}, {}},
        {u"Valeur absolue"_s, FormatRule::Absolute, 0, {}, {}},
    };
    for (const DisplayFormat& format : known) {
        if (format.name == name)
            return format;
    }
    return {name, FormatRule::Raw, 0, {}, {}};
}

enum Kind { Other, UserText, UserList };

struct Look {
    QString icon;
    QString formats; ///< Joined by ",".
    Operators operators;
    bool isNumber;
    Kind kind;
    QString control;
    int rows;
};

FieldTypeRow rowOf(const Look& look)
{
    FieldTypeRow row{look.icon, look.formats.split(u','), {}, look.operators, look.isNumber,
                     look.kind == UserText, look.kind == UserList, look.control, look.rows};
    for (const QString& name : row.formatNames)
        row.formats << formatOf(name);
    return row;
}

QList<FieldTypeRow> buildTable()
{
    const Operators texts{{u"Egale"_s, u"Différent"_s, u"Contient"_s, u"Ne Contient pas"_s},
                          {u"="_s, u"<>"_s, u"LIKE"_s, u"NOT LIKE"_s}};
    const Operators numbers{{u"Egale"_s, u"Différent"_s, u"Supérieur"_s, u"Inférieur"_s},
                            {u"="_s, u"<>"_s, u">"_s, u"<"_s}};
    const Operators sameOrNot{{u"Egale"_s, u"Différent"_s}, {u"="_s, u"<>"_s}};
    const Operators dates{{u"Egale"_s, u"Différent"_s, u"Contient"_s, u"Ne Contient pas"_s, u"Avant"_s, u"Après"_s},
                          {u"="_s, u"<>"_s, u"LIKE"_s, u"NOT LIKE"_s, u"<"_s, u">"_s}};
    const Operators memos{{u"Contient"_s, u"Ne Contient pas"_s}, {u"LIKE"_s, u"NOT LIKE"_s}};
    const Operators places{{u"Egale"_s, u"Différent"_s, u"Région de"_s}, {u"="_s, u"<>"_s, u"<"_s}};
    const Operators links{{u"Inclus"_s, u"Exclus"_s}, {u"IN"_s, u"NOT IN"_s}};

    const QString plain = u"Normal,Minuscule,Majuscule,1ère Majuscule"_s;
    const QString degrees = u"DegréMinutesSecondes,DegréMinutes,Décimal"_s;
    const QString number = u"Normal, Valeur absolue"_s;
    const QString date = u"06 mars 2001,06/03/01,mars 2001,03/01,2001,03/06/01"_s;
    const QString taxon = u"Taxon,Taxon auteur(s),Famille,Rang taxonomique"_s;

    const QString text = u"Phylar.UserText"_s;
    const QString lists = u"Phylar.Listes"_s;

    const QList<Look> looks{
        /* 0 Label */ {u"Texte"_s, plain, texts, false, UserText, text, 1},
        /* 1 Longitude */ {u"longlat"_s, degrees, numbers, true, UserText, text, 1},
        /* 2 Latitude */ {u"longlat"_s, degrees, numbers, true, UserText, text, 1},
        /* 3 Texte */ {u"Texte"_s, plain, texts, false, UserText, text, 1},
        /* 4 OuiNon */ {u"Texte"_s, u"Vrai/Faux,Oui/Non,True/False"_s, sameOrNot, false, UserText, text, 1},
        /* 5 Réel */ {u"Nombre"_s, number, numbers, true, UserText, text, 1},
        /* 6 Entier */ {u"Nombre"_s, number, numbers, true, UserText, text, 1},
        /* 7 Date */ {u"Date"_s, date, dates, false, UserText, text, 1},
        /* 8 Image */ {u"Image"_s, u"Image"_s, texts, false, UserText, text, 1},
        /* 9 TexteMémo */ {u"Textertf"_s, u"Texte"_s, memos, false, UserText, text, 10},
        /* 10 */ {QString(), plain, texts, false, Other, text, 1},
        /* 11 ListeMultiple */ {u"Lschecks"_s, u"Présence,Absence,Présence/Absence,Ratio"_s, texts, false, UserList, lists, 15},
        /* 12 ListeSimple */ {u"Lsitems"_s, plain, texts, false, UserList, lists, 15},
        /* 13 Botaniste */ {u"Lsbotanistes"_s, plain, sameOrNot, true, UserList, u"Phylar.Botaniste"_s, 15},
        /* 14 Localité */ {u"Lslocalités"_s, plain, places, true, UserList, u"Phylar.Localités"_s, 15},
        /* 15 Taxon */ {u"Lstaxons"_s, taxon, sameOrNot, true, UserList, u"Phylar.Taxons"_s, 15},
        /* 16 */ {QString(), plain, texts, false, Other, text, 1},
        /* 17 LienCourant */ {QString(), plain, links, true, UserList, u"Phylar.Liens"_s, 15},
    };
    QList<FieldTypeRow> table;
    for (const Look& look : looks)
        table << rowOf(look);
    return table;
}

} // namespace

const FieldTypeRow& fieldTypeRow(int code)
{
    static const QList<FieldTypeRow> table = buildTable();
    return code >= 0 && code < table.size() ? table[code] : table[16];
}

} // namespace editing
