// A query as a window uses it.
#include "QueryFixture.h"

using namespace Qt::StringLiterals;
using query::Criterion;
using query::Query;

namespace {

/// Types the four sides.
class SidesForm : public editing::FormDialogue {
public:
    QStringList sides;
    QStringList seen;
    bool edit(const QString&, editing::Cl_Editions& form,
              const std::function<bool(editing::Cl_Editions&)>& save) override
    {
        for (int i = 0; i < form.Count(); ++i) {
            seen << form.Item(i)->champ() + u'|' + form.Item(i)->Caption() + u'|' + form.Item(i)->TextHelp();
            form.Item(i)->setValue(sides.value(i));
        }
        return save(form);
    }
};

QString shown(const Query& query)
{
    QStringList rows;
    for (const Criterion& row : query.criteria().rows())
        rows << QString(row.depth, u'>') + row.link + u' ' + row.path.section(query::pathSeparator, -1) + u' ' + row.op
                    + u' ' + row.value;
    return rows.join(u" ; "_s);
}

} // namespace

TEST_F(QueryTest, AliasesAreUnique)
{
    Query query(*structure, world());
    query.addColumn(fieldPath(u"Individu/Date Création"_s));
    query.addColumn(fieldPath(u"Individu/Image/Date Création"_s));
    EXPECT_EQ(query.columns()[1].alias, u"Date Création 2"_s);
    EXPECT_EQ(query.addColumn(u"Nulle part"_s), -1);
    const QString refusal = u"Erreur: Le nom n'est pas unique dans la collection des alias de champs."_s;
    project.dialogues.expectInput(u"Requête < Nouvelle Requête >"_s,
                                  u"Modifier le nom de l'alias ou appuyer sur ESC pour annuler les modifications"_s,
                                  u"Date Création 2"_s, u"date création"_s);
    project.dialogues.expectTell(refusal, query.title(), platform::BoxIcon::Stop);
    EXPECT_FALSE(query.editAlias(1));
    EXPECT_EQ(query.columns()[1].alias, u"Date Création 2"_s);
    project.dialogues.expectTell(refusal, query.title(), platform::BoxIcon::Stop);
    EXPECT_FALSE(query.setAlias(1, u"Individu"_s));
    EXPECT_TRUE(query.setAlias(1, u"Créé [le]"_s));
    EXPECT_EQ(query.columns()[1].alias, u"Créé (le)"_s);
}

TEST_F(QueryTest, ChangesAreToldAndAskedAboutOnClosing)
{
    Query query(*structure, world());
    int changes = 0;
    QObject::connect(&query, &Query::Query_Change, [&] { ++changes; });
    EXPECT_TRUE(query.mayClose());
    query.addColumn(fieldPath(u"Individu/Numéro"_s));
    EXPECT_TRUE(query.ToSave());
    EXPECT_EQ(changes, 1);
    const platform::Message question{
        u"Voulez-vous enregistrez les modifications apportées à la requête: 'Nouvelle Requête' ?"_s, query.title(),
        platform::BoxIcon::Question, platform::BoxButtons::YesNoCancel, platform::Answer::Yes};
    project.dialogues.expect(question, platform::Answer::Cancel);
    EXPECT_FALSE(query.mayClose());
    project.dialogues.expect(question, platform::Answer::Yes);
    project.dialogues.expectInput(u"Ajout - Requête"_s, u"Indiquez le nom unique de la nouvelle propriété 'Requête'"_s,
                                  u"Nouvelle Requête"_s, u" Mes plantes "_s);
    EXPECT_TRUE(query.mayClose());
    EXPECT_FALSE(query.ToSave());
    EXPECT_EQ(query.title(), u"Requête < Mes plantes >"_s);
}

TEST_F(QueryTest, SavingAsksBeforeItOverwritesAndForAFreeName)
{
    Query query(*structure, world());
    query.addColumn(fieldPath(u"Individu/Numéro"_s));
    const QString ask = u"Indiquez le nom unique de la nouvelle propriété 'Requête'"_s;
    project.dialogues.expectInput(u"Ajout - Requête"_s, ask, u"Nouvelle Requête"_s, u"A"_s);
    ASSERT_TRUE(query.SaveQuery());
    const int first = query.id();
    query.setOrder(0, query::orderUp);
    const QString overwrite = u"La propriété 'A' a été modifiée. Voulez-vous enregistrez les changements ?"_s;
    project.dialogues.expectConfirm(overwrite, u"Gestion des propriétés"_s, true);
    ASSERT_TRUE(query.SaveQuery());
    EXPECT_EQ(query.id(), first);
    project.dialogues.expectConfirm(overwrite, u"Gestion des propriétés"_s, false);
    project.dialogues.expectInput(u"Ajout - Requête"_s, ask, u"A"_s, u"a"_s);
    project.dialogues.expectInput(u"Ajout - Requête"_s,
                                  u"Nom déja existant ! Indiquez un nom unique pour la propriété du Module Individus"_s,
                                  u"a"_s, u"B"_s);
    ASSERT_TRUE(query.SaveQuery());
    EXPECT_NE(query.id(), first);
    Query other(*structure, world());
    EXPECT_TRUE(other.LoadRequête(u"b"_s));
    EXPECT_EQ(other.columns(), query.columns());
    EXPECT_FALSE(other.ToSave());
    EXPECT_FALSE(other.LoadRequête(u"absente"_s));
    EXPECT_EQ(other.NomQuery(), u"Nouvelle Requête"_s);
}

