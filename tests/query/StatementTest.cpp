// Conditions and statements: their text, and the records that they give.
#include "QueryFixture.h"

#include "jet/SqlText.h"

using namespace Qt::StringLiterals;
using query::Criterion;

namespace {

query::QueryDefinition with(const QList<Criterion>& rows)
{
    query::QueryDefinition definition;
    QList<Criterion> written = rows;
    for (Criterion& row : written)
        row.path = fieldPath(row.path);
    definition.criteria.setRows(written);
    return definition;
}

} // namespace

TEST_F(QueryTest, AConditionForEveryTypeAndOperator)
{
    const query::StatementBuilder builder(*structure, codes());
    const QString l = number(u"Individu/Localité"_s);
    const QString t = number(u"Individu/Détermination courante/Taxon"_s);
    const QString herbier = u"[Individus].[Herbier]"_s;
    const auto test = [&](const QString& item) {
        return u" ';' &"_s + herbier + u" &';' LIKE '*;"_s + item + u";*'"_s;
    };
    const struct {
        QString path, op, value, condition, individuals;
    } cases[] = {
        // Text.
        {u"Individu/Numéro"_s, u"="_s, u"a1"_s, u"[Individus].[Numéro] = \"a1\""_s, u"1"_s},
        {u"Individu/Numéro"_s, u"="_s, u"C\"1"_s, u"[Individus].[Numéro] = \"C\"\"1\""_s, u"5"_s},
        {u"Individu/Numéro"_s, u"Différent"_s, u"A1"_s, u"[Individus].[Numéro] <> \"A1\""_s, u"2 3 4 5"_s},
        {u"Individu/Numéro"_s, u"LIKE"_s, u"1"_s, u"[Individus].[Numéro] LIKE \"*1*\""_s, u"1 3 5"_s},
        {u"Individu/Numéro"_s, u"LIKE"_s, u"B*"_s, u"[Individus].[Numéro] LIKE \"B*\""_s, u"3 4"_s},
        {u"Individu/Numéro"_s, u"Ne Contient pas"_s, u"1"_s, u"[Individus].[Numéro] NOT LIKE \"*1*\""_s, u"2 4"_s},
        {u"Individu/Numéro"_s, u"="_s, {}, u"[Individus].[Numéro] IS NULL"_s, u"6"_s},
        {u"Individu/Numéro"_s, u"LIKE"_s, {}, u"[Individus].[Numéro] IS NOT NULL"_s, u"1 2 3 4 5"_s},
        {u"Individu/Numéro"_s, u"IN"_s, u"A1\n\nB1"_s, u"[Individus].[Numéro] IN (\"A1\",\"B1\")"_s, u"1 3"_s},
        {u"Individu/Numéro"_s, u"="_s, u"A1\nB1"_s, u"[Individus].[Numéro] = \"A1,B1\""_s, {}},
        // Numbers.
        {u"Individu/Altitude"_s, u">"_s, u"120,4"_s, u"[Individus].[Altitude] > 120.4"_s, u"1 2"_s},
        {u"Individu/Altitude"_s, u"Inférieur"_s, u"55"_s, u"[Individus].[Altitude] < 55"_s, u"4 5"_s},
        {u"Individu/Altitude"_s, u"<>"_s, {}, u"[Individus].[Altitude] IS NOT NULL"_s, u"1 2 4 5 6"_s},
        // Yes/no.
        {u"Individu/Verrou"_s, u"="_s, u"oui"_s, u"[Individus].[Locked] = TRUE"_s, u"3 6"_s},
        {u"Individu/Verrou"_s, u"<>"_s, u"Vrai"_s, u"[Individus].[Locked] <> TRUE"_s, u"1 2 4 5"_s},
        // Dates are texts.
        {u"Individu/Date de récolte"_s, u"LIKE"_s, u"2001"_s, u"[Individus].[DateRécolte] LIKE \"*2001*\""_s, u"1 2 6"_s},
        {u"Individu/Date de récolte"_s, u"="_s, u"6 mars 2001"_s, u"[Individus].[DateRécolte] = \"2001/03/06\""_s, u"1"_s},
        {u"Individu/Date de récolte"_s, u"Avant"_s, u"2001/03"_s, u"[Individus].[DateRécolte] < \"2001/03\""_s, u"3 6"_s},
        {u"Individu/Date de récolte"_s, u"Après"_s, u"2001/03/06"_s, u"[Individus].[DateRécolte] > \"2001/03/06\""_s,
         u"2 5"_s},
        // Lists in one text.
        {u"Individu/Herbier"_s, u"="_s, u"P;RB"_s, u"("_s + test(u"P"_s) + u" AND"_s + test(u"RB"_s) + u")=True"_s, u"1"_s},
        {u"Individu/Herbier"_s, u"LIKE"_s, u"P;RB"_s, u"("_s + test(u"P"_s) + u" OR"_s + test(u"RB"_s) + u")=True"_s,
         u"1 2 3 5"_s},
        {u"Individu/Herbier"_s, u"<>"_s, u"P;RB"_s, u"("_s + test(u"P"_s) + u" AND"_s + test(u"RB"_s) + u")=False"_s,
         u"2 3 4 5 6"_s},
        {u"Individu/Herbier"_s, u"NOT LIKE"_s, u"P;RB"_s, u"("_s + test(u"P"_s) + u" OR"_s + test(u"RB"_s) + u")=False"_s,
         u"4 6"_s},
        // References.
        {u"Individu/Collecteur"_s, u"="_s, u"2"_s, u"[Individus].[ID Collecteurs] = 2"_s, u"2 5"_s},
        {u"Individu/Localité"_s, u"="_s, u"2"_s, u"[Individus].[ID Localités] = 2"_s, u"2"_s},
        {u"Individu/Localité"_s, u"Région de"_s, u"2 - Hérault"_s,
         u"[Localités%1].[CodeRegion] &\"/\" LIKE \"1/2/*\""_s.arg(l), u"1 2 6"_s},
        {u"Individu/Localité"_s, u"<"_s, {}, u"[Individus].[ID Localités] IS NOT NULL"_s, u"1 2 3 4 6"_s},
        {u"Individu/Détermination courante"_s, u"Inclus"_s, u"1,4"_s, u"[Individus].[ID Déterminations] IN (1,4)"_s, u"1 3"_s},
        {u"Individu/Détermination courante/Taxon/Rang Taxonomique"_s, u"="_s, u"Genre"_s,
         u"IIf([Taxons%1].[ID Genre] Is Null,'Famille',IIf([Taxons%1].[ID Espèce] Is Null,'Genre',"
         "IIf([Taxons%1].[ID Infra] Is Null,'Espèce','Taxon Infra'))) = \"Genre\""_s.arg(t),
         u"3"_s},
        {u"Individu/Détermination courante/Taxon/Valide"_s, u"="_s, u"faux"_s,
         u"ISNULL([Taxons%1].[ID Valid]) = FALSE"_s.arg(t), u"2"_s},
        {u"Individu/Détermination courante/Commentaire"_s, u"="_s, u"mot"_s,
         u"[Déterminations%1].[Commentaire] LIKE \"*mot*\""_s.arg(number(u"Individu/Détermination courante"_s)), u"3"_s},
        // Counts, and records by identifier.
        {u"Individu/Image/Compte"_s, u">"_s, u"1"_s, u"[N_Images].[N] > 1"_s, u"1"_s},
        {u"Individu"_s, u"IN"_s, u"5,2"_s, u"[Individus].[ID Individus] IN (5,2)"_s, u"2 5"_s},
    };
    for (const auto& c : cases) {
        const auto definition = with({{.path = c.path, .op = c.op, .value = c.value}});
        SCOPED_TRACE((c.path + u' ' + c.op + u' ' + c.value).toStdString());
        ASSERT_TRUE(builder.check(definition).isEmpty()) << builder.check(definition).first().text.toStdString();
        EXPECT_EQ(builder.where(definition), c.condition);
        EXPECT_EQ(records(builder.statement(definition)), c.individuals);
    }
}

