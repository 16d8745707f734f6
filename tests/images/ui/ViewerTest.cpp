#include "PictureFiles.h"
#include "images/ui/Viewer.h"
#include "support/ScriptedDialogues.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {

using namespace Qt::StringLiterals;
using images::Viewer;

const QString title = u"TransUserControlation de coordonnées"_s;
const QString prompt = u"Indiquez la distance réelle entre les deux points"_s;

class ViewerTest : public testing::Test {
protected:
    void SetUp() override
    {
        viewer.resize(700, 600);
        viewer.show();
        support::drawing(folder.filePath(u"x.jpg"_s), {3000, 2000});
    }
    void load(const QString& name)
    {
        viewer.Load_Picture(name, {folder.path()});
        ASSERT_TRUE(QTest::qWaitFor([this] { return !viewer.isLoading(); }, 20'000));
    }
    images::PictureCanvas& canvas() { return viewer.canvas(); }
    void trigger(const QString& key) { viewer.findChild<QAction*>(key)->trigger(); }
    void stroke(QPoint from, QPoint to)
    {
        QTest::mousePress(&canvas(), Qt::LeftButton, {}, from);
        QTest::mouseMove(&canvas(), (from + to) / 2);
        QMouseEvent move(QEvent::MouseMove, to, canvas().mapToGlobal(to), Qt::NoButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&canvas(), &move);
        QTest::mouseRelease(&canvas(), Qt::LeftButton, {}, to);
    }

    QTemporaryDir folder;
    support::ScriptedDialogues dialogues;
    Viewer viewer{dialogues};
};

TEST_F(ViewerTest, ShowsTheWholePictureAndSaysWhatItCannotFind)
{
    EXPECT_FALSE(viewer.findChild<QAction*>(u"dist"_s)->isEnabled());
    viewer.Load_Picture(u"x.jpg"_s, {folder.path()});
    EXPECT_EQ(canvas().text(), u"Chargement de l'image en cours......."_s);
    load(u"x.jpg"_s);
    EXPECT_EQ(viewer.NomFichier(), u"x.jpg"_s);
    EXPECT_EQ(canvas().picture().size, QSize(3000, 2000));
    EXPECT_LE(canvas().positionOf({0, 0}).x(), 1);
    EXPECT_NEAR(canvas().positionOf({3000, 1000}).x(), canvas().width(), 1);
    load(u"y.jpg"_s);
    EXPECT_EQ(canvas().text(), u"Impossible de trouver l'image source :y.jpg"_s);
    EXPECT_TRUE(canvas().picture().image.isNull());
    support::put(folder.filePath(u"z.jpg"_s), "texte");
    load(u"z.jpg"_s);
    EXPECT_TRUE(canvas().text().startsWith(u"Erreur de chargement de l'image "_s));
}

TEST_F(ViewerTest, ZoomsAtTheCursorAndOntoAFrame)
{
    load(u"x.jpg"_s);
    const QPointF cursor(200, 150), pixel = canvas().pictureAt(cursor);
    QWheelEvent wheel(cursor, canvas().mapToGlobal(cursor), {}, {0, 240}, Qt::NoButton, {}, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&canvas(), &wheel);
    EXPECT_NEAR(canvas().pictureAt(cursor).x(), pixel.x(), 0.01);
    EXPECT_NEAR(canvas().pictureAt(cursor).y(), pixel.y(), 0.01);
    const double zoom = canvas().zoom();
    trigger(u"zplus"_s);
    EXPECT_GT(canvas().zoom(), zoom);
    trigger(u"zmoins"_s);
    EXPECT_NEAR(canvas().zoom(), zoom, 1e-9);
    trigger(u"zall"_s);
    const QPoint from(100, 200), to(300, 320);
    const QPointF middle = (canvas().pictureAt(from) + canvas().pictureAt(to)) / 2;
    trigger(u"zcadre"_s);
    stroke(from, to);
    EXPECT_NEAR(canvas().pictureAt(QRectF(canvas().rect()).center()).x(), middle.x(), 0.01);
    EXPECT_NEAR(canvas().positionOf(middle).y(), canvas().height() / 2.0, 0.01);
    EXPECT_FALSE(viewer.findChild<QAction*>(u"zcadre"_s)->isChecked());
    QTest::keyClick(&canvas(), Qt::Key_Home);
    EXPECT_NEAR(canvas().positionOf({3000, 1000}).x(), canvas().width(), 1);
    QTest::keyClick(&canvas(), Qt::Key_1);
    EXPECT_EQ(canvas().zoom(), 1);
}

/// Only who looks at pixels waits for all of them.
TEST_F(ViewerTest, DecodesLargePicturesWholeWhenTheirPixelsAreLookedAt)
{
    load(u"x.jpg"_s);
    EXPECT_EQ(canvas().picture().image.width(), 2048);
    viewer.Zoom(1);
    ASSERT_TRUE(QTest::qWaitFor([this] { return canvas().picture().isWhole(); }, 20'000));
    EXPECT_EQ(canvas().zoom(), 1);
}

TEST_F(ViewerTest, MeasuresInPixelsOfThePicture)
{
    load(u"x.jpg"_s);
    trigger(u"dist"_s);
    stroke({100, 300}, {400, 300});
    const double pixels = 300 / canvas().zoom();
    EXPECT_NEAR(canvas().segment().length(), pixels, 0.01);
    EXPECT_EQ(canvas().segmentText(), u"D = 0"_s); // never calibrated
    viewer.setTaillePixel(0.5F);
    EXPECT_EQ(canvas().segmentText(), Viewer::distanceText(pixels, 0.5F));
    EXPECT_EQ(Viewer::distanceText(25, 0.5F), u"D = 12,5"_s);
}

TEST_F(ViewerTest, CalibratesByASegmentOfKnownLength)
{
    load(u"x.jpg"_s);
    float kept = 0;
    bool accepted = true;
    viewer.keepTaillePixel = [&](float size) {
        kept = size;
        return accepted;
    };
    trigger(u"dist"_s);
    const auto draw = [&](const QString& proposed, std::optional<QString> answer) {
        dialogues.expectInput(title, prompt, proposed, std::move(answer));
        stroke({100, 300}, {400, 300});
    };
    draw(u"0"_s, {});
    draw(u"0"_s, u"0"_s);
    draw(u"0"_s, u"douze"_s);
    EXPECT_EQ(viewer.TaillePixel(), 0.0F);
    draw(u"0"_s, u"12,5"_s);
    EXPECT_NEAR(kept, 12.5 * canvas().zoom() / 300, 1e-6);
    EXPECT_EQ(viewer.TaillePixel(), kept);
    EXPECT_EQ(canvas().segmentText(), u"D = 12,5"_s);
    accepted = false; // refused where it is kept
    draw(u"12,5"_s, u"25"_s);
    EXPECT_EQ(canvas().segmentText(), u"D = 12,5"_s);
    QTest::keyClick(&canvas(), Qt::Key_Escape);
    EXPECT_FALSE(viewer.findChild<QAction*>(u"dist"_s)->isChecked());
}

} // namespace
