#include "reference/ui/ReferenceTree.h"

#include "editing/ui/ReferenceChooser.h"
#include "reference/ui/LazyTreeModel.h"
#include "reference/ui/ReferenceWorld.h"

#include <QHeaderView>
#include <QSet>

namespace reference {

using namespace Qt::StringLiterals;

namespace {

/// Every unfolded row, those above before those below.
QList<qint32> unfolded(const QTreeView& view, const LazyTreeModel& model, const QModelIndex& parent = {})
{
    QList<qint32> ids;
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        if (view.isExpanded(index))
            ids << model.rowAt(index).id << unfolded(view, model, index);
    }
    return ids;
}

} // namespace

ReferenceTree::ReferenceTree(std::shared_ptr<ReferenceWorld> world, int type, std::unique_ptr<TreeSource> source,
                             const QIcon& icon, const QIcon& mapIcon, QWidget* parent)
    : ReferenceControl(std::move(world), type, parent), m_model(nullptr), m_view(new QTreeView(this))
{
    source->isAway = [shared = sharedWorld()] { return shared->isAway(); };
    m_model = new LazyTreeModel(std::move(source), icon, mapIcon, this);
    m_model->movable = !this->world().readOnly;
    m_view->setObjectName(u"arbre"_s);
    m_view->setHeaderHidden(true);
    m_view->setUniformRowHeights(true);
    m_view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_view->setDragDropMode(this->world().readOnly ? QAbstractItemView::NoDragDrop : QAbstractItemView::DragDrop);
    m_view->setDefaultDropAction(Qt::MoveAction);
    m_view->setAutoExpandDelay(800);
    const int side = m_view->fontMetrics().height();
    m_view->setIconSize({side, side});
    makeCommand(u"move"_s, u"go-jump"_s, u"&Déplacer dans…"_s, u"Déplacer les lignes sélectionnées dans une autre"_s,
                [this] { chooseTarget(); }, u"Ctrl+Shift+M"_s);
    m_view->setModel(m_model);
    connectModel();
    if (m_model->topIndex().isValid())
        m_view->expand(m_model->topIndex());
}

void ReferenceTree::connectModel()
{
    ReferenceList& list = world().list(type());
    connect(&list, &ReferenceList::Change, m_model, &LazyTreeModel::rowChanged);
    connect(&list, &ReferenceList::Delete, m_model, &LazyTreeModel::rowDeleted);
    connect(&list, &ReferenceList::Refresh, m_model, &LazyTreeModel::refreshSynonyms);
    connect(m_view->selectionModel(), &QItemSelectionModel::currentChanged, this, &ReferenceTree::noteCurrent);
    connect(m_view->selectionModel(), &QItemSelectionModel::selectionChanged, this, &ReferenceTree::selectionChanged);
    connect(m_view, &QTreeView::doubleClicked, this, [this](const QModelIndex& index) {
        if (m_model->rowAt(index).id > 0)
            Q_EMIT rowActivated(m_model->rowAt(index).id);
    });
    m_view->setExpandsOnDoubleClick(false);
    // Once the drop is over.
    connect(m_model, &LazyTreeModel::moveWanted, this,
            [this](const QList<qint32>& ids, qint32 target) { world().whenHere(this, [=, this] { move(ids, target); }); },
            Qt::QueuedConnection);
    connect(m_model, &LazyTreeModel::failed, this, [this](const QString& description) {
        world().dialogues.tell(description, ReferenceWorld::table(type()), platform::BoxIcon::Stop);
    }, Qt::QueuedConnection);
}

QAbstractItemView& ReferenceTree::view() const
{
    return *m_view;
}

const TreeRow& ReferenceTree::currentRow() const
{
    return m_model->rowAt(m_view->currentIndex());
}

qint32 ReferenceTree::currentId() const
{
    return m_view->currentIndex().isValid() ? currentRow().id : 0;
}

void ReferenceTree::noteCurrent()
{
    if (m_reloading || currentId() == m_told)
        return;
    m_told = currentId();
    Q_EMIT rowChosen(m_told);
}

