#include "query/Results.h"

#include "jet/text/Values.h"
#include "query/CsvExport.h"

#include <QElapsedTimer>
#include <QLocale>
#include <QLoggingCategory>
#include <QSet>

namespace query {

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(log, "herbora.query")

constexpr qint64 pieceSize = 200;    ///< Rows read at once for display.
constexpr qint64 exportPiece = 1000; ///< The same for a file.
constexpr int columnIndividu = 0;
constexpr int columnItem = 1;

} // namespace

QString cellText(const QVariant& value, const QString& format)
{
    if (!value.isValid())
        return {};
    const bool test = !format.isEmpty();
    if (value.typeId() == QMetaType::Bool || test) {
        if (test)
            return value.toBool() ? u"True"_s : u"False"_s;
        return value.toBool() ? u"Vrai"_s : u"Faux"_s;
    }
    if (value.typeId() == QMetaType::Double)
        return jet::text::numberText(value.toDouble());
    if (value.typeId() == QMetaType::QByteArray)
        return u"< Données binaires >"_s;
    return value.toString();
}

void Results::clear()
{
    m_rows.reset();
    m_columns.clear();
    m_shown.clear();
    m_cache.clear();
    m_selected.clear();
    m_error.reset();
    m_count = 0;
    m_page = 0;
    m_seconds = 0;
}

bool Results::Refresh(const QString& statement)
{
    const QList<qint32> ids = selectedIds();
    QElapsedTimer timer;
    timer.start();
    clear();
    m_statement = statement;
    try {
        m_rows = m_database.OpenRecordset(statement);
        m_columns = SQLHeader(statement);
        if (m_columns.size() != m_rows->FieldCount()) // "*", for instance
            m_columns = QList<StatementColumn>(m_rows->FieldCount());
        for (int i = 0; i < m_columns.size(); ++i) {
            if (m_columns[i].alias.isEmpty())
                m_columns[i].alias = m_rows->FieldAt(i).name;
            m_shown << i;
        }
        if (!m_rows->EOF_()) {
            m_rows->MoveLast();
            m_count = m_rows->RecordCount();
            m_rows->MoveFirst();
        }
        findIdentifiers();
        RefreshSelectedItems(ids);
    } catch (const jet::Error& error) {
        qCWarning(log).noquote() << error.description();
        clear();
        m_error = error;
    }
    m_seconds = double(timer.elapsed()) / 1000;
    return !m_error;
}

QString Results::NomModule() const
{
    const QString alias = m_columns.value(columnItem).alias;
    return alias.startsWith(u"ID ") ? alias.mid(3) : QString();
}

QString Results::HeaderColumn(int col) const
{
    return col >= 0 && col < Cols() ? m_columns[m_shown[col]].alias : QString();
}

QStringList Results::Header() const
{
    QStringList texts;
    for (int col = 0; col < Cols(); ++col)
        texts << HeaderColumn(col);
    return texts;
}

void Results::RemoveCol(int col)
{
    if (col >= 0 && col < Cols())
        m_shown.removeAt(col);
}

SortState Results::Sorted(int col) const
{
    return col >= 0 && col < Cols() ? m_columns[m_shown[col]].sort : SortState::None;
}

bool Results::ColSort(int col, bool descending)
{
    if (col < 0 || col >= Cols() || m_columns[m_shown[col]].expression.isEmpty())
        return false;
    const QList<int> shown = m_shown;
    const bool done = Refresh(orderedBy(m_statement, m_columns[m_shown[col]].expression, descending));
    if (done)
        m_shown = shown;
    return done;
}

qint64 Results::rowsOnPage() const
{
    return std::clamp<qint64>(m_count - firstRow(), 0, pageSize);
}

bool Results::enabled(const QString& key) const
{
    if (key == u"first" || key == u"prev")
        return m_page > 0;
    return (key == u"next" || key == u"last") && m_page + 1 < pageCount();
}

void Results::command(const QString& key)
{
    if (!enabled(key))
        return;
    if (key == u"first")
        m_page = 0;
    else if (key == u"prev")
        --m_page;
    else if (key == u"next")
        ++m_page;
    else
        m_page = pageCount() - 1;
}

/// Throws jet::Error.
const Results::Row& Results::row(qint64 number)
{
    if (number < m_cacheBegin || number >= m_cacheBegin + qint64(m_cache.size())) {
        m_cacheBegin = number - number % pieceSize;
        m_cache.clear();
        m_rows->SetAbsolutePosition(m_cacheBegin);
        m_cache = m_rows->GetRows(pieceSize);
    }
    return m_cache.at(size_t(number - m_cacheBegin));
}

QVariant Results::value(qint64 number, int col)
{
    if (!m_rows || number < 0 || number >= m_count || col < 0 || col >= Cols())
        return {};
    try {
        return row(number).at(size_t(m_shown[col]));
    } catch (const jet::Error& error) { // a record that was deleted meanwhile
        qCWarning(log).noquote() << error.description();
        m_cache.clear();
        return {};
    }
}

