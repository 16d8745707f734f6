#include "map/ui/MapPanel.h"

#include "map/PointLoading.h"
#include "map/ui/CalibrationBar.h"
#include "map/ui/Cartographie.h"
#include "platform/ui/Keyboard.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QToolButton>
#include <QVBoxLayout>

namespace map {

using namespace Qt::StringLiterals;

namespace {

const QString mapFilter =
    u"Images (*.jpg *.jpeg *.png *.tif *.tiff *.bmp *.gif)|*.jpg *.jpeg *.png *.tif *.tiff *.bmp *.gif|Tous (*)|*|"_s;
const QString addMapTitle = u"Ajout d'une carte"_s;

QString caption(const MapRow& row, int points)
{
    if (!row.isCalibrated())
        return row.name + u" (non calibrée)"_s;
    return points > 0 ? u"%1 (%2 / %3)"_s.arg(row.name, QString::number(row.contained), QString::number(points))
                      : row.name;
}

} // namespace

MapPanel::MapPanel(const MapWorld& world, QWidget* parent)
    : QWidget(parent), m_world(std::make_unique<MapWorld>(world)), m_map(new Cartographie(world, this)),
      m_tools(new QToolBar(this)), m_maps(new QComboBox(this)), m_toolGroup(new QActionGroup(this)),
      m_effectif(new QSpinBox(this)), m_calibration(new CalibrationBar(*m_map, this)), m_note(new QLabel(this)),
      m_cursor(new QLabel(this)), m_point(new QLabel(this)), m_time(new QLabel(this))
{
    makeTools();
    m_note->setObjectName(u"mapNote"_s);
    m_note->setContentsMargins(8, 4, 8, 4);
    m_note->setTextFormat(Qt::PlainText);
    m_note->hide();
    m_calibration->hide();
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_tools);
    column->addWidget(m_note);
    column->addWidget(m_map, 1);
    column->addWidget(m_calibration);
    column->addWidget(makeStatusLine());
    platform::forwardFocus(*this, *m_map);
    platform::tabAlong({m_tools->findChild<QToolButton*>(u"menuExporter"_s), m_map});
    setProperty("manuel", u"cartes"_s); // the page that F1 opens
    connectMap();
    showActions();
}

MapPanel::~MapPanel() = default;

QWidget* MapPanel::makeStatusLine()
{
    auto* line = new QWidget(this);
    auto* row = new QHBoxLayout(line);
    row->setContentsMargins(8, 2, 8, 2);
    m_cursor->setObjectName(u"readOut"_s);
    m_point->setObjectName(u"pointLabel"_s);
    m_time->setObjectName(u"temps"_s);
    for (QLabel* label : {m_cursor, m_point, m_time})
        label->setTextFormat(Qt::PlainText);
    // Names are long: they take what is there and do not push.
    m_point->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_cursor->setMinimumWidth(m_cursor->fontMetrics().horizontalAdvance(u"Long. : W000°00'00.00  Lat. : N00°00'00.00 "_s));
    row->addWidget(m_cursor);
    row->addWidget(m_point, 1);
    row->addWidget(m_time);
    return line;
}

void MapPanel::connectMap()
{
    connect(m_map, &MapCanvas::cursorMoved, this, [this](const QString& readOut, const QString& point) {
        m_cursor->setText(readOut);
        m_point->setText(point);
    });
    connect(m_map, &MapCanvas::viewChanged, this, [this] { m_time->setText(m_map->TimeInfo()); });
    connect(m_map, &MapCanvas::selectionChanged, this, [this] {
        showActions();
        Q_EMIT selectionChanged();
        Q_EMIT stateChanged();
    });
    connect(m_map, &MapCanvas::pointActivated, this, &MapPanel::pointActivated);
    connect(m_map, &MapCanvas::placeClicked, this, &MapPanel::addPlace);
    connect(m_map, &MapCanvas::regionDrawn, this, [this](const QRectF& area) {
        m_map->setTool(MapTool::Point);
        Q_EMIT narrowToRegion(area);
    });
    connect(m_map, &MapCanvas::toolChanged, this, [this] {
        if (m_map->tool() != MapTool::Calibrate)
            m_calibration->hide();
        showActions();
    });
    connect(m_maps, &QComboBox::activated, this, &MapPanel::chooseMap);
    connect(m_calibration, &CalibrationBar::confirmed, this, &MapPanel::finishCalibration);
    connect(m_calibration, &CalibrationBar::cancelled, this, &MapPanel::leaveCalibration);
}

// --- Points and maps -----------------------------------------------------------------------------

void MapPanel::showPoints(Points points)
{
    const bool any = !points.isEmpty();
    m_map->setPoints(std::move(points));
    reloadMaps();
    const auto shown = [this] { return m_maps->currentData(Qt::UserRole + 1).toInt() > 0; };
    if (m_maps->count() > 0 && (!m_chosen || (any && !shown()))) {
        m_chosen = true; // one that cannot be loaded is said once
        m_map->LoadCarte(m_maps->itemData(0).toInt());
        m_map->ZoomRégion();
        reloadMaps();
    }
    setNote(any ? QString() : noPoint);
    showActions();
    Q_EMIT stateChanged();
}

