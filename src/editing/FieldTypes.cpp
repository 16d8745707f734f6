#include "editing/FieldTypes.h"

namespace editing {

using namespace Qt::StringLiterals;

namespace {

using Operators = QList<LabelledOperator>;

const LabelledOperator equal{u"Egale"_s, u"="_s};
const LabelledOperator different{u"Différent"_s, u"<>"_s};
const LabelledOperator contains{u"Contient"_s, u"LIKE"_s};
const LabelledOperator lacks{u"Ne Contient pas"_s, u"NOT LIKE"_s};

const Operators texts{equal, different, contains, lacks};
const Operators numbers{equal, different, {u"Supérieur"_s, u">"_s}, {u"Inférieur"_s, u"<"_s}};
const Operators sameOrNot{equal, different};
const Operators dates{equal, different, contains, lacks, {u"Avant"_s, u"<"_s}, {u"Après"_s, u">"_s}};
const Operators memos{contains, lacks};
const Operators places{equal, different, {u"Région de"_s, u"<"_s}};
const Operators links{{u"Inclus"_s, u"IN"_s}, {u"Exclus"_s, u"NOT IN"_s}};

const QString textFormats = u"Normal,Minuscule,Majuscule,1ère Majuscule"_s;
const QString degreeFormats = u"DegréMinutesSecondes,DegréMinutes,Décimal"_s;
// The blank before "Valeur absolue" belongs to the list: that format shows the raw value.
const QString numberFormats = u"Normal, Valeur absolue"_s;

const QString userText = u"Phylar.UserText"_s;
const QString lists = u"Phylar.Listes"_s;

} // namespace

const FieldTypeRow& fieldTypeRow(int code)
{
    static const QList<FieldTypeRow> table{
        /* 0 Label */ {u"Texte"_s, textFormats, texts, false, true, false, userText, 1},
        /* 1 Longitude */ {u"longlat"_s, degreeFormats, numbers, true, true, false, userText, 1},
        /* 2 Latitude */ {u"longlat"_s, degreeFormats, numbers, true, true, false, userText, 1},
        /* 3 Texte */ {u"Texte"_s, textFormats, texts, false, true, false, userText, 1},
        /* 4 OuiNon */ {u"Texte"_s, u"Vrai/Faux,Oui/Non,True/False"_s, sameOrNot, false, true, false, userText, 1},
        /* 5 Réel */ {u"Nombre"_s, numberFormats, numbers, true, true, false, userText, 1},
        /* 6 Entier */ {u"Nombre"_s, numberFormats, numbers, true, true, false, userText, 1},
        // The two short dates of the list match no style and show the raw value.
        /* 7 Date */ {u"Date"_s, u"06 mars 2001,06/03/01,mars 2001,03/01,2001,03/06/01"_s, dates, false, true, false, userText, 1},
        /* 8 Image */ {u"Image"_s, u"Image"_s, texts, false, true, false, userText, 1},
        /* 9 TexteMémo */ {u"Textertf"_s, u"Texte"_s, memos, false, true, false, userText, 10},
        /* 10 */ {QString(), textFormats, texts, false, false, false, userText, 1},
        /* 11 ListeMultiple */ {u"Lschecks"_s, u"Présence,Absence,Présence/Absence,Ratio"_s, texts, false, false, true, lists, 15},
        /* 12 ListeSimple */ {u"Lsitems"_s, textFormats, texts, false, false, true, lists, 15},
        /* 13 Botaniste */ {u"Lsbotanistes"_s, textFormats, sameOrNot, true, false, true, u"Phylar.Botaniste"_s, 15},
        /* 14 Localité */ {u"Lslocalités"_s, textFormats, places, true, false, true, u"Phylar.Localités"_s, 15},
        /* 15 Taxon */ {u"Lstaxons"_s, u"Taxon,Taxon auteur(s),Famille,Rang taxonomique"_s, sameOrNot, true, false, true, u"Phylar.Taxons"_s, 15},
        /* 16 */ {QString(), textFormats, texts, false, false, false, userText, 1},
        /* 17 LienCourant */ {QString(), textFormats, links, true, false, true, u"Phylar.Liens"_s, 15},
    };
    return code >= 0 && code < table.size() ? table[code] : table[16];
}

} // namespace editing
