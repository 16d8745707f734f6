// The records of one individual as they are edited together: what the record editor does, without its window.
#pragma once

#include "data/PropertyStore.h"
#include "data/RecordRules.h"
#include "editing/Cl_Editions.h"
#include "editing/FieldInput.h"
#include "editing/FormDialogue.h"

#include <QHash>
#include <QJsonObject>

namespace editing {

/// What editing works on.
struct EditingTools {
    jet::Database& database;
    const data::Dictionary& dictionary;
    data::PropertyStore& store;
    data::RecordRules& rules;
    const platform::Clock& clock;
    platform::Dialogues& dialogues;
    EditingContext context; ///< Its `records` gives the fields of the modules.
    /// Passes the item actions of list fields to the module's add-in; may be empty.
    std::function<void(const QString& module, const QString& action, const QVariantList&, bool& cancel)> toAddin = {};
};

/// One record of the individual, saved or not.
struct EditedRecord {
    QString module;
    qint32 id = 0;     ///< 0: never saved.
    QString key;       ///< "12-Mesures"; "HBTEMP3-Mesures" as long as it was never saved.
    QString parent;    ///< Key of the parent record; empty for none.
    bool locked = false;
    std::unique_ptr<Cl_Editions> form; ///< Null until the record is shown.
    mutable QString summary;           ///< What its node says of it; empty: to be read.

    bool isNew() const { return id <= 0; }
    bool Changed() const { return form && form->Changed(); }
};

/// A node of the tree of the editor.
struct EditNode {
    enum class Kind { Root, Record, Group, New, Help };
    Kind kind = Kind::Root;
    QString key;    ///< Of a record its key, "N" for an offer of a new record, "help"; of a group "module@parent key".
    QString module;
    EditedRecord* record = nullptr; ///< Of a record; for groups and offers the record they stand under.
    EditNode* parent = nullptr;
    std::vector<std::unique_ptr<EditNode>> children = {};

    int row() const;
};

/// One row of a form as it is shown.
struct FormRow {
    Cl_Edition* field = nullptr; ///< Null for the dates of the record.
    QString caption;             ///< With what is to be said of the field: read only, error.
    QString text;                ///< Of a row without a field.
    bool readOnly = false;
    QString error;               ///< Why the value cannot be saved; empty when it can.
};

/// What a save came to.
enum class SaveOutcome {
    Nothing,   ///< Nothing was changed.
    Saved,
    Declined,  ///< The user does not want the changes saved.
    Cancelled, ///< The user went back to the form.
    Refused,   ///< A field is not valid, or the record was refused (said).
};

/// What a refresh reloads.
enum class RefreshScope { Field, Record, All };

/// The fields that the input wizard walks.
enum class WizardFields { Invalid, Empty, All };

/// Shows one individual at a time, out of a list of records. Failures are told to the user and leave everything as
/// typed; no member throws. The tools must outlive it.
class IndividualEditing {
public:
    explicit IndividualEditing(EditingTools tools);
    ~IndividualEditing();

    // --- What is shown -----------------------------------------------------------------------
    /// Asks about unsaved changes and shows nothing more; false when the user stays.
    bool close();
    /// The path of a list of records. Each level is its number, "-", its module and the identifiers, joined by ";":
    /// "1-Individus;12;13" are two individuals, "1-Individus\2-Mesures;4;9" two records of another module,
    /// "1-Individus;12\2-Mesures;N" a new record under individual 12, "1-Individus;N" a new individual. The first one is
    /// shown, or the one marked as in "1-Individus;12;>13;14".
    static QString levelPath(const QString& module, const QList<qint32>& ids, qint32 shown = 0);
    static QString newRecordPath(const QString& module, qint32 individu = 0);
    /// Opens the editor on a list of records; the first one, or the one marked, is shown. False when the user stayed with
    /// unsaved changes or none of the records is there.
    bool EditItems(const QString& path);
    qint32 CurrentIndividu() const; ///< 0 for one never saved, and for none.
    bool isOpen() const { return !m_records.empty(); }
    const EditNode& tree() const { return *m_tree; }
    const EditNode* node(const QString& key) const; ///< Of a record or a group; null when there is none.
    EditedRecord* current() const { return m_current; }
    EditedRecord* record(const QString& key) const;
    EditedRecord* individual() const; ///< The root of the tree; null when nothing is open.
    bool select(const QString& key);
    /// The record itself and those directly under it, in the order of the tree.
    QList<EditedRecord*> branch(const EditedRecord& record) const;

