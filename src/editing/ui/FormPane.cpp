#include "editing/ui/FormPane.h"

#include "platform/ui/Keyboard.h"

#include <QFrame>
#include <QGridLayout>

namespace editing {

using namespace Qt::StringLiterals;

namespace {

constexpr int wideSpacing = 8, narrowSpacing = 2;
/// In characters: longer lines are hard to read.
constexpr int widestForm = 130;
constexpr int widestCaption = 38;

/// A red that can be read on the palette's window colour.
QPalette errorPalette(const QWidget& widget)
{
    QPalette palette = widget.palette();
    const bool dark = palette.color(QPalette::Window).lightness() < 128;
    palette.setColor(QPalette::WindowText, dark ? QColor(0xff, 0x9c, 0x92) : QColor(0xb3, 0x1b, 0x1b));
    return palette;
}

QLabel* sectionTitle(const QString& text, QWidget* owner)
{
    auto* label = new QLabel(text, owner);
    label->setTextFormat(Qt::PlainText);
    QFont font = label->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * 1.15);
    label->setFont(font);
    return label;
}

QString escaped(const QString& text)
{
    return QString(text).replace(u'&', u"&&"_s);
}

} // namespace

FormPane::FormPane(QWidget* parent) : QScrollArea(parent)
{
    setObjectName(u"formulaire"_s);
    setAccessibleName(u"Champs de l'enregistrement"_s);
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setFocusPolicy(Qt::NoFocus);
    clear();
}

FormPane::~FormPane()
{
    for (const Row& row : std::as_const(m_rows))
        row.control->setClParent(nullptr);
}

void FormPane::clear()
{
    for (const Row& row : std::as_const(m_rows)) {
        row.control->setClParent(nullptr);
        row.control->disconnect(this);
    }
    m_rows.clear();
    m_current = nullptr;
    m_all = false;
    // Not at once: a key of one of the controls may be what led here.
    if (QWidget* old = takeWidget()) {
        old->hide();
        old->setParent(nullptr);
        old->deleteLater();
    }
}

void FormPane::show(const QList<FormSection>& sections, FormLayout layout)
{
    clear();
    auto* content = new QWidget;
    content->setObjectName(u"champs"_s);
    auto* outer = new QHBoxLayout(content);
    auto* inner = new QWidget(content);
    inner->setMaximumWidth(widestForm * fontMetrics().averageCharWidth());
    outer->addWidget(inner, 1);
    outer->addStretch(0);
    auto* column = new QVBoxLayout(inner);
    column->setContentsMargins(4, 4, 4, 4);
    column->setSpacing(layout == FormLayout::Condensed ? wideSpacing : 2 * wideSpacing);
    for (const FormSection& section : sections)
        addSection(*column, section, layout);
    column->addStretch(1);
    if (layout != FormLayout::Above)
        alignCaptions();
    setWidget(content);
    // Where the form stands in the window, not behind everything that was made before its fields.
    QList<QWidget*> order{this};
    for (const Row& row : std::as_const(m_rows))
        order << row.control;
    platform::tabAlong(order);
    refreshErrors();
}

/// The fields of all forms begin at the same place.
void FormPane::alignCaptions()
{
    int widest = 0;
    for (const Row& row : std::as_const(m_rows))
        widest = std::max(widest, row.caption->sizeHint().width());
    for (const Row& row : std::as_const(m_rows))
        row.caption->setMinimumWidth(std::min(widest, widestCaption * fontMetrics().averageCharWidth()));
}