QList<qint32> ReferenceTree::selectedIds() const
{
    const QModelIndexList rows = m_view->selectionModel()->selectedRows();
    const QSet<QModelIndex> all(rows.begin(), rows.end());
    QList<qint32> ids;
    for (const QModelIndex& index : rows) {
        bool covered = m_model->rowAt(index).id <= 0;
        for (QModelIndex above = index.parent(); above.isValid(); above = above.parent())
            covered = covered || all.contains(above);
        if (!covered)
            ids << m_model->rowAt(index).id;
    }
    return ids;
}

QStringList ReferenceTree::selectedNames() const
{
    QStringList names;
    for (const qint32 id : selectedIds())
        names << world().name(type(), id);
    return names;
}

bool ReferenceTree::showRow(qint32 id)
{
    const QModelIndex index = m_model->locate(id);
    if (!index.isValid())
        return false;
    // Not by the view, for which a Ctrl that is still held from a shortcut would toggle the row.
    m_view->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    m_view->scrollTo(index);
    return true;
}

void ReferenceTree::reload()
{
    const QList<qint32> open = unfolded(*m_view, *m_model);
    const qint32 current = currentId();
    m_reloading = true; // the current row comes back
    m_model->reload();
    for (const qint32 id : open)
        m_view->expand(m_model->locate(id));
    if (current > 0)
        showRow(current);
    m_reloading = false;
    noteCurrent();
    Q_EMIT selectionChanged();
}

void ReferenceTree::databaseBack()
{
    m_model->resume();
}

QStringList ReferenceTree::further() const
{
    return {u"individuals"_s, u"move"_s};
}

bool ReferenceTree::isPossible(const QString& key) const
{
    if (key == u"move")
        return !world().readOnly && world().chooser && !selectedIds().isEmpty();
    return ReferenceControl::isPossible(key);
}

void ReferenceTree::chooseTarget()
{
    const auto target = world().chooser->choose(type(), currentId(), {}, window());
    if (target)
        move(selectedIds(), *target);
}

void ReferenceTree::move(const QList<qint32>& ids, qint32 target)
{
    if (world().readOnly || ids.isEmpty() || (mayLeave && !mayLeave()))
        return;
    moveRows(ids, target);
    world().written(ReferenceWorld::table(type()));
    showRow(ids.first());
}

// --- Taxa ------------------------------------------------------------------------------------------

Taxons::Taxons(std::shared_ptr<ReferenceWorld> world, QWidget* parent)
    : ReferenceTree(world, data::Taxon, std::make_unique<TaxonSource>(world->database, world->taxa),
                    world->icon(u"Lstaxons"_s), {}, parent)
{
    setObjectName(u"Taxons"_s);
    tree().setAccessibleName(u"Arbre des taxons"_s);
    makeCommand(u"synonymy"_s, u"link"_s, u"Mettre en &synonymie…"_s, u"Indiquer le taxon valide de ce nom"_s, [this] {
        if ((!mayLeave || mayLeave()) && this->world().taxa.clSynonyme_Edit(currentId()))
            this->world().written(u"Taxons"_s);
    });
    makeCommand(u"unsink"_s, u"edit-clear"_s, u"Sup&primer la synonymie"_s, u"Rendre ce nom valide"_s, [this] {
        if ((!mayLeave || mayLeave()) && this->world().taxa.clSynonyme_Delete(currentId()))
            this->world().written(u"Taxons"_s);
    });
    makeCommand(u"valid"_s, u"go-next"_s, u"Aller au taxon &valide"_s, u"Montrer le taxon valide de ce synonyme"_s,
                [this] { showRow(this->world().taxa.IDValid(currentId(), false)); });
    arrange();
}

QStringList Taxons::further() const
{
    return ReferenceTree::further() + QStringList{u"synonymy"_s, u"unsink"_s, u"valid"_s};
}

bool Taxons::isPossible(const QString& key) const
{
    if (key == u"synonymy")
        return !world().readOnly && currentId() > 0;
    if (key == u"unsink")
        return !world().readOnly && currentRow().synonym;
    if (key == u"valid")
        return currentRow().synonym;
    return ReferenceTree::isPossible(key);
}

