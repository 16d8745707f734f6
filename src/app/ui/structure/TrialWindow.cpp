#include "app/ui/structure/TrialWindow.h"

#include "app/References.h"
#include "app/Session.h"
#include "data/FieldType.h"
#include "editing/ProjectRecords.h"
#include "jet/ColumnTest.h"

#include <QDialogButtonBox>
#include <QLoggingCategory>
#include <QPushButton>
#include <QVBoxLayout>

namespace app {

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(trialLog, "herbora.structure")

} // namespace

TrialWindow::TrialWindow(StructureEditing& structure, Session& session, int module, QWidget* parent)
    : QDialog(parent), m_editing(structure), m_session(session), m_module(module),
      m_context(session.references().context()), m_search(session.database()), m_pane(new editing::FormPane(this)),
      m_help(new QLabel(this))
{
    setObjectName(u"essaiSaisie"_s);
    setModal(false);
    resize(460, 520);
    m_context.records = std::make_shared<TrialRecords>(structure.draft());
    auto* layout = new QVBoxLayout(this);
    auto* note = new QLabel(u"Essai de la saisie : rien n'est enregistré."_s, this);
    note->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(note);
    layout->addWidget(m_pane, 1);
    m_help->setTextFormat(Qt::PlainText);
    m_help->setWordWrap(true);
    m_help->setForegroundRole(QPalette::PlaceholderText);
    m_help->setMinimumHeight(2 * m_help->fontMetrics().lineSpacing());
    m_help->setAlignment(Qt::AlignTop);
    layout->addWidget(m_help);
    auto* buttons = new QDialogButtonBox(this);
    QPushButton* check = buttons->addButton(u"&Vérifier"_s, QDialogButtonBox::ActionRole);
    check->setObjectName(u"verifier"_s);
    check->setDefault(true);
    QPushButton* close = buttons->addButton(u"&Fermer"_s, QDialogButtonBox::RejectRole);
    close->setObjectName(u"fermer"_s);
    close->setAutoDefault(false);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
    connect(check, &QPushButton::clicked, this, [this] {
        m_pane->tellAll(true);
        m_pane->focusFirstError();
    });
    editing::ControlWorld& world = m_pane->world();
    world.search = &m_search;
    world.dialogues = &session.surroundings().dialogues;
    world.take = [this](editing::Cl_Edition& field, const QVariant& value) {
        editing::FieldInput().take(field, value);
        judge(field);
    };
    m_pane->describe = [this](editing::Cl_Edition& field) { return describe(field); };
    connect(m_pane, &editing::FormPane::entered, this,
            [this](editing::Cl_Edition* field) { m_help->setText(field->TextHelp()); });
    refresh();
}

TrialWindow::~TrialWindow()
{
    m_pane->clear();
}

const DraftField* TrialWindow::draftOf(const editing::Cl_Edition& field) const
{
    const DraftModule* module = m_editing.draft().module(m_module);
    for (qsizetype at = 0; module && at < module->fields.size(); ++at) {
        if (jet::sameName(module->fields[at].record.column, field.champ()))
            return &module->fields[at];
    }
    return nullptr;
}

/// The table does not know the rule yet.
void TrialWindow::judge(editing::Cl_Edition& field)
{
    const DraftField* draft = draftOf(field);
    if (!draft || !field.value().isValid() || !field.TextError().isEmpty() || draft->record.rule.isEmpty())
        return;
    try {
        auto column = data::columnOfType(draft->record.type, draft->record.column);
        column->ValidationRule = draft->record.rule;
        const bool yesNo = column->Type == jet::DataType::Boolean;
        const QVariant value = yesNo ? QVariant(field.value().toString() == u"True") : field.value();
        if (!jet::RuleTest(m_session.database(), *column).accepts(value))
            field.setTextError(draft->record.ruleText.isEmpty()
                                   ? u"La valeur ne respecte pas la règle "_s + draft->record.rule
                                   : draft->record.ruleText);
    } catch (const jet::Error& error) {
        qCWarning(trialLog).noquote() << draft->record.caption << error.description();
    }
}

editing::FormRow TrialWindow::describe(editing::Cl_Edition& field) const
{
    return {&field, field.Caption(), {}, false, field.TextError()};
}

void TrialWindow::refresh()
{
    const DraftModule* module = m_editing.draft().module(m_module);
    if (!module) {
        close();
        return;
    }
    setWindowTitle(u"Saisie "_s + module->record.name);
    QHash<QString, QVariant> typed;
    if (m_form) {
        for (const auto& field : *m_form) {
            if (field->Changed())
                typed.insert(field->champ(), field->value());
        }
    }
    m_pane->clear();
    m_form = std::make_unique<editing::Cl_Editions>(m_context);
    m_form->setTabedition(module->record.name, m_context.records->fields(module->record.name));
    QList<editing::FormSection> sections;
    int step = 0;
    for (const QList<DraftField>& group : inputGroups(*module)) {
        editing::FormSection section;
        section.title = u"Étape %1"_s.arg(++step);
        for (const DraftField& draft : group) {
            editing::Cl_Edition* field = m_form->Item(m_form->Index(draft.record.column));
            if (!field)
                continue;
            if (typed.contains(draft.record.column))
                m_pane->world().take(*field, typed.value(draft.record.column));
            section.rows << describe(*field);
        }
        sections << section;
    }
    m_pane->show(sections, editing::FormLayout::Above);
}

} // namespace app