TEST_F(QueryTest, ValuesThatCannotBeAreRefusedAtTheirRow)
{
    const query::StatementBuilder builder(*structure, codes());
    const struct {
        QString path, op, value, text;
    } cases[] = {
        {u"Individu/Altitude"_s, u"="_s, u"haut"_s, u"Cette valeur n'est pas un nombre : haut"_s},
        {u"Individu/Altitude"_s, u"="_s, u"1\n2"_s, u"Une seule valeur est possible avec cet opérateur"_s},
        {u"Individu/Longitude"_s, u">"_s, u"ouest"_s, u"Cette valeur n'est pas une coordonnée : ouest"_s},
        {u"Individu/Collecteur"_s, u"="_s, u"Durand"_s, u"Cette valeur n'est pas un identifiant : Durand"_s},
        {u"Individu/Localité"_s, u"<"_s, u"99"_s, u"Cette localité n'existe pas : 99"_s},
        {u"Individu/Disparu"_s, u"="_s, u"x"_s, u"Le champ de ce critère n'existe plus"_s},
    };
    for (const auto& c : cases) {
        const auto definition = with({{.path = u"Individu/Numéro"_s, .value = u"A1"_s},
                                      {.path = c.path, .op = c.op, .value = c.value}});
        const auto errors = builder.check(definition);
        ASSERT_EQ(errors.size(), 1) << c.value.toStdString();
        EXPECT_EQ(errors.first().row, 1);
        EXPECT_EQ(errors.first().text, c.text);
        EXPECT_THROW(builder.statement(definition), query::RowRefused);
    }
}

