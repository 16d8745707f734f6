#include "QueryFixture.h"
#include "query/BatchReplace.h"

#include "data/FieldType.h"

using namespace Qt::StringLiterals;
using query::BatchReplace;
using query::Replacement;

namespace {

data::ModuleRecord moduleOf(const app::Session& session, const QString& name)
{
    for (const data::ModuleRecord& module : session.modules()) {
        if (module.name == name)
            return module;
    }
    return {};
}

} // namespace

TEST_F(QueryTest, ValuesOfReplacements)
{
    BatchReplace replace(project.db(), project.clock, project.dialogues, context, moduleOf(project.session, u"Mesures"_s));
    const struct {
        QString champ, value, expression;
    } cases[] = {
        {u"Diamètre"_s, u"12,5"_s, u"12.5"_s},
        {u"Diamètre"_s, u"10~-"_s, u"[Mesures].[Diamètre] - 10"_s},
        {u"Diamètre"_s, u"10-~"_s, u"10 - [Mesures].[Diamètre]"_s},
        {u"Diamètre"_s, u"2~/"_s, u"[Mesures].[Diamètre] / 2"_s},
        {u"Diamètre"_s, u"2/~"_s, u"2 / [Mesures].[Diamètre]"_s},
        {u"NombreMesures"_s, u"3~*"_s, u"[Mesures].[NombreMesures] * 3"_s},
        {u"Rubrique"_s, u"un \"mot\""_s, u"\"un \"\"mot\"\"\""_s},
        {u"Rubrique"_s, u"cf. &~"_s, u"\"cf. \" & [Mesures].[Rubrique]"_s},
        {u"Rubrique"_s, u" bis~&"_s, u"[Mesures].[Rubrique] & \" bis\""_s},
        {u"Complet"_s, u"oui"_s, u"True"_s},
        {u"Complet"_s, u"non"_s, u"False"_s},
        {u"ID Taxons"_s, u"3"_s, u"3"_s},
        {u"ID Taxons"_s, query::validName, u"[Taxons].[ID Valid]"_s},
        {u"DateÉchantillon"_s, u"mars 2001"_s, u"\"2001/03\""_s},
        {u"Relevé"_s, {}, u"Null"_s},
    };
    for (const auto& c : cases)
        EXPECT_EQ(replace.SQLEdition({c.champ, c.value}), u"[Mesures].[%1] = "_s.arg(c.champ) + c.expression);
    for (const Replacement& row : {Replacement{u"Diamètre"_s, u"gros"_s}, Replacement{u"Diamètre"_s, u"~&"_s},
                                   Replacement{u"Rubrique"_s, u"2~+"_s}, Replacement{u"Diamètre"_s, u"x~+"_s},
                                   Replacement{u"Complet"_s, u"~1"_s}, Replacement{u"ID Taxons"_s, u"ilex"_s},
                                   Replacement{u"Absent"_s, u"1"_s}})
        EXPECT_THROW(replace.SQLEdition(row), query::RowRefused) << row.value.toStdString();
}

TEST_F(QueryTest, TheSelectionIsChangedAndLockedRecordsAreNot)
{
    BatchReplace replace(project.db(), project.clock, project.dialogues, context,
                         moduleOf(project.session, u"Individus"_s), QList<qint32>{1, 2, 3, 5});
    replace.rows = {{u"Altitude"_s, u"2~/"_s}, {u"Numéro"_s, u"N\"&~"_s}};
    EXPECT_EQ(replace.statement(),
              u"UPDATE [Individus] SET [Individus].[Altitude] = [Individus].[Altitude] / 2, [Individus].[Numéro] = "
              "\"N\"\"\" & [Individus].[Numéro], [Individus].[DateModify]=\"2026/03/07 14:05:09\" "
              "WHERE [Individus].[ID Individus] IN (1,2,3,5) AND [Individus].[Locked]=False"_s);
    EXPECT_EQ(replace.counts().changed, 3);
    EXPECT_EQ(replace.counts().locked, 1);
    EXPECT_EQ(replace.preview(1).first().after, (QStringList{u"200"_s, u"N\"A1"_s}));
    const QString question = u"Etes-vous sûr de procéder au remplacement des propriétés suivantes : \r\n"
                             "- Altitude = 2~/\r\n- Numéro = N\"&~\r\ndans la sélection en cours du module Individus"_s;
    project.dialogues.expectConfirm(question, u"Remplacer dans la base Individus"_s, false);
    EXPECT_FALSE(replace.execute());
    project.dialogues.expectConfirm(question, u"Remplacer dans la base Individus"_s, true);
    project.dialogues.expectTell(u"3 enregistrement(s) mis à jour"_s, u"Remplacement dans la table Individus"_s);
    EXPECT_EQ(replace.execute(), 3);
    EXPECT_EQ(project.rows(u"SELECT [ID Individus],[Altitude],[Numéro] FROM Individus"_s),
              (QStringList{u"1|200|N\"A1"_s, u"2|60.25|N\"A2"_s, u"3|∅|B1"_s, u"4|10|b2"_s, u"5|0|N\"C\"1"_s, u"6|55|∅"_s}));
}

