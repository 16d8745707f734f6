#include "data/PropertyStore.h"

#include "support/Project.h"

namespace {

using namespace Qt::StringLiterals;
using support::TestProject;

TEST(PropertyStore, ListsByKindAndModule)
{
    TestProject project;
    project.create();
    data::PropertyStore& store = project.session.properties();
    store.put(u"Requête"_s, u"Individus"_s, u"b"_s, u"1"_s);
    store.put(u"Requête"_s, u"Individus"_s, u"a \"citée\""_s, u"2"_s);
    store.put(u"Modèle"_s, u"Individus"_s, u"c"_s, u"3"_s);
    store.put(u"Requête"_s, u"Images"_s, u"d"_s, u"4"_s);
    const auto names = [](const QList<data::PropertyObject>& objects) {
        QStringList list;
        for (const auto& object : objects)
            list << object.kind + u'/' + object.module + u'/' + object.name;
        return list;
    };
    EXPECT_EQ(names(store.list(u"Requête,Base,Modèle"_s, u"Individus"_s)),
              (QStringList{u"Requête/Individus/a \"citée\""_s, u"Requête/Individus/b"_s, u"Modèle/Individus/c"_s}));
    EXPECT_EQ(names(store.list(u"Requête"_s)).size(), 3);
    EXPECT_EQ(names(store.list(u"*"_s, u"Images"_s)), QStringList{u"Requête/Images/d"_s});
}

TEST(PropertyStore, ChangesInPlaceWithoutCase)
{
    TestProject project;
    project.create();
    data::PropertyStore& store = project.session.properties();
    const int id = store.put(u"Requête"_s, u"Individus"_s, u"Été"_s, u"1"_s);
    project.clock.time = project.clock.time.addSecs(60);
    EXPECT_EQ(store.put(u"Requête"_s, u"Individus"_s, u" été "_s, u"2"_s), id);
    EXPECT_EQ(store.value(u"Requête"_s, u"Individus"_s, u"ÉTÉ"_s).toString(), u"2"_s);
    EXPECT_EQ(project.rows(u"SELECT Nom, DateCreate, DateModify FROM Propriétés WHERE [ID Prop]="_s + QString::number(id)),
              QStringList{u"Été|2026/03/07 14:05:09|2026/03/07 14:06:09"_s});
    EXPECT_FALSE(store.value(u"Requête"_s, u"Images"_s, u"Été"_s).isValid());
}

TEST(PropertyStore, DeletingAModulesObjectsTakesAllDescriptorLists)
{
    TestProject project;
    project.create();
    data::PropertyStore& store = project.session.properties();
    store.put(u"Descripteur"_s, u"Images"_s, u"Genre"_s, u"x;y"_s);
    store.put(u"Base"_s, u"Images"_s, u"b"_s, u"1"_s);
    store.put(u"Base"_s, u"Individus"_s, u"b"_s, u"1"_s);
    store.put(u"Requête"_s, u"Individus"_s, u"q"_s, u"1"_s);
    store.deleteModule(u"Individus"_s);
    EXPECT_EQ(project.rows(u"SELECT Objet, Module, Nom FROM Propriétés WHERE Objet<>'Liens'"_s),
              (QStringList{u"Base|Images|b"_s, u"Requête|Individus|q"_s}));
}

/// Keeps what the tree would be told.
class Tree : public data::PropertyObserver {
public:
    QStringList told;
    void objectAdded(const data::PropertyObject& object) override { told << u"+ "_s + described(object); }
    void objectRemoved(const data::PropertyObject& object) override { told << u"- "_s + described(object); }

private:
    static QString described(const data::PropertyObject& object)
    {
        return data::nodeKey(object) + u' ' + object.kind + u'/' + object.module + u'/' + object.name;
    }
};

/// A store with the query "Hêtres", and a tree that listens.
class PropertyQuestions : public ::testing::Test {
protected:
    void SetUp() override
    {
        project.create();
        id = store().put(query, individus, u"Hêtres"_s, u"ancien"_s);
        store().addObserver(&tree);
        project.clock.time = project.clock.time.addSecs(60);
    }
    void TearDown() override { store().removeObserver(&tree); }
    data::PropertyStore& store() { return project.session.properties(); }
    int save(int number, const QString& name, const QString& value)
    {
        return store().save({number, query, individus, name, value}, project.dialogues);
    }
    void expectOverwrite(bool yes)
    {
        project.dialogues.expectConfirm(u"La propriété 'Hêtres' a été modifiée. Voulez-vous enregistrez les changements ?"_s,
                                        u"Gestion des propriétés"_s, yes);
    }
    void expectName(const QString& byDefault, std::optional<QString> answer)
    {
        project.dialogues.expectInput(u"Ajout - Requête"_s, u"Indiquez le nom unique de la nouvelle propriété 'Requête'"_s,
                                      byDefault, answer);
    }
    void expectAgain(const QString& byDefault, std::optional<QString> answer)
    {
        project.dialogues.expectInput(u"Ajout - Requête"_s,
                                      u"Nom déja existant ! Indiquez un nom unique pour la propriété du Module Individus"_s,
                                      byDefault, answer);
    }
    QStringList rows()
    {
        return project.rows(u"SELECT Objet,Module,Nom,Value,DateCreate,DateModify FROM Propriétés WHERE Objet=\"Requête\""
                            " ORDER BY [ID Prop]"_s);
    }

