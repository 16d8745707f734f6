// The map control.
#pragma once

#include "map/Exports.h"
#include "map/Maps.h"
#include "map/ui/MapCanvas.h"

namespace map {

/// What the map works with.
struct MapWorld {
    jet::Database& database;
    reference::Cl_Localité& places;
    platform::Dialogues& dialogues;
    const platform::Clock& clock;
    std::function<QStringList()> imageFolders;
    bool readOnly = false;
};

/// A map of the project with the places of a result: `Cl_Localité` knows the maps, MapCanvas draws. Reads the project only
/// where it says so. (Signals stand in the canvas: their names must be plain for the meta-object compiler.)
class Cartographie : public MapCanvas {
public:
    explicit Cartographie(const MapWorld& world, QWidget* parent = nullptr);

    QString SelectedItems() const; ///< Places that are selected, joined by ",".
    QString TimeInfo() const;      ///< What the last drawing took: "0,02s".
    /// The current place; 0 for none. Setting it selects it alone and shows it.
    qint32 IDlocalité() const;
    void setIDlocalité(qint32 id);
    bool TailleFixe() const { return style().sizes.fixed; } ///< All points of the smallest size.
    void setTailleFixe(bool fixed);
    int EffectifMin() const { return style().sizes.effectifMin; } ///< Points with fewer records are hidden.
    void setEffectifMin(int count);
    void Refresh();         ///< Reads the frame and the picture of the map again.
    qint32 IDCarte() const { return m_map; } ///< The map shown; 0: the world.
    /// The place to which the map belongs, under which places and maps are added; 0: the world.
    qint32 IDRégion() const { return m_region; }
    void setIDRégion(qint32 id) { m_region = id; }

    PointType pointType() const { return style().type; }
    void setPointType(PointType type);
    QColor PointBackColor() const { return style().back; }
    void setPointBackColor(const QColor& colour);
    QColor PointForeColor() const { return style().fore; }
    void setPointForeColor(const QColor& colour);
    QColor PointSelectedColor() const { return style().selected; }
    void setPointSelectedColor(const QColor& colour);
    double PointMinSize() const { return style().sizes.smallest; } ///< Pixels across.
    void setPointMinSize(double size);
    double PointMaxSize() const { return style().sizes.largest; }
    void setPointMaxSize(double size);
    bool PointVisible() const { return style().visible; }
    void setPointVisible(bool visible);

    void ZoomRégion() { showPoints(); } ///< As large as all points fit.
    void ZoomExtend() { showWhole(); }  ///< The whole map.
    void Zoom(int steps) { zoomBy(steps); } ///< Steps of 1.25.
    QImage PictureView() { return drawn(); } ///< What is seen.
    QImage PictureCarte() const { return m_picture; } ///< The map's picture.
    void FreezeRefresh(bool frozen) { setFrozen(frozen); }

    // Exports: the points of the result, shown or not. Without a name asked for; false when nothing was written, which is said.
    bool SaveToCSV(const QString& file = {});
    bool SaveToKML(const QString& file = {});
    bool SaveToGTM(const QString& file = {});
    bool SaveToAcadScr(const QString& file = {});
    bool SaveToBMP(const QString& file = {}); ///< What is seen.
    /// What the exports are called.
    void setExportName(const QString& name, const QString& description);

    /// The next stroke gives a rectangle (regionDrawn).
    bool ModeAddRegion() const { return tool() == MapTool::Region; }
    void setModeAddRegion(bool on) { setTool(on ? MapTool::Region : MapTool::Point); }
    /// The next click gives a place (placeClicked); never in a project that is only read.
    bool AllowAddLocalité() const { return tool() == MapTool::AddPlace; }
    void setAllowAddLocalité(bool on);

    void ClearPoints() { setPoints({}); }
    /// Adds a place or further records of it; shown by PointRefresh.
    void PointAdd(qint32 locality, const QString& name, double longitude, double latitude, int count = 1);
    void PointRefresh(); ///< Shows what PointAdd brought; the selection goes.

    QString CarteCourante() const { return mapName(); } ///< Name of the map shown.
    /// Reads a map and its picture and shows the whole of it. False when the picture is not found or not read, which is said;
    /// then the map before stays.
    bool LoadCarte(qint32 id);
    /// Degrees or texts of degrees, minutes, seconds to pixels of the control.
    int LongDtoPicture(const QVariant& longitude) const;
    int LatDtoPicture(const QVariant& latitude) const;

private:
    template<typename Change>
    void restyle(Change change)
    {
        PointStyle changed = style();
        change(changed);
        setStyle(changed);
    }
    bool save(ExportFormat format, const QString& file);

    MapWorld m_world;
    qint32 m_map = worldMap;
    qint32 m_region = 0;
    QImage m_picture;
    QString m_file;
    QString m_exportName;
    QString m_exportDescription;
    Points m_added;
};

} // namespace map
