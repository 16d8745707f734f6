#include "app/ui/GridTab.h"

#include "app/Session.h"
#include "app/ui/GridCopy.h"
#include "app/ui/Icons.h"
#include "platform/ui/PrintPreview.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLocale>
#include <QLoggingCategory>
#include <QMimeData>
#include <QVBoxLayout>
#include <QPointer>
#include <QProxyStyle>

namespace app {

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(tabLog, "herbora.grid.tab")

constexpr int widestColumnCharacters = 54;
/// Up to so many rows are copied at once, without a word.
constexpr qint64 copiedAtOnce = 500;

/// A little air beside the texts: numbers at the right of a column stand off the texts of the next.
class RoomyStyle : public QProxyStyle {
public:
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override
    {
        const int usual = QProxyStyle::pixelMetric(metric, option, widget);
        return metric == PM_FocusFrameHMargin || metric == PM_HeaderMargin ? usual + 3 : usual;
    }
};

QString countText(qint64 count, const QString& one, const QString& several)
{
    return QLocale().toString(count) + u' ' + (count < 2 ? one : several);
}

} // namespace

GridTab::GridTab(GridSource source, Session& session, platform::TaskRunner& runner, WindowState& state,
                 QWidget* parent)
    : DocumentTab(parent), m_session(session), m_state(state), m_runner(runner),
      m_model(new GridModel(std::move(source), session, runner, this)), m_view(new QTableView(this)),
      m_note(new QLabel(this)), m_add(new QPushButton(u"&Ajouter un enregistrement"_s, this)),
      m_noteAndAdd(new QWidget(this)), m_layout(new QStackedLayout(this))
{
    setObjectName(u"grid-"_s + m_model->source().key);
    arrangeView();
    m_note->setObjectName(u"gridNote"_s);
    m_note->setAlignment(Qt::AlignCenter);
    m_note->setWordWrap(true);
    m_note->setMargin(24);
    m_note->setTextFormat(Qt::PlainText);
    m_add->setObjectName(u"gridAdd"_s);
    m_add->setIcon(themeIcon(u"list-add"_s));
    m_add->hide();
    connect(m_add, &QPushButton::clicked, this, &GridTab::addWanted);
    auto* column = new QVBoxLayout(m_noteAndAdd);
    column->addStretch();
    column->addWidget(m_note);
    column->addWidget(m_add, 0, Qt::AlignHCenter);
    column->addStretch();
    m_layout->addWidget(m_view);
    m_layout->addWidget(m_noteAndAdd);
    setFocusProxy(m_view);
    connectModel();
    m_model->load();
}

GridTab::~GridTab()
{
    rememberColumns();
}

void GridTab::arrangeView()
{
    auto* style = new RoomyStyle;
    style->setParent(m_view);
    m_view->setStyle(style);
    m_view->horizontalHeader()->setStyle(style);
    m_view->setObjectName(u"grid"_s);
    m_view->setAccessibleName(source().title);
    m_view->setModel(m_model);
    m_view->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_view->setAlternatingRowColors(true);
    m_view->setWordWrap(false);
    m_view->setTabKeyNavigation(false); // Tab leads out of the grid
    m_view->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_view->setShowGrid(true);
    m_view->setFrameShape(QFrame::NoFrame);
    m_view->setCornerButtonEnabled(false);

    QHeaderView* rows = m_view->verticalHeader();
    rows->setObjectName(u"gridRows"_s);
    rows->setAccessibleName(u"Numéros des lignes"_s);
    rows->hide();
    rows->setSectionResizeMode(QHeaderView::Fixed);
    rows->setDefaultSectionSize(m_view->fontMetrics().height() + 8);

    QHeaderView* header = m_view->horizontalHeader();
    header->setObjectName(u"gridHeader"_s);
    header->setAccessibleName(u"Colonnes"_s);
    header->setSectionsMovable(true);
    header->setHighlightSections(false);
    header->setSortIndicatorClearable(true);
    header->setSortIndicator(m_model->sortColumn(), Qt::AscendingOrder);
    header->setSectionsClickable(true);
    header->setSortIndicatorShown(true);
}

void GridTab::connectModel()
{
    connect(m_view->horizontalHeader(), &QHeaderView::sortIndicatorChanged, m_model, &GridModel::sort);
    connect(m_model, &GridModel::sorted, this, &GridTab::showSort);
    connect(m_model, &GridModel::modelReset, this, &GridTab::firstRows);
    connect(m_model, &GridModel::countChanged, this, &GridTab::showRowsOrNote);
    connect(m_model, &GridModel::failed, this, [this](const QString& description) {
        m_note->setText(description);
        if (m_model->rowCount() == 0)
            m_layout->setCurrentWidget(m_noteAndAdd);
        Q_EMIT failed(description);
    });
    connect(m_view, &QTableView::doubleClicked, this, &GridTab::activate);
    m_view->installEventFilter(this);
    connect(m_view->selectionModel(), &QItemSelectionModel::selectionChanged, this, &GridTab::stateChanged);
}

