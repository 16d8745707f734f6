#include "editing/ui/FormDialog.h"

#include "platform/Dialogues.h"

#include <QApplication>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>

namespace editing {

using namespace Qt::StringLiterals;

namespace {

constexpr int usualWidth = 560, tallest = 640;

} // namespace

FormDialog::FormDialog(const QString& title, Cl_Editions& form, const ControlWorld& world,
                       std::function<bool(Cl_Editions&)> save, QWidget* parent)
    : QDialog(parent), m_form(form), m_save(std::move(save)), m_dialogues(world.dialogues), m_pane(new FormPane(this)),
      m_help(new QLabel(this)),
      m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this))
{
    setObjectName(u"formDialog"_s);
    setWindowTitle(title);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_pane, 1);
    layout->addWidget(m_help);
    layout->addWidget(m_buttons);
    m_help->setObjectName(u"aideChamp"_s);
    m_help->setTextFormat(Qt::PlainText);
    m_help->setWordWrap(true);
    m_help->setForegroundRole(QPalette::PlaceholderText);
    m_help->setMinimumHeight(2 * m_help->fontMetrics().lineSpacing());
    m_help->setAlignment(Qt::AlignTop);
    m_buttons->setObjectName(u"boutons"_s);
    for (QAbstractButton* button : m_buttons->buttons()) {
        const bool ok = m_buttons->buttonRole(button) == QDialogButtonBox::AcceptRole;
        button->setText(ok ? u"&Valider"_s : u"&Annuler"_s);
        button->setObjectName(ok ? u"valider"_s : u"annuler"_s);
        // Return belongs to the fields.
        static_cast<QPushButton*>(button)->setAutoDefault(false);
    }
    // As in the record editor; a form of many fields is not to be walked to its end.
    connect(new QShortcut(QKeySequence(u"Ctrl+S"_s), this), &QShortcut::activated, this, &FormDialog::accept);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &FormDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &FormDialog::reject);
    connect(m_pane, &FormPane::edited, this, [this] { m_typed = true; });
    connect(m_pane, &FormPane::entered, this, [this](Cl_Edition* field) { m_help->setText(field->TextHelp()); });
    connect(m_pane, &FormPane::leftAtEnd, this,
            [this] { m_buttons->button(QDialogButtonBox::Ok)->setFocus(Qt::TabFocusReason); });
    m_pane->world() = world;
    if (!m_pane->world().take)
        m_pane->world().take = [this](Cl_Edition& field, const QVariant& value) { m_input.take(field, value); };
    m_pane->describe = [this](Cl_Edition& field) { return describe(field); };
    FormSection section;
    for (const auto& field : m_form)
        section.rows << describe(*field);
    m_pane->show({section}, FormLayout::Beside);
    const int content = m_pane->widget()->sizeHint().height() + m_help->minimumHeight() + 90;
    resize(usualWidth, std::min(content, tallest));
    m_pane->focusFirst();
}

FormRow FormDialog::describe(Cl_Edition& field) const
{
    FormRow row{&field, field.Caption(), {}, field.Locked(), {}};
    if (field.Locked())
        row.caption += u" < Lecture seule > "_s;
    else if (row.error = field.TextError(); !row.error.isEmpty())
        row.caption += u" : < Erreur: "_s + row.error + u" >"_s;
    return row;
}

void FormDialog::accept()
{
    if (FieldControl* control = m_pane->currentControl())
        control->finish();
    bool valid = true;
    for (const auto& field : m_form) {
        const QVariant value = field->value();
        if (!field->Locked() && m_pane->world().take && value.isValid())
            m_pane->world().take(*field, value); // an error of a save before may be gone
        else if (!field->Locked())
            field->setTextError({});
        valid = valid && (field->Locked() || field->TextError().isEmpty());
    }
    if (valid && (!m_save || m_save(m_form)))
        return QDialog::accept();
    m_pane->refreshValues();
    m_pane->tellAll(true);
    m_pane->focusFirstError();
}

void FormDialog::reject()
{
    const bool ask = m_typed && m_dialogues;
    if (!ask || m_dialogues->confirm(u"Abandonner la saisie ?"_s, windowTitle(), platform::BoxIcon::Question, platform::Answer::No))
        QDialog::reject();
}

FormWindows::FormWindows(ControlWorld world, jet::Database* database) : m_world(std::move(world)), m_input(database)
{
    if (!m_world.take)
        m_world.take = [this](Cl_Edition& field, const QVariant& value) { m_input.take(field, value); };
}

bool FormWindows::edit(const QString& title, Cl_Editions& form, const std::function<bool(Cl_Editions&)>& save)
{
    FormDialog dialog(title, form, m_world, save, QApplication::activeWindow());
    return dialog.exec() == QDialog::Accepted;
}

} // namespace editing
