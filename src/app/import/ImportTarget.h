// What a table can be imported into: a module or a reference list, with the fields that columns may stand for.
#pragma once

#include "data/Modules.h"
#include "jet/Schema.h"

#include <QList>
#include <QString>

namespace app {

/// A field that a column of a table may fill.
struct ImportField {
    QString key;      ///< Unique in the target.
    QString caption;  ///< As the user sees it.
    int type = 3;     ///< data::FieldType.
    bool required = false; ///< In a row that is added.
    QStringList names = {}; ///< Other headers under which tables have it.
    QString module = {};    ///< Of the record that has it; empty for a reference list.
    QString column = {};    ///< Of the record; empty for what is no column itself.
    data::FieldRecord field = {}; ///< Of a module.
};

struct ImportTarget {
    QString name;  ///< Of the module or of the table.
    QString label;
    bool isList = false; ///< A reference list.
    QList<ImportField> fields;

    const ImportField* field(const QString& key) const;
    bool isValid() const { return !name.isEmpty(); }
};

/// Keys of what is no field of a module.
inline const QString importId = QStringLiteral("@ID");           ///< Identifier of the record itself.
inline const QString importIndividu = QStringLiteral("@Individu"); ///< Identifier of its individual.
inline const QString importNuméro = QStringLiteral("@Numéro");   ///< Number of its individual.
inline const QString importParent = QStringLiteral("@Parent");   ///< The place above.

/// The target of that name: a module (by its name or label) or "Taxons", "Localités", "Collecteurs", without case and
/// accents. One that is not valid when there is none.
ImportTarget importTarget(const QString& name, const QList<data::ModuleRecord>& modules, const jet::Schema& schema);
/// All of them, the modules first.
QList<ImportTarget> importTargets(const QList<data::ModuleRecord>& modules, const jet::Schema& schema);

/// A name without case, accents, blanks and signs, for comparing.
QString foldedName(const QString& name);

} // namespace app
