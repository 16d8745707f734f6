#include "MapWindow.h"
#include "app/Demo.h"
#include "app/References.h"
#include "map/PointLoading.h"
#include "map/ui/CalibrationBar.h"
#include "map/ui/MapPanel.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QSpinBox>

using namespace map;
using namespace Qt::StringLiterals;

namespace {

const QString sheetFile = u"newcaledonia_163-169E_23-19S_1200x800.png"_s;

/// The demo project with its places on the panel; its own map is taken away, its picture lies as "scan.png".
class Panel : public testing::Test, public editing::FormDialogue {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(app::buildDemo(project.session, project.path(), project.progression));
        QFile::copy(QCoreApplication::applicationDirPath() + u"/Globe.gif"_s, project.folder.filePath(u"Globe.gif"_s));
        images = app::demoImageFolder(project.path());
        QFile::copy(images + u'/' + sheetFile, images + u"/scan.png"_s);
        project.db().Execute(u"DELETE * FROM Localités WHERE [ID Type]<0"_s);
        project.session.setForm(this);
        panel = std::make_unique<MapPanel>(MapWorld{project.db(), project.session.references().places(), project.dialogues,
                                                    project.clock, [this] { return QStringList{images}; }});
        panel->resize(1000, 800);
        panel->show();
        panel->showPoints(loadProject(project.db(), project.progression).points);
        project.dialogues.verify();
    }
    void TearDown() override
    {
        panel.reset();
        project.session.setForm(nullptr);
    }
    /// Fills the form of a new place.
    bool edit(const QString& title, editing::Cl_Editions& form,
              const std::function<bool(editing::Cl_Editions&)>& save) override
    {
        formTitle = title;
        form.Item(u"Localité"_s)->setValue(u"Point cliqué"_s);
        return save(form);
    }
    template<typename T>
    T* find(const QString& name)
    {
        return panel->findChild<T*>(name);
    }
    /// The pixel of the control that shows a pixel of the picture.
    QPoint onPicture(QPointF pixel)
    {
        MapCanvas& map = panel->map();
        return map.view()
            .position({columnToLongitude(pixel.x(), map.frame(), map.pictureSize()),
                       rowToLatitude(pixel.y(), map.frame(), map.pictureSize())})
            .toPoint();
    }
    void addScan()
    {
        project.dialogues.expectOpenFile(
            u"Ajout d'une carte"_s,
            u"Images (*.jpg *.jpeg *.png *.tif *.tiff *.bmp *.gif)|*.jpg *.jpeg *.png *.tif *.tiff *.bmp *.gif|Tous (*)|*|"_s,
            images + u"/scan.png"_s);
        project.dialogues.expectInput(u"Ajout d'une carte"_s, u"Nom de la carte"_s, u"scan"_s, u"Feuille 1"_s);
        find<QAction>(u"ajouterCarte"_s)->trigger();
    }
    /// Two points whose coordinates the sheet shows: 164° E, 20° S and 168° E, 22° S.
    void markTwoPoints()
    {
        QTest::mouseClick(&panel->map(), Qt::LeftButton, {}, onPicture({200, 200}));
        QTest::mouseClick(&panel->map(), Qt::LeftButton, {}, onPicture({1000, 600}));
    }
    void type(const QString& name, const QString& text) { find<QLineEdit>(name)->setText(text); }
    /// The four spin boxes exactly on the points, as a careful user corrects them.
    void correctMarks()
    {
        const QList<QPair<QString, double>> pixels{{u"X1"_s, 200}, {u"Y1"_s, 200}, {u"X2"_s, 1000}, {u"Y2"_s, 600}};
        for (const auto& [name, value] : pixels)
            find<QDoubleSpinBox>(name)->setValue(value);
    }

    support::TestProject project;
    QString images;
    QString formTitle;
    std::unique_ptr<MapPanel> panel;
};

} // namespace

TEST_F(Panel, BeginsWithTheMapThatHoldsAllPoints)
{
    EXPECT_EQ(panel->map().IDCarte(), worldMap);
    EXPECT_EQ(panel->map().CarteCourante(), u"Monde");
    EXPECT_EQ(panel->maps().count(), 1);
    EXPECT_EQ(panel->map().points().size(), 860);
    EXPECT_TRUE(panel->statusText().startsWith(u"860 localités"_s)) << panel->statusText().toStdString();
}

