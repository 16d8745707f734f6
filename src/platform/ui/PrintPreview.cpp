#include "platform/ui/PrintPreview.h"

#include "platform/ui/Keyboard.h"

#include <QAction>
#include <QComboBox>
#include <QGraphicsView>
#include <QIcon>
#include <QLineEdit>
#include <QPrinter>
#include <QToolBar>
#include <QToolButton>

namespace platform {

using namespace Qt::StringLiterals;

namespace {

/// A name without what no file system likes.
QString fileName(QString title)
{
    for (QChar& c : title) {
        if (QStringView(u"/\\:*?\"<>|").contains(c))
            c = u'-';
    }
    return title.simplified() + u".pdf"_s;
}

/// The user does not want it any more.
struct Stopped {};

} // namespace

PrintPreview::PrintPreview(Printout printout, Dialogues& dialogues, QWidget* parent)
    : QPrintPreviewDialog(parent, Qt::Window), m_printout(std::move(printout)), m_dialogues(dialogues)
{
    setObjectName(u"apercuImpression"_s);
    setWindowTitle(u"Aperçu avant impression : "_s + m_printout.title);
    resize(900, 700);
    printer()->setDocName(m_printout.title);
    connect(this, &QPrintPreviewDialog::paintRequested, this, &PrintPreview::draw);
    arrange();
}

void PrintPreview::arrange()
{
    auto* bar = findChild<QToolBar*>();
    if (!bar)
        return;
    auto* pdf = new QAction(QIcon::fromTheme(u"application-pdf"_s), u"Enregistrer en PDF…"_s, this);
    pdf->setObjectName(u"enregistrerPdf"_s);
    pdf->setToolTip(u"Enregistrer ces pages dans un fichier PDF"_s);
    pdf->setShortcut(QKeySequence::Save);
    connect(pdf, &QAction::triggered, this, &PrintPreview::saveAsPdf);
    bar->addAction(pdf);
    if (auto* button = qobject_cast<QToolButton*>(bar->widgetForAction(pdf)))
        button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    reachByTab(*bar);
    for (auto* zoom : bar->findChildren<QComboBox*>())
        zoom->setAccessibleName(u"Agrandissement"_s);
    for (auto* page : bar->findChildren<QLineEdit*>()) {
        if (!qobject_cast<QComboBox*>(page->parentWidget()))
            page->setAccessibleName(u"Page"_s);
    }
    QList<QWidget*> order;
    for (QAction* action : bar->actions()) {
        QWidget* widget = bar->widgetForAction(action);
        if (widget && widget->focusPolicy() & Qt::TabFocus)
            order << widget;
        else if (auto* page = widget ? widget->findChild<QLineEdit*>() : nullptr)
            order << page;
    }
    for (auto* pages : findChildren<QGraphicsView*>()) {
        pages->setAccessibleName(u"Pages"_s);
        order << pages;
    }
    tabAlong(order);
}

void PrintPreview::draw(QPrinter* printer)
{
    try {
        m_printout.print(*printer);
    } catch (const std::exception& error) {
        if (!std::exchange(m_failed, true))
            m_dialogues.tell(QString::fromUtf8(error.what()), u"Impression"_s, BoxIcon::Warning);
    }
}

void PrintPreview::saveAsPdf()
{
    const QString path = m_dialogues.saveFile(u"Enregistrer en PDF"_s, u"Documents PDF (*.pdf)|*.pdf|"_s, fileName(m_printout.title));
    if (path.isEmpty())
        return;
    QString error;
    try {
        error = savePdf(path, m_printout.title, m_printout.print);
    } catch (const std::exception& failure) {
        error = QString::fromUtf8(failure.what());
    }
    if (!error.isEmpty())
        m_dialogues.tell(u"Impossible d'écrire le fichier :\n"_s + error, u"Enregistrer en PDF"_s, BoxIcon::Warning);
}

void preview(Printout printout, Dialogues& dialogues, QWidget* parent)
{
    auto* window = new PrintPreview(std::move(printout), dialogues, parent);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->show();
}

namespace {

const QString pdfTitle = u"Enregistrer en PDF"_s;
const QString pdfFilter = u"Documents PDF (*.pdf)|*.pdf|"_s;

void saveLongTable(const PrintTable& table, const PrintWorld& world)
{
    const QString path = world.dialogues.saveFile(pdfTitle, pdfFilter, fileName(table.title));
    if (path.isEmpty())
        return;
    auto error = std::make_shared<QString>();
    const auto write = [table, path, error, time = world.time](Progression& progression) {
        try {
            *error = savePdf(path, table.title, [&](QPagedPaintDevice& device) {
                TablePrinter(table, time).print(device, progression);
                if (progression.cancelled())
                    throw Stopped();
            });
        } catch (const Stopped&) {
            error->clear(); // the user knows
        } catch (const std::exception& failure) {
            *error = QString::fromUtf8(failure.what());
        }
    };
    const auto done = [error, &dialogues = world.dialogues](std::exception_ptr) {
        if (!error->isEmpty())
            dialogues.tell(u"Impossible d'écrire le fichier :\n"_s + *error, pdfTitle, BoxIcon::Warning);
    };
    world.runner.start({write, done, [] {}, u"Impression : "_s + table.title});
}

} // namespace

void printTable(const PrintTable& table, qint64 rows, const PrintWorld& world)
{
    if (rows > mostPreviewedRows)
        return saveLongTable(table, world);
    PrintTable read = table;
    try {
        // Read once: the preview draws again and again, whoever has the project then.
        read.rows = [all = table.rows(0, int(rows))](qint64 first, int count) { return all.mid(first, count); };
    } catch (const std::exception& error) {
        return world.dialogues.tell(QString::fromUtf8(error.what()), u"Impression"_s, BoxIcon::Warning);
    }
    preview({read.title,
             [read, time = world.time](QPagedPaintDevice& device) {
                 NoProgression silent;
                 TablePrinter(read, time).print(device, silent);
             }},
            world.dialogues, world.parent);
}

} // namespace platform
