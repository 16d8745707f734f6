// The two marks of a calibration with their coordinates, before they are written.
#pragma once

#include "map/ui/MapCanvas.h"
#ifndef Q_MOC_RUN // which reads plain letters only
#include "reference/Cl_Localite.h"
#endif

#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <array>

namespace map {

/// Stands under the map while it is calibrated. The marks are set by clicks on the map, or as pixels; their coordinates are
/// typed. Nothing is written before "Calibrer".
class CalibrationBar : public QWidget {
    Q_OBJECT
public:
    explicit CalibrationBar(MapCanvas& canvas, QWidget* parent = nullptr);

    /// Begins with a map's row; its marks stand where they do, coordinates that a calibrated map has are proposed.
    void begin();
    /// Asks the list of places to calibrate the map by what stands here. True when it was written.
#ifndef Q_MOC_RUN
    bool calibrate(reference::Cl_Localité& places, qint32 map);
#endif

Q_SIGNALS:
    void confirmed();
    void cancelled();

private:
    struct Mark {
        QDoubleSpinBox* x;
        QDoubleSpinBox* y;
        QLineEdit* longitude;
        QLineEdit* latitude;
    };
    class Answers;
    Mark makeMark(int number, class QGridLayout& grid);
    QLineEdit* makeLine(const QString& name, const QString& caption, const QString& help);
    void showMarks();
    void takeMarks();
    void propose(int mark);
    void showState();

    MapCanvas& m_canvas;
    std::array<Mark, 2> m_marks{};
    QLabel* m_note;
    QPushButton* m_confirm;
};

} // namespace map
