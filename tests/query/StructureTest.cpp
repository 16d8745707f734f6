#include "QueryFixture.h"

using namespace Qt::StringLiterals;
using query::Node;

namespace {

const Node* childOf(const Node& node, const QString& text)
{
    for (const auto& child : node.children) {
        if (child->text == text)
            return child.get();
    }
    return nullptr;
}

QStringList texts(const Node& node)
{
    QStringList result;
    for (const auto& child : node.children)
        result << child->text;
    return result;
}

} // namespace

TEST_F(QueryTest, FieldsOfTheRootStandBeforeTheOtherModules)
{
    const Node* root = structure->root();
    ASSERT_TRUE(root);
    EXPECT_EQ(root->key, u"ID Individus"_s);
    EXPECT_EQ(texts(*root),
              (QStringList{u"Numéro"_s, u"Collecteur"_s, u"Date de récolte"_s, u"Localité"_s, u"Longitude"_s,
                           u"Latitude"_s, u"Altitude"_s, u"Habitat"_s, u"Description"_s, u"Herbier"_s,
                           u"Détermination courante"_s, u"Compte"_s, u"Date Création"_s, u"Date Modification"_s,
                           u"Verrou"_s, u"Détermination"_s, u"Image"_s, u"Mesures"_s}));
    const Node* images = childOf(*root, u"Image"_s);
    EXPECT_EQ(images->key, u"ID Images"_s);
    EXPECT_EQ(texts(*images).mid(5), (QStringList{u"IDParent"_s, u"Compte"_s, u"Date Création"_s,
                                                  u"Date Modification"_s, u"Verrou"_s}));
}

TEST_F(QueryTest, CaptionsThatWouldMakeOnePathOfTwoAreToldApart)
{
    structure->setNomModule(u"Mesures"_s);
    const Node* field = childOf(*structure->root(), u"Détermination"_s);
    const Node* module = childOf(*structure->root(), u"Détermination (Déterminations)"_s);
    ASSERT_TRUE(field && module);
    EXPECT_FALSE(field->isModule());
    EXPECT_EQ(module->key, u"ID Déterminations"_s);
    EXPECT_EQ(structure->node(structure->path(*module)), module);
}

TEST_F(QueryTest, PathsAndKeysLeadToOneAnother)
{
    const QString path = fieldPath(u"Individu/Détermination courante/Taxon/Auteur(s)"_s);
    const QString key = structure->KeyFromPath(path);
    ASSERT_TRUE(key.endsWith(u"-key"_s));
    EXPECT_EQ(structure->PathFromKey(key), path);
    EXPECT_EQ(structure->ClasseFromPath(path), structure->ClasseFromPath(key));
    EXPECT_EQ(structure->ClasseFromPath(path)->champ(), u"Auteurs"_s);
    EXPECT_EQ(structure->PermanentFieldName(path), fieldPath(u"ID Déterminations/ID Taxons/Auteurs"_s));
    EXPECT_EQ(structure->PathFromPermanent(u"Individus"_s, structure->PermanentFieldName(path)), path);
    EXPECT_EQ(structure->namedFields(path), (QStringList{u"Individus.ID Déterminations"_s, u"Déterminations.ID Taxons"_s,
                                                         u"Taxons.Auteurs"_s}));
    EXPECT_EQ(structure->PathFromKey(u"999999-key"_s), QString());
    EXPECT_EQ(structure->ClasseFromPath(u"Nulle part"_s), nullptr);
    EXPECT_EQ(structure->ChampsFromPath(u"Nulle part"_s), QString());
    EXPECT_EQ(structure->TablesJoin(u"Nulle part"_s), QString());
}

TEST_F(QueryTest, FieldsAreFoundByTypeAndName)
{
    EXPECT_EQ(structure->LsChampsType(8, u"Fichier"_s), fieldPath(u"Individu/Image/Fichier"_s) + u';');
    EXPECT_EQ(structure->fieldsOfType(14).first(), fieldPath(u"Individu/Localité"_s));
    EXPECT_EQ(structure->LsChampsType(8, u"fichier"_s), QString());
}

