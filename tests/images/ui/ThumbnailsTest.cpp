#include "PictureFiles.h"
#include "images/ThumbnailLoader.h"
#include "images/ui/Thumbnails.h"
#include "support/Project.h"

#include <QDir>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

namespace {

using namespace Qt::StringLiterals;
using images::PictureRows;
using images::Thumbnails;

/// Records 1001, 1002 … with the pictures p0.jpg, p1.jpg …
std::shared_ptr<PictureRows> rows(int count)
{
    QList<PictureRows::Row> made;
    for (int i = 0; i < count; ++i)
        made << PictureRows::Row{1001 + i, u"p%1.jpg"_s.arg(i)};
    return std::make_shared<PictureRows>(made);
}

class ThumbnailsTest : public testing::Test {
protected:
    void SetUp() override
    {
        control.resize(700, 500);
        control.setColonnes(4);
        control.show();
    }
    images::ThumbnailGrid& grid() { return control.grid(); }
    void click(qsizetype position, Qt::KeyboardModifiers keys = {})
    {
        QTest::mouseClick(grid().viewport(), Qt::LeftButton, keys, grid().cell(position).center());
    }
    void press(int key, Qt::KeyboardModifiers keys = {}) { QTest::keyClick(&grid(), Qt::Key(key), keys); }