TEST_F(QueryTest, GroupsAreParenthesisedAndTheFirstLinkIsNotWritten)
{
    const query::StatementBuilder builder(*structure, codes());
    const QString n = u"[Individus].[Numéro] = "_s;
    const auto row = [](const QString& link, const QString& value, int depth) {
        return Criterion{.link = link, .path = u"Individu/Numéro"_s, .value = value, .depth = depth};
    };
    const Criterion holder{.link = u"ET"_s};
    const struct {
        QList<Criterion> rows;
        QString where, individuals;
    } cases[] = {
        {{row(u"OU"_s, u"A1"_s, 0), row(u"OU"_s, u"A2"_s, 0)}, n + u"\"A1\" OR "_s + n + u"\"A2\""_s, u"1 2"_s},
        {{{.path = u"Individu/Altitude"_s, .op = u">"_s, .value = u"100"_s}, row(u"ET"_s, u"A1"_s, 0), row(u"OU"_s, u"b1"_s, 1)},
         u"[Individus].[Altitude] > 100 AND (("_s + n + u"\"A1\") OR "_s + n + u"\"b1\")"_s, u"1"_s},
        {{row(u"ET"_s, u"A1"_s, 0), row(u"OU"_s, u"A2"_s, 1), row(u"ET"_s, u"A2"_s, 2)},
         u"(("_s + n + u"\"A1\") OR (("_s + n + u"\"A2\") AND "_s + n + u"\"A2\"))"_s, u"1 2"_s},
        // A row without a field only holds its group.
        {{holder, row(u"OU"_s, u"A1"_s, 1), row(u"OU"_s, u"A2"_s, 1),
          {.link = u"ET"_s, .path = u"Individu/Altitude"_s, .op = u"<"_s, .value = u"200"_s}},
         u"(("_s + n + u"\"A1\") OR "_s + n + u"\"A2\") AND [Individus].[Altitude] < 200"_s, u"2"_s},
        {{holder}, {}, u"1 2 3 4 5 6"_s},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(builder.where(with(c.rows)), c.where);
        EXPECT_EQ(records(builder.statement(with(c.rows))), c.individuals) << c.where.toStdString();
    }
}

