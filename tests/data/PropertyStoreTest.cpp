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
    EXPECT_EQ(project.rows(u"SELECT Objet, Module, Nom FROM Propriétés"_s),
              (QStringList{u"Base|Images|b"_s, u"Requête|Individus|q"_s}));
}

} // namespace