    const QString query = u"Requête"_s;
    const QString individus = u"Individus"_s;
    const QString old = u"Requête|Individus|Hêtres|ancien|2026/03/07 14:05:09|2026/03/07 14:05:09"_s;
    TestProject project;
    Tree tree;
    int id = 0;
};

TEST_F(PropertyQuestions, AnObjectIsOverwrittenAfterTheConfirmation)
{
    expectOverwrite(true);
    EXPECT_EQ(save(id, u" hêtres "_s, u" neuf\t\r\n "_s), id);
    EXPECT_EQ(rows(), QStringList{u"Requête|Individus|Hêtres|neuf\t\r\n|2026/03/07 14:05:09|2026/03/07 14:06:09"_s});
    EXPECT_EQ(tree.told, QStringList());
}

TEST_F(PropertyQuestions, AnsweringNoMakesASecondObject)
{
    expectOverwrite(false);
    expectName(u"Hêtres"_s, u"  Chênes "_s);
    const int second = save(id, u"Hêtres"_s, u" neuf "_s);
    EXPECT_NE(second, id);
    EXPECT_EQ(rows(), (QStringList{old, u"Requête|Individus|Chênes|neuf|2026/03/07 14:06:09|2026/03/07 14:06:09"_s}));
    EXPECT_EQ(tree.told, QStringList{u"+ %1-query Requête/Individus/Chênes"_s.arg(second)});
}

TEST_F(PropertyQuestions, ANameIsAskedUntilItIsUnique)
{
    expectName(u""_s, u"HÊTRES"_s); // only the case differs
    expectAgain(u"HÊTRES"_s, u" hêtres "_s);
    expectAgain(u"hêtres"_s, u"Hêtres 2"_s);
    EXPECT_GT(save(0, u""_s, u"x"_s), id);
    EXPECT_EQ(rows().size(), 2);
    // The same name may stand for another kind and another module.
    project.dialogues.expectInput(u"Ajout - Modèle"_s, u"Indiquez le nom unique de la nouvelle propriété 'Modèle'"_s,
                                  u"Hêtres"_s, u"Hêtres"_s);
    const int model = store().save({0, u"Modèle"_s, individus, u"Hêtres"_s, u""_s}, project.dialogues);
    EXPECT_GT(model, 0);
    expectName(u"Hêtres"_s, u"Hêtres"_s);
    EXPECT_GT(store().save({0, query, u"Images"_s, u"Hêtres"_s, u"x"_s}, project.dialogues), 0);
    EXPECT_EQ(tree.told.size(), 3);
    EXPECT_EQ(tree.told[1], u"+ %1-model Modèle/Individus/Hêtres"_s.arg(model));
}

TEST_F(PropertyQuestions, GivingUpChangesNothing)
{
    expectName(u"x"_s, {});
    EXPECT_EQ(save(0, u"x"_s, u"v"_s), 0);
    expectName(u"x"_s, u"   "_s);
    EXPECT_EQ(save(0, u"x"_s, u"v"_s), 0);
    expectName(u"x"_s, u"Hêtres"_s);
    expectAgain(u"Hêtres"_s, {});
    EXPECT_EQ(save(0, u"x"_s, u"v"_s), 0);
    EXPECT_EQ(rows(), QStringList{old});
    EXPECT_EQ(tree.told, QStringList());
}

TEST_F(PropertyQuestions, AnotherNameOrNumberIsANewObject)
{
    expectName(u"Chênes"_s, u"Chênes"_s);
    EXPECT_NE(save(id, u"Chênes"_s, u"x"_s), id);
    expectName(u"Ormes"_s, u"Ormes"_s);
    EXPECT_GT(save(9999, u"Ormes"_s, u"x"_s), id);
    EXPECT_EQ(rows().size(), 3);
    EXPECT_EQ(rows().first(), old);
}

TEST_F(PropertyQuestions, AFailureIsSaidAndLeavesTheStore)
{
    expectName(u"x"_s, QString(101, u'x'));
    project.dialogues.expectLike({u"Nom"_s}, u"Gestion des propriétés"_s, platform::BoxIcon::Stop);
    EXPECT_EQ(save(0, u"x"_s, u"v"_s), 0);
    EXPECT_EQ(rows(), QStringList{old});
    EXPECT_EQ(tree.told, QStringList());
}

TEST_F(PropertyQuestions, DeletingAsksAndTakesTheNode)
{
    const QString question = u" Supprimer la propriété Hêtres ?"_s;
    project.dialogues.expectConfirm(question, u"Gestion des propriétés"_s, false);
    EXPECT_FALSE(store().remove(id, project.dialogues));
    EXPECT_EQ(rows().size(), 1);
    project.dialogues.expectConfirm(question, u"Gestion des propriétés"_s, true);
    EXPECT_TRUE(store().remove(id, project.dialogues));
    EXPECT_EQ(rows(), QStringList());
    EXPECT_EQ(tree.told, QStringList{u"- %1-query Requête/Individus/Hêtres"_s.arg(id)});
    EXPECT_FALSE(store().remove(id, project.dialogues));
}

TEST_F(PropertyQuestions, OnlyObjectsOfTheTreeAreAnnounced)
{
    store().put(u"Descripteur"_s, u"Images"_s, u"Genre"_s, u"x"_s);
    const int base = store().put(u"Base"_s, individus, u"b"_s, u"x"_s);
    store().put(u"Base"_s, individus, u"B"_s, u"y"_s); // the same one
    EXPECT_EQ(tree.told, QStringList{u"+ %1-base Base/Individus/b"_s.arg(base)});
}

TEST_F(PropertyQuestions, CleaningDropsTheLinesOfAModuleOrAField)
{
    const QString text = u"Images.Fichier\t1\r\nx\timages.Légende\r\nImages2.Fichier\r\nIndividus.Numéro"_s;
    const QString model = u"1-Images;Fichier;a.jpg\r\n1-Individus;Images.Légende\r\n2-Images2;x\r\nlibre"_s;
    store().put(query, individus, u"q"_s, text);
    store().put(u"Modèle"_s, individus, u"m"_s, model);
    const auto value = [&](const QString& kind, const QString& name) { return store().value(kind, individus, name).toString(); };

    store().clean(u"Images"_s, u"Fichier"_s);
    EXPECT_EQ(value(query, u"q"_s), u"x\timages.Légende\r\nImages2.Fichier\r\nIndividus.Numéro"_s);
    EXPECT_EQ(value(u"Modèle"_s, u"m"_s), model);
    project.clock.time = project.clock.time.addSecs(60);
    store().clean(u"Images"_s);
    EXPECT_EQ(value(query, u"q"_s), u"Images2.Fichier\r\nIndividus.Numéro"_s);
    EXPECT_EQ(value(u"Modèle"_s, u"m"_s), u"2-Images2;x\r\nlibre"_s);
    EXPECT_EQ(rows().first(), old); // untouched, with its date
    EXPECT_TRUE(rows().last().endsWith(u"2026/03/07 14:07:09"_s));
}

} // namespace
