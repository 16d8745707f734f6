#include "WindowFixture.h"

#include <QAbstractItemModelTester>

namespace {

using namespace Qt::StringLiterals;
using app::TreeModel;

QStringList lines(const TreeModel& model, const QModelIndex& parent = {}, int depth = 0)
{
    QStringList all;
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        all << QString(depth, u' ') + index.data(TreeModel::KeyRole).toString() + u" = "_s + index.data().toString();
        all << lines(model, index, depth + 1);
    }
    return all;
}

class Tree : public support::WindowTest {};

TEST_F(Tree, HoldsKeysTextsIconsAndTags)
{
    makeProject();
    openProject();
    const TreeModel& model = window().dock().model();
    EXPECT_EQ(lines(model),
              (QStringList{u"Bases = projet.hbx"_s, u" Individus = Individus"_s, u"  7-query = En altitude"_s,
                           u"  8-model = Récolte"_s, u" Déterminations = Déterminations"_s, u" Images = Images"_s,
                           u" Requête = Requêtes"_s, u" Sélections = Sélections"_s,
                           u"  Sélections flottantes = Sélections flottantes"_s,
                           u"   Individus-self = Individus < 0 >"_s, u"   Déterminations-self = Déterminations < 0 >"_s,
                           u"   Images-self = Images < 0 >"_s, u" Modèle = Modèles d'ajout"_s,
                           u" Lsbotanistes = Botanistes"_s, u" Lslocalités = Localités"_s, u" Lstaxons = Taxons"_s}));
    EXPECT_EQ(model.indexOf(u"8-model"_s).data(TreeModel::TagRole), QVariant(8));
    EXPECT_FALSE(model.index(0, 0).data(Qt::DecorationRole).value<QIcon>().isNull());
}

TEST_F(Tree, IsASoundModelThroughOpeningAndClosing)
{
    QAbstractItemModelTester tester(&window().dock().model(), QAbstractItemModelTester::FailureReportingMode::Warning);
    makeProject();
    openProject();
    window().dock().model().setText(u"Images-self"_s, u"Images < 3 >"_s);
    EXPECT_EQ(window().dock().model().indexOf(u"Images-self"_s).data().toString(), u"Images < 3 >"_s);
    window().dock().clear();
    EXPECT_EQ(window().dock().model().rowCount(), 0);
}

TEST_F(Tree, IsExpandedWithTheRootSelectedAfterOpening)
{
    makeProject();
    openProject();
    auto* view = widget<QTreeView>(u"moduleTree"_s);
    EXPECT_EQ(view->currentIndex(), window().dock().model().index(0, 0));
    for (const QString& key : {u"Bases"_s, u"Sélections"_s, u"Sélections flottantes"_s})
        EXPECT_TRUE(view->isExpanded(window().dock().model().indexOf(key))) << key.toStdString();
}

TEST_F(Tree, CommandsFollowTheNode)
{
    makeProject();
    openProject();
    struct Case {
        QString key;
        QStringList commands; ///< "-" before those that are disabled.
    };
    for (const Case& c : {
             Case{u"Bases"_s, {}},
             Case{u"Images"_s,
                  {u"Ouvrir le Module Images"_s, u"Ajouter dans le Module Images"_s, u"Créer un nouveau Modèle"_s,
                   u"Créer une nouvelle Requête"_s}},
             Case{u"7-query"_s,
                  {u"Ouvrir la Requête En altitude"_s, u"Créer une nouvelle Requête"_s,
                   u"Supprimer la Requête En altitude"_s}},
             Case{u"8-model"_s,
                  {u"Créer un nouveau Modèle"_s, u"Ajouter depuis le Modèle"_s, u"Supprimer le Modèle"_s}},
             Case{u"Requête"_s, {u"Créer une nouvelle Requête"_s}},
             Case{u"Modèle"_s, {u"Créer un nouveau Modèle"_s}},
             Case{u"Images-self"_s, {u"-Ouvrir la Sélection flottante"_s, u"-Vider la Sélection flottante"_s}},
             Case{u"Lstaxons"_s, {u"Ouvrir le navigateur Taxons"_s, u"Ouvrir le Module Taxons"_s}},
         }) {
        widget<QTreeView>(u"moduleTree"_s)->setCurrentIndex(window().dock().model().indexOf(c.key));
        QStringList commands;
        for (const QAction* action : window().dock().commands().fitting())
            commands << (action->isEnabled() ? QString() : u"-"_s) + action->text().remove(u'&');
        EXPECT_EQ(commands, c.commands) << c.key.toStdString();
    }
}

TEST_F(Tree, EmptyingASelectionAsksFirst)
{
    makeProject();
    openProject();
    program->session().selection(u"Images"_s) = {4, 5};
    window().dock().load(program->session());
    const QModelIndex node = window().dock().model().indexOf(u"Images-self"_s);
    EXPECT_EQ(node.data().toString(), u"Images < 2 >"_s);
    widget<QTreeView>(u"moduleTree"_s)->setCurrentIndex(node);
    dialogues.expectConfirm(u"Vider la sélection flottante de son contenu ?"_s, u"Herbora"_s, false);
    trigger(u"emptySelection"_s);
    EXPECT_EQ(program->session().selectionCount(u"Images"_s), 2);
    dialogues.expectConfirm(u"Vider la sélection flottante de son contenu ?"_s, u"Herbora"_s, true);
    trigger(u"emptySelection"_s);
    EXPECT_EQ(node.data().toString(), u"Images < 0 >"_s);
    EXPECT_FALSE(action(u"emptySelection"_s)->isEnabled());
}

TEST_F(Tree, ReturnOpensRecordsOnceAndFoldsGroups)
{
    makeProject();
    openProject();
    openRecords(u"Images"_s);
    openRecords(u"Lstaxons"_s);
    openRecords(u"Images"_s);
    EXPECT_EQ(window().documents().grids().size(), 2);
    EXPECT_EQ(window().documents().currentGrid()->source().key, u"Images"_s);
    openRecords(u"Sélections"_s);
    EXPECT_EQ(window().documents().grids().size(), 2);
    EXPECT_FALSE(widget<QTreeView>(u"moduleTree"_s)->isExpanded(window().dock().model().indexOf(u"Sélections"_s)));
}

} // namespace