/// Under the current name; one that has nothing under it gets a neighbour.
void Taxons::add()
{
    const TreeRow& row = currentRow();
    addUnder(row.rank >= 4 ? world().taxa.IDparent(row.id) : row.id, 0);
}

void Taxons::addUnder(qint32 parent, int rank)
{
    showAdded(added([&] { return rank > 0 && parent <= 0 ? world().taxa.AddOfRank(rank) : world().taxa.Add(parent); }));
}

/// The taxon above the current one, or itself, that a new name of the rank goes under; 0 for none.
qint32 Taxons::parentFor(int rank) const
{
    for (QModelIndex at = tree().currentIndex(); at.isValid(); at = at.parent()) {
        if (model().rowAt(at).rank == rank - 1)
            return model().rowAt(at).id;
    }
    return 0;
}

void Taxons::fillAddMenu(QMenu& menu)
{
    static const QStringList texts{u"Nouvelle Famille"_s, u"Nouveau Genre"_s, u"Nouvelle Espèce"_s, u"Nouveau Taxon Infra"_s};
    for (int rank = 1; rank <= texts.size(); ++rank) {
        const qint32 parent = parentFor(rank);
        if (rank > 1 && parent == 0)
            continue;
        QAction* action = menu.addAction(texts[rank - 1]);
        action->setObjectName(u"rang"_s + QString::number(rank));
        connect(action, &QAction::triggered, this, [this, parent, rank] {
            world().whenHere(this, [=, this] {
                if (!mayLeave || mayLeave())
                    addUnder(parent, rank);
            });
        });
    }
    if (currentRow().rank >= 4) {
        menu.addSeparator();
        menu.addAction(u"Indisponible"_s)->setEnabled(false);
    }
}

bool Taxons::confirmDelete(const QList<qint32>& ids)
{
    return world().taxa.confirmDelete(ids);
}

void Taxons::deleteRows(const QList<qint32>& ids)
{
    world().taxa.Delete(ids, true);
}

void Taxons::moveRows(const QList<qint32>& ids, qint32 target)
{
    const Cl_Taxon& taxa = world().taxa;
    const int rank = taxa.OrdreTaxon(target);
    if (std::any_of(ids.begin(), ids.end(), [&](qint32 id) { return !TaxonSource::mayGo(taxa.OrdreTaxon(id), rank); })) {
        world().dialogues.tell(u"Un taxon ne se déplace que dans un taxon de rang supérieur"_s, u"Déplacement de taxons"_s,
                               platform::BoxIcon::Warning);
        return;
    }
    // A synonymy has a form, which belongs to the thread of the windows.
    if (world().taxa.movesIntoSynonymy(ids, target))
        world().taxa.Move(ids, target);
    else
        world().workLong(u"Déplacement de taxons"_s, [&] { world().taxa.Move(ids, target); });
}

// --- Localities ------------------------------------------------------------------------------------

PlaceTree::PlaceTree(std::shared_ptr<ReferenceWorld> world, QWidget* parent)
    : ReferenceTree(world, data::Localité, std::make_unique<PlaceSource>(world->database), world->icon(u"Lslocalités"_s),
                    QIcon::fromTheme(u"map-flat"_s, QIcon::fromTheme(u"image-x-generic"_s)), parent)
{
    setObjectName(u"Localites"_s);
    tree().setAccessibleName(u"Arbre des localités"_s);
    arrange();
}

bool PlaceTree::isPossible(const QString& key) const
{
    if (key == u"add")
        return ReferenceTree::isPossible(key) && !currentRow().map;
    return ReferenceTree::isPossible(key);
}

void PlaceTree::add()
{
    const qint32 parent = currentId();
    showAdded(added([&] { return world().places.Add(parent); }));
}

bool PlaceTree::confirmDelete(const QList<qint32>& ids)
{
    return world().places.confirmDelete(ids);
}

void PlaceTree::deleteRows(const QList<qint32>& ids)
{
    world().places.Delete(ids, true);
}

void PlaceTree::moveRows(const QList<qint32>& ids, qint32 target)
{
    world().workLong(u"Déplacement de localités"_s, [&] { world().places.Move(ids, target); });
}

} // namespace reference
