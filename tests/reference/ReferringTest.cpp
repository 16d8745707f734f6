#include "ReferenceFixture.h"

#include "data/FieldType.h"
#include "reference/Referring.h"

namespace {

using namespace Qt::StringLiterals;

class ReferringTest : public ReferenceTest {
protected:
    void SetUp() override
    {
        ReferenceTest::SetUp();
        const QStringList content{
            u"INSERT INTO Taxons (Taxon,[Nom Complet],[ID Famille]) VALUES (\"F\",\"F\",1)"_s,
            u"INSERT INTO Taxons (Taxon,[Nom Complet],[ID Famille],[ID Genre]) VALUES (\"G\",\"G\",1,2)"_s,
            u"INSERT INTO Taxons (Taxon,[Nom Complet],[ID Famille],[ID Genre],[ID Espèce]) VALUES (\"s\",\"G s\",1,2,3)"_s,
            u"INSERT INTO Localités ([Localité],LongDD,LatDD,CodeRegion,[ID Type]) VALUES (\"a\",0,0,\"7\",0)"_s,
            u"INSERT INTO Localités ([Localité],LongDD,LatDD,CodeRegion,[ID Type]) VALUES (\"b\",0,0,\"7/2\",1)"_s,
            u"INSERT INTO Localités ([Localité],LongDD,LatDD,CodeRegion,[ID Type]) VALUES (\"c\",0,0,\"71\",0)"_s,
            u"UPDATE Localités SET CodeRegion=\"1/2\" WHERE [ID Localités]=2"_s,
            u"UPDATE Localités SET CodeRegion=\"1\" WHERE [ID Localités]=1"_s,
            u"UPDATE Localités SET CodeRegion=\"13\" WHERE [ID Localités]=3"_s,
            u"INSERT INTO Collecteurs (Collecteur,Initiales) VALUES (\"A\",\"A\")"_s,
            u"INSERT INTO Individus ([ID Collecteurs],[ID Localités]) VALUES (1,1)"_s,
            u"INSERT INTO Individus ([ID Collecteurs],[ID Localités]) VALUES (1,2)"_s,
            u"INSERT INTO Individus ([ID Localités]) VALUES (3)"_s,
            u"INSERT INTO Déterminations ([ID Individus],[ID Taxons],[ID Collecteurs]) VALUES (1,3,1)"_s,
            u"INSERT INTO Déterminations ([ID Individus],[ID Taxons],[ID Collecteurs]) VALUES (3,2,1)"_s,
            u"INSERT INTO Déterminations ([ID Individus],[ID Taxons]) VALUES (3,3)"_s,
        };
        for (const QString& statement : content)
            project.db().Execute(statement);
    }
};

TEST_F(ReferringTest, FindsEachIndividualOnceInEveryColumn)
{
    using namespace data;
    const reference::Referring referring(project.db(), {{u"Individus"_s, u"ID Collecteurs"_s, Botaniste},
                                                        {u"Individus"_s, u"ID Localités"_s, Localité},
                                                        {u"Déterminations"_s, u"ID Taxons"_s, Taxon},
                                                        {u"Déterminations"_s, u"ID Collecteurs"_s, Botaniste},
                                                        {u"Disparu"_s, u"ID Taxons"_s, Taxon}});
    using Ids = QList<qint32>;
    EXPECT_EQ(referring.individuals(Botaniste, 1), (Ids{1, 2, 3}));
    EXPECT_EQ(referring.individuals(Taxon, 2), Ids{3});
    EXPECT_EQ(referring.individualsBelow(Taxon, 2), (Ids{1, 3}));
    EXPECT_EQ(referring.individualsBelow(Taxon, 3), (Ids{1, 3}));
    EXPECT_EQ(referring.individualsBelow(Taxon, 99), Ids());
    EXPECT_EQ(referring.individuals(Localité, 1), Ids{1});
    EXPECT_EQ(referring.individualsBelow(Localité, 1), (Ids{1, 2})) << "13 does not lie in 1";
}

} // namespace