TEST_F(Panel, AScannedMapIsAddedCalibratedAndHoldsThePlacesWhereTheyShouldBe)
{
    addScan();
    const qint32 id = panel->map().IDCarte();
    ASSERT_NE(id, worldMap);
    EXPECT_EQ(project.single(u"SELECT [ImageRegion] FROM Localités WHERE [ID Localités]="_s + QString::number(id)), u"scan.png"_s);
    EXPECT_FALSE(panel->map().isCalibrated());
    EXPECT_EQ(find<QLabel>(u"calibrationNote"_s)->text(), u"Sélectionnez les points de calibration.");
    EXPECT_TRUE(panel->map().readOut({100, 300}).startsWith(u"X : "_s));
    markTwoPoints();
    ASSERT_EQ(panel->map().marks().size(), 2);
    EXPECT_NEAR(find<QDoubleSpinBox>(u"X2"_s)->value(), 1000, 1.5);
    EXPECT_FALSE(find<QPushButton>(u"calibrer"_s)->isEnabled());
    type(u"longitude1"_s, u"164"_s);
    type(u"latitude1"_s, u"S20°00'00"_s);
    type(u"longitude2"_s, u"E168°00'00"_s);
    type(u"latitude2"_s, u"-22"_s);
    correctMarks();
    EXPECT_EQ(project.single(u"SELECT [LongDD] FROM Localités WHERE [ID Localités]="_s + QString::number(id)).toDouble(), 0);
    find<QPushButton>(u"calibrer"_s)->click();

    const Frame frame = panel->map().frame();
    EXPECT_NEAR(frame.X0, 163, 1e-9);
    EXPECT_NEAR(frame.Y0, -19, 1e-9);
    EXPECT_NEAR(frame.right(), 169, 1e-9);
    EXPECT_NEAR(frame.bottom(), -23, 1e-9);
    EXPECT_EQ(panel->map().tool(), MapTool::Point);
    // The plot "Calcaires de Koumac" (164.35525513 E, 20.53927231 S) by the bounds of the sheet.
    const int koumac = panel->map().points().indexOf(
        project.single(u"SELECT [ID Localités] FROM Localités WHERE [Localité]=\"Calcaires de Koumac\""_s).toInt());
    ASSERT_GE(koumac, 0);
    const QPointF pixel = toPicture(panel->map().points().at(koumac).at, frame, panel->map().pictureSize());
    EXPECT_NEAR(pixel.x(), (164.35525513 - 163) * 200, 1e-6);
    EXPECT_NEAR(pixel.y(), (-19 + 20.53927231) * 200, 1e-6);
    const QColor there = panel->map().PictureView().pixelColor(onPicture(pixel));
    EXPECT_GT(there.red(), there.blue() + 60);
    EXPECT_TRUE(panel->maps().currentText().contains(u"(6 / 860)"_s)) << panel->maps().currentText().toStdString();
}

TEST_F(Panel, ACalibrationOnOneMeridianIsRefusedAndChangesNothing)
{
    addScan();
    markTwoPoints();
    type(u"longitude1"_s, u"164"_s);
    type(u"latitude1"_s, u"-20"_s);
    type(u"longitude2"_s, u"164"_s);
    type(u"latitude2"_s, u"-22"_s);
    project.dialogues.expectTell(u"Erreur de calibration: Impossible de calibrer la carte en utilisant des points de même Latitude/longitude"_s,
                                 u"Calibration"_s, platform::BoxIcon::Stop);
    find<QPushButton>(u"calibrer"_s)->click();
    EXPECT_FALSE(panel->map().isCalibrated());
    EXPECT_EQ(panel->map().tool(), MapTool::Calibrate);
    // What cannot be read is said beside the fields.
    type(u"longitude2"_s, u"par là"_s);
    find<QPushButton>(u"calibrer"_s)->click();
    EXPECT_TRUE(find<QLabel>(u"calibrationNote"_s)->text().startsWith(u"Longitude X2 : "_s));
    find<QPushButton>(u"annulerCalibration"_s)->click();
    EXPECT_FALSE(panel->calibration().isVisible());
    EXPECT_FALSE(panel->map().isCalibrated());
}

TEST_F(Panel, MarksOfACalibrationCanBeDragged)
{
    addScan();
    markTwoPoints();
    support::stroke(panel->map(), {onPicture({200, 200}), onPicture({250, 250}), onPicture({300, 240})});
    EXPECT_NEAR(find<QDoubleSpinBox>(u"X1"_s)->value(), 300, 2);
    EXPECT_NEAR(find<QDoubleSpinBox>(u"Y1"_s)->value(), 240, 2);
    EXPECT_NEAR(panel->map().marks()[1].x(), 1000, 2);
}

