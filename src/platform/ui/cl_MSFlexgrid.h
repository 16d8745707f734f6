// What can be done with any grid of the program: widths, copying, selection, sorting, the export as CSV.
#pragma once

#include "platform/Dialogues.h"

#include <QTableView>
#include <functional>

namespace platform {

/// Works on a grid that is shown; columns count as they are seen, hidden ones do not. It holds nothing but the grid,
/// which must outlive it.
class cl_MSFlexgrid {
public:
    /// `id` gives the identifier of a row; without it rows have none.
    explicit cl_MSFlexgrid(QTableView& grid, std::function<qint32(int row)> id = {});

    // --- Columns -----------------------------------------------------------------------------
    int Cols() const;
    QStringList Header() const;
    /// As wide as the header and the rows that are seen need, but not wider than `most` pixels.
    void ColAutoSize(int col, int most = 400);
    void AjustColWidth(int most = 400); ///< Every column.
    bool CroissantOrder() const;        ///< The next sort is ascending.
    void setCroissantOrder(bool ascending);
    void ColSort(int col);

    // --- Rows --------------------------------------------------------------------------------
    int Count() const;
    QString TextMatrix(int row, int col) const;
    qint32 RowIDItem(int row) const; ///< 0 for none.
    QString KeyAll() const;          ///< Identifiers of every row, joined by ",".
    bool Remove(int row);

    // --- Selection ---------------------------------------------------------------------------
    void SelectAll();
    void SelectNone();
    void SelectInverse();
    int SelCount() const;
    QList<int> selectedRows() const;
    QString IDSelected() const;  ///< Numbers of the selected rows, joined by ",".
    QString KeySelected() const; ///< Their identifiers.

    // --- Texts -------------------------------------------------------------------------------
    void CopyCell() const; ///< The current one.
    /// Rows by their numbers joined by ",", in the form of the export, without the header.
    void CopyRowSel(const QString& rows) const;
    /// Header and rows; without a name asks for one. False when the user cancelled or it failed (said).
    bool ExportCSV(Dialogues& dialogues, const QString& file = {}, bool mark = false) const;

private:
    int logical(int col) const; ///< -1 outside.
    QStringList cells(int row) const;

    QTableView& m_grid;
    std::function<qint32(int)> m_id;
};

} // namespace platform
