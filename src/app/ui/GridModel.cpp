#include "app/ui/GridModel.h"

#include "app/Session.h"
#include "data/Cancellable.h"
#include "data/FieldType.h"
#include "jet/Cancelled.h"
#include "jet/SqlText.h"

#include <QLocale>
#include <QLoggingCategory>
#include <QPointer>
#include <limits>

namespace app {

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(gridLog, "herbora.grid")

/// Of each of its turns, so that the window stays quick.
constexpr int countingMilliseconds = 8;
/// Longer texts are cut in a cell; the whole stands in the tip.
constexpr qsizetype cellText = 300;
constexpr qsizetype tipText = 2000;

bool isNumeric(int type)
{
    return type == data::Longitude || type == data::Latitude || type == data::Réel || type == data::Entier
           || type == data::LienCourant;
}

QString yesNo(const QVariant& value)
{
    return value.toBool() ? u"Oui"_s : u"Non"_s;
}

} // namespace

GridModel::GridModel(GridSource source, Session& session, platform::TaskRunner& runner, QObject* parent)
    : QAbstractTableModel(parent), m_source(std::move(source)), m_session(session), m_runner(runner),
      m_sortColumn(m_source.sortedBy)
{
    m_counting.setInterval(0);
    connect(&m_counting, &QTimer::timeout, this, &GridModel::lookFurther);
    connect(&m_runner, &platform::TaskRunner::finished, this, &GridModel::showGaps);
}

GridModel::~GridModel()
{
    if (!m_rows || !m_runner.isRunning())
        return;
    // The rows belong to a connection that another thread has now: they go when it is back.
    m_runner.start({[](platform::Progression&) {}, [rows = std::move(m_rows)](std::exception_ptr) {}, {}, {}});
}

void GridModel::load()
{
    start(m_sortColumn, m_sortOrder);
}

void GridModel::follow()
{
    if (m_runner.isRunning() || !isComplete() || m_sortColumn >= 0)
        return load();
    try {
        const auto count = m_session.database().OpenRecordset(u"SELECT Count(*) FROM "_s
                                                              + jet::nom(m_source.tables.first()));
        if (count->Value(0).toLongLong() != m_shown)
            return load();
        m_rows->forget();
    } catch (const jet::Error& error) {
        qCWarning(gridLog).noquote() << m_source.title << error.number() << error.description();
        return load();
    }
    if (m_shown > 0)
        Q_EMIT dataChanged(index(0, 0), index(m_shown - 1, columnCount() - 1));
}

void GridModel::reloadIfStale()
{
    if (!m_runner.isRunning() && m_rows && m_rows->stale())
        load();
}

void GridModel::sort(int column, Qt::SortOrder order)
{
    if (column == m_sortColumn && (column < 0 || order == m_sortOrder))
        return;
    start(column, order);
}

void GridModel::start(int column, Qt::SortOrder order)
{
    m_counting.stop();
    m_loading = true;
    const int generation = ++m_generation;
    jet::Database* database = &m_session.database();
    const QString statement = m_source.statement(column, order);
    auto rows = std::make_shared<std::shared_ptr<GridRows>>();
    const QPointer<GridModel> self(this);
    m_runner.start({[=](platform::Progression& progression) {
                        const data::Cancellable running(*database, progression);
                        *rows = std::make_shared<GridRows>(*database, statement);
                    },
                    [=](std::exception_ptr failure) {
                        if (!self || generation != self->m_generation)
                            return;
                        self->m_loading = false;
                        if (failure)
                            self->refuse(failure);
                        else
                            self->adopt(std::move(*rows), column, order);
                    },
                    [] {}, u"Lecture : "_s + m_source.title});
}

void GridModel::adopt(std::shared_ptr<GridRows> rows, int column, Qt::SortOrder order)
{
    beginResetModel();
    m_rows = std::move(rows);
    m_shown = int(m_rows->known());
    m_sortColumn = column;
    m_sortOrder = order;
    endResetModel();
    Q_EMIT sorted(column, order);
    Q_EMIT countChanged();
    if (!m_rows->complete())
        m_counting.start();
}

