// The tab of the record editor in which its pictures are looked at.
#pragma once

#include "editing/ui/PicturePane.h"
#include "images/PictureDetails.h"
#include "images/ui/Viewer.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>

namespace app {

class Workplace;

/// The viewer, with what the camera noted beside it and the offer to take date and position over. A calibration is
/// written into the record of the picture at once; one of a record that is locked, or was never saved, cannot be.
class PictureTab : public editing::PicturePane {
    Q_OBJECT
public:
    PictureTab(Workplace& place, QWidget* parent = nullptr);
    ~PictureTab() override;

    void showRecord(const editing::PicturedRecord& record) override;
    images::Viewer& viewer() { return *m_viewer; }
    bool isReading() const { return m_reading > 0 || m_viewer->isLoading(); }

private:
    QWidget* makeSide();
    void showPicture();
    void readDetails(const QString& path);
    void adopt(const images::PictureDetails& details);
    void showOffer();
    void takeOver();
    void readCalibration();
    bool keepCalibration(float size);

    Workplace& m_place;
    images::Viewer* m_viewer;
    QComboBox* m_which;
    QTreeWidget* m_details;
    QPushButton* m_take;
    QLabel* m_note;
    editing::PicturedRecord m_record;
    editing::PictureFacts m_facts;
    QThreadPool m_pool;
    int m_generation = 0;
    int m_reading = 0;
};

} // namespace app
