#include "query/ui/DataMode.h"

#include "data/Cancellable.h"
#include "platform/ui/cl_MSFlexgrid.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMimeData>
#include <QPointer>
#include <QVBoxLayout>

namespace query {

using namespace Qt::StringLiterals;

namespace {

/// Up to so many rows are copied at once, without a word.
constexpr qint64 copiedAtOnce = 500;
constexpr int widestColumnCharacters = 48;

} // namespace

// --- Grid ------------------------------------------------------------------------------------

QItemSelectionModel::SelectionFlags ResultGrid::selectionCommand(const QModelIndex& index, const QEvent* event) const
{
    const auto flags = QTableView::selectionCommand(index, event);
    const bool user = event && (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::KeyPress);
    if (user && (flags & QItemSelectionModel::Clear)) {
        const auto* input = static_cast<const QInputEvent*>(event);
        if (!(input->modifiers() & Qt::ShiftModifier))
            Q_EMIT const_cast<ResultGrid*>(this)->beginsAnew();
    }
    return flags;
}

void ResultGrid::keyPressEvent(QKeyEvent* event)
{
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && event->modifiers() == Qt::NoModifier) {
        Q_EMIT activatedRow(currentIndex());
        return;
    }
    QTableView::keyPressEvent(event);
}

void ResultGrid::startDrag(Qt::DropActions)
{
    Q_EMIT dragWanted();
}

// --- Mode ------------------------------------------------------------------------------------

DataMode::DataMode(ResultSource& source, ResultRun& run, QWidget* parent)
    : ResultMode(source, parent), m_run(run), m_model(new ResultModel(run, this)), m_grid(new ResultGrid(this))
{
    setObjectName(u"modeData"_s);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_grid);
    setFocusProxy(m_grid);
    arrange();
    connect(m_grid->selectionModel(), &QItemSelectionModel::selectionChanged, this, &DataMode::takeSelection);
    connect(m_grid->selectionModel(), &QItemSelectionModel::currentChanged, this, &DataMode::currentChanged);
    connect(m_grid, &QTableView::doubleClicked, this, &DataMode::activate);
    connect(m_grid, &ResultGrid::activatedRow, this, &DataMode::activate);
    connect(m_grid, &ResultGrid::dragWanted, this, &DataMode::dragWanted);
    connect(m_grid, &ResultGrid::beginsAnew, this, [this] {
        if (m_run.results())
            m_run.results()->SelectNone();
        // Marks of this page that stay selected come back with the selection itself.
        for (const QModelIndex& index : m_grid->selectionModel()->selectedRows())
            m_run.results()->select(m_model->rowOf(index), true);
    });
}

void DataMode::arrange()
{
    m_grid->setObjectName(u"resultat"_s);
    m_grid->setAccessibleName(u"Résultat de la requête"_s);
    m_grid->setModel(m_model);
    m_grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_grid->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_grid->setAlternatingRowColors(true);
    m_grid->setWordWrap(false);
    m_grid->setTabKeyNavigation(false);
    m_grid->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_grid->setFrameShape(QFrame::NoFrame);
    m_grid->setDragEnabled(true);
    m_grid->setDragDropMode(QAbstractItemView::DragOnly);
    m_grid->setContextMenuPolicy(Qt::CustomContextMenu);
    m_grid->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_grid->verticalHeader()->setDefaultSectionSize(m_grid->fontMetrics().height() + 8);
    m_grid->verticalHeader()->setAccessibleName(u"Numéros des lignes"_s);
    QHeaderView* header = m_grid->horizontalHeader();
    header->setAccessibleName(u"Colonnes"_s);
    header->setSectionsMovable(true);
    header->setHighlightSections(false);
    header->setSectionsClickable(true);
    header->setSortIndicatorShown(true);
    header->setSortIndicator(-1, Qt::AscendingOrder);
    header->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(header, &QHeaderView::sortIndicatorChanged, m_model, &ResultModel::sort);
    connect(header, &QWidget::customContextMenuRequested, this, [this, header](const QPoint& at) {
        if (const int column = header->logicalIndexAt(at); column >= 0)
            Q_EMIT columnMenuWanted(column, header->viewport()->mapToGlobal(at));
    });
    connect(m_grid, &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        if (const QModelIndex index = m_grid->indexAt(at); index.isValid())
            Q_EMIT columnMenuWanted(index.column(), m_grid->viewport()->mapToGlobal(at));
    });
}

QString DataMode::key() const { return modeData; }

void DataMode::rowsReplaced()
{
    m_model->reset();
    showSort();
    if (!m_run.results())
        return;
    if (const QStringList headers = m_run.results()->Header(); m_fitted != headers && m_model->rowCount() > 0) {
        m_fitted = headers;
        platform::cl_MSFlexgrid(*m_grid).AjustColWidth(m_grid->fontMetrics().averageCharWidth()
                                                       * widestColumnCharacters);
    }
    markSelected();
    if (!m_grid->currentIndex().isValid() && m_model->rowCount() > 0)
        m_grid->selectionModel()->setCurrentIndex(m_model->index(0, 0), QItemSelectionModel::NoUpdate);
}

void DataMode::rowsFound()
{
    const qint64 selected = m_run.results()->CountSel();
    m_model->grow();
    if (selected > m_grid->selectionModel()->selectedRows().size())
        markSelected();
}

void DataMode::valuesChanged(const QStringList&)
{
    m_model->reread();
}

void DataMode::showPage()
{
    m_model->reset();
    markSelected();
    m_grid->scrollToTop();
    if (m_model->rowCount() > 0)
        m_grid->selectionModel()->setCurrentIndex(m_model->index(0, 0), QItemSelectionModel::NoUpdate);
}

