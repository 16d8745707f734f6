#include "data/Modules.h"

#include "jet/Definitions.h"

namespace data {

using namespace Qt::StringLiterals;

QStringList ModuleRecord::combinedKey() const
{
    QStringList columns;
    if (flags & MixteUnique)
        columns << u"ID Individus"_s;
    for (const FieldRecord& field : fields) {
        if (field.partOfKey())
            columns << field.column;
    }
    return columns;
}

const FieldRecord* ModuleRecord::field(QStringView column) const
{
    for (const FieldRecord& field : fields) {
        if (jet::sameName(field.column, column))
            return &field;
    }
    return nullptr;
}

} // namespace data
