// The map with its tool bar, its status line and the bar of a calibration.
#pragma once

#include "map/ui/MapCanvas.h"

#include <QActionGroup>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QSpinBox>
#include <QToolBar>
#include <memory>

namespace map {

struct MapWorld;
class Cartographie;
class CalibrationBar;

/// What is the same for every map window: choice of the map, tools, style, exports, adding maps and places, calibration.
class MapPanel : public QWidget {
    Q_OBJECT
public:
    explicit MapPanel(const MapWorld& world, QWidget* parent = nullptr);
    ~MapPanel() override;

    Cartographie& map() const { return *m_map; }
    QComboBox& maps() const { return *m_maps; }
    CalibrationBar& calibration() const { return *m_calibration; }
    /// Shows these points; the first time, or when the map holds none of them, on the map that suits them best. Reads the
    /// project.
    void showPoints(Points points);
    /// Lists the maps of the project anew and shows the one, or that which is shown.
    void reloadMaps(qint32 shown = -1);
    /// Nothing of the project may be read or written (true).
    void setBusy(bool busy);
    /// "12 localités, 3 sélectionnées", with what could not be placed.
    QString statusText() const;
    /// What is said in place of points; empty for nothing.
    void setNote(const QString& text);
    /// Commands that hand the places selected, or a rectangle, to whoever shows the map; an empty text for none.
    void setNarrowing(const QString& bySelection, const QString& byRegion);

    void addMap();
    void startCalibration();
    void setExportName(const QString& name, const QString& description);

Q_SIGNALS:
    void selectionChanged();
    void pointActivated(qint32 locality);
    void narrowToPlaces(const QList<qint32>& localities);
    void narrowToRegion(const QRectF& degrees);
    void placesChanged(); ///< A place or a map was added or calibrated.
    void stateChanged();

private:
    void makeTools();
    void makeToolActions();
    void makeZoomActions();
    void makeShowMenu();
    void makeExportMenu();
    void makeMapMenu();
    QAction* add(QMenu* menu, const QString& name, const QString& text, const std::function<void()>& run);
    QAction* addTool(const QString& name, const QString& icon, const QString& text, MapTool tool);
    class QToolButton* addMenu(const QString& name, const QString& icon, const QString& text, QMenu* menu);
    void connectMap();
    void chooseMap(int index);
    void finishCalibration();
    void leaveCalibration();
    void addPlace(double longitude, double latitude);
    void chooseColour(bool selected);
    void showActions();
    QWidget* makeStatusLine();

    std::unique_ptr<MapWorld> m_world;
    Cartographie* m_map;
    QToolBar* m_tools;
    QComboBox* m_maps;
    QActionGroup* m_toolGroup;
    QSpinBox* m_effectif;
    QAction* m_narrowSelection = nullptr;
    QAction* m_narrowRegion = nullptr;
    QAction* m_addPlace = nullptr;
    QAction* m_addMap = nullptr;
    QAction* m_calibrate = nullptr;
    QAction* m_zoomSelected = nullptr;
    CalibrationBar* m_calibration;
    QLabel* m_note;
    QLabel* m_cursor;
    QLabel* m_point;
    QLabel* m_time;
    bool m_busy = false;
    bool m_chosen = false; ///< A map was shown.
};

} // namespace map
