#include "ReferenceFixture.h"
#include "reference/WebLinks.h"

namespace {

using namespace Qt::StringLiterals;
using namespace reference;

TEST_F(ReferenceTest, WebLinksFillTheirMarkers)
{
    project.db().Execute(u"INSERT INTO Taxons ([Taxon],[Nom Complet],[ID Famille]) VALUES (\"Rosaceae\",\"Rosaceae\",1)"_s);
    project.db().Execute(u"INSERT INTO Taxons ([Taxon],[Nom Complet],[ID Famille],[ID Genre]) VALUES (\"Rosa\",\"Rosa\",1,2)"_s);
    project.db().Execute(u"INSERT INTO Taxons ([Taxon],[Nom Complet],[ID Famille],[ID Genre],[ID Espèce]) VALUES (\"canina\",\"Rosa canina\",1,2,3)"_s);
    project.db().Execute(u"INSERT INTO Localités ([Localité],[LongDD],[LatDD]) VALUES (\"Nîmes\",4.36,43.84)"_s);
    project.db().Execute(u"INSERT INTO Collecteurs ([Collecteur],[Initiales]) VALUES (\"Aublet\",\"F.A.\")"_s);
    const WebLinks links(*taxa, *places, *people, QLocale(QLocale::French));
    const QString all = u"@FAMILY@/@GENUS@/@SPECIES@/@INFRA@/\"@TAXA@\""_s;
    EXPECT_EQ(links.address(linksTaxons, all, 2), u"Rosaceae/Rosa///%22Rosa%22"_s);
    EXPECT_EQ(links.address(linksTaxons, all, 3), u"Rosaceae/Rosa/canina//%22Rosa canina%22"_s);
    EXPECT_EQ(links.address(linksLocalités, u"@LATITUDE@;@LONGITUDE@;@NOM@;@ALTITUDE@"_s, 1), u"43,84;4,36;Nîmes;"_s);
    EXPECT_EQ(links.address(linksBotanistes, u"@NOM@|@INITIALE@|@ORGANISME@|@LATITUDE@"_s, 1), u"Aublet|F.A.||"_s);
    EXPECT_EQ(links.address(linksTaxons, QString(), 2), QString());
    EXPECT_EQ(links.address(linksTaxons, all, 0), QString());
    EXPECT_EQ(markersOf(linksBotanistes), u"@NOM@, @INITIALE@, @ORGANISME@"_s);

    data::PropertyStore& store = project.session.properties();
    store.put(kindLiens, linksTaxons, u"GBIF"_s, u"à moi"_s);
    writeDefaultLinks(store);
    EXPECT_EQ(store.value(kindLiens, linksTaxons, u"GBIF"_s).toString(), u"à moi"_s);
    EXPECT_EQ(store.list(kindLiens, linksTaxons).size(), 4);
    EXPECT_EQ(links.address(linksTaxons, store.value(kindLiens, linksTaxons, u"Google Images"_s).toString(), 3),
              u"https://images.google.com/images?q=%22Rosa canina%22"_s);
}

} // namespace
