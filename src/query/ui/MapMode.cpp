#include "query/ui/MapMode.h"

#include "platform/ui/PrintPreview.h"
#include "platform/ui/RecordPrinter.h"

#include <QPointer>
#include <QVBoxLayout>

namespace query {

using namespace Qt::StringLiterals;

namespace {

const QString modeMapKey = u"map"_s;
const QStringList modulesShown{u"Individus"_s, u"Localités"_s};

} // namespace

struct MapMode::Loaded : map::LoadedPoints {};

MapMode::MapMode(ResultSource& source, const map::MapWorld& world, platform::TaskRunner& runner, QWidget* parent)
    : ResultMode(source, parent), m_dialogues(world.dialogues), m_clock(world.clock), m_runner(runner), m_panel(new map::MapPanel(world, this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_panel);
    setFocusProxy(m_panel);
    m_panel->setNarrowing(u"Restreindre la requête à la &sélection"_s, u"Restreindre la requête à une &région…"_s);
    connect(m_panel, &map::MapPanel::selectionChanged, this, &ResultMode::selectionChanged);
    connect(m_panel, &map::MapPanel::stateChanged, this, &ResultMode::stateChanged);
    connect(m_panel, &map::MapPanel::pointActivated, this, &MapMode::activate);
    connect(m_panel, &map::MapPanel::narrowToPlaces, this, &ResultMode::insertPlacesWanted);
    connect(m_panel, &map::MapPanel::narrowToRegion, this, &ResultMode::insertRectangleWanted);
    connect(&m_runner, &platform::TaskRunner::started, this, [this] { m_panel->setBusy(true); });
    connect(&m_runner, &platform::TaskRunner::finished, this, [this] { m_panel->setBusy(false); });
    m_panel->setBusy(m_runner.isRunning());
}

MapMode::~MapMode() = default;

QString MapMode::key() const
{
    return modeMapKey;
}

void MapMode::rowsReplaced()
{
    m_panel->setExportName(source().name(), source().statement(modeMapKey));
    load();
}

void MapMode::valuesChanged(const QStringList& modules)
{
    const bool concerned = modules.isEmpty()
                           || std::any_of(modules.begin(), modules.end(),
                                          [](const QString& module) { return modulesShown.contains(module); });
    if (concerned && m_loaded) {
        m_wanted = selection();
        load();
    }
}

void MapMode::load()
{
    const int generation = ++m_generation;
    const QString statement = source().statement(modeMapKey);
    if (statement.isEmpty()) {
        adopt(std::make_shared<Loaded>());
        return;
    }
    auto loaded = std::make_shared<Loaded>();
    jet::Database& database = source().database();
    const QPointer<MapMode> self(this);
    ++m_loading;
    m_runner.start({[loaded, statement, &database](platform::Progression& progression) {
                        static_cast<map::LoadedPoints&>(*loaded) = map::loadPoints(database, statement, progression);
                    },
                    [self, loaded, generation](std::exception_ptr failure) {
                        if (!self)
                            return;
                        --self->m_loading;
                        if (generation != self->m_generation)
                            return;
                        try {
                            if (failure)
                                std::rethrow_exception(failure);
                            self->adopt(loaded);
                        } catch (const jet::Error& error) {
                            self->m_panel->setNote(error.description());
                            Q_EMIT self->failed(error.description());
                        }
                    },
                    [&database] { database.Interrupt(); }, u"Chargements des points"_s});
}

void MapMode::adopt(std::shared_ptr<Loaded> loaded)
{
    m_loaded = std::move(loaded);
    m_panel->showPoints(m_loaded->points);
    select(std::exchange(m_wanted, {}));
}

// --- Selection -----------------------------------------------------------------------------------

void MapMode::setSelection(const ResultSelection& selection)
{
    // A selection that comes while points are read is that of the rows, not of what is still shown.
    m_wanted = m_loading > 0 ? selection : ResultSelection();
    select(selection);
}

void MapMode::select(const ResultSelection& selection)
{
    if (!m_loaded)
        return;
    QList<qint32> individuals = selection.individuals;
    if (individuals.isEmpty() && source().module() == modulesShown.first())
        individuals = selection.records;
    QList<qint32> places;
    for (const qint32 individual : std::as_const(individuals)) {
        const qint32 place = m_loaded->localityOf.value(individual);
        if (place != 0)
            places << place;
    }
    m_panel->map().selectLocalities(places);
    if (!places.isEmpty())
        m_panel->map().setCurrentPoint(m_panel->map().points().indexOf(places.first()));
    Q_EMIT stateChanged();
}

ResultSelection MapMode::selection() const
{
    ResultSelection selection;
    if (!m_loaded)
        return selection;
    const QList<qint32> places = m_panel->map().selectedLocalities();
    for (const qint32 place : places)
        selection.individuals += m_loaded->individuals.value(place);
    return selection;
}

/// A place with several individuals is no one record: they are selected, which shows them in the rows.
void MapMode::activate(qint32 locality)
{
    const QList<qint32> individuals = m_loaded ? m_loaded->individuals.value(locality) : QList<qint32>();
    if (individuals.size() == 1)
        Q_EMIT activated({source().module() == modulesShown.first() ? individuals : QList<qint32>(), individuals});
}

// --- Commands ------------------------------------------------------------------------------------

bool MapMode::can(platform::TabCommand command) const
{
    using enum platform::TabCommand;
    if (command == SelectAll || command == ExportRows)
        return !m_panel->map().points().isEmpty();
    if (command == Print)
        return true;
    return command == Refresh && !m_runner.isRunning();
}

void MapMode::run(platform::TabCommand command)
{
    using enum platform::TabCommand;
    if (command == SelectAll)
        m_panel->map().selectAll();
    else if (command == ExportRows)
        m_panel->map().SaveToCSV();
    else if (command == Print)
        print();
    else if (command == Refresh)
        load();
}

/// As it is seen, with its legend.
void MapMode::print()
{
    const platform::PrintPicture picture{source().name(), m_panel->map().PictureView(), {statusText()}};
    const QDateTime time = m_clock.now();
    platform::preview(
        {picture.title, [picture, time](QPagedPaintDevice& device) { platform::printPicture(device, picture, time); }},
        m_dialogues, window());
}

} // namespace query
