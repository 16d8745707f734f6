#include "platform/ui/cl_MSFlexgrid.h"
#include "support/ScriptedDialogues.h"

#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QHeaderView>
#include <QStandardItemModel>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

class Flexgrid : public ::testing::Test {
protected:
    Flexgrid() : model(3, 3), grid(view, [](int row) { return 10 * (row + 1); })
    {
        model.setHorizontalHeaderLabels({u"Nom"_s, u"Caché"_s, u"Note"_s});
        const QStringList texts{u"b"_s, u"x"_s, u"dit \"oui\""_s, u"a"_s, u"x"_s, {}, u"c"_s, u"x"_s, u"é"_s};
        for (int i = 0; i < texts.size(); ++i)
            model.setItem(i / 3, i % 3, new QStandardItem(texts[i]));
        view.setModel(&model);
        view.setSelectionBehavior(QAbstractItemView::SelectRows);
        view.hideColumn(1);
    }
    QStandardItemModel model;
    QTableView view;
    platform::cl_MSFlexgrid grid;
    support::ScriptedDialogues dialogues;
};

TEST_F(Flexgrid, CountsColumnsAsTheyAreSeen)
{
    EXPECT_EQ(grid.Cols(), 2);
    view.horizontalHeader()->moveSection(2, 0);
    EXPECT_EQ(grid.Header(), (QStringList{u"Note"_s, u"Nom"_s}));
    EXPECT_EQ(grid.TextMatrix(2, 0), u"é"_s);
}

TEST_F(Flexgrid, GivesRowsByNumberAndByIdentifier)
{
    EXPECT_EQ(grid.KeyAll(), u"10,20,30"_s);
    view.selectRow(1);
    grid.SelectInverse();
    EXPECT_EQ(grid.SelCount(), 2);
    EXPECT_EQ(grid.IDSelected(), u"0,2"_s);
    EXPECT_EQ(grid.KeySelected(), u"10,30"_s);
    grid.SelectNone();
    EXPECT_EQ(grid.IDSelected(), QString());
    grid.SelectAll();
    EXPECT_EQ(grid.SelCount(), 3);
}

TEST_F(Flexgrid, CopiesRowsInTheFormOfTheExport)
{
    grid.CopyRowSel(u"0,2,7"_s);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"\"b\";\"dit \"oui\"\"\r\n\"c\";\"é\"\r\n"_s);
    view.setCurrentIndex(model.index(0, 2));
    grid.CopyCell();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"dit \"oui\""_s);
}

TEST_F(Flexgrid, SortsInTheOrderSetAndExportsWhatIsSeen)
{
    grid.setCroissantOrder(false);
    EXPECT_FALSE(grid.CroissantOrder());
    grid.ColSort(0);
    EXPECT_TRUE(grid.Remove(0));
    QTemporaryDir folder;
    const QString file = folder.filePath(u"grille.csv"_s);
    EXPECT_TRUE(grid.ExportCSV(dialogues, file));
    QFile written(file);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(written.readAll()), u"\"Nom\";\"Note\"\r\n\"b\";\"dit \"oui\"\"\r\n\"a\";\"\"\r\n"_s);
}

} // namespace