TEST_F(Panel, AClickAddsAPlaceWithItsCoordinates)
{
    QSignalSpy told(panel.get(), &MapPanel::placesChanged);
    find<QAction>(u"ajouterLocalite"_s)->trigger();
    panel->map().ZoomExtend();
    const QPoint where(panel->map().LongDtoPicture(u"E010°00'00.00"_s), panel->map().LatDtoPicture(45));
    QTest::mouseClick(&panel->map(), Qt::LeftButton, {}, where);
    EXPECT_EQ(formTitle, u"Monde (Nouvelle Localité)");
    const QString place = u"FROM Localités WHERE [Localité]=\"Point cliqué\""_s;
    EXPECT_NEAR(project.single(u"SELECT [LongDD] "_s + place).toDouble(), 10, 0.3);
    EXPECT_NEAR(project.single(u"SELECT [LatDD] "_s + place).toDouble(), 45, 0.3);
    EXPECT_EQ(panel->map().IDlocalité(), project.single(u"SELECT [ID Localités] "_s + place).toInt());
    EXPECT_EQ(panel->map().SelectedItems(), project.single(u"SELECT [ID Localités] "_s + place).toString());
    EXPECT_EQ(panel->map().points().size(), 861);
    EXPECT_EQ(told.count(), 1);
    EXPECT_EQ(panel->map().tool(), MapTool::Point);
}

TEST_F(Panel, APictureThatIsNotFoundIsSaidAndTheMapBeforeStays)
{
    reference::Cl_Localité& places = project.session.references().places();
    const qint32 id = places.AddCarte(0, u"Perdue"_s, {1, 2, 3, 1}, u"perdue.png"_s);
    project.dialogues.expectTell(u"L'image perdue.png est introuvable dans les répertoires déclarés"_s, u"Cartographie"_s,
                                 platform::BoxIcon::Warning);
    EXPECT_FALSE(panel->map().LoadCarte(id));
    EXPECT_EQ(panel->map().IDCarte(), worldMap);
}

TEST_F(Panel, ExportsWhatItShows)
{
    const QList<QPair<QString, QString>> exports{{u"exporterCsv"_s, u"Texte CSV (point-virgule, *.csv)|*.csv"_s},
                                                 {u"exporterKml"_s, u"Fichier Google Earth (*.kml)|*.kml"_s},
                                                 {u"exporterGtm"_s, u"Fichier GPS Trackmaker (*.gtm)|*.gtm"_s},
                                                 {u"exporterScr"_s, u"Script AutoCad (*.scr)|*.scr"_s},
                                                 {u"exporterBmp"_s, u"Fichier Bitmap (*.bmp)|*.bmp"_s}};
    const QStringList titles{u"Exportation CSV"_s, u"Exportation KML"_s, u"Exportation GPS Trackmaker"_s,
                             u"Exportation Script AutoCad"_s, u"Exportation Bitmap"_s};
    for (qsizetype i = 0; i < exports.size(); ++i) {
        const QString file = project.path(u"sortie%1"_s.arg(i));
        project.dialogues.expectSaveFile(titles[i], exports[i].second, file + u".x"_s);
        find<QAction>(exports[i].first)->trigger();
        EXPECT_GT(QFile(file + u".x"_s).size(), 10000) << exports[i].first.toStdString();
    }
    QFile kml(project.path(u"sortie1.x"_s));
    ASSERT_TRUE(kml.open(QIODevice::ReadOnly));
    EXPECT_EQ(kml.readAll().count("<Placemark>"), 860);
}

TEST_F(Panel, PointsTakeTheirLookFromTheControl)
{
    Cartographie& map = panel->map();
    map.setPointMinSize(40);
    EXPECT_EQ(map.PointMaxSize(), 40);
    map.setTailleFixe(true);
    map.setPointBackColor(Qt::green);
    map.ClearPoints();
    map.PointAdd(1, u"A"_s, 10, 10, 3);
    map.PointAdd(1, u"A"_s, 10, 10, 2);
    map.PointRefresh();
    EXPECT_EQ(map.points().label(0), u"A (Effectif = 5 / 5)");
    map.ZoomExtend();
    const QPoint at(map.LongDtoPicture(10), map.LatDtoPicture(10));
    const QColor colour = map.PictureView().pixelColor(at + QPoint(15, 0));
    EXPECT_GT(colour.green(), colour.red() + 60);
    find<QSpinBox>(u"effectifMin"_s)->setValue(6);
    EXPECT_LT(map.PictureView().pixelColor(at).green(), map.PictureView().pixelColor(at).red() + 60);
    EXPECT_EQ(map.PictureCarte().width(), 4320);
}
