// The rows that a query gives, in pages.
#pragma once

#include "jet/Database.h"
#include "jet/Recordset.h"
#include "platform/Dialogues.h"
#include "query/StatementParts.h"

#include <map>
#include <optional>

namespace query {

/// What the control `Requête` knows.
///
/// The record set stays open and is positioned, never read whole; cells are read in small pieces as they are asked for.
/// Rows are numbered from 0 in the whole result; a page has at most 10,000. A statement that fails leaves the result
/// empty. The selection is kept by identifier when the statement runs again.
class Results {
public:
    static constexpr qint64 pageSize = 10000;

    explicit Results(jet::Database& database) : m_database(database) {}

    /// Runs the statement and shows page 0; false (and error()) when it failed.
    bool Refresh(const QString& statement);
    bool Refresh() { return Refresh(m_statement); }
    void clear();
    const QString& statement() const { return m_statement; }
    const std::optional<jet::Error>& error() const { return m_error; }
    jet::Recordset* RecordSet() const { return m_rows.get(); }
    QString NomModule() const; ///< From the second column ("ID " and the module).

    // --- Columns -----------------------------------------------------------------------------
    int Cols() const { return int(m_shown.size()); }
    QString HeaderColumn(int col) const;
    QStringList Header() const;
    void RemoveCol(int col); ///< From what is shown.
    SortState Sorted(int col) const;
    /// Rewrites the order and runs again; for a column without sort ascending.
    bool ColSort(int col, bool descending);

    // --- Pages -------------------------------------------------------------------------------
    qint64 CountRow() const { return m_count; }
    qint64 page() const { return m_page; }
    qint64 pageCount() const { return (m_count + pageSize - 1) / pageSize; }
    qint64 rowsOnPage() const;
    qint64 firstRow() const { return m_page * pageSize; } ///< Of the page, in the whole result.
    /// "first", "prev", "next", "last".
    void command(const QString& key);
    bool enabled(const QString& key) const;

    // --- Cells -------------------------------------------------------------------------------
    QVariant value(qint64 row, int col);
    QString TextMatrix(qint64 row, int col);
    QStringList rowTexts(qint64 row);
    qint32 individu(qint64 row);
    qint32 item(qint64 row);

    // --- Selection ---------------------------------------------------------------------------
    void select(qint64 row, bool selected);
    bool isSelected(qint64 row) const { return m_selected.contains(row); }
    void SelectAll();
    void SelectNone() { m_selected.clear(); }
    void SelectInverse();
    qint64 CountSel() const { return qint64(m_selected.size()); }
    QString SelectedItems() const;    ///< Identifiers of the selected records in row order, joined by ",".
    QString SelectedIndividus() const;
    QList<qint32> selectedIds() const;
    /// Marks the rows of these records.
    void RefreshSelectedItems(const QList<qint32>& ids);
    QString copyRows(); ///< The selected rows as CopyRowSel puts them on the clipboard.

    // --- Status panels -----------------------------------------------------------------------
    QString textSelection() const; ///< "nbsel"
    static QString textLine(qint64 line);
    QString textCount() const;     ///< "nbligne"
    QString textTime() const;      ///< "temps"

    /// Every row of the result with its header. Errors of the engine are said too.
    bool ExportCSV(platform::Dialogues& dialogues, const QString& file = {}, bool mark = false);

private:
    using Row = std::vector<QVariant>;
    struct Identity {
        qint32 individu;
        qint32 item;
    };
    const Row& row(qint64 number);
    QString text(const Row& row, int col) const;
    Identity identity(qint64 number);
    void findIdentifiers();

    jet::Database& m_database;
    QString m_statement;
    std::unique_ptr<jet::Recordset> m_rows;
    std::optional<jet::Error> m_error;
    QList<StatementColumn> m_columns;
    QList<int> m_shown;
    qint64 m_count = 0;
    qint64 m_page = 0;
    double m_seconds = 0;
    bool m_keyed = false; ///< The second column is the key of the first table's rows.
    bool m_one = false;   ///< The first two columns are one.
    qint64 m_cacheBegin = 0;
    std::vector<Row> m_cache;
    std::map<qint64, Identity> m_selected;
};

/// A value as grids and files show it; `format` "True/False" for tests.
QString cellText(const QVariant& value, const QString& format = {});

} // namespace query
