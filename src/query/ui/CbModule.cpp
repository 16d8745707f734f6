#include "query/ui/CbModule.h"

#include "platform/ui/Keyboard.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QVBoxLayout>
#include <climits>

namespace query {

using namespace Qt::StringLiterals;

namespace {

/// Without accents and case, for finding.
QString folded(const QString& text)
{
    QString plain;
    const QString decomposed = text.normalized(QString::NormalizationForm_D).toCaseFolded();
    for (const QChar c : decomposed) {
        if (c.category() != QChar::Mark_NonSpacing)
            plain += c;
    }
    return plain;
}

/// While one finds, links are not followed deeper than this: the same captions come back at every depth.
constexpr int deepestFound = 2;

} // namespace

/// A word may stand in the caption of the field or of what is above it, so that "mesures diam" finds one.
class CbModule::Finder : public QSortFilterProxyModel {
public:
    using QSortFilterProxyModel::QSortFilterProxyModel;
    void find(const QString& words)
    {
        m_words = folded(words).split(u' ', Qt::SkipEmptyParts);
        invalidateFilter();
    }
    bool finding() const { return !m_words.isEmpty(); }

protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override
    {
        if (m_words.isEmpty())
            return true;
        const QModelIndex index = sourceModel()->index(row, 0, parent);
        return found(index) || childFound(index, 0);
    }

private:
    /// The last word stands in the caption itself, the others there or above.
    bool found(const QModelIndex& index) const
    {
        QString own = folded(index.data().toString());
        if (!own.contains(m_words.last()))
            return false;
        QString all = own;
        for (QModelIndex above = index.parent(); above.isValid(); above = above.parent())
            all += u'\n' + folded(above.data().toString());
        return std::all_of(m_words.begin(), m_words.end(), [&](const QString& word) { return all.contains(word); });
    }
    bool childFound(const QModelIndex& index, int depth) const
    {
        if (depth > deepestFound)
            return false;
        for (int row = 0; row < sourceModel()->rowCount(index); ++row) {
            const QModelIndex child = sourceModel()->index(row, 0, index);
            if (found(child) || childFound(child, depth + 1))
                return true;
        }
        return false;
    }

