// The structure of a project while it is edited: modules and fields in memory, with undo and redo.
#pragma once

#include "data/Modules.h"

#include <functional>
#include <vector>

namespace app {

/// A field as it is edited.
struct DraftField {
    int id = 0;     ///< Unique in the draft; stays through undo and redo.
    QString origin; ///< Its column in the file; empty for one that is not saved yet.
    data::FieldRecord record;
    bool operator==(const DraftField&) const = default;

    bool isList() const;
    bool isLink() const;
};

/// A module as it is edited. The fields of `record` are not used.
struct DraftModule {
    int id = 0;
    QString origin; ///< Its name in the file; empty for one that is not saved yet.
    data::ModuleRecord record;
    QList<DraftField> fields;
    bool operator==(const DraftModule&) const = default;

    const DraftField* field(int id) const;
    const DraftField* fieldNamed(QStringView caption) const;
    /// The definition with its fields in their order.
    data::ModuleRecord definition() const;
};

using DraftModules = QList<DraftModule>;

/// The modules as the user wants them, and as they are in the file.
class StructureDraft {
public:
    explicit StructureDraft(const QList<data::ModuleRecord>& saved) { load(saved); }

    /// Begins anew with what the file holds; nothing can be undone any more.
    void load(const QList<data::ModuleRecord>& saved);

    const DraftModules& modules() const { return m_modules; }
    const DraftModules& saved() const { return m_saved; }
    const DraftModule* module(int id) const;
    const DraftModule* moduleNamed(QStringView name) const;
    const DraftModule* moduleOf(int field) const; ///< The module that has the field.
    const DraftField* field(int id) const;
    bool isChanged() const { return m_modules != m_saved; }

    /// One step of the user's, by the name under which it can be undone. Nothing is kept where `work` changes nothing.
    /// What shows the draft is told afterwards.
    void edit(const QString& name, const std::function<void(DraftModules&)>& work);
    int nextId() { return ++m_counter; }

    bool canUndo() const { return !m_undo.empty(); }
    bool canRedo() const { return !m_redo.empty(); }
    QString undoName() const { return canUndo() ? m_undo.back().name : QString(); }
    QString redoName() const { return canRedo() ? m_redo.back().name : QString(); }
    void undo();
    void redo();

    /// The vocabulary of a saved field was changed in the project itself: every state of the draft takes that over.
    void takeStoredDescriptors(int field, const QStringList& items);

    /// Told after every change.
    std::function<void()> changed;

private:
    struct Step {
        QString name;
        DraftModules modules; ///< As they were before it, or after it.
    };
    void notify() const;

    DraftModules m_saved;
    DraftModules m_modules;
    std::vector<Step> m_undo;
    std::vector<Step> m_redo;
    int m_counter = 0;
};

DraftModule* moduleIn(DraftModules& modules, int id);
DraftField* fieldIn(DraftModules& modules, int id);

} // namespace app
