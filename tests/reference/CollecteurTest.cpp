#include "ReferenceFixture.h"

namespace {

using namespace Qt::StringLiterals;
using platform::BoxIcon;

class CollecteurTest : public ReferenceTest {
protected:
    void add(const QString& name, const QString& initials, const QString& organisation = {})
    {
        form.steps.push_back({{{u"Collecteur"_s, name}, {u"Initiales"_s, initials}, {u"Organisme"_s, organisation}}});
        EXPECT_TRUE(people->Add());
    }
};

TEST_F(CollecteurTest, SavesSearchesAndNames)
{
    add(u"Aublet"_s, u"F.A."_s, u"MNHN"_s);
    add(u"Émile \"Zé\""_s, u"É.Z."_s);
    EXPECT_EQ(people->NomBotaniste(1, 0), u"Aublet"_s);
    EXPECT_EQ(people->NomBotaniste(1, 1), u"F.A."_s);
    EXPECT_EQ(people->NomBotaniste(1, 2), u"MNHN"_s);
    EXPECT_EQ(people->NomBotaniste(9, 0), u"< Indéfini >"_s);
    EXPECT_EQ(people->SearchBotanistes(u"f.a."_s).ids, QList<qint32>{1});
    EXPECT_EQ(people->SearchBotanistes(u"aub"_s).ids, QList<qint32>{1});
    EXPECT_EQ(people->SearchBotanistes(u"émile \"zé\""_s).ids, QList<qint32>{2});
    EXPECT_EQ(project.rows(u"SELECT Bot,DateCreate FROM Collecteurs"_s),
              (QStringList{u"true|2026/03/07 14:05:09"_s, u"true|2026/03/07 14:05:09"_s}));
    form.steps.push_back({{{u"Bot"_s, u"non"_s}, {u"Organisme"_s, u""_s}}});
    EXPECT_TRUE(people->Edit(1));
    EXPECT_EQ(project.rows(u"SELECT Bot,Organisme FROM Collecteurs WHERE [ID Collecteurs]=1"_s), QStringList{u"false|∅"_s});
}

TEST_F(CollecteurTest, ANameStandsOnce)
{
    add(u"Aublet"_s, u"A."_s);
    form.steps.push_back({{{u"Collecteur"_s, u"AUBLET "_s}, {u"Initiales"_s, u"B."_s}}});
    EXPECT_FALSE(people->Add()); // without a message
    EXPECT_EQ(project.single(u"SELECT Count(*) FROM Collecteurs"_s).toInt(), 1);
}

TEST_F(CollecteurTest, DeletesWithOneQuestion)
{
    add(u"A"_s, u"A."_s);
    add(u"B"_s, u"B."_s);
    project.dialogues.expectConfirm(u"Vous allez SUPPRIMER les 2 Collecteurs sélectionnés...!!!\rLa suppression d'un Collecteur entraîne la rupture définitive des liens\r\rSupprimer les Collecteurs sélectionnés ?"_s,
                                    u"Suppression..."_s, true, BoxIcon::Stop);
    QStringList modified;
    QObject::connect(people.get(), &reference::ReferenceList::TableModified, people.get(), [&](const QString& name) { modified << name; });
    EXPECT_TRUE(people->Delete({1, 2}));
    EXPECT_EQ(modified, QStringList{u"Botanistes"_s});
    EXPECT_EQ(project.single(u"SELECT Count(*) FROM Collecteurs"_s).toInt(), 0);
}

} // namespace