TEST_F(QueryTest, AReplacementThatTheFileRefusesChangesNothing)
{
    BatchReplace replace(project.db(), project.clock, project.dialogues, context, moduleOf(project.session, u"Mesures"_s));
    project.db().Execute(u"UPDATE [Mesures] SET [ID Taxons]=3"_s);
    replace.rows = {{u"Diamètre"_s, u"7~-"_s}}; // the second would become 0
    project.dialogues.expectLike({u"Etes-vous sûr"_s, u"dans le module Mesures"_s}, u"Remplacer dans la base Mesures"_s,
                                 platform::BoxIcon::Question, platform::BoxButtons::YesNo, platform::Answer::Yes);
    project.dialogues.expectLike({u"Une mesure est un nombre positif"_s}, u"Remplacement dans la table Mesures"_s,
                                 platform::BoxIcon::Stop);
    EXPECT_FALSE(replace.execute());
    EXPECT_EQ(project.rows(u"SELECT [Diamètre] FROM Mesures"_s), (QStringList{u"42.5"_s, u"7"_s}));
}

TEST_F(QueryTest, SynonymsMoveToTheirValidNameAndAcceptedNamesStay)
{
    BatchReplace replace(project.db(), project.clock, project.dialogues, context,
                         moduleOf(project.session, u"Déterminations"_s));
    replace.rows = {{u"ID Taxons"_s, query::validName}};
    EXPECT_TRUE(replace.statement().startsWith(
        u"UPDATE [Déterminations] INNER JOIN [Taxons] ON [Déterminations].[ID Taxons] = Taxons.[ID Taxons] SET "
        "[Déterminations].[ID Taxons] = [Taxons].[ID Valid], [Déterminations].[DateModify]="_s));
    project.dialogues.expectLike({u"Etes-vous sûr"_s}, u"Remplacer dans la base Déterminations"_s,
                                 platform::BoxIcon::Question, platform::BoxButtons::YesNo, platform::Answer::Yes);
    project.dialogues.expectTell(u"2 enregistrement(s) mis à jour"_s, u"Remplacement dans la table Déterminations"_s);
    EXPECT_EQ(replace.execute(), 2);
    EXPECT_EQ(project.rows(u"SELECT [ID Taxons] FROM Déterminations"_s),
              (QStringList{u"3"_s, u"3"_s, u"3"_s, u"2"_s}));
}

TEST_F(QueryTest, RecordsWithoutATaxonAreCountedAsMissed)
{
    BatchReplace replace(project.db(), project.clock, project.dialogues, context, moduleOf(project.session, u"Mesures"_s));
    replace.rows = {{u"NombreMesures"_s, u"3"_s}};
    const query::ReplaceCounts counts = replace.counts();
    EXPECT_EQ(counts.changed, 1);
    EXPECT_EQ(counts.unchanged, 1);
    EXPECT_EQ(counts.missed, 1);
}

TEST(BatchReplace, BracketsOfAnExpressionMustMatch)
{
    EXPECT_EQ(BatchReplace::checkExpression(u"[a].[b"_s), u"Erreur: Vérifier le nombre de crochets dans l'expression"_s);
    EXPECT_EQ(BatchReplace::checkExpression(u"[a]}"_s), u"Erreur: Vérifier le nombre d'accolades dans l'expression"_s);
    EXPECT_EQ(BatchReplace::checkExpression(u"Len([a]) & {}"_s), QString());
}