void GridModel::refuse(std::exception_ptr failure)
{
    Q_EMIT sorted(m_sortColumn, m_sortOrder);
    if (m_rows && !m_rows->complete())
        m_counting.start();
    try {
        std::rethrow_exception(failure);
    } catch (const jet::Error& error) {
        qCInfo(gridLog).noquote() << m_source.title << error.number() << error.description();
        if (error.number() != jet::cancelledError)
            Q_EMIT failed(error.description());
    } catch (const std::exception& error) {
        Q_EMIT failed(QString::fromUtf8(error.what()));
    }
    Q_EMIT countChanged();
}

void GridModel::lookFurther()
{
    if (m_runner.isRunning())
        return;
    try {
        m_rows->advance(countingMilliseconds);
    } catch (const jet::Error& error) {
        m_counting.stop();
        qCWarning(gridLog).noquote() << m_source.title << error.number() << error.description();
        Q_EMIT failed(error.description());
        return;
    }
    const int known = int(qMin<qint64>(m_rows->known(), std::numeric_limits<int>::max()));
    if (known > m_shown) {
        beginInsertRows({}, m_shown, known - 1);
        m_shown = known;
        endInsertRows();
    }
    if (m_rows->complete())
        m_counting.stop();
    Q_EMIT countChanged();
}

void GridModel::showGaps()
{
    if (!std::exchange(m_gaps, false) || m_shown == 0)
        return;
    Q_EMIT dataChanged(index(0, 0), index(m_shown - 1, columnCount() - 1));
}

int GridModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_shown;
}

int GridModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_source.columns.size());
}

const GridRows::Row* GridModel::values(int row) const
{
    if (!m_rows)
        return nullptr;
    if (const GridRows::Row* known = m_rows->cached(row))
        return known;
    if (m_runner.isRunning()) {
        m_gaps = true;
        return nullptr;
    }
    try {
        return &m_rows->row(row);
    } catch (const jet::Error& error) {
        qCWarning(gridLog).noquote() << m_source.title << row << error.number() << error.description();
        return nullptr;
    }
}

QVariant GridModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_shown)
        return {};
    const int type = m_source.columns.at(index.column()).type;
    if (role == Qt::TextAlignmentRole)
        return int((isNumeric(type) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole && role != Qt::AccessibleTextRole)
        return {};
    const GridRows::Row* row = values(index.row());
    if (!row)
        return {};
    const QString text = shownText(row->at(size_t(index.column())), type);
    if (role == Qt::ToolTipRole)
        return text.size() > 40 ? Qt::convertFromPlainText(text.left(tipText)) : QString();
    return text.size() > cellText || text.contains(u'\n') ? text.left(cellText).simplified() : text;
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Vertical)
        return role == Qt::DisplayRole ? QVariant(QLocale().toString(section + 1)) : QVariant();
    if (section < 0 || section >= columnCount())
        return {};
    const GridColumn& column = m_source.columns.at(section);
    if (role == Qt::DisplayRole)
        return column.header;
    if (role == Qt::TextAlignmentRole)
        return int((isNumeric(column.type) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    return {};
}

QString GridModel::shownText(const QVariant& value, int type)
{
    if (!value.isValid())
        return {};
    const QLocale locale;
    if (value.typeId() == QMetaType::Bool)
        return yesNo(value);
    if (type == data::Longitude || type == data::Latitude)
        return locale.toString(value.toDouble(), 'f', 5);
    if (value.typeId() == QMetaType::Double)
        return locale.toString(value.toDouble(), 'f', QLocale::FloatingPointShortest);
    if (type == data::Entier)
        return locale.toString(value.toLongLong());
    return value.toString();
}

QString GridModel::copyText(const QVariant& value, int type)
{
    if (!value.isValid())
        return {};
    if (value.typeId() == QMetaType::Bool)
        return yesNo(value);
    if (value.typeId() == QMetaType::Double) {
        QLocale locale;
        locale.setNumberOptions(QLocale::OmitGroupSeparator);
        return locale.toString(value.toDouble(), 'f', QLocale::FloatingPointShortest);
    }
    Q_UNUSED(type);
    return value.toString();
}

} // namespace app
