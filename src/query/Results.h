// The rows that a query gives, in pages.
#pragma once

#include "jet/Database.h"
#include "jet/Recordset.h"
#include "platform/Dialogues.h"
#include "platform/Progression.h"
#include "query/StatementParts.h"

#include <QCache>
#include <QSet>
#include <optional>

namespace query {

using RowTexts = QList<QStringList>;

/// Rows for the clipboard: in the form of the export, and as a table for spreadsheets.
QString clipboardText(const RowTexts& rows);
QString clipboardTable(const RowTexts& rows);

/// What the control `Requête` knows.
///
/// The record set stays open and is positioned, never read whole; a row is known by its identifier, cells are read in
/// small pieces as they are asked for. Rows are numbered from 0 in the whole result; a page has at most 10,000. A
/// statement that fails leaves the result empty. The selection is kept by identifier when the statement runs again.
///
/// Rows are found bit by bit: `open`, then `look` and `take` until the result is complete. `look` may run on the thread that
/// has the database while another shows what is known already, through whatever here reads nothing.
class Results {
public:
    static constexpr qint64 pageSize = 10000;

    explicit Results(jet::Database& database);

    /// What a look for further rows brought.
    struct Found {
        std::vector<qint32> items; ///< Identifiers of the records.
        bool complete = false;
        std::optional<jet::Error> error;
    };

    /// Runs the statement up to its first row; false (and error()) when it failed.
    bool open(const QString& statement);
    /// Looks for further rows for about so long; changes nothing that is shown.
    Found look(int milliseconds);
    void take(Found found);
    /// Runs the statement, finds every row and shows page 0; false (and error()) when it failed.
    bool Refresh(const QString& statement);
    bool Refresh() { return Refresh(m_statement); }
    void clear();
    const QString& statement() const { return m_statement; }
    /// Why there is no result, or why rows are missing: 3059 when the user stopped it.
    const std::optional<jet::Error>& error() const { return m_error; }
    jet::Recordset* RecordSet() const { return m_rows.get(); }
    jet::Database* database() const { return &m_database; }
    QString NomModule() const; ///< From the second column ("ID " and the module).
    double seconds() const { return m_seconds; }

    // --- Columns -----------------------------------------------------------------------------
    int Cols() const { return int(m_shown.size()); }
    QString HeaderColumn(int col) const;
    QStringList Header() const;
    void RemoveCol(int col); ///< From what is shown.
    void showAllCols();
    SortState Sorted(int col) const;
    jet::DataType type(int col) const;
    /// The statement with that order alone; empty for a column that cannot be sorted by.
    QString orderedBy(int col, bool descending) const;
    /// Rewrites the order and runs again; for a column without sort ascending.
    bool ColSort(int col, bool descending);

    // --- Pages -------------------------------------------------------------------------------
    qint64 CountRow() const { return qint64(m_items.size()); } ///< Rows found so far.
    bool isComplete() const { return m_complete; }             ///< These are all.
    qint64 page() const { return m_page; }
    qint64 pageCount() const { return (CountRow() + pageSize - 1) / pageSize; }
    qint64 rowsOnPage() const;
    qint64 firstRow() const { return m_page * pageSize; } ///< Of the page, in the whole result.
    /// "first", "prev", "next", "last".
    void command(const QString& key);
    void showPageOf(qint64 row);
    bool enabled(const QString& key) const;

    // --- Cells -------------------------------------------------------------------------------
    QVariant value(qint64 row, int col);
    QString TextMatrix(qint64 row, int col);
    QStringList rowTexts(qint64 row);
    bool isRead(qint64 row) const; ///< Its cells are known without reading.
    void forgetValues();           ///< They are read anew.
    qint32 individu(qint64 row);
    qint32 item(qint64 row) const; ///< Reads nothing.
    const std::vector<qint32>& items() const { return m_items; }
    QList<qint32> individus(); ///< Of every row found. Throws jet::Error.
    /// The first row of a record; -1 for none.
    qint64 rowOf(qint32 item) const;

    // --- Selection ---------------------------------------------------------------------------
    void select(qint64 row, bool selected);
    bool isSelected(qint64 row) const { return row >= 0 && row < CountRow() && m_marked[size_t(row)]; }
    void SelectAll();
    void SelectNone();
    void SelectInverse();
    qint64 CountSel() const { return m_selected; }
    QString SelectedItems() const; ///< Identifiers of the selected records in row order, joined by ",".
    QString SelectedIndividus();
    QList<qint32> selectedIds() const;
    QList<qint32> selectedIndividus();
    QList<qint64> selectedRows() const;
    /// Marks the rows of these records, also those that are found later.
    void RefreshSelectedItems(const QList<qint32>& ids);
    /// Texts of these rows, past what is kept for showing. Throws jet::Error; 3059 when the user stopped it.
    RowTexts copyTexts(const QList<qint64>& rows, platform::Progression* progression = nullptr);
    QString copyRows(); ///< The selected rows as CopyRowSel puts them on the clipboard.

    // --- Status panels -----------------------------------------------------------------------
    QString textSelection() const; ///< "nbsel"
    static QString textLine(qint64 line);
    QString textCount() const; ///< "nbligne"
    QString textTime() const;  ///< "temps"

    /// Every row of the result with its header, those not found yet among them. Errors of the engine are said too.
    bool ExportCSV(platform::Dialogues& dialogues, const QString& file = {}, bool mark = false,
                   platform::Progression* progression = nullptr);

private:
    using Row = std::vector<QVariant>;
    using Piece = std::vector<Row>;
    const Row* cached(qint64 number) const;
    const Row& row(qint64 number);
    Piece read(qint64 begin, qint64 end);
    QString text(const Row& row, int col) const;
    Piece readWhole(qint64 begin, qint64 end);
    QList<qint32> individusOf(const QList<qint64>& rows);
    qint32 currentItem() const;
    bool nextPiece(Piece& piece, qint64& number, platform::Progression* progression);
    void readHeader();
    void findIdentifiers();

    jet::Database& m_database;
    QString m_statement;
    std::unique_ptr<jet::Recordset> m_rows;
    std::optional<jet::Error> m_error;
    QList<StatementColumn> m_columns;
    QList<int> m_shown;
    std::vector<qint32> m_items; ///< Of each row found.
    bool m_complete = true;
    qint64 m_page = 0;
    double m_seconds = 0;
    double m_looked = 0; ///< Seconds of looks not taken yet.
    bool m_keyed = false; ///< The second column is the key of the first table's rows.
    bool m_one = false;   ///< The first two columns are one.
    QCache<qint64, Piece> m_pieces;
    std::vector<bool> m_marked; ///< Of each row found.
    qint64 m_selected = 0;
    QSet<qint32> m_wanted; ///< Records to be marked when they are found.
};

/// A value as grids and files show it; `format` "True/False" for tests.
QString cellText(const QVariant& value, const QString& format = {});

} // namespace query
