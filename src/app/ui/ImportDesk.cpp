#include "app/ui/ImportDesk.h"

#include "app/Session.h"
#include "app/ui/Icons.h"
#include "app/ui/Photographer.h"
#include "app/ui/import/ImportWindow.h"

#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>

namespace app {

using namespace Qt::StringLiterals;

ImportDesk::ImportDesk(Workplace& place) : Desk(place) {}

ImportDesk::~ImportDesk() = default;

void ImportDesk::install(QMenuBar& bar, TreeCommands&)
{
    m_import = new QAction(themeIcon(u"document-import"_s), u"Importer un tableau (CS&V)…"_s, &place().window());
    m_import->setObjectName(u"importCsv"_s);
    m_import->setStatusTip(u"Ajouter les lignes d'un tableau au projet"_s);
    connect(m_import, &QAction::triggered, this, &ImportDesk::open);
    bar.findChild<QMenu*>(u"menuDonnees"_s)->addAction(m_import);
    updateAction(false);
}

void ImportDesk::updateAction(bool busy)
{
    m_import->setEnabled(!busy && isOpen() && !session().readOnly());
}

void ImportDesk::projectOpened()
{
    updateAction(false);
}

ImportWindow* ImportDesk::open()
{
    if (!isOpen())
        return nullptr;
    if (!m_window)
        m_window = std::make_unique<ImportWindow>(place(), &place().window());
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
    return m_window.get();
}

/// Work that is stopped is waited for: it ends within some rows, and the project must not go under it.
bool ImportDesk::mayClose()
{
    if (!m_window || !m_window->isWorking())
        return true;
    const bool stop = place().dialogues().confirm(u"Une importation est en cours. Faut-il l'arrêter ?\nRien n'en sera gardé."_s,
                                                  m_window->windowTitle(), platform::BoxIcon::Question, platform::Answer::No);
    // What came to its end meanwhile has a report to read.
    if (!stop || !m_window->isWorking())
        return false;
    platform::TaskRunner& runner = place().runner();
    QEventLoop ending;
    connect(&runner, &platform::TaskRunner::finished, &ending, &QEventLoop::quit);
    m_window->stop();
    ending.exec(QEventLoop::ExcludeUserInputEvents);
    return m_window->step() != ImportWindow::Result;
}

void ImportDesk::projectClosing()
{
    m_import->setEnabled(false);
    m_window.reset();
}

void ImportDesk::showBusy(bool busy)
{
    updateAction(busy);
    if (m_window && !m_window->isWorking())
        m_window->setAway(busy);
}

void ImportDesk::photograph(Photographer& photographer)
{
    QTemporaryDir folder;
    QFile table(folder.filePath(u"recoltes.csv"_s));
    if (!table.open(QIODevice::WriteOnly))
        return;
    table.write("Numéro;Collecteur;Date de récolte;Localité;Longitude;Latitude;Altitude;Taxon\r\n"
                "T 101;Marie Durand;12/05/2024;Pâturage du haut;E006°30'12;N45°10'00;1850;Gentiana lutea L.\r\n"
                "T 102;Marie Durand;13/05/2024;Pâturage du haut;6,51;45,17;1 870,5;Trifolium alpinum\r\n"
                "T 103;Marie Durand;hier;Pâturage du haut;6,51;45,17;1 870,5;Vochysia rectifora\r\n");
    table.close();
    ImportWindow* window = open();
    if (!window)
        return;
    window->filePage().setTarget(data::moduleIndividus);
    window->filePage().setFile(table.fileName());
    photographer.take(u"import-fichier"_s, *window);
    window->next();
    photographer.take(u"import-colonnes"_s, *window);
    window->next();
    photographer.settle([window] { return window->step() == ImportWindow::Names; });
    photographer.take(u"import-noms"_s, *window);
    window->next();
    photographer.settle([window] { return window->step() == ImportWindow::Rehearsal; });
    photographer.take(u"import-essai"_s, *window);
    m_window.reset();
}

} // namespace app