void GridTab::showSort(int column, Qt::SortOrder order)
{
    // The header shows the order in which the rows are, also after a sort that was stopped.
    const QSignalBlocker quiet(m_view->horizontalHeader());
    m_view->horizontalHeader()->setSortIndicator(column, order);
    m_view->horizontalHeader()->viewport()->update();
}

void GridTab::firstRows()
{
    if (m_model->rowCount() == 0)
        return;
    if (!m_arranged && !restoreColumns())
        fitColumns();
    m_arranged = true;
    if (m_rowWanted >= 0)
        return;
    if (!m_view->currentIndex().isValid())
        m_view->selectionModel()->setCurrentIndex(m_model->index(0, 0), QItemSelectionModel::NoUpdate);
    m_view->scrollToTop();
}

void GridTab::showRowsOrNote()
{
    const bool empty = m_model->isComplete() && m_model->rowCount() == 0;
    if (empty)
        m_note->setText(source().emptyText);
    m_add->setVisible(empty && source().addable && !m_session.readOnly());
    m_layout->setCurrentWidget(empty ? m_noteAndAdd : static_cast<QWidget*>(m_view));
    returnToRow();
    Q_EMIT stateChanged();
}

QString GridTab::statusText() const
{
    if (m_model->isLoading() && m_model->rowCount() == 0)
        return u"Lecture…"_s;
    QString text = countText(m_model->rowCount(), u"enregistrement"_s, u"enregistrements"_s);
    if (!m_model->isComplete())
        text += u"…"_s;
    qint64 selected = 0;
    const QItemSelection selection = m_view->selectionModel()->selection();
    for (const QItemSelectionRange& range : selection)
        selected += range.height();
    if (selected > 0)
        text += u", "_s + countText(selected, u"sélectionné"_s, u"sélectionnés"_s);
    return text;
}

QIcon GridTab::icon() const
{
    return iconNamed(source().icon, m_session.modules());
}

bool GridTab::can(platform::TabCommand command) const
{
    using enum platform::TabCommand;
    return command == Copy || command == CopyWithHeaders || command == SelectAll || command == Refresh
           || command == FitColumns || command == Print;
}

void GridTab::run(platform::TabCommand command)
{
    using enum platform::TabCommand;
    switch (command) {
    case Copy:
    case CopyWithHeaders:
        return copy(command == CopyWithHeaders);
    case SelectAll:
        return selectAll();
    case Refresh:
        return m_model->load();
    case FitColumns:
        return fitColumns();
    case Print:
        return print();
    default:
        return;
    }
}

// --- Records ---------------------------------------------------------------------------------------

qint32 GridTab::idOf(int row) const
{
    const auto rows = m_model->rows();
    const int column = source().idColumn();
    if (!rows || column < 0 || row < 0 || row >= m_model->rowCount() || m_runner.isRunning())
        return 0;
    try {
        return rows->row(row).at(size_t(column)).toInt();
    } catch (const jet::Error& error) {
        qCWarning(tabLog).noquote() << source().title << row << error.number() << error.description();
        return 0;
    }
}

qint32 GridTab::currentId() const
{
    return idOf(m_view->currentIndex().row());
}

QList<qint32> GridTab::selectedIds() const
{
    QList<qint32> ids;
    QModelIndexList rows = m_view->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    for (const QModelIndex& row : std::as_const(rows)) {
        if (const qint32 id = idOf(row.row()))
            ids << id;
    }
    return ids;
}

QList<qint32> GridTab::idsAround(int most) const
{
    QList<qint32> ids;
    const int first = qMax(0, qMin(m_view->currentIndex().row() - most / 2, m_model->rowCount() - most));
    for (int row = first; row < qMin(first + most, m_model->rowCount()); ++row) {
        if (const qint32 id = idOf(row))
            ids << id;
    }
    return ids;
}

void GridTab::activate(const QModelIndex& index)
{
    if (const qint32 id = idOf(index.row()))
        Q_EMIT activated(id);
}

bool GridTab::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_view && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if ((key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) && key->modifiers() == Qt::NoModifier) {
            activate(m_view->currentIndex());
            return true;
        }
    }
    return DocumentTab::eventFilter(watched, event);
}

void GridTab::recordsWritten(const QStringList& modules)
{
    if (!source().shows(modules))
        return;
    m_rowWanted = m_view->currentIndex().row();
    m_model->follow();
}

