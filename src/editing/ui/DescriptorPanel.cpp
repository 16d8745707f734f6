#include "editing/ui/DescriptorPanel.h"

#include "data/FieldType.h"

#include <QSignalBlocker>
#include <QVBoxLayout>

namespace editing {

using namespace Qt::StringLiterals;

namespace {

/// The item itself; a row's text may say more.
constexpr int itemRole = Qt::UserRole;

} // namespace

DescriptorPanel::DescriptorPanel(Cl_Edition& field, const ControlWorld& world, QWidget* owner)
    : QWidget(owner), m_world(world), m_field(&field), m_multiple(field.ctype() == data::ListeMultiple),
      m_list(new QListWidget(this)), m_bar(new QToolBar(this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_list);
    layout->addWidget(m_bar);
    m_list->setUniformItemSizes(true);
    m_list->setAccessibleName(field.Caption());
    m_bar->setObjectName(u"commandes-"_s + field.champ());
    m_bar->setIconSize(QSize(16, 16));
    m_bar->setContentsMargins(0, 0, 0, 0);
    addCommand({u"add"_s, u"list-add"_s, u"+"_s, u"Ajouter un descripteur"_s}, &DescriptorPanel::addItem);
    addCommand({u"edit"_s, u"document-edit"_s, u"✎"_s, u"Renommer le descripteur"_s}, &DescriptorPanel::editItem);
    addCommand({u"delete"_s, u"edit-delete"_s, u"−"_s, u"Supprimer le descripteur"_s}, &DescriptorPanel::deleteItem);
    addCommand({u"up"_s, u"go-up"_s, u"↑"_s, u"Monter le descripteur"_s}, &DescriptorPanel::moveUp);
    addCommand({u"down"_s, u"go-down"_s, u"↓"_s, u"Descendre le descripteur"_s}, &DescriptorPanel::moveDown);
    if (m_multiple) {
        addCommand({u"selall"_s, u"edit-select-all"_s, u"☑"_s, u"Tout cocher"_s}, &DescriptorPanel::selectAll);
        addCommand({u"selinv"_s, u"edit-select-invert"_s, u"◪"_s, u"Inverser les coches"_s}, &DescriptorPanel::invert);
        connect(m_list, &QListWidget::itemChanged, this, &DescriptorPanel::edited);
    }
    m_list->addActions(m_bar->actions());
    m_list->setContextMenuPolicy(Qt::ActionsContextMenu);
    connect(m_list, &QListWidget::currentRowChanged, this, &DescriptorPanel::updateCommands);
    m_list->installEventFilter(this);
    refresh();
}

void DescriptorPanel::addCommand(const Command& command, void (DescriptorPanel::*run)())
{
    const QString& text = command.text;
    auto* action = new QAction(QIcon::fromTheme(command.icon), text, m_bar);
    action->setObjectName(command.key);
    action->setIconText(command.sign);
    action->setToolTip(text);
    connect(action, &QAction::triggered, this, run);
    m_bar->addAction(action);
    if (QWidget* button = m_bar->widgetForAction(action)) {
        button->setFocusPolicy(Qt::NoFocus);
        button->setAccessibleName(text);
    }
}

/// Marks say what is chosen; the row of the keyboard would be taken for a choice while one is elsewhere.
bool DescriptorPanel::eventFilter(QObject* watched, QEvent* event)
{
    if (m_multiple && watched == m_list && event->type() == QEvent::FocusIn && m_list->currentItem())
        m_list->currentItem()->setSelected(true);
    else if (m_multiple && watched == m_list && event->type() == QEvent::FocusOut)
        m_list->clearSelection();
    return QWidget::eventFilter(watched, event);
}

QAction* DescriptorPanel::command(const QString& key) const
{
    return m_bar->findChild<QAction*>(key == u"sup" ? u"delete"_s : key);
}

ListField DescriptorPanel::listField() const
{
    return {m_field->NomModule(), m_field->champ(), m_field->Caption(), m_field->ctype(), m_field->AllowNull()};
}

QString DescriptorPanel::current() const
{
    const QListWidgetItem* item = m_list->currentItem();
    return item ? item->data(itemRole).toString() : QString();
}

void DescriptorPanel::refresh()
{
    if (!m_field)
        return;
    const QSignalBlocker quiet(m_list);
    const QString kept = current();
    m_list->clear();
    const QStringList vocabulary = m_field->ListeItems();
    const auto add = [&](const QString& item, const QString& text) {
        auto* row = new QListWidgetItem(text, m_list);
        row->setData(itemRole, item);
        if (m_multiple)
            row->setCheckState(m_field->SearchListeCheck(item) ? Qt::Checked : Qt::Unchecked);
        const bool isCurrent = m_multiple ? item == kept : m_field->SearchListeCheck(item);
        if (isCurrent)
            choose(m_list->row(row));
    };
    if (!m_multiple && m_field->AllowNull())
        add({}, u"(aucun)"_s);
    for (const QString& item : vocabulary)
        add(item, item);
    // What a record holds beside the vocabulary is not lost by looking at it.
    for (const QString& item : m_field->SelectedItems()) {
        if (!vocabulary.contains(item, Qt::CaseInsensitive))
            add(item, item + u" (hors liste)"_s);
    }
    if (!m_list->currentItem() && m_list->count() > 0)
        choose(0);
    showChosen();
    updateCommands();
}

/// What is chosen is seen first, in a list longer than its place.
void DescriptorPanel::showChosen()
{
    for (int row = 0; m_multiple && !m_list->hasFocus() && row < m_list->count(); ++row) {
        if (m_list->item(row)->checkState() == Qt::Checked)
            return m_list->scrollToItem(m_list->item(row));
    }
}

void DescriptorPanel::choose(int row)
{
    const bool seen = !m_multiple || m_list->hasFocus();
    m_list->setCurrentRow(row, seen ? QItemSelectionModel::ClearAndSelect : QItemSelectionModel::NoUpdate);
}

void DescriptorPanel::setReadOnly(bool readOnly)
{
    m_readOnly = readOnly;
    for (int row = 0; row < m_list->count(); ++row) {
        Qt::ItemFlags flags = m_list->item(row)->flags();
        const QSignalBlocker quiet(m_list);
        m_list->item(row)->setFlags(flags.setFlag(Qt::ItemIsUserCheckable, m_multiple && !readOnly));
    }
    updateCommands();
}

QVariant DescriptorPanel::chosen() const
{
    QStringList items;
    if (!m_multiple)
        items << current();
    for (int row = 0; m_multiple && row < m_list->count(); ++row) {
        if (m_list->item(row)->checkState() == Qt::Checked)
            items << m_list->item(row)->data(itemRole).toString();
    }
    const QString text = items.join(u';');
    return text.isEmpty() ? QVariant() : QVariant(text);
}

void DescriptorPanel::updateCommands()
{
    const bool own = m_field && m_world.lists && !m_field->NomModule().isEmpty()
                     && m_field->ChpEdition()->Descripteurs.isEmpty();
    const QString item = current();
    for (QAction* action : m_bar->actions()) {
        const QString key = action->objectName();
        const bool marks = key.startsWith(u"sel"_s);
        action->setVisible(own || marks);
        action->setEnabled(!m_readOnly && (marks || key == u"add" || !item.isEmpty()));
    }
    m_bar->setVisible(own || m_multiple);
}

/// The owner and the module's add-in are told first; true when one of them does it itself.
bool DescriptorPanel::relay(const QString& action)
{
    return m_field->report(action, {m_field->champ(), current()});
}

/// Puts the new text of an item into a value that is not saved yet; one that is saved is read again.
void DescriptorPanel::replaceInValue(const QString& old, const QString& text)
{
    if (!m_field->Changed())
        return m_field->Refresh();
    QStringList items = m_field->SelectedItems();
    for (QString& item : items) {
        if (item.compare(old, Qt::CaseInsensitive) == 0)
            item = text;
    }
    items.removeAll(QString());
    if (m_world.take)
        m_world.take(*m_field, items.isEmpty() ? QVariant() : QVariant(items.join(u';')));
}

void DescriptorPanel::addItem()
{
    if (!m_field || relay(u"ADD_ITEM"_s) || !m_world.lists->add(listField()) || !m_field)
        return; // other records may be shown by now
    // What is new is what one wants.
    const QString added = m_field->ListeItems().value(m_field->ListeItems().size() - 1);
    refresh();
    for (int row = 0; row < m_list->count(); ++row) {
        if (m_list->item(row)->data(itemRole).toString() == added) {
            choose(row);
            if (m_multiple)
                m_list->item(row)->setCheckState(Qt::Checked);
        }
    }
    Q_EMIT edited();
    Q_EMIT renewed();
}

void DescriptorPanel::editItem()
{
    const QString old = current();
    const QStringList before = m_field ? m_field->ListeItems() : QStringList();
    if (old.isEmpty() || !m_field || relay(u"EDIT_ITEM"_s) || !m_world.lists->rename(listField(), old) || !m_field)
        return;
    const QString text = m_field->ListeItems().value(before.indexOf(old), old);
    replaceInValue(old, text);
    refresh();
    Q_EMIT renewed();
}

void DescriptorPanel::deleteItem()
{
    const QString old = current();
    if (old.isEmpty() || !m_field || relay(u"DELETE_ITEM"_s) || !m_world.lists->remove(listField(), old) || !m_field)
        return;
    replaceInValue(old, {});
    refresh();
    Q_EMIT renewed();
}

void DescriptorPanel::move(int by)
{
    const QString item = current();
    if (item.isEmpty() || !m_field || !m_world.lists->move(listField(), item, by))
        return;
    refresh();
    for (int row = 0; row < m_list->count(); ++row) {
        if (m_list->item(row)->data(itemRole).toString() == item)
            choose(row);
    }
}

void DescriptorPanel::mark(bool all)
{
    {
        const QSignalBlocker quiet(m_list);
        for (int row = 0; row < m_list->count(); ++row) {
            QListWidgetItem* item = m_list->item(row);
            item->setCheckState(all || item->checkState() != Qt::Checked ? Qt::Checked : Qt::Unchecked);
        }
    }
    Q_EMIT edited();
}

} // namespace editing