    Thumbnails control;
};

TEST_F(ThumbnailsTest, TurnsPagesAndSaysWhatIsShown)
{
    control.setNbImages(30);
    control.setPictures(rows(100));
    EXPECT_EQ(control.pageCount(), 4);
    EXPECT_EQ(control.countText(), u"100 Cellule(s)"_s);
    EXPECT_TRUE(control.TimeText().endsWith(u's'));
    control.goTo(u"next"_s);
    EXPECT_EQ(grid().firstShown(), 30);
    control.goTo(u"last"_s);
    EXPECT_EQ(grid().firstShown(), 90);
    EXPECT_EQ(grid().shownCount(), 10);
    control.goTo(u"next"_s);
    EXPECT_EQ(control.page(), 3);
    EXPECT_FALSE(control.findChild<QToolButton*>(u"last"_s)->isEnabled());
    control.goTo(u"prev"_s);
    control.goTo(u"first"_s);
    EXPECT_EQ(control.page(), 0);
    EXPECT_EQ(grid().source()->name(grid().inSight().first), u"p0.jpg"_s);
}

TEST_F(ThumbnailsTest, SelectsByIdentifierWithTheMouse)
{
    control.setPictures(rows(40));
    QSignalSpy told(&control, &Thumbnails::selectionChanged);
    click(2);
    EXPECT_EQ(control.SelectedItems(), u"1003"_s);
    EXPECT_EQ(control.SelectedFile(), u"p2.jpg"_s);
    click(5, Qt::ShiftModifier);
    EXPECT_EQ(control.SelectedItems(), u"1003,1004,1005,1006"_s);
    click(3, Qt::ControlModifier);
    EXPECT_EQ(control.SelectedlsFiles(), (QStringList{u"p2.jpg"_s, u"p4.jpg"_s, u"p5.jpg"_s}));
    EXPECT_EQ(told.count(), 3);
    control.RefreshSelectedItems({1010, 1020}); // says nothing back
    EXPECT_EQ(told.count(), 3);
    EXPECT_EQ(control.Row(), 2);
    EXPECT_EQ(control.col(), 1);
    EXPECT_EQ(control.findChild<QLabel*>(u"nbsel"_s)->text(), u"Sel. 2"_s);
    control.SelectAll();
    EXPECT_EQ(control.selectedIds().size(), 40);
    QSignalSpy opened(&control, &Thumbnails::activated);
    QTest::mouseDClick(grid().viewport(), Qt::LeftButton, {}, grid().cell(9).center());
    ASSERT_EQ(opened.count(), 1);
    EXPECT_EQ(opened[0][0].toInt(), 1010);
}

TEST_F(ThumbnailsTest, SelectionOutlivesAnotherReading)
{
    control.setPictures(rows(40));
    control.RefreshSelectedItems({1005});
    control.setPictures(rows(60));
    EXPECT_EQ(control.SelectedItems(), u"1005"_s);
    control.Clear();
    EXPECT_EQ(control.SelectedItems(), QString());
    EXPECT_EQ(control.countText(), u"0 Cellule(s)"_s);
}

TEST_F(ThumbnailsTest, IsWalkedWithTheKeyboard)
{
    control.setNbImages(20);
    control.setPictures(rows(50));
    grid().setFocus();
    press(Qt::Key_Right);
    EXPECT_EQ(grid().current(), 0);
    press(Qt::Key_Down);
    press(Qt::Key_Right);
    EXPECT_EQ(control.SelectedItems(), u"1006"_s);
    press(Qt::Key_Right, Qt::ShiftModifier);
    press(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(control.SelectedItems(), u"1006,1007,1008"_s);
    press(Qt::Key_Home, Qt::ControlModifier);
    EXPECT_EQ(control.selectedIds().size(), 3);
    press(Qt::Key_Space, Qt::ControlModifier);
    EXPECT_EQ(control.selectedIds().size(), 4);
    press(Qt::Key_End);
    EXPECT_EQ(grid().current(), 19);
    EXPECT_TRUE(grid().viewport()->rect().contains(grid().cell(19)));
    press(Qt::Key_PageDown);
    EXPECT_EQ(control.page(), 1);
    QSignalSpy opened(&control, &Thumbnails::activated);
    press(Qt::Key_Return);
    ASSERT_EQ(opened.count(), 1);
    EXPECT_EQ(opened[0][0].toInt(), 1021);
}

TEST_F(ThumbnailsTest, LaysColumnsAndRowsOut)
{
    control.setPictures(rows(40));
    control.setLignes(2);
    const QRect first = grid().cell(0), fifth = grid().cell(4);
    EXPECT_EQ(fifth.left(), first.left());
    EXPECT_EQ(first.height(), grid().viewport()->height() / 2);
    control.setColonnes(0);
    control.setLignes(0);
    grid().setSide(100);
    EXPECT_EQ(control.Colonnes(), grid().viewport()->width() / 112);
    const int plain = grid().cell(0).height();
    control.setShowIDPicture(true);
    EXPECT_GT(grid().cell(0).height(), plain);
}

/// Rows of an earlier statement that come late are dropped; a failure is said.
TEST_F(ThumbnailsTest, ShowsTheLastStatementAlone)
{
    QList<std::pair<QString, Thumbnails::Done>> asked;
    control.setReader([&asked](const QString& statement, const Thumbnails::Done& done) { asked.append({statement, done}); });
    control.setSQL(u"un"_s);
    control.Refresh();
    control.setSQL(u"deux"_s);
    control.Refresh();
    EXPECT_TRUE(control.isReading());
    ASSERT_EQ(asked.size(), 2);
    asked[1].second(rows(2), {});
    asked[0].second(rows(1), {});
    EXPECT_EQ(control.countText(), u"2 Cellule(s)"_s);
    QSignalSpy failed(&control, &Thumbnails::failed);
    control.Refresh();
    asked[2].second({}, u"Table inconnue"_s);
    EXPECT_EQ(failed.count(), 1);
    EXPECT_EQ(control.message(), u"Table inconnue"_s);
}

TEST_F(ThumbnailsTest, FillsWhatIsInSightAndSaysWhatIsMissing)
{
    support::TestProject project;
    QDir(project.folder.path()).mkpath(u"photos"_s);
    for (int i = 0; i < 40; ++i)
        support::drawing(project.path(u"photos/p%1.jpg"_s.arg(i)), {320, 240}, QColor::fromHsv(i * 9, 255, 255));
    QFile::remove(project.path(u"photos/p1.jpg"_s));
    auto loader = std::make_shared<images::ThumbnailLoader>(project.path(), project.clock);
    loader->setFolders({project.path(u"photos"_s)});
    control.setLoader(loader);
    control.setPictures(rows(400));
    const auto filled = [this] {
        const auto [begin, end] = grid().inSight();
        for (qsizetype i = begin; i < end; ++i) {
            if (!grid().isReady(i))
                return false;
        }
        return true;
    };
    ASSERT_TRUE(QTest::qWaitFor(filled, 20'000));
    EXPECT_EQ(control.message(), u"L'image p1.jpg est introuvable dans les répertoires déclarés"_s);
    EXPECT_EQ(grid().failureOf(1), control.message());
    // The middle of a cell has the colour of its picture.
    const QImage seen = grid().viewport()->grab().toImage();
    EXPECT_NEAR(seen.pixelColor(grid().cell(4).center() - QPoint(0, 10)).hsvHue(), 36, 6);
    EXPECT_FALSE(grid().isReady(200));
    control.setLoader({});
}

} // namespace