QString Results::text(const Row& row, int col) const
{
    return cellText(row.at(size_t(m_shown[col])), m_columns[m_shown[col]].format);
}

QString Results::TextMatrix(qint64 number, int col)
{
    return col >= 0 && col < Cols() ? cellText(value(number, col), m_columns[m_shown[col]].format) : QString();
}

QStringList Results::rowTexts(qint64 number)
{
    QStringList texts;
    for (int col = 0; col < Cols(); ++col)
        texts << TextMatrix(number, col);
    return texts;
}

/// The record's identifier is the key of its row as a rule, and then known without reading it.
void Results::findIdentifiers()
{
    m_keyed = false;
    m_one = false;
    if (m_columns.size() <= columnItem)
        return;
    const jet::OutputColumn& individu = m_rows->FieldAt(columnIndividu);
    const jet::OutputColumn& item = m_rows->FieldAt(columnItem);
    const jet::TableDef* table = m_database.schema().table(item.table);
    m_keyed = item.source == 0 && table && jet::sameName(table->rowIdColumn(), item.column);
    m_one = individu.source == item.source && item.source >= 0 && jet::sameName(individu.column, item.column);
}

Results::Identity Results::identity(qint64 number)
{
    m_rows->SetAbsolutePosition(number);
    const qint32 item = m_keyed                             ? qint32(m_rows->RowId())
                        : m_columns.size() > columnItem ? m_rows->Value(columnItem).toInt()
                                                        : 0;
    return {m_one ? item : m_rows->Value(columnIndividu).toInt(), item};
}

qint32 Results::individu(qint64 number)
{
    return number >= 0 && number < m_count ? identity(number).individu : 0;
}

qint32 Results::item(qint64 number)
{
    return number >= 0 && number < m_count ? identity(number).item : 0;
}

void Results::select(qint64 number, bool selected)
{
    if (number < 0 || number >= m_count)
        return;
    if (selected)
        m_selected.insert_or_assign(number, identity(number));
    else
        m_selected.erase(number);
}

void Results::SelectAll()
{
    for (qint64 number = 0; number < m_count; ++number)
        m_selected.try_emplace(m_selected.end(), number, identity(number));
}

void Results::SelectInverse()
{
    std::map<qint64, Identity> flipped;
    for (qint64 number = 0; number < m_count; ++number) {
        if (!isSelected(number))
            flipped.emplace_hint(flipped.end(), number, identity(number));
    }
    m_selected = std::move(flipped);
}

QString Results::SelectedItems() const
{
    QStringList ids;
    for (const auto& [number, identity] : m_selected)
        ids << QString::number(identity.item);
    return ids.join(u',');
}

QString Results::SelectedIndividus() const
{
    QStringList ids;
    for (const auto& [number, identity] : m_selected)
        ids << QString::number(identity.individu);
    return ids.join(u',');
}

QList<qint32> Results::selectedIds() const
{
    QList<qint32> ids;
    for (const auto& [number, identity] : m_selected)
        ids << identity.item;
    return ids;
}

void Results::RefreshSelectedItems(const QList<qint32>& ids)
{
    m_selected.clear();
    const QSet<qint32> wanted(ids.begin(), ids.end());
    for (qint64 number = 0; !wanted.isEmpty() && number < m_count; ++number) {
        const Identity found = identity(number);
        if (wanted.contains(found.item))
            m_selected.emplace_hint(m_selected.end(), number, found);
    }
}

QString Results::copyRows()
{
    QList<QStringList> rows;
    for (const auto& [number, identity] : m_selected)
        rows << rowTexts(number);
    return csvText(rows);
}

QString Results::textSelection() const { return u"Sel.  "_s + QString::number(CountSel()); }
QString Results::textLine(qint64 line) { return u"Li. "_s + QString::number(line); }
QString Results::textCount() const { return QString::number(m_count) + u" Ligne(s)"_s; }
QString Results::textTime() const { return QLocale().toString(m_seconds, 'f', 2) + u's'; }

bool Results::ExportCSV(platform::Dialogues& dialogues, const QString& file, bool mark)
{
    qint64 number = 0;
    std::vector<Row> piece;
    size_t at = 0;
    try {
        return exportCsv(
            dialogues, file, Header(),
            [&](QStringList& cells) {
                if (at == piece.size()) {
                    if (!m_rows || number >= m_count)
                        return false;
                    m_rows->SetAbsolutePosition(number);
                    piece = m_rows->GetRows(exportPiece);
                    at = 0;
                    if (piece.empty())
                        return false;
                    number += qint64(piece.size());
                }
                for (int col = 0; col < Cols(); ++col)
                    cells << text(piece[at], col);
                ++at;
                return true;
            },
            mark);
    } catch (const jet::Error& error) {
        dialogues.tell(error.description(), u"Exportation CSV"_s, platform::BoxIcon::Stop);
        return false;
    }
}

} // namespace query
