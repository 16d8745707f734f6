// The dictionary in memory: modules and their fields.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace data {

/// Bits of `Flags` in the dictionary.
enum Flag : qint32 {
    Connecté = 0x2,          ///< The module must be connected at opening, else it is marked for deletion.
    MixteUnique = 0x4000,    ///< Module: the combined key includes `ID Individus`. Field: it is part of the key.
    Unique = 0x8000,         ///< Module: one record per individual. Field: its values are unique.
    Obligatoire = 0x10000,   ///< Field: Null is not allowed.
    Interface = 0x20000,     ///< Takes part in the input wizard.
    OptionListe = 0x80000,
    OptionÉditeur = 0x200000,
};

/// Providers with a meaning of their own.
inline const QString providerUser = QStringLiteral("User");
inline const QString moduleIndividus = QStringLiteral("Individus");
inline const QString moduleDéterminations = QStringLiteral("Déterminations");

/// One field row of the dictionary (`Type` "TabEdit").
struct FieldRecord {
    QString column;     ///< `Table`: column name in the module's table.
    QString caption;    ///< `NomObjet`: also its key in the module.
    int type = 3;       ///< `Version`: type code.
    int index = 0;      ///< Position; -1 marks it for deletion.
    QString rule;       ///< `Validation`, the part before "|".
    QString ruleText;   ///< The part behind it.
    QString help;       ///< `TextHelp`.
    QString provider = providerUser; ///< `ModuleConnexion`; for a link column the linked module.
    qint32 flags = Connecté;
    QStringList descriptors; ///< List fields: the vocabulary.

    bool required() const { return flags & Obligatoire; }
    bool unique() const { return flags & Unique; }
    bool partOfKey() const { return flags & MixteUnique; }
    bool operator==(const FieldRecord&) const = default;
};

/// One module row of the dictionary (`Type` "Addin") with its fields.
struct ModuleRecord {
    QString name;       ///< `NomModule`, name of the table too.
    QString label;      ///< `NomObjet`, display name.
    QString provider = providerUser;
    QString version;
    QString help;
    /// `ChampsLabel`, kept in `Validation`: texts and names of fields in brackets, for a record in a few words.
    QString shortLabel;
    int index = 0;
    qint32 flags = Connecté;
    QByteArray icon;    ///< A picture file (PNG, SVG …); empty for the default icon.
    QList<FieldRecord> fields;

    bool isIndividus() const { return name == moduleIndividus; }
    bool isUser() const { return provider == providerUser; }
    bool individuUnique() const { return !isIndividus() && (flags & Unique); }
    /// Columns of the combined unique key, empty when there is none.
    QStringList combinedKey() const;
    QString idColumn() const { return QStringLiteral("ID ") + name; }
    const FieldRecord* field(QStringView column) const;
    bool operator==(const ModuleRecord&) const = default;
};

} // namespace data