void MapPanel::reloadMaps(qint32 shown)
{
    QList<MapRow> rows;
    try {
        rows = mapsFor(mapsOf(m_world->database), m_map->points());
    } catch (const jet::Error& error) {
        m_world->dialogues.tell(error.description(), u"Cartographie"_s, platform::BoxIcon::Warning);
    }
    m_maps->clear();
    const int points = m_map->points().size();
    for (const MapRow& row : std::as_const(rows)) {
        m_maps->addItem(caption(row, points), row.id);
        m_maps->setItemData(m_maps->count() - 1, row.contained, Qt::UserRole + 1);
    }
    if (shown >= 0 && m_map->LoadCarte(shown))
        m_chosen = true;
    m_maps->setCurrentIndex(m_maps->findData(m_map->IDCarte()));
    m_maps->setToolTip(m_maps->currentText());
    showActions();
}

void MapPanel::chooseMap(int index)
{
    leaveCalibration();
    const qint32 id = m_maps->itemData(index).toInt();
    if (!m_busy && m_map->LoadCarte(id))
        m_map->ZoomExtend();
    m_maps->setCurrentIndex(m_maps->findData(m_map->IDCarte()));
    m_maps->setToolTip(m_maps->currentText());
    showActions();
    m_map->setFocus();
}

void MapPanel::addMap()
{
    const QString file = m_world->dialogues.openFile(addMapTitle, mapFilter);
    if (file.isEmpty())
        return;
    const std::optional<QString> name =
        m_world->dialogues.input(addMapTitle, u"Nom de la carte"_s, QFileInfo(file).completeBaseName());
    if (!name || name->trimmed().isEmpty())
        return;
    // Not calibrated yet: no frame.
    const qint32 id = m_world->places.AddCarte(m_map->IDRégion(), name->trimmed(), {0, 0, 0, 0},
                                               storedName(file, m_world->imageFolders()));
    if (id == 0)
        return;
    reloadMaps(id);
    Q_EMIT placesChanged();
    startCalibration();
}

// --- Calibration ---------------------------------------------------------------------------------

void MapPanel::startCalibration()
{
    if (m_map->IDCarte() == worldMap || m_world->readOnly || m_busy)
        return;
    m_map->setTool(MapTool::Calibrate);
    m_calibration->begin();
    m_calibration->show();
    m_map->setFocus();
    showActions();
}

void MapPanel::finishCalibration()
{
    if (m_busy || !m_calibration->calibrate(m_world->places, m_map->IDCarte()))
        return;
    leaveCalibration();
    reloadMaps(m_map->IDCarte());
    Q_EMIT placesChanged();
}

void MapPanel::leaveCalibration()
{
    m_calibration->hide();
    m_map->setMarks({});
    if (m_map->tool() == MapTool::Calibrate)
        m_map->setTool(MapTool::Point);
    m_map->setFocus();
}

// --- Places --------------------------------------------------------------------------------------

void MapPanel::addPlace(double longitude, double latitude)
{
    m_map->setTool(MapTool::Point);
    reference::Cl_Localité& places = m_world->places;
    if (m_busy || m_world->readOnly
        || !places.Add(m_map->IDRégion(), {{u"LongDD"_s, longitude}, {u"LatDD"_s, latitude}}))
        return;
    const qint32 id = places.IDcLocalité();
    const reference::Cl_Localité::Coordinates at = places.Coordonnées(id);
    // No record is there yet; it is shown all the same.
    m_effectif->setValue(0);
    m_map->PointAdd(id, places.NomLocalité(id, 1), at.LongDD.toDouble(), at.LatDD.toDouble(), 0);
    m_map->PointRefresh();
    m_map->setIDlocalité(id);
    Q_EMIT placesChanged();
    Q_EMIT stateChanged();
}

// --- State ---------------------------------------------------------------------------------------

void MapPanel::setBusy(bool busy)
{
    m_busy = busy;
    showActions();
}

void MapPanel::setNarrowing(const QString& bySelection, const QString& byRegion)
{
    m_narrowSelection->setText(bySelection);
    m_narrowSelection->setVisible(!bySelection.isEmpty());
    m_narrowRegion->setText(byRegion);
    m_narrowRegion->setVisible(!byRegion.isEmpty());
}

void MapPanel::setNote(const QString& text)
{
    m_note->setText(text);
    m_note->setVisible(!text.isEmpty());
}

void MapPanel::setExportName(const QString& name, const QString& description)
{
    m_map->setExportName(name, description);
}

QString MapPanel::statusText() const
{
    const Points& points = m_map->points();
    const auto counted = [](int n, const QString& one) { return QString::number(n) + u' ' + one + (n > 1 ? u"s"_s : QString()); };
    QString text = counted(points.size(), u"localité"_s);
    if (m_map->selectedCount() > 0)
        text += u", "_s + counted(m_map->selectedCount(), u"sélectionnée"_s);
    if (points.unplaced() > 0)
        text += u", "_s + QString::number(points.unplaced()) + u" sans coordonnées"_s;
    return text;
}

void MapPanel::showActions()
{
    const bool writable = !m_busy && !m_world->readOnly;
    const bool calibrated = m_map->isCalibrated();
    m_maps->setEnabled(!m_busy);
    m_addMap->setEnabled(writable);
    m_addPlace->setEnabled(writable && calibrated);
    m_addPlace->setChecked(m_map->tool() == MapTool::AddPlace);
    m_calibrate->setEnabled(writable && m_map->IDCarte() != worldMap);
    m_calibrate->setChecked(m_map->tool() == MapTool::Calibrate);
    m_narrowSelection->setEnabled(!m_busy && m_map->selectedCount() > 0);
    m_narrowRegion->setEnabled(!m_busy && calibrated);
    m_narrowRegion->setChecked(m_map->tool() == MapTool::Region);
    m_zoomSelected->setEnabled(m_map->selectedCount() > 0);
    for (QAction* action : m_toolGroup->actions())
        action->setChecked(action->data().toInt() == int(m_map->tool()));
}

} // namespace map
