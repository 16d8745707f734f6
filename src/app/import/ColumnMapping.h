// Which column of a table fills which field.
#pragma once

#include "app/import/ImportTarget.h"
#include "data/PropertyStore.h"

namespace app {

/// For each column of the table the key of the field that it fills; empty for none.
using ColumnMapping = QStringList;

/// Columns find their fields by key, caption and other names, without case, accents and signs; what was kept of an earlier
/// import goes first. A field is filled by one column, the first. Identifiers are left alone unless `withIds`: they say which
/// records a row changes.
ColumnMapping mapColumns(const QStringList& header, const ImportTarget& target, const QHash<QString, QString>& kept, bool withIds);

/// What earlier imports into the target said of headers: folded header → key, empty for a column that is not taken.
QHash<QString, QString> keptMapping(const data::PropertyStore& store, const QString& target);
/// Adds this one. A column that is not taken is kept as such where its name would give it a field. Throws jet::Error.
void keepMapping(data::PropertyStore& store, const ImportTarget& target, const QStringList& header, const ColumnMapping& mapping);

} // namespace app
