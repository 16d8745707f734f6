#include "editing/ui/Listes.h"

#include "data/FieldType.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QHBoxLayout>
#include <QScreen>
#include <QStringListModel>

namespace editing {

using namespace Qt::StringLiterals;

namespace {

constexpr int fewestRows = 2, mostRows = 7;
constexpr int popupRows = 12;

} // namespace

Listes::Listes(Cl_Edition& parent, const ControlWorld& world, QWidget* owner, bool compact)
    : FieldControl(parent, world, owner), m_multiple(parent.ctype() == data::ListeMultiple)
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    if (m_multiple && !compact) {
        m_panel = new DescriptorPanel(parent, this->world(), this);
        layout->addWidget(m_panel);
        watch(&m_panel->list());
    } else {
        makeLine();
        layout->addWidget(m_line);
        layout->addWidget(m_open);
        makePopup();
    }
    connect(m_panel, &DescriptorPanel::edited, this, &Listes::takeFromPanel);
    connect(m_panel, &DescriptorPanel::renewed, this, [this] {
        Refresh();
        if (this->world().listChanged)
            this->world().listChanged();
    });
    Refresh();
}

QWidget* Listes::editor() const
{
    return m_line ? static_cast<QWidget*>(m_line) : &m_panel->list();
}

void Listes::makeLine()
{
    m_line = new EntryLine(this);
    m_line->setReadOnly(m_multiple);
    watch(m_line);
    m_open = new QToolButton(this);
    m_open->setObjectName(u"liste-"_s + ClParent()->champ());
    m_open->setAccessibleName(u"Ouvrir la liste : "_s + ClParent()->Caption());
    m_open->setToolTip(u"Ouvrir la liste (F2)"_s);
    m_open->setArrowType(Qt::DownArrow);
    m_open->setFocusPolicy(Qt::NoFocus);
    connect(m_open, &QToolButton::clicked, this, &Listes::openList);
    if (m_multiple)
        return;
    m_items = new QStringListModel(this);
    m_completer = new QCompleter(m_items, this);
    m_completer->setCaseSensitivity(Qt::CaseInsensitive);
    m_completer->setFilterMode(Qt::MatchStartsWith);
    m_completer->setWidget(m_line);
    m_line->onKey = [this](QKeyEvent* event) {
        const bool listed = m_completer->popup()->isVisible();
        return listed && event->key() != Qt::Key_Escape && handleKey(event);
    };
    connect(m_line, &QLineEdit::textEdited, this, [this](const QString& text) {
        edit(text);
        m_completer->setCompletionPrefix(text);
        const bool whole = m_completer->completionCount() == 1 && m_completer->currentCompletion() == text;
        if (text.isEmpty() || m_completer->completionCount() == 0 || whole)
            return m_completer->popup()->hide();
        m_completer->complete();
        m_completer->popup()->setCurrentIndex(m_completer->completionModel()->index(0, 0));
    });
    connect(m_completer, qOverload<const QString&>(&QCompleter::activated), this,
            [this](const QString& item) { setValue(item); });
}

void Listes::makePopup()
{
    m_popup = new QFrame(this, Qt::Popup);
    m_popup->setObjectName(u"descripteurs-"_s + ClParent()->champ());
    m_popup->setFrameShape(QFrame::StyledPanel);
    auto* layout = new QHBoxLayout(m_popup);
    layout->setContentsMargins(2, 2, 2, 2);
    m_panel = new DescriptorPanel(*ClParent(), world(), m_popup);
    m_panel->list().setObjectName(u"choix-"_s + ClParent()->champ());
    m_panel->list().installEventFilter(this);
    connect(&m_panel->list(), &QListWidget::itemClicked, this, [this] {
        if (m_multiple)
            return;
        takeFromPanel();
        m_popup->hide();
    });
    layout->addWidget(m_panel);
}

void Listes::Refresh()
{
    if (!ClParent())
        return m_panel->setField(nullptr);
    m_panel->setField(ClParent());
    m_panel->refresh();
    m_panel->setReadOnly(m_readOnly);
    if (!m_line)
        return fitInline();
    const QVariant value = ClParent()->value();
    const QString text = m_multiple ? ClParent()->SelectedItems().join(u" ; "_s) : value.toString();
    if (m_line->text() != text)
        m_line->setText(text);
    if (m_items)
        m_items->setStringList(ClParent()->ListeItems());
}

void Listes::fitInline()
{
    QListWidget& list = m_panel->list();
    const int rows = std::clamp(list.count(), fewestRows, mostRows);
    const int rowHeight = std::max(list.sizeHintForRow(0), list.fontMetrics().height() + 4);
    list.setFixedHeight(rows * rowHeight + 2 * list.frameWidth() + 2);
}

void Listes::setReadOnly(bool readOnly)
{
    m_readOnly = readOnly;
    m_panel->setReadOnly(readOnly);
    shade(editor(), readOnly);
    if (m_line)
        m_line->setReadOnly(readOnly || m_multiple);
    if (m_open)
        m_open->setEnabled(!readOnly);
}

void Listes::takeFromPanel()
{
    edit(m_panel->chosen());
    if (m_line)
        m_line->setText(m_multiple && ClParent() ? ClParent()->SelectedItems().join(u" ; "_s) : m_panel->chosen().toString());
}

/// The item that the typing began, where one is offered.
void Listes::finish()
{
    if (!m_completer || !m_completer->popup()->isVisible())
        return;
    const QModelIndex chosen = m_completer->popup()->currentIndex();
    m_completer->popup()->hide();
    if (chosen.isValid())
        setValue(chosen.data().toString());
}

bool Listes::handleKey(QKeyEvent* event)
{
    const bool opens = event->key() == Qt::Key_Down || event->key() == Qt::Key_Space;
    if (m_line && !m_readOnly && opens && (m_multiple || event->modifiers() & Qt::AltModifier)) {
        openList();
        return true;
    }
    if (m_multiple && !m_readOnly && (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace)) {
        setValue(QVariant());
        return true;
    }
    return FieldControl::handleKey(event);
}

void Listes::openList()
{
    if (!m_popup)
        return m_panel->list().setFocus(Qt::OtherFocusReason);
    if (m_readOnly || !ClParent())
        return;
    m_panel->refresh();
    QListWidget& list = m_panel->list();
    const int rowHeight = std::max(list.sizeHintForRow(0), list.fontMetrics().height() + 4);
    const int rows = std::clamp(list.count() + 1, 6, popupRows);
    m_popup->resize(std::max(width(), 240), rows * rowHeight + m_panel->commandsHeight() + 8);
    QPoint place = mapToGlobal(QPoint(0, height()));
    const QRect room = screen()->availableGeometry();
    if (place.y() + m_popup->height() > room.bottom())
        place.setY(mapToGlobal(QPoint(0, 0)).y() - m_popup->height());
    m_popup->move(place);
    m_popup->show();
    list.setFocus(Qt::PopupFocusReason);
}

bool Listes::eventFilter(QObject* watched, QEvent* event)
{
    const bool inPopup = m_popup && watched == &m_panel->list();
    if (!inPopup)
        return FieldControl::eventFilter(watched, event);
    if (event->type() != QEvent::KeyPress)
        return false;
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key != Qt::Key_Return && key != Qt::Key_Enter && key != Qt::Key_F2)
        return false; // Escape closes the popup by itself
    if (!m_multiple && key != Qt::Key_F2)
        takeFromPanel();
    m_popup->hide();
    m_line->setFocus(Qt::PopupFocusReason);
    if (!m_multiple && key != Qt::Key_F2)
        Q_EMIT nextWanted();
    return true;
}

} // namespace editing
