// Rows of a grid as text for a spreadsheet.
#pragma once

#include "app/ui/GridModel.h"

#include <QItemSelection>

namespace app {

/// What is copied: rows as ranges, columns in the order in which they are seen.
struct GridExcerpt {
    QList<std::pair<int, int>> ranges; ///< First and last row, ascending, apart from each other.
    QList<int> columns;
    bool headers = false;

    qint64 rowCount() const;
};

/// The rows and columns of a selection; `columns` gives all columns that are shown, in their order.
GridExcerpt excerptOf(const QItemSelection& selection, const QList<int>& columns);

/// Cells divided by tabs, rows ended by line feeds; a cell with a tab, a line break or a quote stands in
/// quotes. Throws jet::Error; 3059 when the user wants to stop.
QString tabSeparated(GridRows& rows, const GridSource& source, const GridExcerpt& excerpt,
                     platform::Progression& progression);

} // namespace app