TEST_F(QueryTest, ChecksAreKeptByKeyUntilCleared)
{
    const QString key = structure->KeyFromPath(fieldPath(u"Individu/Numéro"_s));
    structure->setChecked(key, true);
    EXPECT_TRUE(structure->checked(key));
    structure->ClearChecked();
    EXPECT_FALSE(structure->checked(key));
}

TEST_F(QueryTest, ExpressionsAndTablesOfFields)
{
    const QString d = u"Déterminations"_s + number(u"Individu/Détermination courante"_s);
    const QString t = u"Taxons"_s + number(u"Individu/Détermination courante/Taxon"_s);
    const struct {
        QString path, expression, alias, declared, identifier;
    } cases[] = {
        {u"Individu"_s, u"[Individus].[ID Individus]"_s, u"[Individus]"_s, u"[Individus]"_s, u"[ID Individus]"_s},
        {u"Individu/Numéro"_s, u"[Individus].[Numéro]"_s, u"[Individus]"_s, u"[Individus]"_s, u"[ID Individus]"_s},
        {u"Individu/Image/Légende"_s, u"[Images].[Légende]"_s, u"[Images]"_s, u"[Images]"_s, u"[ID Images]"_s},
        {u"Individu/Image/Compte"_s, u"[N_Images].[N]"_s, u"[Images]"_s, u"[Images]"_s, u"[ID Images]"_s},
        {u"Individu/Détermination courante/Réserve"_s, u"[%1].[Réserve]"_s.arg(d), u"[%1]"_s.arg(d),
         u"[Déterminations] AS [%1]"_s.arg(d), u"[%1].[ID Déterminations]"_s.arg(d)},
        {u"Individu/Détermination courante/Taxon/Valide"_s, u"ISNULL([%1].[ID Valid])"_s.arg(t), u"[%1]"_s.arg(t),
         u"[Taxons] AS [%1]"_s.arg(t), u"[%1].[ID Taxons]"_s.arg(t)},
        {u"Individu/Détermination courante/Taxon/Rang Taxonomique"_s,
         u"IIf([%1].[ID Genre] Is Null,'Famille',IIf([%1].[ID Espèce] Is Null,'Genre',"
         "IIf([%1].[ID Infra] Is Null,'Espèce','Taxon Infra')))"_s.arg(t),
         u"[%1]"_s.arg(t), u"[Taxons] AS [%1]"_s.arg(t), u"[%1].[ID Taxons]"_s.arg(t)},
    };
    for (const auto& c : cases) {
        const QString path = fieldPath(c.path);
        EXPECT_EQ(structure->ChampsFromPath(path), c.expression);
        EXPECT_EQ(structure->Table(path, 1), c.alias) << c.path.toStdString();
        EXPECT_EQ(structure->Table(path, 2), c.declared) << c.path.toStdString();
        EXPECT_EQ(structure->Table(path, 3), c.identifier) << c.path.toStdString();
    }
    EXPECT_EQ(structure->Table(fieldPath(u"Individu/Détermination courante/Réserve"_s), 0), u"[Déterminations]"_s);
}

