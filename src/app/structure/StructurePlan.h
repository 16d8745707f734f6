// What has to change in a project so that it becomes what the draft says.
#pragma once

#include "app/structure/StructureDraft.h"

#include <QHash>

namespace app {

/// A field that stays, before and after.
struct FieldChange {
    data::FieldRecord before;
    data::FieldRecord after;

    bool renamed() const { return before.column != after.column; }
    bool retyped() const { return before.type != after.type; }
    bool rewritten() const; ///< The values become values of another kind.
};

/// A module that stays.
struct ModuleChange {
    QString origin; ///< Its name in the file.
    QString name;   ///< Its name afterwards.
    data::ModuleRecord before; ///< With their fields.
    data::ModuleRecord after;
    QList<data::FieldRecord> added;
    QList<data::FieldRecord> deleted;
    QList<FieldChange> kept;

    bool renamed() const { return origin != name; }
};

struct StructurePlan {
    QList<data::ModuleRecord> deleted;
    QList<ModuleChange> kept;
    QList<data::ModuleRecord> added;
    QList<data::ModuleRecord> modules; ///< All as they are to be, in their order.

    bool isEmpty() const;
};

StructurePlan planOf(const DraftModules& saved, const DraftModules& wanted);

/// New names by the old ones. Names of fields are by (module, column) as they were.
struct Renamings {
    QHash<QString, QString> modules;                   ///< By jet::nameKey.
    QHash<QPair<QString, QString>, QString> fields;    ///< By the nameKey of both.

    bool isEmpty() const { return modules.isEmpty() && fields.isEmpty(); }
    QString module(const QString& name) const;
    QString column(const QString& module, const QString& column) const;
};

Renamings renamingsOf(const StructurePlan& plan);

/// The text of a stored query with the names as they are now: items "Module.Column", and the columns of a path.
QString renamedQuery(const QString& text, const Renamings& renamings);
/// The same for an input model: keys "0-Module" and items "Module.Column". `module` is that of the model, as it was.
QString renamedModel(const QString& text, const QString& module, const Renamings& renamings);
/// The same for a statement of the dialect. A column without its table is renamed where the statement names the table.
QString renamedStatement(const QString& sql, const Renamings& renamings);

} // namespace app
