#include "reference/ui/Botaniste.h"

#include "jet/Recordset.h"
#include "jet/SqlText.h"
#include "reference/ui/ReferenceWorld.h"

#include <QHeaderView>
#include <QLoggingCategory>

namespace reference {

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(listLog, "herbora.reference.ui")

constexpr qint64 peopleAtOnce = 400;

} // namespace

// --- Rows ------------------------------------------------------------------------------------------

CollectorModel::CollectorModel(std::shared_ptr<ReferenceWorld> world, QIcon icon, QObject* parent)
    : QAbstractTableModel(parent), m_world(std::move(world)), m_icon(std::move(icon))
{
}

CollectorModel::~CollectorModel() = default;

/// The text of a letter stands in the pattern as it is, so that "[U-V]" is a range.
QString CollectorModel::statement() const
{
    QString text = u"SELECT [ID Collecteurs],[Collecteur],[Initiales],[Bot],[Organisme] FROM [Collecteurs]"_s;
    if (m_filter.kind == CollectorFilter::Letter)
        text += u" WHERE [Collecteur] LIKE "_s + jet::texte(m_filter.text + u'*');
    else if (m_filter.kind == CollectorFilter::Organisation && m_filter.text.isEmpty())
        text += u" WHERE [Organisme] IS NULL"_s;
    else if (m_filter.kind == CollectorFilter::Organisation)
        text += u" WHERE [Organisme] = "_s + jet::texte(m_filter.text);
    static const QStringList columns{u"[Collecteur]"_s, u"[Initiales]"_s, u"[Bot]"_s, u"[Organisme]"_s};
    return text + u" ORDER BY "_s + columns[m_column] + (m_order == Qt::DescendingOrder ? u" DESC"_s : QString());
}

void CollectorModel::guarded(const std::function<void()>& work)
{
    try {
        work();
    } catch (const jet::Error& error) {
        qCWarning(listLog).noquote() << error.number() << error.description();
        m_reading.reset();
    }
}

void CollectorModel::load()
{
    beginResetModel();
    m_rows.clear();
    m_count = 0;
    guarded([this] {
        m_reading = m_world->database.OpenRecordset(statement(), jet::RecordsetType::Snapshot);
        if (m_reading->EOF_())
            return;
        m_reading->MoveLast();
        m_count = m_reading->RecordCount();
        m_reading->MoveFirst();
        readPage();
    });
    endResetModel();
}

void CollectorModel::readPage()
{
    if (m_reading->EOF_())
        return;
    for (const auto& values : m_reading->GetRows(peopleAtOnce))
        m_rows.push_back({values[0].toInt(), values[1].toString(), values[2].toString(), values[4].toString(), values[3].toBool()});
}

void CollectorModel::setFilter(const CollectorFilter& filter)
{
    if (filter == m_filter)
        return;
    m_filter = filter;
    load();
}

int CollectorModel::rowOf(qint32 id)
{
    for (size_t row = 0;; ++row) {
        if (row == m_rows.size() && canFetchMore({}))
            fetchMore({});
        if (row >= m_rows.size())
            return -1;
        if (m_rows[row].id == id)
            return int(row);
    }
}

int CollectorModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int CollectorModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(ColumnCount);
}

bool CollectorModel::canFetchMore(const QModelIndex& parent) const
{
    return !parent.isValid() && m_reading && qint64(m_rows.size()) < m_count && !m_world->isAway();
}

void CollectorModel::fetchMore(const QModelIndex& parent)
{
    if (!canFetchMore(parent))
        return;
    const int first = int(m_rows.size());
    std::vector<Row> before = std::move(m_rows);
    m_rows.clear();
    guarded([this] { readPage(); });
    const std::vector<Row> page = std::exchange(m_rows, std::move(before));
    if (page.empty()) {
        m_count = first; // rows were deleted meanwhile
        return;
    }
    beginInsertRows({}, first, first + int(page.size()) - 1);
    m_rows.insert(m_rows.end(), page.begin(), page.end());
    endInsertRows();
}

void CollectorModel::setOrder(int column, Qt::SortOrder order)
{
    m_column = std::clamp(column, int(Nom), int(Organisme));
    m_order = order;
}

QVariant CollectorModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const QStringList titles{u"Nom"_s, u"Initiales"_s, u"Botaniste"_s, u"Organisme"_s};
    return orientation == Qt::Horizontal && role == Qt::DisplayRole ? QVariant(titles.value(section)) : QVariant();
}

QVariant CollectorModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const Row& row = m_rows[size_t(index.row())];
    if (index.column() == Bot) {
        if (role == Qt::CheckStateRole)
            return row.botanist ? Qt::Checked : Qt::Unchecked;
        return role == Qt::AccessibleTextRole ? QVariant(row.botanist ? u"Oui"_s : u"Non"_s) : QVariant();
    }
    if (role == Qt::DecorationRole && index.column() == Nom)
        return m_icon;
    if (role != Qt::DisplayRole)
        return {};
    return index.column() == Nom ? row.name : index.column() == Initiales ? row.initials : row.organisation;
}

// --- The list --------------------------------------------------------------------------------------

