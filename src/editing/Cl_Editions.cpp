#include "editing/Cl_Editions.h"

#include "editing/SameText.h"

namespace editing {

Cl_Editions::Cl_Editions(EditingContext context) : m_context(std::move(context)) {}

qint16 Cl_Editions::Count() const
{
    return qint16(m_fields.size());
}

void Cl_Editions::Clear()
{
    m_fields.clear();
}

bool Cl_Editions::Changed() const
{
    return std::any_of(m_fields.begin(), m_fields.end(), [](const auto& field) { return field->Changed(); });
}

bool Cl_Editions::valid() const
{
    return std::all_of(m_fields.begin(), m_fields.end(), [](const auto& field) { return field->valid(); });
}

int Cl_Editions::Index(const QString& name) const
{
    for (size_t i = 0; i < m_fields.size(); ++i) {
        const Cl_Edition& field = *m_fields[i];
        if (sameText(field.key(), name) || sameText(field.champ(), name) || sameText(field.Caption(), name))
            return int(i);
    }
    return -1;
}

Cl_Edition* Cl_Editions::Item(int position) const
{
    return position >= 0 && position < Count() ? m_fields[size_t(position)].get() : nullptr;
}

Cl_Edition* Cl_Editions::Item(const QString& name) const
{
    bool number = false;
    const int position = name.toInt(&number);
    if (number)
        return Item(position);
    for (const auto& field : m_fields) {
        if (sameText(field->key(), name))
            return field.get();
    }
    return Item(Index(name));
}

void Cl_Editions::MoveItem(int from, int to)
{
    if (from < 0 || to < 0 || from >= Count() || to >= Count())
        return;
    std::unique_ptr<Cl_Edition> moved = std::move(m_fields[size_t(from)]);
    m_fields.erase(m_fields.begin() + from);
    m_fields.insert(m_fields.begin() + to, std::move(moved));
}

addin::TabEditions Cl_Editions::Tabedition() const
{
    addin::TabEditions list;
    for (const auto& field : m_fields)
        list << field->ChpEdition();
    return list;
}

void Cl_Editions::setTabedition(const QString& module, const addin::TabEditions& fields)
{
    Clear();
    m_module = module;
    for (const addin::ChpEditionPtr& record : fields) {
        auto field = std::make_unique<Cl_Edition>(m_context);
        field->setChpEdition(record);
        AppendItem(std::move(field));
    }
}

void Cl_Editions::Remove(int position)
{
    if (Item(position))
        m_fields.erase(m_fields.begin() + position);
}

void Cl_Editions::Remove(const QString& name)
{
    bool number = false;
    const int position = name.toInt(&number);
    Remove(number ? position : Index(name));
}

void Cl_Editions::AppendItem(std::unique_ptr<Cl_Edition> field)
{
    if (!field)
        return;
    if (field->NomModule().isEmpty())
        field->setNomModule(m_module);
    m_fields.push_back(std::move(field));
}

void Cl_Editions::Add(int type, const QString& caption, const QVariant& value, const QString& help,
                      const QString& column, bool allowNull, qint32 individu)
{
    if (Index(column) >= 0)
        return;
    auto field = std::make_unique<Cl_Edition>(m_context);
    // The type comes first, so that the value is normalised under it.
    field->setCtype(type);
    field->setCaption(caption);
    field->setValue(value);
    field->setTextHelp(help);
    field->setChamp(column);
    field->setAllowNull(allowNull);
    field->setIDIndividu(individu);
    AppendItem(std::move(field));
}

void Cl_Editions::bind(qint32 individu, qint32 item)
{
    for (const auto& field : m_fields) {
        field->setIDIndividu(individu);
        field->setIDItem(item);
    }
}

} // namespace editing
