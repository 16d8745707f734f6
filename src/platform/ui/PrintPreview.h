// The preview before printing, from which one prints or saves a PDF file.
#pragma once

#include "platform/Dialogues.h"
#include "platform/ui/TablePrinter.h"
#include "platform/ui/TaskRunner.h"

#include <QPrintPreviewDialog>

namespace platform {

/// What is printed, from any thing that draws itself on pages.
struct Printout {
    QString title;                                   ///< Of the preview; also proposed as the name of the file.
    std::function<void(QPagedPaintDevice&)> print; ///< May throw std::exception with a French text.
};

/// A window beside the others: nothing waits for it. What fails is said.
class PrintPreview : public QPrintPreviewDialog {
    Q_OBJECT
public:
    PrintPreview(Printout printout, Dialogues& dialogues, QWidget* parent);

    /// Asks for a file and writes it.
    void saveAsPdf();

private:
    void draw(QPrinter* printer);
    void arrange();

    Printout m_printout;
    Dialogues& m_dialogues;
    bool m_failed = false; ///< It was said already; the preview draws more than once.
};

/// Opens the preview; it goes when it is closed.
void preview(Printout printout, Dialogues& dialogues, QWidget* parent);

/// What the printing of a table needs of the world around it.
struct PrintWorld {
    Dialogues& dialogues;
    TaskRunner& runner;
    QDateTime time;
    QWidget* parent = nullptr;
};

/// Tables of up to so many rows are read at once and shown in the preview; longer ones are written into a PDF file beside the
/// windows, their rows read on the runner's thread.
constexpr qint64 mostPreviewedRows = 5000;
/// Prints a table of `rows` rows. To be called while nothing runs.
void printTable(const PrintTable& table, qint64 rows, const PrintWorld& world);

} // namespace platform