void GridTab::returnToRow()
{
    if (m_rowWanted < 0 || m_model->isLoading() || (m_rowWanted >= m_model->rowCount() && !m_model->isComplete()))
        return;
    const int row = qMin(std::exchange(m_rowWanted, -1), m_model->rowCount() - 1);
    if (row < 0 || row == m_view->currentIndex().row())
        return;
    m_view->selectionModel()->setCurrentIndex(m_model->index(row, 0),
                                              QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    m_view->scrollTo(m_model->index(row, 0), QAbstractItemView::PositionAtCenter);
}

void GridTab::selectAll()
{
    m_view->selectAll();
}

void GridTab::fitColumns()
{
    m_view->resizeColumnsToContents();
    QHeaderView* header = m_view->horizontalHeader();
    const int widest = m_view->fontMetrics().averageCharWidth() * widestColumnCharacters;
    for (int column = 0; column < header->count(); ++column)
        header->resizeSection(column, qMin(header->sectionSize(column) + 8, widest));
}

QList<int> GridTab::shownColumns() const
{
    const QHeaderView* header = m_view->horizontalHeader();
    QList<int> columns;
    for (int place = 0; place < header->count(); ++place) {
        if (!header->isSectionHidden(header->logicalIndex(place)))
            columns << header->logicalIndex(place);
    }
    return columns;
}

void GridTab::copy(bool headers)
{
    GridExcerpt excerpt = excerptOf(m_view->selectionModel()->selection(), shownColumns());
    excerpt.headers = headers;
    const auto rows = m_model->rows();
    if (excerpt.ranges.isEmpty() || !rows)
        return;
    auto text = std::make_shared<QString>();
    const auto read = [rows, excerpt, text, source = source()](platform::Progression& progression) {
        *text = tabSeparated(*rows, source, excerpt, progression);
    };
    const QPointer<GridTab> self(this);
    const auto done = [self, text](std::exception_ptr failure) {
        try {
            if (failure)
                std::rethrow_exception(failure);
            QGuiApplication::clipboard()->setText(*text);
        } catch (const jet::Error& error) {
            if (self && error.number() != 3059)
                Q_EMIT self->failed(error.description());
        }
    };
    if (excerpt.rowCount() > copiedAtOnce || m_runner.isRunning())
        return m_runner.start({read, done, [] {}, u"Copie : "_s + source().title});
    platform::NoProgression silent;
    try {
        read(silent);
        done(nullptr);
    } catch (const jet::Error&) {
        done(std::current_exception());
    }
}

void GridTab::print()
{
    const auto rows = m_model->rows();
    if (!rows || m_runner.isRunning())
        return;
    platform::PrintTable table{source().title, {}, {}};
    const QList<int> columns = shownColumns();
    for (const int column : columns) {
        const int side = m_model->headerData(column, Qt::Horizontal, Qt::TextAlignmentRole).toInt();
        table.columns.append({source().columns.at(column).header, (side & Qt::AlignRight) != 0});
    }
    try {
        while (!rows->complete())
            rows->advance(100);
    } catch (const jet::Error& error) {
        return Q_EMIT failed(error.description());
    }
    table.rows = [rows, columns, source = source()](qint64 first, int count) {
        QList<platform::PrintRow> read;
        for (const GridRows::Row& row : first < rows->known() ? rows->read(first, count) : std::vector<GridRows::Row>()) {
            platform::PrintRow line;
            for (const int column : columns)
                line.cells << GridModel::shownText(row.at(size_t(column)), source.columns.at(column).type);
            read << line;
        }
        return read;
    };
    const Surroundings& world = m_session.surroundings();
    platform::printTable(table, rows->known(), {world.dialogues, m_runner, world.clock.now(), window()});
}

// --- Widths and order of the columns ---------------------------------------------------------------

bool GridTab::restoreColumns()
{
    const QStringList kept = m_state.value(u"grilles/"_s + source().key).toStringList();
    QHeaderView* header = m_view->horizontalHeader();
    QList<std::pair<int, int>> widths;
    for (const QString& entry : kept) {
        for (int column = 0; column < header->count(); ++column) {
            if (source().columns.at(column).header == entry.section(u'=', 0, -2))
                widths << std::pair(column, entry.section(u'=', -1).toInt());
        }
    }
    // A field that came since then has no width: everything is fitted anew.
    if (widths.size() != header->count())
        return false;
    for (int place = 0; place < widths.size(); ++place) {
        header->moveSection(header->visualIndex(widths[place].first), place);
        header->resizeSection(widths[place].first, qMax(24, widths[place].second));
    }
    return true;
}

void GridTab::rememberColumns()
{
    if (!m_arranged)
        return;
    QStringList kept;
    const QList<int> columns = shownColumns();
    for (const int column : columns)
        kept << source().columns.at(column).header + u'='
                    + QString::number(m_view->horizontalHeader()->sectionSize(column));
    m_state.setValue(u"grilles/"_s + source().key, kept);
}

} // namespace app
