#include "app/ui/AccessDesk.h"

#include "app/AccessImport.h"
#include "app/Session.h"
#include "app/ui/AccessReportDialog.h"
#include "app/ui/Icons.h"
#include "app/ui/Photographer.h"
#include "app/ui/ProjectCommands.h"

namespace app {

using namespace Qt::StringLiterals;

AccessDesk::AccessDesk(Workplace& place, ProjectCommands& commands) : Desk(place), m_commands(commands)
{
    connect(&commands, &ProjectCommands::imported, this, &AccessDesk::showReport);
}

void AccessDesk::install(QMenuBar& bar, TreeCommands&)
{
    m_import = new QAction(themeIcon(u"document-import"_s), u"Importer une base &Access…"_s, &place().window());
    m_import->setObjectName(u"importAccess"_s);
    m_import->setStatusTip(u"Faire un projet d'une ancienne base Access"_s);
    connect(m_import, &QAction::triggered, this, &AccessDesk::choose);
    auto* file = bar.findChild<QMenu*>(u"menuFichier"_s);
    file->insertAction(file->actions().value(3), m_import); // below new, open and recent projects

    m_report = new QAction(themeIcon(u"document-preview"_s), u"&Rapport d'importation"_s, &place().window());
    m_report->setObjectName(u"importReport"_s);
    m_report->setStatusTip(u"Ce que l'importation de l'ancienne base Access a repris et laissé"_s);
    connect(m_report, &QAction::triggered, this, &AccessDesk::showReport);
    bar.findChild<QMenu*>(u"menuOutils"_s)->addAction(m_report);
    updateActions(false);
}

void AccessDesk::updateActions(bool busy)
{
    m_import->setEnabled(!busy);
    m_report->setEnabled(!busy && isOpen() && session().database().hasProperty(importReportProperty));
}

void AccessDesk::projectOpened()
{
    updateActions(false);
}

void AccessDesk::projectClosing()
{
    m_report->setEnabled(false);
}

void AccessDesk::showBusy(bool busy)
{
    updateActions(busy);
}

void AccessDesk::choose()
{
    const QString path = place().dialogues().openFile(
        u"Importer une ancienne base Access"_s, u"Anciennes bases Access (*.hbx *.mdb *.accdb)|*.hbx;*.mdb;*.accdb|"_s);
    if (!path.isEmpty())
        m_commands.importPath(path);
}

QString AccessDesk::report() const
{
    try {
        return session().database().Property(importReportProperty).toString();
    } catch (const jet::Error& error) {
        place().fail(u"Rapport d'importation"_s, error.description());
        return {};
    }
}

void AccessDesk::showReport()
{
    const QString text = isOpen() ? report() : QString();
    if (!text.isEmpty())
        (new AccessReportDialog(text, place().dialogues(), &place().window()))->open();
}

void AccessDesk::photograph(Photographer& photographer)
{
    if (!m_report->isEnabled())
        return;
    showReport();
    auto* dialog = place().window().findChild<QDialog*>(u"accessReport"_s);
    photographer.take(u"rapport-importation"_s, *dialog);
    dialog->close();
}

} // namespace app