TEST_F(QueryTest, JoinsFollowTheWayFromTheRoot)
{
    const QString d = u"Déterminations"_s + number(u"Individu/Détermination courante"_s);
    const QString t = u"Taxons"_s + number(u"Individu/Détermination courante/Taxon"_s);
    const QString s = u"Taxons"_s + number(u"Individu/Détermination/Taxon"_s);
    const QString images = u"LEFT JOIN [Images] ON [Individus].[ID Individus]=[Images].[ID Individus])"_s;
    const struct {
        QString path, joins;
    } cases[] = {
        {u"Individu"_s, {}},
        {u"Individu/Numéro"_s, {}},
        {u"Individu/Détermination courante"_s, {}},
        {u"Individu/Image"_s, images},
        {u"Individu/Image/Légende"_s, images},
        {u"Individu/Image/Compte"_s,
         u"LEFT JOIN [N_Images] ON [Individus].[ID Individus]=[N_Images].[ID Individus])"_s},
        {u"Individu/Détermination courante/Taxon/Nom"_s,
         u"LEFT JOIN [Déterminations] AS [%1] ON [Individus].[ID Déterminations]=[%1].[ID Déterminations]) "
         "LEFT JOIN [Taxons] AS [%2] ON [%1].[ID Taxons]=[%2].[ID Taxons])"_s.arg(d, t)},
        {u"Individu/Détermination/Taxon/Nom"_s,
         u"LEFT JOIN [Déterminations] ON [Individus].[ID Individus]=[Déterminations].[ID Individus]) "
         "LEFT JOIN [Taxons] AS [%1] ON [Déterminations].[ID Taxons]=[%1].[ID Taxons])"_s.arg(s)},
    };
    for (const auto& c : cases)
        EXPECT_EQ(structure->TablesJoin(fieldPath(c.path)), c.joins) << c.path.toStdString();
    // A region criterion, or the flag, asks for the table of the place.
    const QString place = fieldPath(u"Individu/Localité"_s);
    const QString l = u"Localités"_s + number(u"Individu/Localité"_s);
    const QString joined =
        u"LEFT JOIN [Localités] AS [%1] ON [Individus].[ID Localités]=[%1].[ID Localités])"_s.arg(l);
    EXPECT_EQ(structure->TablesJoin(place), QString());
    EXPECT_EQ(structure->TablesJoin(place, true), joined);
    structure->ClasseFromPath(place)->setOperateur(u"<"_s);
    EXPECT_EQ(structure->TablesJoin(place), joined);
}

TEST_F(QueryTest, RepeatedJoinsAreWrittenOnceWhateverTheirCase)
{
    const QStringList a{u"[Images] ON x=y)"_s};
    const QStringList b{u"[IMAGES] on X=Y)"_s, u"[Mesures] ON z)"_s};
    EXPECT_EQ(structure->fromClause({a, b, a}), u"FROM (([Individus] LEFT JOIN [Images] ON x=y) LEFT JOIN [Mesures] ON z)"_s);
    EXPECT_EQ(structure->fromClause({}), u"FROM [Individus]"_s);
}

TEST_F(QueryTest, CountQueriesAreStoredAndMadeAgainWhenLost)
{
    const QString path = fieldPath(u"Individu/Image/Compte"_s);
    structure->TablesJoin(path);
    const jet::QueryDef* stored = project.db().schema().query(u"N_Images");
    ASSERT_TRUE(stored);
    EXPECT_EQ(stored->SQL, u"SELECT Individus.[ID Individus], Count(Images.[ID Images]) AS [N]"
                           " FROM Individus LEFT JOIN Images ON Individus.[ID Individus] = Images.[ID Individus]"
                           " GROUP BY Individus.[ID Individus]"_s);
    EXPECT_EQ(project.rows(u"SELECT * FROM N_Images"_s),
              (QStringList{u"1|2"_s, u"2|1"_s, u"3|0"_s, u"4|0"_s, u"5|0"_s, u"6|0"_s}));
    project.db().DeleteQueryDef(u"N_Images"_s);
    structure->TablesJoin(path);
    EXPECT_TRUE(project.db().schema().query(u"N_Images"));
    structure->TablesJoin(fieldPath(u"Individu/Compte"_s));
    EXPECT_EQ(project.rows(u"SELECT * FROM N_Individus"_s).size(), 6);
}

TEST_F(QueryTest, ModulesThatLeadToEachOtherEndTheTree)
{
    QList<data::ModuleRecord> modules = project.session.modules();
    for (data::ModuleRecord& module : modules) {
        if (module.name != u"Déterminations")
            continue;
        data::FieldRecord back;
        back.caption = u"Mesure"_s;
        back.column = u"ID Mesures"_s;
        back.type = 17;
        back.provider = u"Mesures"_s;
        module.fields << back;
    }
    structure->LoadStructure(modules);
    const QString twice = u"Individu/Mesures/Détermination/Mesure"_s;
    ASSERT_TRUE(structure->node(fieldPath(twice)));
    EXPECT_TRUE(structure->node(fieldPath(twice + u"/Détermination"_s)));
    EXPECT_TRUE(structure->node(fieldPath(twice + u"/Détermination"_s))->children.empty());
    EXPECT_LT(structure->Count(), 20000);
}