Botaniste::Botaniste(std::shared_ptr<ReferenceWorld> world, QWidget* parent)
    : ReferenceControl(world, data::Botaniste, parent),
      m_model(new CollectorModel(world, world->icon(u"Lsbotanistes"_s), this)), m_view(new QTableView(this))
{
    setObjectName(u"Botaniste"_s);
    m_view->setObjectName(u"listeCollecteurs"_s);
    m_view->setAccessibleName(u"Liste des collecteurs"_s);
    m_view->setModel(m_model);
    m_view->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_view->setTabKeyNavigation(false);
    m_view->setShowGrid(false);
    m_view->setAlternatingRowColors(true);
    m_view->verticalHeader()->hide();
    m_view->verticalHeader()->setDefaultSectionSize(m_view->fontMetrics().height() + 8);
    m_view->horizontalHeader()->setObjectName(u"titres"_s);
    const int unit = m_view->fontMetrics().averageCharWidth();
    m_view->horizontalHeader()->setSectionResizeMode(CollectorModel::Nom, QHeaderView::Stretch);
    m_view->horizontalHeader()->resizeSection(CollectorModel::Initiales, 10 * unit);
    m_view->horizontalHeader()->resizeSection(CollectorModel::Bot, 13 * unit);
    m_view->horizontalHeader()->resizeSection(CollectorModel::Organisme, 14 * unit);
    m_view->horizontalHeader()->setSortIndicator(CollectorModel::Nom, Qt::AscendingOrder);
    m_view->horizontalHeader()->setSortIndicatorShown(true);
    m_view->horizontalHeader()->setSectionsClickable(true);
    connect(m_view->horizontalHeader(), &QHeaderView::sortIndicatorChanged, this, [this](int column, Qt::SortOrder order) {
        m_model->setOrder(column, order);
        this->world().whenHere(this, [this] { reload(); });
    });
    ReferenceList& people = world->people;
    connect(&people, &ReferenceList::Change, this, &Botaniste::reloadSoon);
    connect(&people, &ReferenceList::Refresh, this, &Botaniste::reloadSoon);
    connect(m_view->selectionModel(), &QItemSelectionModel::currentRowChanged, this, &Botaniste::noteCurrent);
    connect(m_view->selectionModel(), &QItemSelectionModel::selectionChanged, this, &Botaniste::selectionChanged);
    connect(m_view, &QTableView::doubleClicked, this, [this] { Q_EMIT rowActivated(currentId()); });
    arrange();
    world->whenHere(this, [this] { reload(); });
}

QAbstractItemView& Botaniste::view() const
{
    return *m_view;
}

platform::cl_MSFlexgrid Botaniste::clMsFlexGrid() const
{
    return platform::cl_MSFlexgrid(*m_view, [this](int row) { return m_model->idAt(row); });
}

qint32 Botaniste::currentId() const
{
    return m_model->idAt(m_view->currentIndex().isValid() ? m_view->currentIndex().row() : -1);
}

void Botaniste::noteCurrent()
{
    if (m_reloading || currentId() == m_told)
        return;
    m_told = currentId();
    Q_EMIT rowChosen(m_told);
}

QList<qint32> Botaniste::selectedIds() const
{
    QList<qint32> ids;
    for (const QModelIndex& row : m_view->selectionModel()->selectedRows())
        ids << m_model->idAt(row.row());
    return ids;
}

QStringList Botaniste::selectedNames() const
{
    QStringList names;
    for (const QModelIndex& row : m_view->selectionModel()->selectedRows())
        names << row.data().toString();
    return names;
}

bool Botaniste::showRow(qint32 id)
{
    int row = id > 0 ? m_model->rowOf(id) : -1;
    if (row < 0 && id > 0 && m_model->filter().kind != CollectorFilter::All) {
        setFilter({});
        row = m_model->rowOf(id);
        if (everybodyListed)
            everybodyListed();
    }
    if (row < 0)
        return false;
    selectRow(row);
    m_view->scrollTo(m_model->index(row, 0));
    return true;
}

/// Not by the view, for which a Ctrl that is still held from a shortcut would toggle the row.
void Botaniste::selectRow(int row)
{
    m_view->selectionModel()->setCurrentIndex(m_model->index(row, 0),
                                              QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void Botaniste::setFilter(const CollectorFilter& filter)
{
    m_reloading = true;
    m_model->setFilter(filter);
    m_reloading = false;
    noteCurrent();
    Q_EMIT selectionChanged();
}

void Botaniste::reload()
{
    m_stale = false;
    const qint32 current = currentId();
    const int row = m_view->currentIndex().row();
    m_reloading = true; // the current row comes back
    m_model->load();
    const int found = current > 0 ? m_model->rowOf(current) : -1;
    // Where the row is gone its neighbour takes its place.
    const int wanted = found >= 0 ? found : std::min(row, m_model->rowCount() - 1);
    if (wanted >= 0)
        selectRow(wanted);
    m_reloading = false;
    noteCurrent();
    Q_EMIT selectionChanged();
}

void Botaniste::reloadSoon()
{
    if (world().isAway())
        m_stale = true;
    else
        reload();
}

void Botaniste::databaseBack()
{
    if (m_stale)
        reload();
}

void Botaniste::add()
{
    showAdded(added([this] { return world().people.Add(); }));
}

bool Botaniste::confirmDelete(const QList<qint32>& ids)
{
    return world().people.confirmDelete(ids);
}

void Botaniste::deleteRows(const QList<qint32>& ids)
{
    world().people.Delete(ids, true);
}

} // namespace reference
