// The trees: loading, finding, keys, menus, drag and drop.
#include "BrowserFixture.h"

#include "reference/ui/LazyTreeModel.h"
#include "reference/ui/ReferenceTree.h"

#include <QClipboard>
#include <QMimeData>

namespace {

using namespace Qt::StringLiterals;
using platform::Answer;
using platform::BoxIcon;
using reference::LazyTreeModel;

class TreeTest : public BrowserTest {
protected:
    reference::Taxons& taxa() { return open(new reference::Taxons(world)); }
    reference::PlaceTree& places() { return open(new reference::PlaceTree(world)); }
    static void key(reference::ReferenceTree& tree, Qt::Key key, Qt::KeyboardModifiers with = Qt::NoModifier)
    {
        QTest::keyClick(&tree.tree(), key, with);
    }
    void drop(reference::ReferenceTree& tree, const QList<qint32>& ids, qint32 target)
    {
        QModelIndexList rows;
        for (const qint32 id : ids)
            rows << tree.model().locate(id);
        const std::unique_ptr<QMimeData> data(tree.model().mimeData(rows));
        const QModelIndex onto = tree.model().locate(target);
        EXPECT_TRUE(tree.model().canDropMimeData(data.get(), Qt::MoveAction, -1, -1, onto));
        tree.model().dropMimeData(data.get(), Qt::MoveAction, -1, -1, onto);
        QCoreApplication::processEvents();
    }
    QString codes() { return project.rows(u"SELECT CodeRegion FROM [Localités] ORDER BY [ID Localités]"_s).join(u' '); }
};

TEST_F(TreeTest, ReadsChildrenAsTheyAreUnfolded)
{
    auto& tree = taxa();
    LazyTreeModel& model = tree.model();
    EXPECT_EQ(children(model), (QStringList{u"Fagaceae"_s, u"Rosaceae"_s}));
    const QModelIndex family = model.index(0, 0);
    EXPECT_EQ(model.rowCount(family), 0);
    EXPECT_TRUE(model.hasChildren(family));
    key(tree, Qt::Key_Home);
    key(tree, Qt::Key_Right);
    EXPECT_EQ(children(model, family), (QStringList{u"Fagus"_s, u"Quercus"_s}));
    const QModelIndex robur = model.locate(3);
    EXPECT_EQ(robur.data(LazyTreeModel::KeyRole).toString(), u"3-Tax"_s);
    EXPECT_EQ(robur.data(LazyTreeModel::RankRole).toInt(), 3);
    EXPECT_TRUE(model.hasChildren(robur));
    EXPECT_FALSE(model.hasChildren(model.locate(7)));
    EXPECT_FALSE(model.hasChildren(model.locate(4)));
    EXPECT_FALSE(model.locate(99).isValid());
}

TEST_F(TreeTest, AGenusOfManySpeciesFillsBitByBit)
{
    {
        jet::Operation operation(project.db(), u"Essai"_s);
        for (int n = 0; n < 700; ++n)
            project.db().Execute(u"INSERT INTO Taxons (Taxon,[Nom Complet],[ID Famille],[ID Genre],[ID Espèce]) VALUES (\"sp%1\",\"Rosa sp%1\",8,9,%2)"_s.arg(
                QString::number(n), QString::number(10 + n)));
        operation.commit();
    }
    auto& tree = taxa();
    const QModelIndex genus = tree.model().locate(9);
    tree.tree().expand(genus.parent());
    tree.tree().expand(genus);
    EXPECT_LT(tree.model().rowCount(genus), 700);
    EXPECT_TRUE(QTest::qWaitFor([&] { return tree.model().rowCount(genus) == 700; }, 5000));
    EXPECT_TRUE(tree.showRow(10 + 699));
    EXPECT_EQ(tree.tree().currentIndex().parent(), genus);
}

TEST_F(TreeTest, FindsByTheBeginningOfANameByKeyboard)
{
    auto& tree = taxa();
    QSignalSpy chosen(&tree, &reference::ReferenceControl::rowChosen);
    key(tree, Qt::Key_F, Qt::ControlModifier);
    ASSERT_TRUE(tree.findLine().hasFocus());
    QTest::keyClicks(&tree.findLine(), u"quercus p"_s);
    QTest::keyClick(&tree.findLine(), Qt::Key_Return);
    EXPECT_EQ(tree.currentId(), 5);
    EXPECT_EQ(chosen.last().first().toInt(), 5);
    EXPECT_TRUE(tree.tree().hasFocus());
    key(tree, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"Quercus petraea"_s);
}

TEST_F(TreeTest, AddsEveryRankByKeyboard)
{
    auto& tree = taxa();
    const auto add = [&](const QString& name) {
        form.steps.push_back({{{u"Nom Complet"_s, name}}});
        key(tree, Qt::Key_N, Qt::ControlModifier);
        return tree.tree().currentIndex().data().toString();
    };
    tree.tree().setCurrentIndex({});
    EXPECT_EQ(add(u"betulaceae"_s), u"Betulaceae"_s); // nothing is current: a family
    EXPECT_EQ(add(u"betula"_s), u"Betula"_s);
    EXPECT_EQ(add(u"Pendula"_s), u"pendula"_s);
    EXPECT_EQ(add(u"var. Crispa"_s), u"var. crispa"_s);
    EXPECT_EQ(add(u"var. dalecarlica"_s), u"var. dalecarlica"_s) << "nothing is under a variety: a neighbour";
    EXPECT_EQ(form.titles, (QStringList{u"Nouvelle famille"_s, u"Nouveau genre"_s, u"Nouvelle espèce"_s,
                                        u"Nouveau taxon infrasp."_s, u"Nouveau taxon infrasp."_s}));
    EXPECT_EQ(children(tree.model()), (QStringList{u"Betulaceae"_s, u"Fagaceae"_s, u"Rosaceae"_s})) << "in order";
    EXPECT_EQ(project.rows(u"SELECT [Nom Complet] FROM Taxons WHERE [ID Taxons]>9 ORDER BY [ID Taxons]"_s).last(),
              u"Betula pendula var. dalecarlica"_s);
    EXPECT_EQ(written, QStringList(5, u"Taxons"_s));
}

TEST_F(TreeTest, TheAddMenuOffersTheRanksAtHand)
{
    auto& tree = taxa();
    const auto offered = [&](qint32 id) {
        tree.showRow(id);
        QStringList texts;
        Q_EMIT tree.addMenu()->aboutToShow();
        for (const QAction* action : tree.addMenu()->actions()) {
            if (!action->isSeparator())
                texts << action->text() + (action->isEnabled() ? QString() : u" -"_s);
        }
        return texts.join(u", "_s);
    };
    EXPECT_EQ(offered(1), u"Nouvelle Famille, Nouveau Genre"_s);
    EXPECT_EQ(offered(2), u"Nouvelle Famille, Nouveau Genre, Nouvelle Espèce"_s);
    EXPECT_EQ(offered(4), u"Nouvelle Famille, Nouveau Genre, Nouvelle Espèce, Nouveau Taxon Infra, Indisponible -"_s);
    form.steps.push_back({{{u"Nom Complet"_s, u"castanea"_s}}});
    tree.addMenu()->findChild<QAction*>(u"rang2"_s)->trigger();
    EXPECT_EQ(tree.model().locate(1), tree.tree().currentIndex().parent());
}

TEST_F(TreeTest, DraggingMovesOrSinksAndTheRecordsStayOpen)
{
    auto& tree = taxa();
    tree.tree().expand(tree.model().locate(2));
    project.dialogues.expectConfirm(u"Déplacer le Taxon \"Quercus robur\" dans le taxon \"Fagus\" ?\r\n"_s,
                                    u"Déplacement de taxons"_s, true, BoxIcon::Question, Answer::No);
    drop(tree, {3}, 6);
    EXPECT_EQ(children(tree.model(), tree.model().locate(6)), (QStringList{u"robur"_s, u"sylvatica"_s}));
    EXPECT_EQ(children(tree.model(), tree.model().locate(2)), QStringList{u"petraea"_s});
    EXPECT_EQ(world->taxa.NomTaxon(4, 0), u"Fagus robur var. alba"_s);
    form.steps.push_back({{{u"DateSynonymie"_s, u"1999"_s}}});
    drop(tree, {5}, 3); // onto its like
    EXPECT_EQ(world->taxa.IDValid(5, false), 3);
    EXPECT_TRUE(tree.model().rowAt(tree.model().locate(5)).synonym);
    tree.showRow(5);
    EXPECT_TRUE(tree.command(u"unsink"_s)->isEnabled());
    tree.command(u"valid"_s)->trigger();
    EXPECT_EQ(tree.currentId(), 3);
    project.dialogues.expectConfirm(u"Vous allez SUPPRIMER le Taxon \"Fagus robur\"...!!!\rLa suppression d'un Taxon entraîne la suppression de tous les sous-taxons ainsi que la rupture définitive des liens\r\rSupprimer les Taxons sélectionnés ?"_s,
                                    u"Suppression..."_s, true, BoxIcon::Stop);
    key(tree, Qt::Key_Delete);
    EXPECT_EQ(children(tree.model(), tree.model().locate(6)), QStringList{u"sylvatica"_s});
    EXPECT_EQ(world->taxa.IDValid(5, false), -1);
    EXPECT_FALSE(tree.model().rowAt(tree.model().loaded(5)).synonym) << "seen without reading the tree anew";
    // The individual that pointed at it is still there and shows the name of what is missing.
    EXPECT_EQ(project.single(u"SELECT [ID Taxons] FROM Déterminations WHERE [ID Individus]=1"_s).toInt(), 3);
    EXPECT_EQ(world->taxa.NomTaxon(3, 0), u"Indetermineae"_s);
}

TEST_F(TreeTest, ATaxonGoesIntoNoLowerRank)
{
    auto& tree = taxa();
    const auto mayDrop = [&](qint32 moved, qint32 target) {
        const std::unique_ptr<QMimeData> data(tree.model().mimeData({tree.model().locate(moved)}));
        return tree.model().canDropMimeData(data.get(), Qt::MoveAction, -1, -1, tree.model().locate(target));
    };
    EXPECT_FALSE(mayDrop(8, 2)) << "a family into a genus";
    EXPECT_FALSE(mayDrop(9, 3)) << "a genus into a species";
    EXPECT_TRUE(mayDrop(7, 4)) << "a species may be a synonym of a variety";
    EXPECT_TRUE(mayDrop(9, 1));
    const QStringList before = project.rows(u"SELECT * FROM Taxons"_s);
    tree.showRow(9);
    project.dialogues.expectTell(u"Un taxon ne se déplace que dans un taxon de rang supérieur"_s, u"Déplacement de taxons"_s,
                                 BoxIcon::Warning);
    inDialog([](QWidget& dialog) {
        auto& choice = static_cast<reference::ChoiceDialog&>(dialog);
        EXPECT_TRUE(choice.control().showRow(3));
        QTest::keyClick(&choice.control().view(), Qt::Key_Return);
    });
    key(tree, Qt::Key_M, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(project.rows(u"SELECT * FROM Taxons"_s), before);
}

TEST_F(TreeTest, PlacesStandUnderTheWorldWithTheirMaps)
{
    auto& tree = places();
    const LazyTreeModel& model = tree.model();
    const QModelIndex top = model.topIndex();
    EXPECT_EQ(top.data().toString(), u"Monde"_s);
    EXPECT_EQ(top.data(LazyTreeModel::KeyRole).toString(), u"0-Loc"_s);
    EXPECT_EQ(children(model, top), (QStringList{u"France"_s, u"Gabon"_s}));
    const QModelIndex gabon = tree.model().locate(1);
    tree.tree().expand(gabon);
    EXPECT_EQ(children(model, gabon), (QStringList{u"Carte du Gabon"_s, u"Makokou"_s}));
    const QModelIndex map = tree.model().locate(5);
    EXPECT_EQ(map.data(LazyTreeModel::KeyRole).toString(), u"5-Map"_s);
    EXPECT_FALSE(model.flags(map) & Qt::ItemIsDropEnabled);
    form.steps.push_back({{{u"Localité"_s, u"Ivindo"_s}, {u"LongDD"_s, 12.0}, {u"LatDD"_s, 0.5}}});
    tree.showRow(2);
    key(tree, Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(tree.tree().currentIndex().data().toString(), u"Ivindo"_s);
    EXPECT_EQ(codes(), u"1 1/2 1/2/3 4 1/5 1/2/6"_s);
}

TEST_F(TreeTest, PlacesMoveByDragAndByKeyboard)
{
    auto& tree = places();
    tree.tree().expand(tree.model().locate(1));
    project.dialogues.expectConfirm(u"Déplacer la Localité \"Makokou\" dans la Localité \"Monde\" ?"_s,
                                    u"Déplacement de localités"_s, true, BoxIcon::Question, Answer::No);
    drop(tree, {2}, 0);
    EXPECT_EQ(codes(), u"1 2 2/3 4 1/5"_s);
    EXPECT_EQ(children(tree.model(), tree.model().topIndex()), (QStringList{u"France"_s, u"Gabon"_s, u"Makokou"_s}));
    project.dialogues.expectConfirm(u"Déplacer la Localité \"Makokou\" dans la Localité \"France\" ?"_s,
                                    u"Déplacement de localités"_s, true, BoxIcon::Question, Answer::No);
    tree.showRow(2);
    inDialog([](QWidget& dialog) {
        auto& choice = static_cast<reference::ChoiceDialog&>(dialog);
        EXPECT_TRUE(choice.control().showRow(4));
        QTest::keyClick(&choice.control().view(), Qt::Key_Return);
    });
    key(tree, Qt::Key_M, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(codes(), u"1 4/2 4/2/3 4 1/5"_s);
    EXPECT_EQ(tree.currentId(), 2);
    EXPECT_EQ(tree.tree().currentIndex().parent().data().toString(), u"France"_s);
}

TEST_F(TreeTest, OnlyTheTopsOfWhatIsSelectedAreActedOn)
{
    auto& tree = taxa();
    tree.showRow(2);
    tree.tree().selectionModel()->select(tree.model().locate(3), QItemSelectionModel::Select);
    tree.tree().selectionModel()->select(tree.model().locate(7), QItemSelectionModel::Select);
    QList<qint32> ids = tree.selectedIds();
    std::sort(ids.begin(), ids.end());
    EXPECT_EQ(ids, (QList<qint32>{2, 7})) << "3 lies under 2";
}

TEST_F(TreeTest, AReadOnlyProjectOffersNothingThatWrites)
{
    world->readOnly = true;
    auto& tree = taxa();
    tree.showRow(3);
    for (const QString& name : {u"add"_s, u"delete"_s, u"move"_s, u"synonymy"_s})
        EXPECT_FALSE(tree.command(name)->isEnabled()) << name.toStdString();
    EXPECT_FALSE(tree.model().flags(tree.model().locate(3)) & Qt::ItemIsDragEnabled);
    key(tree, Qt::Key_Delete);
    EXPECT_EQ(tree.currentId(), 3);
}

} // namespace
