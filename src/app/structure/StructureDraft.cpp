#include "app/structure/StructureDraft.h"

#include "data/FieldType.h"
#include "jet/Definitions.h"

namespace app {

namespace {

/// More is not worth its memory.
constexpr size_t mostSteps = 200;

template<typename List> auto* withId(List& list, int id)
{
    const auto at = std::find_if(list.begin(), list.end(), [id](const auto& one) { return one.id == id; });
    return at == list.end() ? nullptr : &*at;
}

} // namespace

bool DraftField::isList() const
{
    return record.type == data::ListeSimple || record.type == data::ListeMultiple;
}

bool DraftField::isLink() const
{
    return record.type == data::LienCourant;
}

const DraftField* DraftModule::field(int id) const
{
    return withId(fields, id);
}

const DraftField* DraftModule::fieldNamed(QStringView caption) const
{
    const auto at = std::find_if(fields.begin(), fields.end(), [&](const DraftField& field) {
        return jet::sameName(field.record.caption, caption);
    });
    return at == fields.end() ? nullptr : &*at;
}

data::ModuleRecord DraftModule::definition() const
{
    data::ModuleRecord module = record;
    module.fields.clear();
    for (const DraftField& field : fields)
        module.fields << field.record;
    return module;
}

DraftModule* moduleIn(DraftModules& modules, int id)
{
    return withId(modules, id);
}

DraftField* fieldIn(DraftModules& modules, int id)
{
    for (DraftModule& module : modules) {
        if (DraftField* field = withId(module.fields, id))
            return field;
    }
    return nullptr;
}

void StructureDraft::load(const QList<data::ModuleRecord>& saved)
{
    m_saved.clear();
    for (const data::ModuleRecord& record : saved) {
        DraftModule module{nextId(), record.name, record, {}};
        for (const data::FieldRecord& field : record.fields)
            module.fields.append({nextId(), field.column, field});
        module.record.fields.clear();
        m_saved.append(module);
    }
    m_modules = m_saved;
    m_undo.clear();
    m_redo.clear();
    notify();
}

const DraftModule* StructureDraft::module(int id) const
{
    return withId(m_modules, id);
}

const DraftModule* StructureDraft::moduleNamed(QStringView name) const
{
    const auto at = std::find_if(m_modules.begin(), m_modules.end(), [&](const DraftModule& module) {
        return jet::sameName(module.record.name, name);
    });
    return at == m_modules.end() ? nullptr : &*at;
}

const DraftModule* StructureDraft::moduleOf(int field) const
{
    for (const DraftModule& module : m_modules) {
        if (module.field(field))
            return &module;
    }
    return nullptr;
}

const DraftField* StructureDraft::field(int id) const
{
    const DraftModule* module = moduleOf(id);
    return module ? module->field(id) : nullptr;
}

void StructureDraft::edit(const QString& name, const std::function<void(DraftModules&)>& work)
{
    DraftModules after = m_modules;
    work(after);
    if (after == m_modules)
        return;
    m_undo.push_back({name, m_modules});
    if (m_undo.size() > mostSteps)
        m_undo.erase(m_undo.begin());
    m_redo.clear();
    m_modules = after;
    notify();
}

void StructureDraft::undo()
{
    if (!canUndo())
        return;
    m_redo.push_back({m_undo.back().name, m_modules});
    m_modules = m_undo.back().modules;
    m_undo.pop_back();
    notify();
}

void StructureDraft::redo()
{
    if (!canRedo())
        return;
    m_undo.push_back({m_redo.back().name, m_modules});
    m_modules = m_redo.back().modules;
    m_redo.pop_back();
    notify();
}

void StructureDraft::takeStoredDescriptors(int field, const QStringList& items)
{
    const auto take = [&](DraftModules& modules) {
        if (DraftField* one = fieldIn(modules, field))
            one->record.descriptors = items;
    };
    take(m_saved);
    take(m_modules);
    for (Step& step : m_undo)
        take(step.modules);
    for (Step& step : m_redo)
        take(step.modules);
    notify();
}

void StructureDraft::notify() const
{
    if (changed)
        changed();
}

} // namespace app
