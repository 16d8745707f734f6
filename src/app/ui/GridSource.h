// What a grid shows: a table with its names looked up, as a statement.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace data {
struct ModuleRecord;
}
namespace jet {
class Schema;
}

namespace app {

/// One column of a grid. `type` (data::FieldType) says how its values look.
struct GridColumn {
    QString header;
    QString expression;
    int type = 3;
};

/// The records of one table. Botanists, places and taxa show their names, not their numbers.
struct GridSource {
    QString key;   ///< Of the node of the module tree.
    QString title;
    QString icon;
    QString from;  ///< The table with its joins.
    QList<GridColumn> columns;
    int sortedBy = -1; ///< Column by which it is sorted at first; -1 for none.
    QString emptyText; ///< What is said when there is no record.

    bool addable = false;     ///< Records may be added without being in another one.
    QStringList tables = {}; ///< Of the rows, then those whose values stand beside.

    /// The column with the identifiers of the rows; -1 for none.
    int idColumn() const;
    /// Values of one of these tables; nothing named stands for all.
    bool shows(const QStringList& written) const;
    /// The statement, sorted by a column (-1 for none).
    QString statement(int column, Qt::SortOrder order) const;
};

/// A module: its number, its individual, its fields with their captions, the standard columns. Fields whose column the
/// table lacks are left out.
GridSource moduleSource(const data::ModuleRecord& module, const QList<data::ModuleRecord>& modules,
                        const jet::Schema& schema);
GridSource taxaSource();
GridSource localitiesSource();
GridSource collectorsSource();

} // namespace app