void FormPane::addSection(QVBoxLayout& column, const FormSection& section, FormLayout layout)
{
    QWidget* owner = column.parentWidget();
    if (!section.title.isEmpty())
        column.addWidget(sectionTitle(section.title, owner));
    if (!section.heading.isEmpty()) {
        auto* heading = new QLabel(section.heading, owner);
        heading->setObjectName(u"verrou"_s);
        heading->setTextFormat(Qt::PlainText);
        heading->setPalette(errorPalette(*heading));
        heading->setWordWrap(true);
        column.addWidget(heading);
    }
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(wideSpacing);
    grid->setVerticalSpacing(layout == FormLayout::Beside ? wideSpacing / 2 : narrowSpacing);
    column.addLayout(grid);
    for (const FormRow& row : section.rows) {
        if (row.field)
            addRow(*grid, row, layout);
        else
            addText(*grid, row, layout);
    }
    if (layout != FormLayout::Above)
        grid->setColumnStretch(1, 1);
}

void FormPane::place(QGridLayout& grid, QLabel* caption, QWidget* field, QLabel* error, FormLayout layout)
{
    const int row = grid.rowCount();
    if (layout == FormLayout::Above) {
        grid.addWidget(caption, row, 0);
        grid.addWidget(field, row + 1, 0);
        if (error)
            grid.addWidget(error, row + 2, 0);
        grid.setRowMinimumHeight(row + 3, wideSpacing);
        return;
    }
    caption->setAlignment(Qt::AlignRight | Qt::AlignTop);
    caption->setContentsMargins(0, 4, 0, 0);
    // A label that may wrap asks for little width: only those that must.
    const int most = widestCaption * fontMetrics().averageCharWidth();
    if (caption->sizeHint().width() > most) {
        caption->setWordWrap(true);
        caption->setFixedWidth(most);
    }
    grid.addWidget(caption, row, 0);
    grid.addWidget(field, row, 1);
    if (error)
        grid.addWidget(error, row + 1, 1);
}

void FormPane::addRow(QGridLayout& grid, const FormRow& row, FormLayout layout)
{
    QWidget* owner = grid.parentWidget();
    const bool compact = layout == FormLayout::Condensed;
    m_owner = owner;
    m_compact = compact;
    row.field->CreateCtrl(*this);
    FieldControl* control = m_made;
    if (!control)
        return;
    control->setReadOnly(row.readOnly);
    control->setToolTip(row.field->TextHelp());
    const bool required = !row.field->AllowNull() && !row.readOnly;
    const QString name = row.readOnly ? row.caption : row.field->Caption();
    auto* caption = new QLabel(escaped(name) + (required ? u" *"_s : QString()), owner);
    caption->setObjectName(u"libelle-"_s + row.field->champ());
    caption->setBuddy(control->editor());
    caption->setToolTip(required ? u"Champ obligatoire"_s : row.field->TextHelp());
    if (required) {
        QFont font = caption->font();
        font.setBold(true);
        caption->setFont(font);
        control->editor()->setAccessibleName(row.field->Caption() + u" (obligatoire)"_s);
    }
    auto* error = new QLabel(owner);
    error->setObjectName(u"erreur-"_s + row.field->champ());
    error->setTextFormat(Qt::PlainText);
    error->setWordWrap(true);
    error->setPalette(errorPalette(*error));
    error->hide();
    place(grid, caption, control, error, layout);
    m_rows << Row{control, caption, error, row.field->Control(), row.readOnly, false};
    connectRow(control);
}

void FormPane::addText(QGridLayout& grid, const FormRow& row, FormLayout layout)
{
    auto* caption = new QLabel(escaped(row.caption), grid.parentWidget());
    auto* text = new QLabel(row.text, grid.parentWidget());
    text->setTextFormat(Qt::PlainText);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    text->setAccessibleName(row.caption + u' ' + row.text);
    caption->setForegroundRole(QPalette::PlaceholderText);
    if (layout == FormLayout::Above)
        return place(grid, caption, text, nullptr, layout);
    // Such captions are long: they do not widen the column of the others.
    auto* line = new QHBoxLayout;
    line->setSpacing(wideSpacing);
    line->addWidget(caption);
    line->addWidget(text, 1);
    grid.addLayout(line, grid.rowCount(), 0, 1, 2);
}