TEST_F(QueryTest, FortyCriteriaRunAndMoreAreRefusedByTheGrid)
{
    const query::StatementBuilder builder(*structure, codes());
    QList<Criterion> rows(40, {.path = u"Individu/Numéro"_s, .op = u"<>"_s, .value = u"zz"_s});
    EXPECT_EQ(records(builder.statement(with(rows))), u"1 2 3 4 5"_s);
    rows << rows.first(); // with its header the grid now has 42 rows
    EXPECT_THROW(builder.statement(with(rows)), query::TooManyRows);
}

TEST_F(QueryTest, AWholeStatementOverTwoWaysToOneModule)
{
    const query::StatementBuilder builder(*structure, codes());
    const QString d = u"Déterminations"_s + number(u"Individu/Détermination courante"_s);
    const QString t = u"Taxons"_s + number(u"Individu/Détermination courante/Taxon"_s);
    const QString s = u"Taxons"_s + number(u"Individu/Détermination/Taxon"_s);
    auto definition = with({{.path = u"Individu/Altitude"_s, .op = u">"_s, .value = u"100"_s}});
    definition.columns = {{fieldPath(u"Individu/Détermination courante/Taxon/Nom"_s), u"Courant"_s, u"Croissant"_s, {}},
                          {fieldPath(u"Individu/Détermination/Taxon/Nom"_s), u"Nom, AS donné"_s, u"Décroissant"_s, {}}};
    EXPECT_EQ(builder.statement(definition),
              u"SELECT DISTINCTROW [Individus].[ID Individus] AS [Individu],[Individus].[ID Individus] AS [ID Individus],"
              "[%2].[Nom Complet] AS [Courant],[%3].[Nom Complet] AS [Nom, AS donné]\r\n"
              "FROM (((([Individus] LEFT JOIN [Déterminations] AS [%1] ON [Individus].[ID Déterminations]=[%1].[ID Déterminations]) "
              "LEFT JOIN [Taxons] AS [%2] ON [%1].[ID Taxons]=[%2].[ID Taxons]) "
              "LEFT JOIN [Déterminations] ON [Individus].[ID Individus]=[Déterminations].[ID Individus]) "
              "LEFT JOIN [Taxons] AS [%3] ON [Déterminations].[ID Taxons]=[%3].[ID Taxons])\r\n"
              "WHERE [Individus].[Altitude] > 100\r\n"
              "ORDER BY [%2].[Nom Complet],[%3].[Nom Complet] DESC"_s.arg(d, t, s));
    EXPECT_EQ(project.rows(builder.statement(definition)),
              (QStringList{u"2|2|Quercus ballota|Quercus ballota"_s, u"1|1|Quercus ilex|Quercus ilex"_s,
                           u"1|1|Quercus ilex|Quercus ballota"_s}));
}

TEST_F(QueryTest, AModuleCanBeTheRoot)
{
    structure->setNomModule(u"Mesures"_s);
    const query::StatementBuilder builder(*structure, codes());
    const QString f = u"Taxons"_s + number(u"Mesures/Taxon de l'échantillon/Famille"_s);
    query::QueryDefinition definition;
    definition.module = u"Mesures"_s;
    definition.columns = {{fieldPath(u"Mesures/Individu/Numéro"_s), u"Plante"_s, {}, {}},
                          {fieldPath(u"Mesures/Taxon de l'échantillon/Famille/Nom"_s), u"Famille"_s, {}, {}},
                          {fieldPath(u"Mesures/Compte"_s), u"Compte"_s, {}, {}}};
    const QString statement = builder.statement(definition);
    EXPECT_TRUE(statement.startsWith(u"SELECT DISTINCTROW [Mesures].[ID Individus] AS [Individu],"
                                     "[Mesures].[ID Mesures] AS [ID Mesures],[Individus].[Numéro] AS [Plante],"
                                     "[%1].[Nom Complet] AS [Famille],[N_Mesures].[N] AS [Compte]\r\n"
                                     "FROM (((([Mesures] LEFT JOIN [Individus] ON "
                                     "[Mesures].[ID Individus]=[Individus].[ID Individus])"_s.arg(f)))
        << statement.toStdString();
    EXPECT_EQ(project.rows(statement), (QStringList{u"1|1|A1|Fagaceae|1"_s, u"2|2|A2|∅|1"_s}));
}