    QStringList m_words;
};

CbModule::CbModule(FieldTreeModel::Icons icons, QWidget* parent)
    : QWidget(parent), m_model(new FieldTreeModel(std::move(icons), this)), m_finder(new Finder(this)),
      m_line(new QLineEdit(this)), m_tree(new QTreeView(this)),
      m_none(new QLabel(u"Aucun champ ne porte ce nom"_s, this))
{
    setObjectName(u"CbModule"_s);
    m_finder->setSourceModel(m_model);
    m_line->setObjectName(u"chercheChamp"_s);
    m_line->setPlaceholderText(u"Chercher un champ"_s);
    m_line->setAccessibleName(u"Chercher un champ"_s);
    m_line->setClearButtonEnabled(true);
    m_line->addAction(QIcon::fromTheme(u"edit-find"_s), QLineEdit::LeadingPosition);
    m_line->installEventFilter(this);
    m_tree->setObjectName(u"champs"_s);
    m_tree->setAccessibleName(u"Champs des modules"_s);
    m_tree->setModel(m_finder);
    m_tree->setHeaderHidden(true);
    m_tree->setUniformRowHeights(true);
    m_tree->setDragEnabled(true);
    m_tree->setDragDropMode(QAbstractItemView::DragOnly);
    m_tree->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_tree->setExpandsOnDoubleClick(false);
    m_tree->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_tree->setContextMenuPolicy(Qt::CustomContextMenu);
    m_tree->installEventFilter(this);
    m_none->setAlignment(Qt::AlignCenter);
    m_none->hide();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(m_line);
    layout->addWidget(m_tree, 1);
    layout->addWidget(m_none);
    platform::forwardFocus(*this, *m_tree);
    connect(m_line, &QLineEdit::textChanged, this, &CbModule::find);
    connect(m_tree, &QWidget::customContextMenuRequested, this, &CbModule::showMenu);
    connect(m_tree->selectionModel(), &QItemSelectionModel::selectionChanged, this, &CbModule::selectionChanged);
    connect(m_tree, &QTreeView::doubleClicked, this, [this](const QModelIndex& index) {
        const Node* node = m_model->node(m_finder->mapToSource(index));
        if (node && node->isModule())
            m_tree->setExpanded(index, !m_tree->isExpanded(index));
        else
            ask(false);
    });
}

void CbModule::setStructure(Structure* structure)
{
    m_structure = structure;
    m_model->setStructure(structure);
    showRoot();
}

void CbModule::showRoot()
{
    const QModelIndex root = m_finder->index(0, 0);
    m_tree->expand(root);
    m_tree->setCurrentIndex(root);
}

void CbModule::find(const QString& words)
{
    const QString chosen = ChampSelected();
    m_finder->find(words);
    if (m_finder->finding()) {
        m_tree->setCurrentIndex({});
        int nearest = INT_MAX;
        expandMatches({}, 0, nearest);
    } else {
        m_tree->collapseAll();
        m_tree->expand(m_finder->index(0, 0));
        setChampSelected(chosen);
    }
    m_none->setVisible(m_finder->rowCount() == 0);
}

/// Opens what leads to a field found, and stands on the one that the fewest links lead to: "altitude" is that of the
/// individual before that of its place.
void CbModule::expandMatches(const QModelIndex& parent, int depth, int& nearest)
{
    for (int row = 0; row < m_finder->rowCount(parent); ++row) {
        const QModelIndex index = m_finder->index(row, 0, parent);
        const Node* node = m_model->node(m_finder->mapToSource(index));
        if (depth <= deepestFound && m_finder->rowCount(index) > 0) {
            m_tree->expand(index);
            expandMatches(index, depth + 1, nearest);
        } else if (node && !node->isModule() && depth < nearest) {
            nearest = depth;
            m_tree->setCurrentIndex(index);
        }
    }
}

QString CbModule::KeySelected() const
{
    return m_tree->currentIndex().data(FieldTreeModel::KeyRole).toString();
}

QString CbModule::ChampSelected() const
{
    return m_tree->currentIndex().data(FieldTreeModel::PathRole).toString();
}

void CbModule::setChampSelected(const QString& path)
{
    const QModelIndex index = m_finder->mapFromSource(m_model->indexOf(m_structure ? m_structure->node(path) : nullptr));
    if (!index.isValid())
        return;
    m_tree->setCurrentIndex(index);
    m_tree->scrollTo(index);
}

editing::Cl_Edition* CbModule::ClasseSelected() const
{
    const Node* node = m_model->node(m_finder->mapToSource(m_tree->currentIndex()));
    return node ? node->field.get() : nullptr;
}

void CbModule::ask(bool criterion)
{
    QStringList paths;
    for (const QModelIndex& index : m_tree->selectionModel()->selectedIndexes())
        paths << index.data(FieldTreeModel::PathRole).toString();
    for (const QString& path : paths) {
        if (criterion)
            Q_EMIT criterionWanted(path);
        else
            Q_EMIT columnWanted(path);
    }
}

void CbModule::showMenu(const QPoint& at)
{
    if (!m_tree->indexAt(at).isValid())
        return;
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(QIcon::fromTheme(u"list-add"_s), u"Ajouter aux &champs affichés"_s, this, [this] { ask(false); });
    menu->addAction(QIcon::fromTheme(u"view-filter"_s), u"Ajouter aux c&ritères"_s, this, [this] { ask(true); });
    menu->popup(m_tree->viewport()->mapToGlobal(at));
}

bool CbModule::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    auto* key = static_cast<QKeyEvent*>(event);
    const bool enter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
    if (enter) {
        ask(key->modifiers() & Qt::ShiftModifier);
        return true;
    }
    if (watched == m_line && (key->key() == Qt::Key_Down || key->key() == Qt::Key_Up)) {
        m_tree->setFocus(Qt::OtherFocusReason);
        QCoreApplication::sendEvent(m_tree, event);
        return true;
    }
    if (watched == m_line && key->key() == Qt::Key_Escape && !m_line->text().isEmpty()) {
        m_line->clear();
        return true;
    }
    // Letters typed in the tree go on finding.
    if (watched == m_tree && !key->text().isEmpty() && key->text().front().isLetterOrNumber()
        && !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier))) {
        m_line->setFocus(Qt::OtherFocusReason);
        m_line->setText(m_line->text() + key->text());
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace query