TEST_F(QueryTest, TooManyCriteriaAreSaidAndNothingIsBuilt)
{
    Query query(*structure, world());
    for (int i = 0; i < 41; ++i)
        query.command(u"add"_s, -1, fieldPath(u"Individu/Numéro"_s));
    project.dialogues.expectTell(
        u"Limitation Access: La requête que vous tentez d'exécuter comporte plus de 40 instructions ET/OU dans le "
        "statement WHERE\r\nUne base Microsoft Access ne peut supporter plus de 40 instructions de ce type.\r\n"
        "Réduisez le nombre de ligne dans votre requête"_s,
        u"Limitation Access"_s, platform::BoxIcon::Warning);
    EXPECT_EQ(query.SQLStatement(), QString());
    query.command(u"delete"_s, 0);
    EXPECT_FALSE(query.SQLStatement().isEmpty());
}

TEST_F(QueryTest, WhatIsInsertedHoldsForAllThatIsThere)
{
    const QString field = fieldPath(u"Individu/Numéro"_s);
    Query query(*structure, world());
    query.addColumn(field);
    query.insertTerms(fieldPath(u"Individu/Collecteur"_s), {u"1"_s, u"2"_s});
    EXPECT_EQ(shown(query), u"ET  =  ; >ET Collecteur = 1 ; >OU Collecteur = 2"_s);
    EXPECT_TRUE(query.filter(u"Numéro"_s, u"LIKE"_s, u"b"_s));
    EXPECT_EQ(records(query.SQLStatement()), u"3"_s);
    query.clear();
    query.addColumn(field);
    query.insertText(u"ET\t%1\t=\tA1\r\nOU\t%1\tContient\tA2\r\n"_s.arg(field));
    query.insertIdentifiers({2, 3});
    EXPECT_EQ(query.TextSQLWhere(), u"(([Individus].[Numéro] = \"A1\") OR [Individus].[Numéro] LIKE \"*A2*\") "
                                    "AND [Individus].[ID Individus] IN (2,3)"_s);
    EXPECT_EQ(records(query.SQLStatement()), u"2"_s);
    project.dialogues.expectInput(
        u"Edition d'une série de ID Individus"_s,
        u"Individus: Editer une série d'objet. Inscrivez les ID séparés par une virgule (ex: 1258,1245,3154,...)"_s, {},
        u"1, 4,"_s);
    query.clear();
    EXPECT_TRUE(query.askIdentifiers());
    EXPECT_EQ(records(query.SQLStatement()), u"1 4"_s);
}

TEST_F(QueryTest, CriteriaOfOtherQueriesAreInsertedFromAList)
{
    Query query(*structure, world());
    const QString field = fieldPath(u"Individu/Numéro"_s);
    const auto save = [&](const QString& name, const QString& text) {
        query.clear();
        query.insertText(text);
        project.session.properties().put(data::kindRequête, u"Individus"_s, name,
                                         query::textOf(query.definition(), *structure));
    };
    save(u"Deux"_s, u"ET\t%1\t=\tA1\r\nOU\t%1\t=\tA2\r\n"_s.arg(field));
    save(u"Un"_s, u"ET\t%1\t=\tB1\r\n"_s.arg(field));
    ASSERT_TRUE(query.LoadRequête(u"Un"_s));
    project.dialogues.expectChoice({u"Insérer des Requêtes"_s,
                                    u"Sélectionnez les requêtes que vous souhaitez insérer"_s, u"Nom de la Requête"_s,
                                    {u"Deux"_s}, true},
                                   QList<int>{0});
    EXPECT_TRUE(query.insertQueries());
    EXPECT_EQ(query.TextSQLWhere(), u"[Individus].[Numéro] = \"B1\" AND (([Individus].[Numéro] = \"A1\") OR "
                                    "[Individus].[Numéro] = \"A2\")"_s);
}

TEST_F(QueryTest, ARectangleIsFourRowsOnThePlace)
{
    Query query(*structure, world());
    SidesForm form;
    form.sides = {u"E004°"_s, u"N43°00'00.00"_s, u"2,2"_s, u"43.55"_s};
    EXPECT_TRUE(query.askRectangle(form));
    EXPECT_EQ(form.seen.value(3), u"LatDD|Latitude Y2|Indiquez la latitude maximale du points GPS "
                                  "(Décimale ou [N-S]dd°mm'ss.000)"_s);
    ASSERT_EQ(query.criteria().count(), 4);
    EXPECT_EQ(query.criteria().at(0).path, fieldPath(u"Individu/Localité/Longitude"_s));
    QStringList signs;
    for (const Criterion& row : query.criteria().rows())
        signs << row.op;
    EXPECT_EQ(signs.join(u' '), u"> < < >"_s);
    EXPECT_EQ(records(query.SQLStatement()), u"1 3 6"_s);
}

TEST_F(QueryTest, AColumnIsSortedAndCounted)
{
    Query query(*structure, world());
    query.addColumn(fieldPath(u"Individu/Numéro"_s));
    query.addColumn(fieldPath(u"Individu/Collecteur"_s));
    query.setOrder(1, query::orderUp);
    EXPECT_TRUE(query.sort(u"Numéro"_s, query::orderDown));
    EXPECT_TRUE(query.SQLStatement().endsWith(u"ORDER BY [Individus].[Numéro] DESC"_s));
    EXPECT_EQ(query.statistics(project.progression),
              u"Nombre de valeurs uniques pour chaque champ\r\nNuméro : 6\r\nCollecteur : 3\r\nNombre de lignes : 6"_s);
    EXPECT_TRUE(project.progression.steps.contains(u"0 Calcul des statistiques"_s));
}
