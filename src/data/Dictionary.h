// The data dictionary: reading, writing, marking and purging of `PGTableDefs`.
#pragma once

#include "data/Modules.h"
#include "jet/Database.h"
#include "platform/Clock.h"
#include "platform/Dialogues.h"

namespace data {

class Dictionary {
public:
    Dictionary(jet::Database& database, const platform::Clock& clock,
               platform::Dialogues& dialogues);

    /// Reads the modules (by `Index`, then `NomObjet`) with their fields, and builds their tables. A module whose
    /// table cannot be built is dropped from the list.
    void load();
    /// Reads them alone, as they stand in the file.
    void readDefinitions();
    const QList<ModuleRecord>& modules() const { return m_modules; }
    const ModuleRecord* module(QStringView name) const;

    /// Puts a definition into memory: adds it, or takes its fields over into the one of that name.
    void put(const ModuleRecord& module);
    /// Takes these as the modules in memory, as they are to be saved.
    void replace(const QList<ModuleRecord>& modules) { m_modules = modules; }
    /// Brings a module to what its provider says, rows and table: the whole of it when the dictionary does not know the
    /// module or has it from another version or provider, otherwise only the fields that it lacks. Order, vocabularies
    /// and own fields of the user stay, and so does the type of a field whose column cannot hold the new one. False when
    /// the table could not be built (said in a box); then, and where it throws, memory is as before, and the caller
    /// undoes what was written.
    bool synchronise(const ModuleRecord& given);
    /// Writes modules and fields back; rows that would not change are not written.
    void save();
    /// Sets `Index` to -1 for rows (with bit 2) of modules that are not among these.
    void markUnconnected(const QStringList& connected);
    /// What a step of a purge does that fails.
    enum class Failing { PassOver, Throw };
    /// Removes what is marked: modules (table, relation, link column, properties, parent keys), then fields.
    void purge(Failing failing = Failing::PassOver);
    /// Deletes the dictionary rows of a module for its provider.
    void deleteDefinitions(const QString& module, const QString& provider);

private:
    bool merge(const ModuleRecord& given);
    QList<FieldRecord> loadFields(const QString& module) const;
    void saveModule(const ModuleRecord& module);
    void saveField(const ModuleRecord& module, const FieldRecord& field);
    void purgeModules(Failing failing);
    void purgeFields(Failing failing);

    jet::Database& m_database;
    const platform::Clock& m_clock;
    platform::Dialogues& m_dialogues;
    QList<ModuleRecord> m_modules;
    QStringList m_connected; ///< Of the last marking.
    bool m_marked = false;
};

} // namespace data
