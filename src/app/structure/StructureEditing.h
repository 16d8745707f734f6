// The commands of the structure editor, without its window.
#pragma once

#include "app/structure/StructureDraft.h"
#include "app/structure/StructurePlan.h"
#include "platform/Dialogues.h"

namespace app {

class Session;

/// Changes the draft as the user says, asks what has to be asked and says what is refused. Nothing is written to the
/// project but by the commands on vocabularies. No member throws. Belongs to the open project.
class StructureEditing {
public:
    explicit StructureEditing(Session& session);

    StructureDraft& draft() { return m_draft; }
    const StructureDraft& draft() const { return m_draft; }
    /// Reads the structure from the project; what was edited is forgotten.
    void reload();
    StructurePlan plan() const { return planOf(m_draft.saved(), m_draft.modules()); }
    QString caption() const; ///< "projet.hbx - < Structure >"

    // --- What is shown -----------------------------------------------------------------------
    /// Modules of the program and of libraries: their own properties and fields stay as they are.
    bool isReadOnly(const DraftModule& module) const;
    bool isReadOnly(const DraftModule& module, const DraftField& field) const;
    bool mayDelete(const DraftModule& module) const;
    QString moduleText(const DraftModule& module) const; ///< Its name, with " <Lecture seule >" where it is that.
    QString status(const DraftModule& module) const;
    QString provider(const DraftModule& module) const;   ///< Of a library its name.
    qint64 records(const DraftModule& module) const;     ///< In the file, when the structure was read.
    QString example(const DraftModule& module) const;    ///< "Exemple abrégé", of the first record.
    QString example(const DraftModule& module, const DraftField& field) const;
    /// "12 descripteur(s)"; empty for a field without a list.
    static QString descriptorText(const DraftField& field);

    // --- Modules -----------------------------------------------------------------------------
    int addModule(); ///< Asks the name; 0 when the user gave up.
    bool renameModule(int module, const QString& name);
    void setLabel(int module, const QString& text);      ///< "Appellation élémentaire"
    void setShortLabel(int module, const QString& text); ///< "Appellation abrégée"
    void setModuleHelp(int module, const QString& text);
    void setModuleFlag(int module, data::Flag flag, bool on);
    void setIcon(int module, const QByteArray& picture); ///< Empty: the usual one.
    bool deleteModule(int module); ///< Asks.
    bool moveModule(int module, int by);
    bool canMoveModule(int module, int by) const;

    // --- Fields ------------------------------------------------------------------------------
    int addField(int module, int after = 0); ///< Behind that field; 0: at the end.
    int addLink(); ///< Asks which module `Individus` is to be linked to; 0 when there is none.
    bool renameField(int field, const QString& name);
    bool setType(int field, int type);
    void setFieldFlag(int field, data::Flag flag, bool on);
    void setFieldHelp(int field, const QString& text);
    bool setRule(int field, const QString& rule);
    void setRuleText(int field, const QString& text);
    void setDescriptors(int field, const QStringList& items); ///< Of a field that is not saved yet.
    bool deleteField(int field); ///< Asks.
    bool moveField(int field, int by);
    bool canMoveField(int field, int by) const;

    // --- Vocabularies and files --------------------------------------------------------------
    bool synchroniseDescriptors(); ///< Asks; of all list fields that are saved.
    bool exportTo(const QString& path);
    bool importFrom(const QString& path); ///< Asks which modules.
    bool importAllFrom(const QString& path);

    /// The types offered, in their order: what the user reads and the code.
    static const QList<QPair<QString, int>>& typesOffered();
    static QString typeText(int type);
    static QString fileFilter();

private:
    void editModule(int module, const QString& name, const std::function<void(DraftModule&)>& work);
    void editField(int field, const QString& name, const std::function<void(DraftField&)>& work);
    void refuse(const QString& text, const QString& what = {}) const;
    bool askDeletion(const QStringList& lines, const QString& what) const;
    bool linkTo(int field);
    QString chooseLinked(const DraftModule& individus) const;
    QList<data::ModuleRecord> modulesIn(const QString& path) const;
    QList<data::ModuleRecord> offered(const QList<data::ModuleRecord>& given) const;
    void take(const QList<data::ModuleRecord>& modules);
    platform::Dialogues& dialogues() const;

    Session& m_session;
    StructureDraft m_draft;
    QHash<QString, qint64> m_records; ///< By module, as it is called in the file.
    QHash<int, QHash<QString, QString>> m_examples; ///< By module.
};

} // namespace app