// --- What controls are put into ------------------------------------------------------------------

bool FormPane::hasControl(const QString& name) const
{
    return std::any_of(m_rows.begin(), m_rows.end(), [&](const Row& row) { return row.name == name; });
}

void FormPane::addControl(const QString& className, const QString& name, Cl_Edition& parent)
{
    Q_UNUSED(name) // kept with the row, once it is one
    m_made = createControl(className, parent, m_world, m_owner, m_compact);
}

void FormPane::connectRow(FieldControl* control)
{
    connect(control, &FieldControl::Edited, this, [this, control] {
        if (Row* row = rowOf(control))
            row->touched = true;
        refreshErrors();
        Q_EMIT edited(control->ClParent());
    });
    connect(control, &FieldControl::entered, this, [this, control] {
        if (Row* left = m_current == control ? nullptr : rowOf(m_current)) {
            left->touched = true;
            showError(*left);
        }
        m_current = control;
        ensureWidgetVisible(control, 0, 40);
        Q_EMIT entered(control->ClParent());
    });
    connect(control, &FieldControl::nextWanted, this, [this, control] { step(control, 1); });
    connect(control, &FieldControl::previousWanted, this, [this, control] { step(control, -1); });
}

FormPane::Row* FormPane::rowOf(const FieldControl* control)
{
    const auto row = std::find_if(m_rows.begin(), m_rows.end(), [&](const Row& r) { return r.control == control; });
    return row == m_rows.end() ? nullptr : &*row;
}

void FormPane::step(FieldControl* from, int by)
{
    const Row* here = rowOf(from);
    if (!here)
        return;
    for (qsizetype at = here - m_rows.constData() + by; at >= 0 && at < m_rows.size(); at += by) {
        if (!m_rows[at].readOnly)
            return m_rows[at].control->editor()->setFocus(by > 0 ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    }
    if (by > 0)
        Q_EMIT leftAtEnd();
}

void FormPane::showError(Row& row)
{
    Cl_Edition* field = row.control->ClParent();
    if (!field || !describe)
        return;
    const FormRow now = describe(*field);
    const bool missing = !now.error.isEmpty() && !field->value().isValid();
    const bool told = !now.error.isEmpty() && (!missing || row.touched || m_all);
    row.error->setText(told ? now.caption : QString());
    row.error->setVisible(told);
    QPalette palette = told ? errorPalette(*row.caption) : QPalette();
    row.caption->setPalette(palette);
    row.control->editor()->setAccessibleDescription(told ? now.error : field->TextHelp());
}

void FormPane::refreshErrors()
{
    for (Row& row : m_rows)
        showError(row);
}

void FormPane::refreshValues()
{
    for (const Row& row : std::as_const(m_rows))
        row.control->Refresh();
    refreshErrors();
}

void FormPane::tellAll(bool all)
{
    m_all = all;
    refreshErrors();
}

bool FormPane::focusFirst()
{
    for (const Row& row : std::as_const(m_rows)) {
        if (!row.readOnly) {
            row.control->editor()->setFocus(Qt::TabFocusReason);
            return true;
        }
    }
    return false;
}

FieldControl* FormPane::control(const Cl_Edition& field) const
{
    for (const Row& row : m_rows) {
        if (row.control->ClParent() == &field)
            return row.control;
    }
    return nullptr;
}

FieldControl* FormPane::currentControl() const
{
    return m_current;
}

bool FormPane::focusField(const Cl_Edition& field)
{
    FieldControl* found = control(field);
    if (found)
        found->editor()->setFocus(Qt::TabFocusReason);
    return found;
}

bool FormPane::focusFirstError()
{
    for (const Row& row : std::as_const(m_rows)) {
        if (row.control->ClParent() && describe && !describe(*row.control->ClParent()).error.isEmpty())
            return focusField(*row.control->ClParent());
    }
    return false;
}

} // namespace editing
