// Brings a project in line with its changed structure.
#pragma once

#include "app/structure/StructurePlan.h"
#include "data/PropertyStore.h"
#include "platform/Progression.h"

namespace app {

class Session;

/// Dictionary, tables, vocabularies, stored queries and models follow the plan. To be run inside of an operation of the
/// session (Session::changeStructure), which reads the modules anew and builds their tables; whatever is thrown undoes it
/// all. Where the user wants to stop, 3059 is thrown at the next statement.
class StructureSaving {
public:
    StructureSaving(Session& session, const StructurePlan& plan, platform::Progression& progression);

    void run();

private:
    struct Vocabulary {
        QString module, column, text;
    };
    void readVocabularies();
    void deleteModules();
    void deleteFields();
    void purge();
    void renameModules();
    void renameModule(const QString& from, const QString& to);
    void renameFields();
    void renameField(const ModuleChange& module, const FieldChange& change, const QString& from, const QString& to);
    void renameInTexts();
    void changeColumns();
    void changeColumnsOf(const ModuleChange& module);
    void writeDictionary();
    void writeVocabularies();
    QStringList usedDescriptors(const QString& module, const QString& column) const;
    void step(const QString& text, int percent);

    Session& m_session;
    jet::Database& m_database;
    data::PropertyStore m_store;
    const StructurePlan& m_plan;
    platform::Progression& m_progression;
    QList<Vocabulary> m_vocabularies; ///< Of the modules and fields that stay, by the names that they had.
};

/// Where the copy of a project goes before its structure loses data: "projet.structure.hbx.bak".
QString structureBackupPath(const QString& project);

/// The whole of it: the copy where `losesData`, then the saving as one named operation. A failure is said and leaves the
/// project as it was.
bool saveStructure(Session& session, const StructurePlan& plan, bool losesData, platform::Progression& progression);

} // namespace app