    QStringList modules() const; ///< In which records of the individual may be, in their order.
    QString moduleLabel(const QString& module) const { return m_tools.context.records->label(module); }
    /// The saved records in the order of the tree.
    QList<EditedRecord*> saved() const { return savedInOrder(); }

    // --- Texts -------------------------------------------------------------------------------
    QString name(const EditedRecord& record) const; ///< "< Mesure - N° 4 >", "< Mesure - Ajout >"
    QString nodeCaption(const EditNode& node) const;
    /// Says that the whole record cannot be written; empty when it can.
    QString heading(const EditedRecord& record) const;
    /// What the record is as an object of the project: its key, where it hangs, what hangs under it, its dates.
    QString about(const EditedRecord& record) const;
    QString help() const; ///< What the help node tells: modules and their fields.

    // --- Forms -------------------------------------------------------------------------------
    Cl_Editions& form(EditedRecord& record); ///< Read at the first call.
    QList<FormRow> rows(EditedRecord& record);
    FormRow row(const EditedRecord& record, Cl_Edition& field) const;
    bool isReadOnly(const EditedRecord& record, const Cl_Edition& field) const;
    const FieldInput& input() const { return m_input; }
    /// Takes what was typed into a field; the record counts as changed.
    void type(EditedRecord& record, Cl_Edition& field, const QVariant& typed);
    /// The value that the record before this one has in that field: of those saved or left in this run the last,
    /// else the one before it in its table. Null when there is none.
    QVariant previousValue(const EditedRecord& record, const Cl_Edition& field) const;

    // --- Commands ----------------------------------------------------------------------------
    bool ToSave() const;
    /// Saves the current record or all changed ones as one named operation.
    SaveOutcome SavedItem(bool all, bool mayCancel = false);
    /// Adds a record of a module under a record (null: the individual), and selects it. Its values are those of
    /// `like`, where given. Null when it cannot be, which is said.
    EditedRecord* add(const QString& module, EditedRecord* under = nullptr, const EditedRecord* like = nullptr);
    EditedRecord* addAnother(bool withValues); ///< Of the module and parent of the current one; for Individus a new one.
    bool canAdd(const QString& module) const;
    bool remove(EditedRecord& record);
    bool toggleLock(EditedRecord& record);
    bool selectParent();
    /// A record may be moved onto another saved one that is not under it.
    bool canMove(const EditedRecord& record, const QString& target) const;
    bool changeParent(EditedRecord& record, const QString& target);
    /// Asks where changes would be lost.
    bool refresh(RefreshScope scope, Cl_Edition* field = nullptr);
    QString refreshText(RefreshScope scope, const Cl_Edition* field = nullptr) const;
    /// Writes the first file into the column; for a new record that takes several, adds one record with the same values
    /// for each of the others, where the user wants that.
    bool addFiles(EditedRecord& record, const QString& column, const QStringList& files);

    /// Opens the input wizard on fields of the current record; true when it was confirmed with other values.
    bool wizard(WizardFields which, FormDialogue& dialogue);
    void Wizard_ChampActif(const QString& column); ///< Makes a field of the current record the active one.
    const QString& caption() const { return m_tools.rules.caption; } ///< Of the program, in titles.
    QString describe(const QString& module, qint32 id) const; ///< What a record holds, in a few words.

    // --- Lists -------------------------------------------------------------------------------
    /// The next or previous record of the list given; false at its ends, or when the user stayed.
    bool go(int step);
    bool canGo(int step) const;
    /// The same in the other list: all saved records of the individual, in the order of the tree.
    bool goOther(int step);
    bool canGoOther(int step) const;
    bool chooseRecord(); ///< Lets the user choose from the list given.
    QString listText() const; ///< "3 / 50"

    // --- Models ------------------------------------------------------------------------------
    int saveModel();
    bool loadModel();            ///< Lets the user choose, and applies it to the current record.
    bool applyModel(int id);
    bool CLGabarit_Edit(int id); ///< Renames.
    bool CLGabarit_Delete(int id);
    QList<data::PropertyObject> models() const; ///< Of the module of the current record.

    // --- From outside ------------------------------------------------------------------------
    /// While the database is another thread's, nodes say only what is known of them. Nothing else may be called then.
    void setAway(bool away) { m_away = away; }
    void Query_Change(const QString& key); ///< A record was changed elsewhere; typed values stay.
    void Query_Refresh();                  ///< Any record may have been; typed values stay.

    // --- Drafts ------------------------------------------------------------------------------
    /// What is typed and not saved; empty when nothing is.
    QJsonObject draft() const;
    /// Opens what was kept and puts the typed values back. False when the records are no more.
    bool restoreDraft(const QJsonObject& draft);

