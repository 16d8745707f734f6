#include "app/ui/ReferenceDesk.h"

#include "app/References.h"
#include "app/Session.h"
#include "app/ui/Documents.h"
#include "app/ui/EditorWait.h"
#include "app/ui/Icons.h"
#include "app/ui/Photographer.h"
#include "app/ui/WindowState.h"
#include "jet/Cancelled.h"
#include "reference/TaxonImport.h"
#include "reference/ui/Chooser.h"
#include "reference/ui/Form10.h"
#include "reference/ui/PlaceBrowser.h"
#include "reference/ui/ReferenceWorld.h"
#include "reference/ui/TaxonBrowser.h"

#include <QDesktopServices>
#include <QScopedValueRollback>
#include <QUrl>

namespace app {

using namespace Qt::StringLiterals;
using reference::ReferenceBrowser;

namespace {

const QString importTitle = u"Importation de taxons"_s;
const QString importFilter = u"Listes de noms (*.tsv;*.txt)|*.tsv;*.txt|Tous les fichiers (*)|*|"_s;

class DesktopOpener : public reference::AddressOpener {
public:
    void open(const QString& address) override { QDesktopServices::openUrl(QUrl(address)); }
};

QString tableOf(NodeKind kind)
{
    return kind == NodeKind::Taxa ? u"Taxons"_s : kind == NodeKind::Localities ? u"Localités"_s : u"Collecteurs"_s;
}

/// The fields of every module that name rows of the lists.
QList<reference::ReferringColumn> referringColumns(const Session& session)
{
    QList<reference::ReferringColumn> columns;
    for (const data::ModuleRecord& module : session.modules()) {
        for (const data::FieldRecord& field : module.fields) {
            if (field.type == data::Botaniste || field.type == data::Localité || field.type == data::Taxon)
                columns.append({module.name, field.column, field.type});
        }
    }
    return columns;
}

} // namespace

ReferenceDesk::ReferenceDesk(Workplace& place)
    : Desk(place), m_opener(std::make_unique<DesktopOpener>()),
      m_chooser(std::make_unique<reference::Chooser>([this] { return m_world; }))
{
    place.setChooser(m_chooser.get());
    connect(&place, &Workplace::showReferenceWanted, this, &ReferenceDesk::show);
    connect(&place, &Workplace::recordsWritten, this, &ReferenceDesk::followWritten);
}

ReferenceDesk::~ReferenceDesk()
{
    place().setChooser(nullptr);
}

void ReferenceDesk::setOpener(std::unique_ptr<reference::AddressOpener> opener)
{
    m_opener = std::move(opener);
}

void ReferenceDesk::install(QMenuBar& bar, TreeCommands& tree)
{
    const auto command = [this](QMenu* menu, const QString& name, const QIcon& icon, const QString& text, const QString& tip) {
        QAction* action = menu->addAction(icon, text);
        action->setObjectName(name);
        action->setStatusTip(tip);
        action->setEnabled(false);
        m_actions << action;
        return action;
    };
    auto* data = bar.findChild<QMenu*>(u"menuDonnees"_s);
    data->addSeparator();
    const auto browser = [&](const QString& name, const QString& icon, const QString& text, const QString& tip,
                             const QString& table) {
        connect(command(data, name, iconNamed(icon), text, tip), &QAction::triggered, this, [this, table] { show(table, 0); });
    };
    browser(u"browseTaxa"_s, u"Lstaxons"_s, u"&Taxons"_s, u"Les noms de plantes dans leur arbre"_s, u"Taxons"_s);
    browser(u"browsePlaces"_s, u"Lslocalités"_s, u"&Localités"_s, u"Les lieux dans leur arbre"_s, u"Localités"_s);
    browser(u"browsePeople"_s, u"Lsbotanistes"_s, u"C&ollecteurs"_s, u"Les personnes par initiale et par organisme"_s,
            u"Collecteurs"_s);
    data->addSeparator();
    connect(command(data, u"importTaxa"_s, themeIcon(u"document-import"_s), u"I&mporter des taxons…"_s,
                    u"Ajouter les noms d'une liste au projet"_s),
            &QAction::triggered, this, &ReferenceDesk::importTaxa);
    tree.provide(u"openReference"_s, [this](const TreeNode& node) { show(tableOf(kindOfKey(node.key, session())), 0); });
}

// --- The project -----------------------------------------------------------------------------------

void ReferenceDesk::projectOpened()
{
    Session& open = session();
    References& lists = open.references();
    m_world = std::make_shared<reference::ReferenceWorld>(reference::ReferenceWorld{
        open.database(), lists.taxa(), lists.places(), lists.people(), lists.links(), open.properties(), place().dialogues(),
        open.form(), lists.context(), *m_opener, reference::Referring(open.database(), referringColumns(open)),
        editing::ReferenceSearch(open.database()), editing::FieldInput(&open.database()), m_chooser.get(), open.readOnly()});
    m_world->runner = &place().runner();
    m_world->beside = [this](const QString& title, const reference::LongWork& work) { runBeside(place().runner(), title, work); };
    m_world->showIndividuals = [this](const QString& title, const QList<qint32>& ids) {
        place().showRecords(title, data::moduleIndividus, ids);
    };
    m_world->written = [this](const QString& table) {
        const QScopedValueRollback telling(m_telling, true);
        place().written({table});
    };
    m_world->icon = [](const QString& name) { return iconNamed(name); };
    m_world->remembered = [this](const QString& key) { return place().state().value(key); };
    m_world->remember = [this](const QString& key, const QVariant& value) { place().state().setValue(key, value); };
}

void ReferenceDesk::projectClosing()
{
    m_world.reset(); // tabs still have it, and go next
}

void ReferenceDesk::showBusy(bool busy)
{
    for (QAction* action : std::as_const(m_actions))
        action->setEnabled(isOpen() && !busy && (action->objectName() != u"importTaxa" || !session().readOnly()));
}

// --- Tabs ------------------------------------------------------------------------------------------

ReferenceBrowser* ReferenceDesk::opened(const QString& table) const
{
    return qobject_cast<ReferenceBrowser*>(place().documents().find(ReferenceBrowser::keyOf(table)));
}

ReferenceBrowser* ReferenceDesk::browse(const QString& table)
{
    if (!m_world)
        return nullptr;
    if (!place().documents().show(ReferenceBrowser::keyOf(table))) {
        std::unique_ptr<ReferenceBrowser> made;
        if (table == u"Taxons")
            made = std::make_unique<reference::TaxonBrowser>(m_world);
        else if (table == u"Localités")
            made = std::make_unique<reference::PlaceBrowser>(m_world);
        else
            made = std::make_unique<reference::Form10>(m_world);
        place().documents().add(std::move(made));
    }
    return opened(table);
}

void ReferenceDesk::show(const QString& table, qint32 id)
{
    if (ReferenceBrowser* browser = browse(table))
        m_world->whenHere(browser, [browser, id] { browser->showRow(id); });
}

void ReferenceDesk::followWritten(const QStringList& modules)
{
    if (m_telling || !m_world)
        return;
    for (const QString& table : {u"Taxons"_s, u"Localités"_s, u"Collecteurs"_s}) {
        ReferenceBrowser* browser = modules.isEmpty() || modules.contains(table) ? opened(table) : nullptr;
        if (browser)
            m_world->whenHere(browser, [browser] { browser->control().reload(); });
    }
}

// --- Import ----------------------------------------------------------------------------------------

void ReferenceDesk::importTaxa()
{
    if (!m_world)
        return;
    const QString file = place().dialogues().openFile(importTitle, importFilter);
    if (file.isEmpty())
        return;
    const auto report = std::make_shared<reference::ImportReport>();
    jet::Database* database = &session().database();
    const platform::Clock* clock = &session().surroundings().clock;
    place().runner().start({[=](platform::Progression& progression) {
                                *report = reference::TaxonImport(*database, *clock).run(file, progression);
                            },
                            [this, report](std::exception_ptr failure) {
                                try {
                                    if (failure)
                                        std::rethrow_exception(failure);
                                    place().dialogues().tell(report->text(), importTitle);
                                } catch (const jet::Error& error) {
                                    if (error.number() != jet::cancelledError)
                                        place().fail(importTitle, error.description());
                                }
                                place().written({u"Taxons"_s});
                            },
                            [] {}, importTitle});
}

// --- Pictures --------------------------------------------------------------------------------------

void ReferenceDesk::photograph(Photographer& photographer)
{
    const auto first = [this](const QString& table, const QString& column, const QString& condition) {
        const auto rows = session().database().OpenRecordset(u"SELECT TOP 1 "_s + column + u" FROM "_s + table + condition);
        return rows->EOF_() ? 0 : rows->Value(0).toInt();
    };
    const auto take = [&](const QString& table, qint32 id, const QString& name) {
        show(table, id);
        ReferenceBrowser* browser = opened(table);
        photographer.settle([browser] { return browser->isSettled(); });
        photographer.take(name);
    };
    take(u"Taxons"_s, first(u"Taxons"_s, u"[ID Valid]"_s, u" WHERE [ID Valid] IS NOT NULL"_s), u"navigateur-taxons"_s);
    take(u"Localités"_s, first(u"Individus"_s, u"[ID Localités]"_s, u" WHERE [ID Localités] IS NOT NULL"_s),
         u"navigateur-localites"_s);
    take(u"Collecteurs"_s, first(u"Individus"_s, u"[ID Collecteurs]"_s, u" WHERE [ID Collecteurs] IS NOT NULL"_s),
         u"navigateur-collecteurs"_s);
}

} // namespace app