/// The header shows the order in which the rows are, also after one that failed.
void DataMode::showSort()
{
    int column = -1;
    Qt::SortOrder order = Qt::AscendingOrder;
    for (int col = 0; m_run.results() && col < m_run.results()->Cols(); ++col) {
        if (m_run.results()->Sorted(col) != SortState::None && column < 0) {
            column = col;
            order = m_run.results()->Sorted(col) == SortState::Descending ? Qt::DescendingOrder : Qt::AscendingOrder;
        }
    }
    const QSignalBlocker quiet(m_grid->horizontalHeader());
    m_grid->horizontalHeader()->setSortIndicator(column, order);
    m_grid->horizontalHeader()->viewport()->update();
}

// --- Selection -------------------------------------------------------------------------------

void DataMode::takeSelection(const QItemSelection& selected, const QItemSelection& deselected)
{
    Results* results = m_run.results();
    if (m_marking || !results)
        return;
    const auto mark = [&](const QItemSelection& ranges, bool on) {
        for (const QItemSelectionRange& range : ranges) {
            for (int row = range.top(); row <= range.bottom(); ++row)
                results->select(results->firstRow() + row, on);
        }
    };
    mark(deselected, false);
    mark(selected, true);
    Q_EMIT selectionChanged();
}

void DataMode::markSelected()
{
    const Results* results = m_run.results();
    m_marking = true;
    QItemSelection marks;
    for (int row = 0; results && row < m_model->rowCount(); ++row) {
        int last = row;
        while (last < m_model->rowCount() && results->isSelected(results->firstRow() + last))
            ++last;
        if (last > row)
            marks.select(m_model->index(row, 0), m_model->index(last - 1, m_model->columnCount() - 1));
        row = last;
    }
    m_grid->selectionModel()->select(marks, QItemSelectionModel::ClearAndSelect);
    m_marking = false;
}

void DataMode::selectAll()
{
    if (m_run.results())
        m_run.results()->SelectAll();
    markSelected();
    Q_EMIT selectionChanged();
}

void DataMode::selectInverse()
{
    if (m_run.results())
        m_run.results()->SelectInverse();
    markSelected();
    Q_EMIT selectionChanged();
}

void DataMode::selectNone()
{
    if (m_run.results())
        m_run.results()->SelectNone();
    markSelected();
    Q_EMIT selectionChanged();
}

void DataMode::setSelection(const ResultSelection&)
{
    // The result has it already: the pane marks its rows.
    markSelected();
    if (const Results* results = m_run.results()) {
        const QList<qint64> rows = results->selectedRows();
        if (!rows.isEmpty() && m_model->indexOf(rows.first()).isValid())
            m_grid->scrollTo(m_model->indexOf(rows.first()));
    }
}

ResultSelection DataMode::selection() const
{
    return {.records = m_run.results() ? m_run.results()->selectedIds() : QList<qint32>(), .individuals = {}};
}

void DataMode::setCurrentRow(qint64 row)
{
    const QModelIndex index = m_model->indexOf(row, qMax(0, m_grid->currentIndex().column()));
    if (!index.isValid())
        return;
    m_grid->selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
    m_grid->scrollTo(index);
}

void DataMode::activate(const QModelIndex& index)
{
    if (const Results* results = m_run.results(); results && index.isValid())
        Q_EMIT activated({.records = {results->item(m_model->rowOf(index))}, .individuals = {}});
}

// --- Commands --------------------------------------------------------------------------------

bool DataMode::can(platform::TabCommand command) const
{
    using enum platform::TabCommand;
    const bool rows = m_run.results() && m_run.results()->CountRow() > 0;
    return rows && (command == Copy || command == CopyWithHeaders || command == SelectAll || command == FitColumns);
}

void DataMode::run(platform::TabCommand command)
{
    using enum platform::TabCommand;
    if (command == Copy || command == CopyWithHeaders)
        copy(command == CopyWithHeaders);
    else if (command == SelectAll)
        selectAll();
    else if (command == FitColumns)
        platform::cl_MSFlexgrid(*m_grid).AjustColWidth(m_grid->fontMetrics().averageCharWidth()
                                                       * widestColumnCharacters);
}

void DataMode::copyCell()
{
    platform::cl_MSFlexgrid(*m_grid).CopyCell();
}

/// Twice on the clipboard: as the export writes rows, and as a table, which is what spreadsheets take.
void DataMode::copy(bool headers)
{
    const auto results = m_run.shared();
    if (!results || results->CountSel() == 0)
        return;
    auto texts = std::make_shared<RowTexts>();
    const auto read = [results, texts, rows = results->selectedRows()](platform::Progression& progression) {
        const data::Cancellable running(*results->database(), progression);
        *texts = results->copyTexts(rows, &progression);
    };
    const QPointer<DataMode> self(this);
    const auto done = [self, results, texts, headers](std::exception_ptr failure) {
        try {
            if (failure)
                std::rethrow_exception(failure);
            const RowTexts rows = headers ? RowTexts{results->Header()} + *texts : *texts;
            auto* data = new QMimeData;
            data->setText(clipboardText(rows));
            data->setHtml(clipboardTable(rows));
            QGuiApplication::clipboard()->setMimeData(data);
        } catch (const jet::Error& error) {
            if (self && error.number() != 3059)
                Q_EMIT self->failed(error.description());
        }
    };
    if (results->CountSel() > copiedAtOnce || m_run.isBusy())
        return m_run.runner().start({read, done, [] {}, u"Copie des lignes"_s});
    platform::NoProgression silent;
    try {
        read(silent);
        done(nullptr);
    } catch (const jet::Error&) {
        done(std::current_exception());
    }
}

} // namespace query
