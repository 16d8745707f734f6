#include "app/ui/PictureTab.h"

#include "app/Session.h"
#include "app/ui/Workplace.h"
#include "images/Calibration.h"
#include "images/ImagePaths.h"
#include "platform/Clock.h"

#include <QHeaderView>
#include <QSplitter>
#include <QVBoxLayout>

namespace app {

using namespace Qt::StringLiterals;

namespace {

const QString titleMeasure = u"Mesure"_s;
constexpr int sideCharacters = 34;

} // namespace

PictureTab::PictureTab(Workplace& place, QWidget* parent)
    : PicturePane(parent), m_place(place), m_viewer(new images::Viewer(place.dialogues(), this)),
      m_which(new QComboBox(this)), m_details(new QTreeWidget(this)),
      m_take(new QPushButton(u"&Reprendre dans l'enregistrement"_s, this)), m_note(new QLabel(this))
{
    m_pool.setMaxThreadCount(1);
    auto* splitter = new QSplitter(this);
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(m_viewer);
    splitter->addWidget(makeSide());
    splitter->setStretchFactor(0, 1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(splitter);
    setFocusProxy(m_viewer);
    connect(m_which, &QComboBox::activated, this, &PictureTab::showPicture);
    connect(m_take, &QPushButton::clicked, this, &PictureTab::takeOver);
    connect(m_viewer, &images::Viewer::loaded, this, [this] {
        if (m_details->topLevelItemCount() == 0 && !m_viewer->path().isEmpty())
            readDetails(m_viewer->path());
    });
    showOffer();
}

PictureTab::~PictureTab()
{
    m_pool.clear();
    m_pool.waitForDone();
}

QWidget* PictureTab::makeSide()
{
    auto* side = new QWidget(this);
    m_which->setObjectName(u"pictureField"_s);
    m_which->setAccessibleName(u"Champ de l'image"_s);
    m_details->setObjectName(u"pictureDetails"_s);
    m_details->setAccessibleName(u"Ce que l'appareil a noté dans l'image"_s);
    m_details->setHeaderLabels({u"Propriété"_s, u"Valeur"_s});
    m_details->setRootIsDecorated(false);
    m_details->setUniformRowHeights(true);
    m_details->setAlternatingRowColors(true);
    m_take->setObjectName(u"takeFacts"_s);
    m_note->setObjectName(u"pictureNote"_s);
    m_note->setWordWrap(true);
    m_note->setTextFormat(Qt::PlainText);
    auto* layout = new QVBoxLayout(side);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_which);
    layout->addWidget(m_details, 1);
    layout->addWidget(m_note);
    layout->addWidget(m_take);
    side->setMinimumWidth(fontMetrics().averageCharWidth() * sideCharacters);
    return side;
}

// --- What is shown -------------------------------------------------------------------------------

void PictureTab::showRecord(const editing::PicturedRecord& record)
{
    // Another field of the record may have changed: the picture stays as it is looked at.
    const bool samePicture = record.module == m_record.module && record.id == m_record.id
                             && record.pictures == m_record.pictures && !record.pictures.isEmpty();
    m_record = record;
    if (samePicture) {
        readCalibration();
        showOffer();
        return;
    }
    m_which->clear();
    for (const editing::PicturedRecord::Picture& picture : m_record.pictures)
        m_which->addItem(picture.caption);
    m_which->setVisible(m_record.pictures.size() > 1);
    showPicture();
}

void PictureTab::showPicture()
{
    ++m_generation;
    m_facts = {};
    m_details->clear();
    m_note->clear();
    const QString file = m_record.pictures.isEmpty() ? QString() : m_record.pictures.value(m_which->currentIndex()).file;
    m_viewer->setTaillePixel(0);
    m_viewer->Load_Picture(file, file.isEmpty() ? QStringList() : images::imageFolders(m_place.session().properties()));
    readCalibration();
    showOffer();
}

void PictureTab::readDetails(const QString& path)
{
    ++m_reading;
    m_pool.start([this, path, generation = m_generation] {
        const images::PictureDetails details = images::pictureDetails(path);
        QMetaObject::invokeMethod(
            this,
            [this, details, generation] {
                --m_reading;
                if (generation == m_generation)
                    adopt(details);
            },
            Qt::QueuedConnection);
    });
}

void PictureTab::adopt(const images::PictureDetails& details)
{
    m_details->clear();
    for (const images::PictureDetail& detail : details.rows) {
        auto* item = new QTreeWidgetItem(m_details, {detail.label, detail.value});
        item->setToolTip(1, detail.value);
    }
    m_details->resizeColumnToContents(0);
    m_facts = {};
    if (details.date.isValid())
        m_facts.date = platform::stamp(details.date);
    if (details.longitude && details.latitude) {
        m_facts.longitude = *details.longitude;
        m_facts.latitude = *details.latitude;
    }
    showOffer();
}

// --- Taking over ---------------------------------------------------------------------------------

void PictureTab::showOffer()
{
    const bool knows = m_facts.date.isValid() || m_facts.longitude.isValid();
    const QStringList fields = knows && fitting && !m_record.readOnly ? fitting(m_facts) : QStringList();
    m_take->setEnabled(!fields.isEmpty());
    m_take->setToolTip(fields.isEmpty() ? QString() : u"Remplir : "_s + fields.join(u", "_s));
}

void PictureTab::takeOver()
{
    const QStringList filled = offer ? offer(m_facts) : QStringList();
    if (!filled.isEmpty())
        m_note->setText(u"Repris : "_s + filled.join(u", "_s));
}

// --- Calibration ---------------------------------------------------------------------------------

/// Measuring is always possible; a calibration needs a record that keeps it.
void PictureTab::readCalibration()
{
    m_viewer->keepTaillePixel = {};
    if (m_record.id <= 0 || m_record.pictures.isEmpty())
        return;
    if (m_place.runner().isRunning()) {
        connect(&m_place.runner(), &platform::TaskRunner::finished, this, &PictureTab::readCalibration,
                Qt::ConnectionType(Qt::QueuedConnection | Qt::SingleShotConnection));
        return;
    }
    try {
        jet::Database& database = m_place.session().database();
        if (!images::keepsCalibration(database, m_record.module))
            return;
        m_viewer->setTaillePixel(images::taillePixel(database, {m_record.module, m_record.id}));
        if (!m_record.readOnly && !m_place.session().readOnly())
            m_viewer->keepTaillePixel = [this](float size) { return keepCalibration(size); };
    } catch (const jet::Error& error) {
        m_place.fail(titleMeasure, error.description());
    }
}

bool PictureTab::keepCalibration(float size)
{
    if (m_place.runner().isRunning()) {
        m_place.dialogues().tell(u"Le projet est occupé : l'étalonnage n'a pas été enregistré."_s, titleMeasure,
                                 platform::BoxIcon::Warning);
        return false;
    }
    try {
        if (!images::setTaillePixel(m_place.session().database(), {m_record.module, m_record.id}, size))
            return false;
    } catch (const jet::Error& error) {
        m_place.fail(titleMeasure, error.description());
        return false;
    }
    m_place.written({m_record.module});
    return true;
}

} // namespace app
