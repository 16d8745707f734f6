// The control "Viewer": one picture, at any zoom, with distances on it.
#pragma once

#include "images/ui/PictureCanvas.h"
#include "platform/Dialogues.h"

#include <QAction>
#include <QThreadPool>
#include <QToolBar>
#include <memory>

namespace images {

/// Loads beside the windows: large pictures first at reduced size, whole once the user looks at their pixels.
///
/// Tools by their keys: "zplus", "zmoins", "zall", "zcadre", "dist".
class Viewer : public QWidget {
    Q_OBJECT
public:
    explicit Viewer(platform::Dialogues& dialogues, QWidget* parent = nullptr);
    ~Viewer() override;

    QString NomFichier() const { return m_name; } ///< As it was given to Load_Picture.
    QString path() const { return m_path; }       ///< Where it was found; empty while it is looked for.
    /// The real length of one pixel; 0 until it is calibrated.
    float TaillePixel() const { return m_pixel; }
    void setTaillePixel(float size);
    /// Looks the file up in the folders and shows it whole. An empty name empties the view.
    void Load_Picture(const QString& file, const QStringList& folders = {});
    bool isLoading() const { return m_loading > 0; }
    void Zoom(double factor) { m_canvas->setZoom(factor); } ///< 1: pixel for pixel.
    void ZoomExtend() { m_canvas->showWhole(); }
    PictureCanvas& canvas() { return *m_canvas; }

    /// Writes a calibration where it is kept, at once; false when it could not, which is said. Without it distances are
    /// measured, and nothing is asked.
    std::function<bool(float)> keepTaillePixel;

    static QString distanceText(double pixels, float pixelSize); ///< "D = 12,5"

Q_SIGNALS:
    void loaded(); ///< Or found missing.

private:
    struct Result;
    QAction* addTool(QToolBar& bar, const QString& key, const QString& icon, const QString& text, bool checkable = false);
    void load(int longest);
    void adopt(const Result& result);
    void chooseTool(QAction* action, PictureTool tool);
    void measure(const QLineF& segment);
    void calibrate(double pixels);
    void loadDetail();
    void showPossible();

    platform::Dialogues& m_dialogues;
    PictureCanvas* m_canvas;
    QList<QAction*> m_tools;
    QAction* m_frame = nullptr;
    QAction* m_distance = nullptr;
    QString m_name;
    QStringList m_folders;
    QString m_path;
    float m_pixel = 0;
    int m_generation = 0; ///< Of pictures; what comes for an earlier one is dropped.
    int m_loading = 0;
    bool m_detailAsked = false;
    QThreadPool m_pool;
};

} // namespace images