TEST_F(QueryTest, PointsPicturesAndStatistics)
{
    const query::StatementBuilder builder(*structure, codes());
    const QString l = u"Localités"_s + number(u"Individu/Localité"_s);
    auto definition = with({{.path = u"Individu/Numéro"_s, .op = u"LIKE"_s, .value = u"A"_s},
                            {.link = u"OU"_s, .path = u"Individu/Numéro"_s, .value = u"B1"_s}});
    const QString condition = u"[Individus].[Numéro] LIKE \"*A*\" OR [Individus].[Numéro] = \"B1\""_s;
    EXPECT_EQ(builder.mapStatement(definition),
              u"SELECT DISTINCTROW [Individus].[ID Individus] AS Chp1,[%1].[Nom Entier] AS Chp2,[%1].[LongDD] AS Chp3,"
              "[%1].[LatDD] As Chp4,[%1].[ID Localités] AS ChpLoc\r\n"
              "FROM ([Individus] LEFT JOIN [Localités] AS [%1] ON [Individus].[ID Localités]=[%1].[ID Localités])\r\n"
              "WHERE %2"_s.arg(l, condition));
    EXPECT_EQ(project.rows(builder.mapStatement(definition)),
              (QStringList{u"1|Hérault - Lattes|3.9|43.5|3"_s, u"2|France - Hérault|3.5|43.6|2"_s,
                           u"3|France - Aude|2.4|43.1|4"_s}));
    EXPECT_EQ(builder.pictureStatement(definition),
              u"SELECT DISTINCTROW [Images].[ID Images] AS ChpID, [Images].[Fichier] AS Chp1\r\n"
              "FROM ([Individus] LEFT JOIN [Images] ON [Individus].[ID Individus]=[Images].[ID Individus])\r\n"
              "WHERE (%1) AND [Images].[Fichier] IS NOT NULL\r\n"
              "ORDER BY [Images].[ID Images] DESC"_s.arg(condition));
    EXPECT_EQ(project.rows(builder.pictureStatement(definition)),
              (QStringList{u"3|c.jpg"_s, u"2|b.jpg"_s, u"1|a.jpg"_s}));
    definition.columns = {{fieldPath(u"Individu/Image/Légende"_s), u"Légende"_s, u"Croissant"_s, {}}};
    definition.criteria.clear();
    EXPECT_EQ(builder.statisticsStatement(definition, u"Légende"_s),
              u"SELECT [Légende],First([ID Individus]) AS [ID Individus],Count([ID Individus]) AS [N] FROM ("
              "SELECT DISTINCTROW [Individus].[ID Individus] AS [Individu],[Individus].[ID Individus] AS [ID Individus],"
              "[Images].[Légende] AS [Légende]\r\n"
              "FROM ([Individus] LEFT JOIN [Images] ON [Individus].[ID Individus]=[Images].[ID Individus])"
              ") AS [Statistiques] GROUP BY [Légende] ORDER BY Count([ID Individus]) DESC"_s);
    // Which of several records is the first one read is the engine's choice.
    QStringList counts;
    for (const QString& row : project.rows(builder.statisticsStatement(definition, u"Légende"_s)))
        counts << row.section(u'|', 0, 0) + u' ' + row.section(u'|', 2, 2);
    EXPECT_EQ(counts, (QStringList{u"∅ 4"_s, u"fleur 2"_s, u"fruit 1"_s}));
}
