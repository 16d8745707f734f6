#include "jet/Definitions.h"

namespace jet {

using namespace Qt::StringLiterals;

bool sameName(QStringView a, QStringView b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

QString nameKey(QStringView name)
{
    // Character by character, as the comparison above: QString::toCaseFolded would make "ss" of "ß".
    QString key(name.size(), Qt::Uninitialized);
    std::transform(name.begin(), name.end(), key.begin(), [](QChar c) { return c.toCaseFolded(); });
    return key;
}

namespace {

template <typename T>
const T* named(const QList<T>& list, QStringView name)
{
    const auto found =
        std::find_if(list.cbegin(), list.cend(), [name](const T& one) { return sameName(one.Name, name); });
    return found == list.cend() ? nullptr : &*found;
}

} // namespace

const Field* TableDef::field(QStringView name) const
{
    return named(Fields, name);
}

const Index* TableDef::index(QStringView name) const
{
    return named(Indexes, name);
}

const Index* TableDef::primaryKey() const
{
    const auto found =
        std::find_if(Indexes.cbegin(), Indexes.cend(), [](const Index& index) { return index.Primary; });
    return found == Indexes.cend() ? nullptr : &*found;
}

QString TableDef::rowIdColumn() const
{
    for (const Field& field : Fields) {
        if (field.AutoIncrement)
            return field.Name;
    }
    return u"_rid"_s;
}

bool TableDef::hasHiddenRowId() const
{
    return std::none_of(Fields.cbegin(), Fields.cend(), [](const Field& field) { return field.AutoIncrement; });
}

} // namespace jet
