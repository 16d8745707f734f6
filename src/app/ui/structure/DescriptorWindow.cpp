#include "app/ui/structure/DescriptorWindow.h"

#include "app/Session.h"
#include "data/CoreSchema.h"
#include "data/FieldType.h"
#include "editing/ProjectRecords.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace app {

using namespace Qt::StringLiterals;

namespace {

/// The field as the file knows it; null for one that is not saved, or was no list when it was.
const DraftField* storedField(const StructureEditing& editing, int id, QString* module)
{
    for (const DraftModule& saved : editing.draft().saved()) {
        const DraftField* field = saved.field(id);
        if (field && field->isList()) {
            *module = saved.origin;
            return field;
        }
    }
    return nullptr;
}

/// Reads the vocabulary where the list editor writes it.
class VocabularyRecords : public editing::RecordSource {
public:
    VocabularyRecords(data::PropertyStore& store) : m_store(store) {}

    QVariantMap record(const QString&, qint32) override { return {}; }
    QStringList descriptors(const QString& module, const QString& column) override
    {
        return editing::DescriptorLists::normalized(
            m_store.value(data::kindDescripteur, module, column).toString().split(u';', Qt::SkipEmptyParts));
    }
    bool setDescriptors(const QString&, const QString&, const QStringList&) override { return false; }
    addin::TabEditions fields(const QString&) override { return {}; }
    QString label(const QString& module) const override { return module; }

private:
    data::PropertyStore& m_store;
};

} // namespace

bool hasStoredVocabulary(const StructureEditing& editing, int field)
{
    QString module;
    return storedField(editing, field, &module) != nullptr;
}

/// A file with the one table and the one vocabulary.
struct DescriptorWindow::Scratch {
    Scratch(Session& session, const QString& module, const data::FieldRecord& field)
        : database(jet::Database::Create(folder.filePath(u"liste.hbx"_s), data::localeGeneral)),
          store(*database, session.surroundings().clock)
    {
        data::ensureProperties(*database);
        jet::TableDef table{.Name = module};
        table.Fields = {{.Name = u"ID "_s + module, .Type = jet::DataType::Long, .AutoIncrement = true},
                        *data::columnOfType(field.type, field.column),
                        {.Name = u"DateModify"_s, .Type = jet::DataType::Text, .Size = 30}};
        database->AppendTable(table);
        if (!field.descriptors.isEmpty())
            store.put(data::kindDescripteur, module, field.column, field.descriptors.join(u';'));
    }

    QTemporaryDir folder;
    std::unique_ptr<jet::Database> database;
    data::PropertyStore store;
};

DescriptorWindow::DescriptorWindow(StructureEditing& structure, Session& session, int field, QWidget* parent)
    : QDialog(parent), m_editing(structure), m_session(session), m_id(field)
{
    setObjectName(u"listeDescripteurs"_s);
    resize(380, 420);
    QString module = structure.draft().moduleOf(field)->record.name;
    const DraftField* stored = storedField(structure, field, &module);
    const data::FieldRecord record = stored ? stored->record : structure.draft().field(field)->record;
    if (!stored)
        m_scratch = std::make_unique<Scratch>(session, module, record);
    data::PropertyStore& store = m_scratch ? m_scratch->store : session.properties();
    jet::Database& database = m_scratch ? *m_scratch->database : session.database();
    platform::Dialogues& dialogues = session.surroundings().dialogues;
    m_lists = std::make_unique<editing::DescriptorLists>(database, store, session.surroundings().clock, dialogues);
    editing::EditingContext context;
    context.nextId = [&session] { return session.nextId(); };
    context.names = std::make_shared<editing::IdentifierNames>();
    context.records = std::make_shared<VocabularyRecords>(store);
    m_field = std::make_unique<editing::Cl_Edition>(context);
    m_field->setChpEdition(editing::fieldOf(record, module));
    m_world.lists = m_lists.get();
    m_world.dialogues = &dialogues;

    setWindowTitle(u"Liste des descripteurs - "_s + structure.draft().field(field)->record.caption);
    auto* layout = new QVBoxLayout(this);
    auto* note = new QLabel(
        stored ? u"Ces descripteurs sont ceux du projet : renommer ou supprimer un descripteur modifie aussitôt les "
                 "enregistrements qui l'emploient."_s
               : u"Ce champ n'est pas encore enregistré : ses descripteurs le seront avec la structure."_s,
        this);
    note->setWordWrap(true);
    note->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(note);
    m_panel = new editing::DescriptorPanel(*m_field, m_world, this);
    m_panel->refresh();
    layout->addWidget(m_panel, 1);
    // A value is not chosen here.
    for (const QString& key : {u"selall"_s, u"selinv"_s}) {
        if (QAction* action = m_panel->command(key))
            action->setVisible(false);
    }
    auto* buttons = new QDialogButtonBox(this);
    QPushButton* close = buttons->addButton(u"&Fermer"_s, QDialogButtonBox::RejectRole);
    close->setObjectName(u"fermer"_s);
    close->setAutoDefault(false);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
}

DescriptorWindow::~DescriptorWindow()
{
    m_panel->setField(nullptr);
}

editing::ListField DescriptorWindow::listField() const
{
    return {m_field->NomModule(), m_field->champ(), m_field->Caption(), m_field->ctype(), m_field->AllowNull()};
}

/// However it is closed, the vocabulary is what it has become.
void DescriptorWindow::done(int result)
{
    try {
        const QStringList items = m_lists->items(listField());
        if (m_scratch)
            m_editing.setDescriptors(m_id, items);
        else if (const DraftField* field = m_editing.draft().field(m_id); field && field->record.descriptors != items)
            m_editing.draft().takeStoredDescriptors(m_id, items);
    } catch (const jet::Error& error) {
        m_session.surroundings().dialogues.tell(error.description(), windowTitle(), platform::BoxIcon::Stop);
    }
    QDialog::done(result);
}

} // namespace app
