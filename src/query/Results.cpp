#include "query/Results.h"

#include "jet/Cancelled.h"
#include "jet/SqlText.h"
#include "jet/text/Values.h"
#include "platform/CsvExport.h"
#include "query/QueryLog.h"

#include <QElapsedTimer>
#include <QLocale>
#include <numeric>

namespace query {

using namespace Qt::StringLiterals;

namespace {


constexpr qint64 pieceSize = 64;     ///< Rows read at once for display.
constexpr int piecesKept = 256;
constexpr int wholeLook = 1000000000;
constexpr int deletedRecord = 3167;
constexpr qint64 exportPiece = 1000; ///< The same for a file.
constexpr int columnIndividu = 0;
constexpr int columnItem = 1;
const QString exportTitle = u"Exportation CSV"_s;

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

Results::Results(jet::Database& database) : m_database(database), m_pieces(piecesKept) {}

QString clipboardText(const RowTexts& rows)
{
    return platform::csvText(rows);
}

QString clipboardTable(const RowTexts& rows)
{
    QString table = u"<table>"_s;
    for (const QStringList& cells : rows) {
        table += u"<tr>"_s;
        for (const QString& cell : cells)
            table += u"<td>"_s + cell.toHtmlEscaped().replace(u'\n', u"<br>"_s) + u"</td>"_s;
        table += u"</tr>\n"_s;
    }
    return table + u"</table>"_s;
}

void Results::clear()
{
    m_rows.reset();
    m_columns.clear();
    m_shown.clear();
    m_pieces.clear();
    m_items.clear();
    m_marked.clear();
    m_wanted.clear();
    m_error.reset();
    m_selected = 0;
    m_page = 0;
    m_seconds = 0;
    m_complete = true;
}

bool Results::open(const QString& statement)
{
    QElapsedTimer timer;
    timer.start();
    clear();
    m_statement = statement;
    try {
        m_rows = m_database.OpenRecordset(statement);
        readHeader();
        findIdentifiers();
        m_complete = m_rows->EOF_();
        if (!m_complete) { // the first row is there, and only it: a further one may be a long way off
            m_items.push_back(currentItem());
            m_marked.push_back(false);
        }
    } catch (const jet::Error& error) {
        if (error.number() == jet::cancelledError)
            qCInfo(queryLog).noquote() << error.description();
        else
            qCWarning(queryLog).noquote() << error.description();
        clear();
        m_error = error;
    }
    m_seconds = double(timer.elapsed()) / 1000;
    return !m_error;
}

void Results::readHeader()
{
    m_columns = SQLHeader(m_statement);
    if (m_columns.size() != m_rows->FieldCount()) // "*", for instance
        m_columns = QList<StatementColumn>(m_rows->FieldCount());
    for (int i = 0; i < m_columns.size(); ++i) {
        if (m_columns[i].alias.isEmpty())
            m_columns[i].alias = m_rows->FieldAt(i).name;
        m_shown << i;
    }
}

Results::Found Results::look(int milliseconds)
{
    Found found{.items = {}, .complete = m_complete || !m_rows, .error = {}};
    QElapsedTimer timer;
    timer.start();
    try {
        if (!found.complete)
            m_rows->SetAbsolutePosition(CountRow() - 1);
        while (!found.complete && timer.elapsed() < milliseconds) {
            m_rows->MoveNext();
            found.complete = m_rows->EOF_();
            if (!found.complete)
                found.items.push_back(currentItem());
        }
    } catch (const jet::Error& error) {
        qCInfo(queryLog).noquote() << error.description();
        found.error = error;
    }
    m_looked += double(timer.elapsed()) / 1000;
    return found;
}

void Results::take(Found found)
{
    for (const qint32 id : found.items) {
        const bool marked = m_wanted.contains(id);
        m_marked.push_back(marked);
        m_selected += marked ? 1 : 0;
    }
    m_items.insert(m_items.end(), found.items.begin(), found.items.end());
    m_complete = found.complete || found.error;
    m_error = std::move(found.error);
    m_seconds += std::exchange(m_looked, 0);
    if (m_complete)
        m_wanted.clear();
}

bool Results::Refresh(const QString& statement)
{
    const QList<qint32> ids = selectedIds();
    if (!open(statement))
        return false;
    RefreshSelectedItems(ids);
    while (!m_complete)
        take(look(wholeLook));
    if (!m_error)
        return true;
    const jet::Error error = *m_error;
    clear();
    m_error = error;
    return false;
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

void Results::showAllCols()
{
    m_shown.resize(m_columns.size());
    std::iota(m_shown.begin(), m_shown.end(), 0);
}

SortState Results::Sorted(int col) const
{
    return col >= 0 && col < Cols() ? m_columns[m_shown[col]].sort : SortState::None;
}

QString Results::orderedBy(int col, bool descending) const
{
    const bool known = col >= 0 && col < Cols() && !m_columns[m_shown[col]].expression.isEmpty();
    return known ? query::orderedBy(m_statement, m_columns[m_shown[col]].expression, descending) : QString();
}

bool Results::ColSort(int col, bool descending)
{
    const QString statement = orderedBy(col, descending);
    const QList<int> shown = m_shown;
    const bool done = !statement.isEmpty() && Refresh(statement);
    if (done)
        m_shown = shown;
    return done;
}

jet::DataType Results::type(int col) const
{
    return m_rows && col >= 0 && col < Cols() ? m_rows->FieldAt(m_shown[col]).type : jet::DataType::None;
}

qint64 Results::rowsOnPage() const
{
    return std::clamp<qint64>(CountRow() - firstRow(), 0, pageSize);
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

void Results::showPageOf(qint64 row)
{
    if (row >= 0 && row < CountRow())
        m_page = row / pageSize;
}

// --- Cells -----------------------------------------------------------------------------------

/// Rows from `begin` to before `end`, which are known. Reading never goes a step further than that: the next row may
/// be a long way off. Throws jet::Error.
Results::Piece Results::read(qint64 begin, qint64 end)
{
    m_rows->SetAbsolutePosition(begin);
    Piece piece = m_rows->GetRows(end - begin - 1);
    Row& last = piece.emplace_back(size_t(m_rows->FieldCount()));
    for (int column = 0; column < m_rows->FieldCount(); ++column)
        last[size_t(column)] = m_rows->Value(column);
    return piece;
}

const Results::Row* Results::cached(qint64 number) const
{
    const Piece* piece = m_pieces.object(number / pieceSize);
    const size_t place = size_t(number % pieceSize);
    return piece && place < piece->size() ? &piece->at(place) : nullptr;
}

/// Throws jet::Error.
const Results::Row& Results::row(qint64 number)
{
    if (const Row* known = cached(number))
        return *known;
    const qint64 begin = number - number % pieceSize;
    const qint64 end = std::min(begin + pieceSize, CountRow());
    m_pieces.insert(number / pieceSize, new Piece(readWhole(begin, end)));
    return *cached(number);
}

/// The same, with empty cells for a record that was deleted meanwhile: the others stay readable.
Results::Piece Results::readWhole(qint64 begin, qint64 end)
{
    try {
        return read(begin, end);
    } catch (const jet::Error& error) {
        if (error.number() != deletedRecord)
            throw;
        if (end - begin == 1)
            return Piece{Row(size_t(m_columns.size()))};
        Piece piece;
        for (qint64 at = begin; at < end; ++at)
            piece.push_back(readWhole(at, at + 1).front());
        return piece;
    }
}

QVariant Results::value(qint64 number, int col)
{
    if (!m_rows || number < 0 || number >= CountRow() || col < 0 || col >= Cols())
        return {};
    try {
        return row(number).at(size_t(m_shown[col]));
    } catch (const jet::Error& error) {
        qCWarning(queryLog).noquote() << error.description();
        return {};
    }
}

bool Results::isRead(qint64 number) const
{
    return number >= 0 && number < CountRow() && cached(number);
}

void Results::forgetValues()
{
    m_pieces.clear();
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

// --- Identifiers -----------------------------------------------------------------------------

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

/// Of the row on which the record set stands.
qint32 Results::currentItem() const
{
    if (m_keyed)
        return qint32(m_rows->RowId());
    return m_columns.size() > columnItem ? m_rows->Value(columnItem).toInt() : 0;
}

qint32 Results::individu(qint64 number)
{
    if (m_one || number < 0 || number >= CountRow())
        return item(number);
    try {
        return row(number).front().toInt();
    } catch (const jet::Error& error) {
        qCWarning(queryLog).noquote() << error.description();
        return 0;
    }
}

qint32 Results::item(qint64 number) const
{
    return number >= 0 && number < CountRow() ? m_items[size_t(number)] : 0;
}

/// Past what is kept for showing.
QList<qint32> Results::individusOf(const QList<qint64>& rows)
{
    QList<qint32> ids;
    ids.reserve(rows.size());
    for (const qint64 number : rows) {
        if (!m_one)
            m_rows->SetAbsolutePosition(number);
        ids << (m_one ? item(number) : m_rows->Value(columnIndividu).toInt());
    }
    return ids;
}

QList<qint32> Results::individus()
{
    QList<qint64> rows(CountRow());
    std::iota(rows.begin(), rows.end(), 0);
    return individusOf(rows);
}

qint64 Results::rowOf(qint32 id) const
{
    const auto found = std::find(m_items.begin(), m_items.end(), id);
    return found == m_items.end() ? -1 : found - m_items.begin();
}

// --- Selection -------------------------------------------------------------------------------

void Results::select(qint64 number, bool selected)
{
    if (number < 0 || number >= CountRow() || isSelected(number) == selected)
        return;
    m_marked[size_t(number)] = selected;
    m_selected += selected ? 1 : -1;
}

void Results::SelectAll()
{
    m_marked.assign(m_items.size(), true);
    m_selected = CountRow();
}

void Results::SelectNone()
{
    m_marked.assign(m_items.size(), false);
    m_selected = 0;
    m_wanted.clear();
}

void Results::SelectInverse()
{
    m_marked.flip();
    m_selected = CountRow() - m_selected;
    m_wanted.clear();
}

QList<qint64> Results::selectedRows() const
{
    QList<qint64> rows;
    rows.reserve(m_selected);
    for (size_t number = 0; number < m_marked.size() && rows.size() < m_selected; ++number) {
        if (m_marked[number])
            rows << qint64(number);
    }
    return rows;
}

QList<qint32> Results::selectedIds() const
{
    QList<qint32> ids;
    for (const qint64 number : selectedRows())
        ids << m_items[size_t(number)];
    return ids;
}

QList<qint32> Results::selectedIndividus()
{
    return individusOf(selectedRows());
}

QString Results::SelectedItems() const { return jet::liste(selectedIds()); }
QString Results::SelectedIndividus() { return jet::liste(selectedIndividus()); }

void Results::RefreshSelectedItems(const QList<qint32>& ids)
{
    SelectNone();
    m_wanted = QSet<qint32>(ids.begin(), ids.end());
    for (qint64 number = 0; !m_wanted.isEmpty() && number < CountRow(); ++number) {
        if (m_wanted.contains(m_items[size_t(number)]))
            select(number, true);
    }
    if (m_complete)
        m_wanted.clear();
}

RowTexts Results::copyTexts(const QList<qint64>& rows, platform::Progression* progression)
{
    RowTexts texts;
    for (qsizetype at = 0; at < rows.size();) {
        qsizetype end = at + 1; // rows that follow each other are read at once
        while (end < rows.size() && rows[end] == rows[end - 1] + 1 && end - at < exportPiece)
            ++end;
        if (progression && progression->cancelled())
            jet::fail(jet::cancelledError);
        if (progression)
            progression->step(u"Copie des lignes"_s, int(100 * at / rows.size()));
        for (const Row& row : readWhole(rows[at], rows[end - 1] + 1)) {
            QStringList& cells = texts.emplace_back();
            for (int col = 0; col < Cols(); ++col)
                cells << text(row, col);
        }
        at = end;
    }
    return texts;
}

QString Results::copyRows()
{
    return clipboardText(copyTexts(selectedRows()));
}

QString Results::textSelection() const { return u"Sel.  "_s + QString::number(CountSel()); }
QString Results::textLine(qint64 line) { return u"Li. "_s + QString::number(line); }
QString Results::textTime() const { return QLocale().toString(m_seconds, 'f', 2) + u's'; }

QString Results::textCount() const
{
    return QString::number(CountRow()) + (m_complete && !m_error ? u" Ligne(s)"_s : u"+ Ligne(s)"_s);
}

// --- Export ----------------------------------------------------------------------------------

/// The rows from `number` on; false behind the last. Throws jet::Error.
bool Results::nextPiece(Piece& piece, qint64& number, platform::Progression* progression)
{
    if (!m_rows || CountRow() == 0)
        return false;
    if (progression) {
        if (progression->cancelled())
            jet::fail(3059);
        const bool known = m_complete && CountRow() > 0;
        progression->step(exportTitle, known ? int(100 * number / CountRow()) : -1);
    }
    if (number < CountRow()) {
        piece = readWhole(number, std::min(number + exportPiece, CountRow()));
    } else { // rows that nobody has looked for yet
        if (m_complete && !m_error)
            return false;
        m_rows->SetAbsolutePosition(number);
        if (m_rows->EOF_())
            return false;
        piece = m_rows->GetRows(exportPiece);
    }
    number += qint64(piece.size());
    return !piece.empty();
}

bool Results::ExportCSV(platform::Dialogues& dialogues, const QString& file, bool mark,
                        platform::Progression* progression)
{
    qint64 number = 0;
    Piece piece;
    size_t at = 0;
    try {
        return platform::exportCsv(
            dialogues, file, Header(),
            [&](QStringList& cells) {
                if (at == piece.size()) {
                    if (!nextPiece(piece, number, progression))
                        return false;
                    at = 0;
                }
                for (int col = 0; col < Cols(); ++col)
                    cells << text(piece[at], col);
                ++at;
                return true;
            },
            mark);
    } catch (const jet::Error& error) {
        if (error.number() != jet::cancelledError)
            dialogues.tell(error.description(), exportTitle, platform::BoxIcon::Stop);
        return false;
    }
}

} // namespace query
