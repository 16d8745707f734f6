#include "images/ui/Viewer.h"

#include "images/Calibration.h"
#include "images/ImagePaths.h"
#include "platform/ui/Keyboard.h"

#include <QPointer>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace images {

using namespace Qt::StringLiterals;

namespace {

/// Pixels on the longer side of what is shown first: more than a window has, and decoded in a blink.
constexpr int firstLook = 2048;
const QString textLoading = u"Chargement de l'image en cours......."_s;
const QString titleCalibration = u"TransUserControlation de coordonnées"_s;
const QString promptCalibration = u"Indiquez la distance réelle entre les deux points"_s;

} // namespace

/// What the other thread found.
struct Viewer::Result {
    int generation = 0;
    QString path;
    ViewedPicture picture;
    QString failure;
};

Viewer::Viewer(platform::Dialogues& dialogues, QWidget* parent)
    : QWidget(parent), m_dialogues(dialogues), m_canvas(new PictureCanvas(this))
{
    m_pool.setMaxThreadCount(1); // a picture at a time: they are large
    auto* bar = new QToolBar(this);
    bar->setObjectName(u"viewerTools"_s);
    connect(addTool(*bar, u"zplus"_s, u"zoom-in"_s, u"Agrandir"_s), &QAction::triggered, this, [this] { m_canvas->zoomBy(1); });
    connect(addTool(*bar, u"zmoins"_s, u"zoom-out"_s, u"Réduire"_s), &QAction::triggered, this, [this] { m_canvas->zoomBy(-1); });
    connect(addTool(*bar, u"zall"_s, u"zoom-fit-best"_s, u"Image entière"_s), &QAction::triggered, this, &Viewer::ZoomExtend);
    m_frame = addTool(*bar, u"zcadre"_s, u"select-rectangular"_s, u"Agrandir un cadre"_s, true);
    m_distance = addTool(*bar, u"dist"_s, u"measure"_s, u"Mesurer une distance"_s, true);
    connect(m_frame, &QAction::triggered, this, [this] { chooseTool(m_frame, PictureTool::Frame); });
    connect(m_distance, &QAction::triggered, this, [this] { chooseTool(m_distance, PictureTool::Measure); });
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(bar);
    layout->addWidget(m_canvas, 1);
    platform::forwardFocus(*this, *m_canvas);
    platform::reachByTab(*bar);
    setTabOrder(bar->widgetForAction(m_distance), m_canvas);
    m_canvas->measured = [this](const QLineF& segment) { return distanceText(segment.length(), m_pixel); };
    connect(m_canvas, &PictureCanvas::segmentDrawn, this, &Viewer::measure);
    connect(m_canvas, &PictureCanvas::viewChanged, this, &Viewer::loadDetail);
    // A frame is drawn once; one measures several times.
    const auto giveUp = [this] {
        m_frame->setChecked(false);
        m_distance->setChecked(false);
        m_canvas->setTool(PictureTool::Move);
    };
    connect(m_canvas, &PictureCanvas::frameDrawn, this, giveUp);
    connect(m_canvas, &PictureCanvas::toolGivenUp, this, giveUp);
    showPossible();
}

Viewer::~Viewer()
{
    ++m_generation;
    m_pool.clear();
    m_pool.waitForDone();
}

QAction* Viewer::addTool(QToolBar& bar, const QString& key, const QString& icon, const QString& text, bool checkable)
{
    auto* action = bar.addAction(QIcon::fromTheme(icon), text);
    action->setObjectName(key);
    action->setCheckable(checkable);
    m_tools << action;
    return action;
}

void Viewer::chooseTool(QAction* action, PictureTool tool)
{
    (action == m_frame ? m_distance : m_frame)->setChecked(false);
    m_canvas->setTool(action->isChecked() ? tool : PictureTool::Move);
    m_canvas->setFocus();
}

void Viewer::showPossible()
{
    for (QAction* tool : std::as_const(m_tools))
        tool->setEnabled(!m_canvas->picture().image.isNull());
}

// --- Loading -------------------------------------------------------------------------------------

void Viewer::Load_Picture(const QString& file, const QStringList& folders)
{
    ++m_generation;
    m_pool.clear(); // what had not begun
    m_loading = 0;
    m_name = file;
    m_folders = folders;
    m_path.clear();
    m_detailAsked = false;
    m_canvas->setPicture({});
    m_canvas->setText(file.isEmpty() ? QString() : textLoading);
    showPossible();
    if (!file.isEmpty())
        load(firstLook);
}

/// On the other thread; the result comes back to this one.
void Viewer::load(int longest)
{
    ++m_loading;
    m_pool.start([this, generation = m_generation, name = m_name, folders = m_folders, longest] {
        Result result{.generation = generation, .path = findPicture(name, folders), .picture = {}, .failure = {}};
        try {
            if (!result.path.isEmpty())
                result.picture = viewPicture(result.path, longest);
        } catch (const jet::Error& error) {
            result.failure = error.description();
        }
        // The window waits for this thread before it goes, and takes what is on its way with it.
        QMetaObject::invokeMethod(this, [this, result] { adopt(result); }, Qt::QueuedConnection);
    });
}

void Viewer::adopt(const Result& result)
{
    if (result.generation != m_generation)
        return;
    --m_loading;
    const bool first = m_path.isEmpty();
    m_path = result.path;
    if (!result.picture.image.isNull()) {
        m_canvas->setText({});
        first ? m_canvas->setPicture(result.picture) : m_canvas->refine(result.picture);
    } else if (first) {
        m_canvas->setText(m_path.isEmpty() ? u"Impossible de trouver l'image source :"_s + m_name : result.failure);
    } else {
        m_canvas->setText({}); // too large to be whole: the reduced one stays
    }
    showPossible();
    Q_EMIT loaded();
}

void Viewer::loadDetail()
{
    if (m_detailAsked || m_path.isEmpty() || !m_canvas->wantsDetail())
        return;
    m_detailAsked = true;
    m_canvas->setText(textLoading);
    load(0);
}

// --- Measuring -----------------------------------------------------------------------------------

QString Viewer::distanceText(double pixels, float pixelSize)
{
    return u"D = "_s + singleText(float(pixels) * pixelSize);
}

void Viewer::setTaillePixel(float size)
{
    m_pixel = size;
    const QLineF segment = m_canvas->segment();
    if (!segment.isNull())
        m_canvas->setSegment(segment, distanceText(segment.length(), m_pixel));
}

void Viewer::measure(const QLineF& segment)
{
    m_canvas->setSegment(segment, distanceText(segment.length(), m_pixel));
    if (keepTaillePixel)
        calibrate(segment.length());
}

/// 0, what is no distance and a cancel change nothing.
void Viewer::calibrate(double pixels)
{
    const QPointer<Viewer> self(this);
    const int generation = m_generation;
    const auto answer = m_dialogues.input(titleCalibration, promptCalibration, singleText(float(pixels) * m_pixel));
    if (!self || !answer || generation != m_generation)
        return;
    const auto distance = singleOf(*answer);
    if (!distance || *distance <= 0)
        return;
    const float size = *distance / float(pixels);
    if (keepTaillePixel(size))
        setTaillePixel(size);
}

} // namespace images