    // --- Told ----------------------------------------------------------------------------------
    std::function<void()> treeChanged;    ///< Nodes came or went, or another individual is shown.
    std::function<void()> currentChanged; ///< Another record is the current one.
    std::function<void(EditedRecord&)> recordChanged; ///< Values, errors or the lock of a record.
    std::function<void(const QStringList& modules)> written; ///< Tables in the file were written.
    std::function<void(Cl_Edition&)> fieldRefused;     ///< The first invalid field of a save.
    std::function<void(Cl_Edition&)> fieldActivated;   ///< By Wizard_ChampActif.

private:
    struct ListKey {
        QString module;
        qint32 id = 0;
        bool operator==(const ListKey&) const = default;
    };
    using Records = std::vector<std::unique_ptr<EditedRecord>>;

    // Tree (IndividualEditingTree.cpp)
    bool loadIndividual(qint32 individu);
    Records read(qint32 individu) const;
    void readModule(const data::ModuleRecord& module, qint32 individu, Records& found) const;
    void reload(const QString& key);
    void take(Records&& found);
    static void keep(Records& old, Records& found);
    void clear();
    void dropNew(const QString& key);
    void buildTree();
    EditNode* addNode(EditNode& parent, EditNode::Kind kind, const QString& key, const QString& module,
                      EditedRecord* record);
    void buildUnder(EditNode& node, const QHash<QString, QList<EditedRecord*>>& children);
    QStringList moduleOrder() const;
    bool hasColumn(const QString& module, const QString& column) const;
    QString effectiveParent(const EditedRecord& record) const;
    QString summary(const EditedRecord& record) const;
    QString inWords(const Cl_Editions& form) const;
    bool isUnder(const QString& key, const QString& ancestor) const;
    QList<EditedRecord*> inTreeOrder() const;
    QList<EditedRecord*> savedInOrder() const;
    EditedRecord* append(const QString& module, const QString& parent);
    void makeCurrent(EditedRecord* record);

    // Lists and forms (IndividualEditing.cpp)
    bool show(int position);
    bool leave();
    bool showNeighbour();
    bool newIndividual(const QVariantMap& values);
    QVariantMap copied(const EditedRecord& record) const;
    void fill(EditedRecord& record, const QVariantMap& values);
    bool lockedByBase(const Cl_Edition& field) const;
    bool mayRefresh(RefreshScope scope, const Cl_Edition* field) const;
    void reset(Cl_Edition& field) const;
    void remember(const EditedRecord& record);
    void tell(const QString& text, const QString& title) const;
    template<typename Result, typename Work> Result guarded(const QString& title, Result neutral, Work work) const;
    struct Wanted {
        QList<ListKey> keys;
        int shown = 0;       ///< Position among them.
        qint32 newUnder = 0; ///< Individual of a new record.
        QString newModule;   ///< Empty: no new record.
    };
    static Wanted parsed(const QString& path);
    bool showFrom(int position);
    bool exists(const QString& module, qint32 id) const;
    qint32 individuOf(const QString& module, qint32 id) const;

    // Saving (IndividualEditingSave.cpp)
    QList<EditedRecord*> toSave(bool all) const;
    bool validate(const QList<EditedRecord*>& records);
    QStringList askLinks(const QList<EditedRecord*>& records);
    void write(const QList<EditedRecord*>& records, const QStringList& linked, QHash<QString, qint32>& ids);
    void writeLink(const EditedRecord& record, qint32 id, qint32 individu);
    data::RecordValues valuesOf(const EditedRecord& record, const QHash<QString, qint32>& ids) const;
    void adopt(const QList<EditedRecord*>& records, const QHash<QString, qint32>& ids);

    // Models and drafts (IndividualEditingModels.cpp, IndividualEditingDraft.cpp)
    QString modelText(const EditedRecord& record) const;
    void restoreRecord(const QJsonObject& kept);

    EditingTools m_tools;
    FieldInput m_input;
    Records m_records; ///< The individual first, then by module and identifier; new ones last.
    QHash<QString, EditedRecord*> m_byKey;
    std::unique_ptr<EditNode> m_tree;
    QHash<QString, EditNode*> m_nodes;
    EditedRecord* m_current = nullptr;
    QList<ListKey> m_list;
    int m_position = -1;
    int m_temporary = 0;
    bool m_away = false;
    QHash<QString, QVariantMap> m_last; ///< By module: the values of the record saved or left last.
    int m_model = 0;                    ///< `ID Prop` of the model applied last.
    mutable QHash<QString, std::shared_ptr<Cl_Editions>> m_scratch; ///< Fields that make the texts of nodes.
};

} // namespace editing
