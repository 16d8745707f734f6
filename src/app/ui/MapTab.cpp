#include "app/ui/MapTab.h"

#include "app/Session.h"
#include "app/ui/Icons.h"
#include "app/ui/MapDesk.h"
#include "app/ui/Workplace.h"
#include "map/PointLoading.h"
#include "map/ui/Cartographie.h"
#include "map/ui/MapPanel.h"
#include "platform/ui/PrintPreview.h"
#include "platform/ui/RecordPrinter.h"

#include <QPointer>
#include <QSpinBox>
#include <QVBoxLayout>
#include <algorithm>

namespace app {

using namespace Qt::StringLiterals;

MapTab::MapTab(Workplace& place, QWidget* parent)
    : DocumentTab(parent), m_place(place), m_panel(new map::MapPanel(mapWorld(place), this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_panel);
    setFocusProxy(m_panel);
    // Places without individuals are places all the same.
    m_panel->findChild<QSpinBox*>(u"effectifMin"_s)->setValue(0);
    m_panel->setNarrowing(u"Individus des localités &sélectionnées"_s, u"Individus d'une &région…"_s);
    m_panel->setExportName(place.session().projectName(), u"Localités du projet"_s);
    connect(m_panel, &map::MapPanel::stateChanged, this, &DocumentTab::stateChanged);
    connect(m_panel, &map::MapPanel::pointActivated, this, [this](qint32 id) { showIndividuals({id}); });
    connect(m_panel, &map::MapPanel::narrowToPlaces, this, &MapTab::showIndividuals);
    connect(m_panel, &map::MapPanel::narrowToRegion, this, [this](const QRectF& area) {
        QList<qint32> inside;
        for (const map::MapPoint& point : m_panel->map().points()) {
            if (area.contains(point.at.longitude, point.at.latitude))
                inside << point.locality;
        }
        showIndividuals(inside);
    });
    connect(m_panel, &map::MapPanel::placesChanged, this, [this] { m_place.written({u"Localités"_s}); });
    connect(&place.runner(), &platform::TaskRunner::started, this, [this] { m_panel->setBusy(true); });
    connect(&place.runner(), &platform::TaskRunner::finished, this, [this] { m_panel->setBusy(false); });
    load();
}

MapTab::~MapTab() = default;

QString MapTab::title() const
{
    return u"Carte"_s;
}

QIcon MapTab::icon() const
{
    return iconNamed(u"Lslocalités"_s);
}

QString MapTab::statusText() const
{
    return m_panel->statusText();
}

void MapTab::load()
{
    auto loaded = std::make_shared<map::LoadedPoints>();
    jet::Database& database = m_place.session().database();
    const QPointer<MapTab> self(this);
    ++m_loading;
    m_place.runner().start({[loaded, &database](platform::Progression& progression) {
                                *loaded = map::loadProject(database, progression);
                            },
                            [self, loaded](std::exception_ptr failure) {
                                if (!self)
                                    return;
                                --self->m_loading;
                                try {
                                    if (failure)
                                        std::rethrow_exception(failure);
                                    self->adopt(*loaded);
                                } catch (const jet::Error& error) {
                                    self->m_panel->setNote(error.description());
                                    Q_EMIT self->failed(error.description());
                                }
                            },
                            [&database] { database.Interrupt(); }, u"Chargements des points"_s});
}

void MapTab::adopt(const map::LoadedPoints& loaded)
{
    const QList<qint32> selected = m_panel->map().selectedLocalities();
    m_panel->showPoints(loaded.points);
    if (loaded.points.isEmpty())
        m_panel->setNote(u"Aucune localité du projet n'a de coordonnées."_s);
    m_panel->map().selectLocalities(selected);
    Q_EMIT stateChanged();
}

void MapTab::showIndividuals(const QList<qint32>& localities)
{
    if (localities.isEmpty())
        return;
    const QString title = localities.size() == 1
                              ? m_panel->map().points().at(m_panel->map().points().indexOf(localities.first())).name
                              : u"Individus de %1 localités"_s.arg(localities.size());
    m_place.showReferring(title, u"Individus"_s, u"ID Localités"_s, localities);
}

bool MapTab::can(platform::TabCommand command) const
{
    using enum platform::TabCommand;
    if (command == SelectAll || command == ExportRows)
        return !m_panel->map().points().isEmpty();
    return command == Refresh || command == Print;
}

void MapTab::run(platform::TabCommand command)
{
    using enum platform::TabCommand;
    if (command == SelectAll)
        m_panel->map().selectAll();
    else if (command == ExportRows)
        m_panel->map().SaveToCSV();
    else if (command == Refresh)
        load();
    else if (command == Print)
        print();
}

void MapTab::print()
{
    // The picture has its legend on it, as it is seen.
    const platform::PrintPicture picture{u"Carte - %1"_s.arg(m_place.session().projectName()), m_panel->map().PictureView(), {statusText()}};
    const QDateTime time = m_place.session().surroundings().clock.now();
    platform::preview({picture.title, [picture, time](QPagedPaintDevice& device) { platform::printPicture(device, picture, time); }},
                      m_place.dialogues(), window());
}

void MapTab::recordsWritten(const QStringList& modules)
{
    if (modules.isEmpty() || modules.contains(u"Individus"_s) || modules.contains(u"Localités"_s))
        load();
}

} // namespace app
