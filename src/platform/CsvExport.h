// Rows as text for spreadsheets.
#pragma once

#include "platform/Dialogues.h"

#include <QStringList>
#include <functional>

namespace platform {

/// Cells in double quotes, separated by ";". Quotes inside a cell are written as they are: that is how these files have
/// always been, and what reads them counts on it.
QString csvLine(const QStringList& cells);

/// The same, each line ended by CR LF; for the clipboard.
QString csvText(const QList<QStringList>& rows);

/// Gives the next row; false at the end.
using NextRow = std::function<bool(QStringList& cells)>;

/// Writes header and rows (UTF-8, with a byte order mark where `mark` says so) as a whole file or none. Without a name asks for
/// one. False when the user cancelled or it failed, which is said in a box. Errors of `next` pass through and leave no
/// file.
bool exportCsv(Dialogues& dialogues, QString file, const QStringList& header, const NextRow& next,
               bool mark = false);

} // namespace platform
