// One field of a module as an add-in gives it and the program edits it.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <memory>

namespace addin {

/// A field record. An add-in fills what describes the field; the program fills what binds it to a record (`IDIndividu`,
/// `IDItem`, `value`). Null is an invalid QVariant.
struct ChpEdition {
    // What describes the field.
    int ctype = 3;        ///< Type code: 0 Label, 1 Longitude, 2 Latitude, 3 Texte, 4 OuiNon, 5 Réel, 6 Entier, 7 Date,
                          ///< 8 Image, 9 TexteMémo, 11 ListeMultiple, 12 ListeSimple, 13 Botaniste, 14 Localité,
                          ///< 15 Taxon, 17 LienCourant.
    QString champ;        ///< Column in the module's table.
    QString Caption;      ///< What the user reads.
    QString TextHelp;
    QString TextMask;     ///< Input mask of the typed text control; empty for none.
    QString NomModule;    ///< Module (table) of the field; empty: that of the collection.
    QString NomBase;      ///< Database of the module; empty: the open project.
    QString SubMenu;      ///< Caption of the field's own menu; empty for none.
    int MenuFlags = 0;    ///< Bits 4, 8, 16: entries of the context menu.
    bool AllowNull = true;
    bool Locked = false;  ///< The value cannot be written.
    bool ChampUnique = false;
    bool ChampMixteUnique = false;
    bool Interface = false; ///< Takes part in the input wizard.
    QString ValidationRule;
    QString ValidationTexte;
    QStringList Descripteurs; ///< List fields: the vocabulary.
    int Format = 0;       ///< Index of the chosen display format.

    // What binds it to a record.
    qint32 IDIndividu = 0;
    qint32 IDItem = 0;    ///< 0: a record that is not saved yet.
    QVariant value;
    bool Changed = false;
    QString TextError;    ///< The field's own error; empty when there is none.
};

using ChpEditionPtr = std::shared_ptr<ChpEdition>;
/// The fields of one form, in their order.
using TabEditions = QList<ChpEditionPtr>;

} // namespace addin
