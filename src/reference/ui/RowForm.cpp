#include "reference/ui/RowForm.h"

#include "platform/ui/Keyboard.h"
#include "reference/ui/ReferenceWorld.h"

#include <QHBoxLayout>
#include <QScopedValueRollback>

namespace reference {

using namespace Qt::StringLiterals;

RowForm::RowForm(std::shared_ptr<ReferenceWorld> world, QWidget* parent)
    : QWidget(parent), m_world(std::move(world)), m_title(new QLabel(this)), m_pane(new editing::FormPane(this)),
      m_help(new QLabel(this)), m_count(new QLabel(this)), m_open(new QPushButton(u"Montrer les &individus"_s, this)),
      m_saveButton(new QPushButton(QIcon::fromTheme(u"document-save"_s), u"Enregistrer"_s, this)),
      m_undoButton(new QPushButton(QIcon::fromTheme(u"edit-undo"_s), u"Rétablir"_s, this)), m_layout(new QVBoxLayout(this))
{
    setObjectName(u"fiche"_s);
    m_title->setObjectName(u"titreFiche"_s);
    m_title->setTextFormat(Qt::PlainText);
    m_title->setWordWrap(true);
    QFont font = m_title->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * 1.2);
    m_title->setFont(font);
    m_help->setObjectName(u"aideChamp"_s);
    m_help->setTextFormat(Qt::PlainText);
    m_help->setWordWrap(true);
    m_help->setForegroundRole(QPalette::PlaceholderText);
    m_count->setObjectName(u"nombreIndividus"_s);
    m_open->setObjectName(u"montrerIndividus"_s);
    m_saveButton->setObjectName(u"enregistrer"_s);
    m_saveButton->setToolTip(u"Enregistrer ce qui a été tapé (Ctrl+S)"_s);
    m_undoButton->setObjectName(u"retablir"_s);
    m_undoButton->setToolTip(u"Reprendre les valeurs enregistrées"_s);
    auto* first = new QHBoxLayout;
    first->addWidget(m_count, 1);
    first->addWidget(m_open);
    auto* last = new QHBoxLayout;
    last->addWidget(m_help, 1);
    last->addWidget(m_undoButton);
    last->addWidget(m_saveButton);
    m_layout->addWidget(m_title);
    m_layout->addLayout(first);
    m_layout->addWidget(m_pane, 1);
    m_layout->addLayout(last);
    m_pane->world().search = &m_world->search;
    m_pane->world().chooser = m_world->chooser;
    m_pane->world().dialogues = &m_world->dialogues;
    m_pane->world().take = [this](editing::Cl_Edition& field, const QVariant& value) { m_world->input.take(field, value); };
    m_pane->describe = [this](editing::Cl_Edition& field) { return describe(field); };
    connect(m_pane, &editing::FormPane::edited, this, [this] { setTyped(true); });
    connect(m_pane, &editing::FormPane::entered, this, [this](editing::Cl_Edition* field) { m_help->setText(field->TextHelp()); });
    connect(m_pane, &editing::FormPane::leftAtEnd, this, [this] { m_saveButton->setFocus(Qt::TabFocusReason); });
    connect(m_saveButton, &QPushButton::clicked, this, [this] { m_world->whenHere(this, [this] { save(); }); });
    connect(m_undoButton, &QPushButton::clicked, this, [this] { m_world->whenHere(this, [this] { undo(); }); });
    connect(m_open, &QPushButton::clicked, this, &RowForm::individualsWanted);
    platform::tabAlong({m_open, m_pane});
    showNothing({});
}

RowForm::~RowForm()
{
    m_pane->clear(); // before the fields that its controls are bound to
}

editing::FormRow RowForm::describe(editing::Cl_Edition& field) const
{
    editing::FormRow row{&field, field.Caption(), {}, field.Locked() || m_world->readOnly, {}};
    if (field.Locked())
        row.caption += u" < Lecture seule > "_s;
    else if (row.error = field.TextError(); !row.error.isEmpty())
        row.caption += u" : < Erreur: "_s + row.error + u" >"_s;
    return row;
}

void RowForm::show(const QString& title, std::unique_ptr<editing::Cl_Editions> form,
                   std::function<bool(editing::Cl_Editions&)> save, const QStringList& hidden)
{
    m_pane->clear();
    m_form = std::move(form);
    m_save = std::move(save);
    editing::FormSection section;
    for (const auto& field : *m_form) {
        if (!hidden.contains(field->champ()))
            section.rows << describe(*field);
    }
    m_pane->show({section}, editing::FormLayout::Beside);
    m_title->setText(title);
    m_help->clear();
    setTyped(false);
}

void RowForm::showNothing(const QString& why)
{
    m_pane->clear();
    m_form.reset();
    m_save = {};
    m_title->setText(why);
    m_help->clear();
    setCount({}, false);
    setTyped(false);
}

void RowForm::setTitle(const QString& title)
{
    m_title->setText(title);
}

void RowForm::setCount(const QString& text, bool any)
{
    m_count->setText(text);
    m_open->setVisible(m_form != nullptr);
    m_open->setEnabled(any);
}

void RowForm::setExtra(QWidget* extra)
{
    m_layout->insertWidget(3, extra);
}

void RowForm::setTyped(bool typed)
{
    m_typed = typed && m_form;
    m_saveButton->setEnabled(m_typed && !m_world->readOnly);
    m_undoButton->setEnabled(m_typed);
    m_saveButton->setVisible(m_form && !m_world->readOnly);
    m_undoButton->setVisible(m_form && !m_world->readOnly);
    Q_EMIT typedChanged();
}

bool RowForm::save()
{
    if (editing::FieldControl* control = m_pane->currentControl())
        control->finish();
    if (!m_form || !m_typed)
        return true;
    bool valid = true;
    for (const auto& field : *m_form) {
        if (field->Locked())
            continue;
        if (field->value().isValid())
            m_world->input.take(*field, field->value()); // an error of a save before may be gone
        else
            field->setTextError({});
        valid = valid && field->TextError().isEmpty();
    }
    const auto written = [this] {
        const QScopedValueRollback saving(m_saving, true);
        return m_save(*m_form);
    };
    if (valid && written()) {
        m_pane->refreshValues();
        setTyped(false);
        Q_EMIT saved();
        return true;
    }
    m_pane->refreshValues();
    m_pane->tellAll(true);
    m_pane->focusFirstError();
    return false;
}

void RowForm::undo()
{
    setTyped(false);
    Q_EMIT undoWanted();
}

bool RowForm::mayLeave()
{
    if (editing::FieldControl* control = m_form ? m_pane->currentControl() : nullptr)
        control->finish();
    if (!m_typed)
        return true;
    m_world->waitHere();
    const platform::Answer answer = m_world->dialogues.ask(
        {u"Enregistrer les modifications de \""_s + m_title->text() + u"\" ?"_s, u"Modifications non enregistrées"_s,
         platform::BoxIcon::Question, platform::BoxButtons::YesNoCancel, platform::Answer::Yes});
    if (answer == platform::Answer::Cancel)
        return false;
    if (answer == platform::Answer::Yes)
        return save();
    undo();
    return true;
}

} // namespace reference
