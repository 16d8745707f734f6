#include "map/ui/Cartographie.h"

#include "editing/Formats.h"
#include "images/ImagePaths.h"

namespace map {

using namespace Qt::StringLiterals;

namespace {

const QString title = u"Cartographie"_s;

bool isText(const QVariant& value)
{
    return value.typeId() == QMetaType::QString;
}

} // namespace

Cartographie::Cartographie(const MapWorld& world, QWidget* parent) : MapCanvas(parent), m_world(world) {}

QString Cartographie::SelectedItems() const
{
    QStringList items;
    const QList<qint32> localities = selectedLocalities();
    for (const qint32 id : localities)
        items << QString::number(id);
    return items.join(u',');
}

QString Cartographie::TimeInfo() const
{
    return QString::number(double(drawingTime()) / 1000, 'f', 2).replace(u'.', u',') + u's';
}

qint32 Cartographie::IDlocalité() const
{
    return currentPoint() < 0 ? 0 : points().at(currentPoint()).locality;
}

void Cartographie::setIDlocalité(qint32 id)
{
    selectLocalities({id});
    setCurrentPoint(points().indexOf(id));
}

// --- Points --------------------------------------------------------------------------------------

void Cartographie::setTailleFixe(bool fixed)
{
    restyle([fixed](PointStyle& style) { style.sizes.fixed = fixed; });
}

void Cartographie::setEffectifMin(int count)
{
    restyle([count](PointStyle& style) { style.sizes.effectifMin = count; });
}

void Cartographie::setPointType(PointType type)
{
    restyle([type](PointStyle& style) { style.type = type; });
}

void Cartographie::setPointBackColor(const QColor& colour)
{
    restyle([&colour](PointStyle& style) { style.back = colour; });
}

void Cartographie::setPointForeColor(const QColor& colour)
{
    restyle([&colour](PointStyle& style) { style.fore = colour; });
}

void Cartographie::setPointSelectedColor(const QColor& colour)
{
    restyle([&colour](PointStyle& style) { style.selected = colour; });
}

void Cartographie::setPointMinSize(double size)
{
    restyle([size](PointStyle& style) {
        style.sizes.smallest = qMax(1.0, size);
        style.sizes.largest = qMax(style.sizes.smallest, style.sizes.largest);
    });
}

void Cartographie::setPointMaxSize(double size)
{
    restyle([size](PointStyle& style) { style.sizes.largest = qMax(style.sizes.smallest, size); });
}

void Cartographie::setPointVisible(bool visible)
{
    restyle([visible](PointStyle& style) { style.visible = visible; });
}

void Cartographie::PointAdd(qint32 locality, const QString& name, double longitude, double latitude, int count)
{
    if (m_added.isEmpty())
        m_added = points();
    m_added.add({.locality = locality, .name = name, .at = {longitude, latitude}, .count = count});
}

void Cartographie::PointRefresh()
{
    if (!m_added.isEmpty())
        setPoints(std::exchange(m_added, {}));
    else
        pointsChanged();
}

// --- Maps ----------------------------------------------------------------------------------------

bool Cartographie::LoadCarte(qint32 id)
{
    const QString file = pictureFile(m_world.places, id, m_world.imageFolders ? m_world.imageFolders() : QStringList());
    if (file.isEmpty()) {
        m_world.dialogues.tell(images::pictureMissing(m_world.places.NomCarte(id)), title, platform::BoxIcon::Warning);
        return false;
    }
    try {
        m_picture = file == m_file && !m_picture.isNull() ? m_picture : readPicture(file);
    } catch (const jet::Error& error) {
        m_world.dialogues.tell(error.description(), title, platform::BoxIcon::Warning);
        return false;
    }
    m_file = file;
    m_map = id;
    m_region = id == worldMap ? 0 : m_world.places.IDparent(id);
    const reference::Cl_Localité::Coordinates row = m_world.places.Coordonnées(id);
    const Frame frame = id == worldMap ? Frame::world()
                                       : Frame::ofRow(row.LongDD, row.LatDD, row.SizeLongDD, row.SizeLatDD);
    setMap(m_picture, frame, m_world.places.NomLocalité(id, 0));
    return true;
}

void Cartographie::Refresh()
{
    m_picture = {};
    LoadCarte(m_map);
}

void Cartographie::setAllowAddLocalité(bool on)
{
    setTool(on && !m_world.readOnly ? MapTool::AddPlace : MapTool::Point);
}

int Cartographie::LongDtoPicture(const QVariant& longitude) const
{
    bool number = false;
    const double degrees = longitude.toDouble(&number);
    return view().LongDtoPicture(isText(longitude) && !number ? editing::TextToLongitude(longitude.toString()) : degrees);
}

int Cartographie::LatDtoPicture(const QVariant& latitude) const
{
    bool number = false;
    const double degrees = latitude.toDouble(&number);
    return view().LatDtoPicture(isText(latitude) && !number ? editing::TextToLatitude(latitude.toString()) : degrees);
}

// --- Exports -------------------------------------------------------------------------------------

void Cartographie::setExportName(const QString& name, const QString& description)
{
    m_exportName = name;
    m_exportDescription = description;
}

bool Cartographie::save(ExportFormat format, const QString& file)
{
    ExportContext context;
    context.name = m_exportName.isEmpty() ? mapName() : m_exportName;
    context.description = m_exportDescription;
    context.region = m_region > 0 ? m_world.places.NomLocalité(m_region, 1) : mapName();
    context.time = platform::stamp(m_world.clock);
    context.colour = style().back;
    context.frame = isCalibrated() ? frame() : Frame();
    context.pictureFile = m_file;
    context.picture = m_picture;
    return exportPoints(format, points(), context, m_world.dialogues, file);
}

bool Cartographie::SaveToCSV(const QString& file)
{
    return save(ExportFormat::Csv, file);
}

bool Cartographie::SaveToKML(const QString& file)
{
    return save(ExportFormat::Kml, file);
}

bool Cartographie::SaveToGTM(const QString& file)
{
    return save(ExportFormat::Gtm, file);
}

bool Cartographie::SaveToAcadScr(const QString& file)
{
    return save(ExportFormat::AcadScr, file);
}

bool Cartographie::SaveToBMP(const QString& file)
{
    return exportBitmap(drawn(), m_world.dialogues, file);
}

} // namespace map
