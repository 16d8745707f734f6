#include "app/import/CsvImport.h"

#include "app/References.h"
#include "data/FieldType.h"
#include "support/Project.h"

namespace app {
namespace {

using namespace Qt::StringLiterals;

class CsvImportTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_project.create();
        import(u"Collecteurs"_s, "Nom;Initiales\nAlice Dupont;A.D.\nJean Martin;J.M.\n");
        import(u"Localités"_s, "Nom;Longitude;Latitude\nVal;6,5;45,5\n");
        import(u"Taxons"_s, "Famille;Genre;Espèce;Auteurs\nFagaceae;Quercus;robur;L.\nFagaceae;Fagus;sylvatica;L.\n");
    }

    QString write(const QByteArray& text, const QString& name = u"tableau.csv"_s)
    {
        QFile file(m_project.path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        return file.fileName();
    }
    ImportPlan planFor(const QString& target, const QByteArray& text, bool update = false)
    {
        ImportPlan plan;
        plan.file = write(text);
        plan.target = importTarget(target, m_project.session.modules(), m_project.db().schema());
        plan.format = detectCsvFormat(plan.file);
        plan.update = update;
        plan.mapping = mapColumns(CsvReader(plan.file, plan.format).header(), plan.target,
                                  keptMapping(m_project.session.properties(), plan.target.name), update);
        return plan;
    }
    ImportReport run(const ImportPlan& plan, bool rehearsal = false)
    {
        return CsvImport(m_project.session).run(plan, m_project.progression, rehearsal);
    }
    ImportReport import(const QString& target, const QByteArray& text) { return run(planFor(target, text)); }
    static QStringList reasons(const ImportReport& report)
    {
        QStringList texts;
        for (const ImportProblem& problem : report.problems)
            texts << problem.reason + u" ×"_s + QString::number(problem.rows) + u" @"_s + QString::number(problem.examples.first().line);
        texts.sort();
        return texts;
    }
    QString read(const QString& path)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return QString::fromUtf8(file.readAll());
    }

    support::TestProject m_project;
};

TEST_F(CsvImportTest, AddsIndividualsWithTheirDeterminations)
{
    const ImportReport report = import(u"individus"_s, "NUMERO;collecteur;Date de recolte;Localite;Longitude;Taxon;Autre\n"
                                                       "A1;alice dupont;12/05/2024;Val;E6°30;Quercus robur L.;x\n"
                                                       "A2;J.M.;2023;;;Fagus sp.;y\n"
                                                       "A3;;;;;;z\n");
    EXPECT_EQ(report.added, 3);
    EXPECT_EQ(report.under, 2);
    EXPECT_EQ(report.refused, 0) << report.text().toStdString();
    EXPECT_EQ(m_project.rows(u"SELECT [Numéro],[DateRécolte],[Longitude],[ID Collecteurs],[ID Localités] FROM Individus ORDER BY [Numéro]"_s),
              QStringList({u"A1|2024/05/12|6.5|1|1"_s, u"A2|2023|∅|2|∅"_s, u"A3|∅|∅|∅|∅"_s}));
    EXPECT_EQ(m_project.rows(u"SELECT Taxons.[Nom Complet],[KeyParent] FROM Déterminations INNER JOIN Taxons ON "
                             "Déterminations.[ID Taxons]=Taxons.[ID Taxons] ORDER BY [ID Individus]"_s),
              QStringList({u"Quercus robur|1-Individus"_s, u"Fagus|2-Individus"_s}));
    EXPECT_EQ(m_project.single(u"SELECT [ID Déterminations] FROM Individus WHERE [Numéro]=\"A2\""_s), 2);
}

TEST_F(CsvImportTest, ReportsEachKindAndWritesRefusedRowsWithTheirReason)
{
    const QByteArray table = "Numéro;Collecteur;Date de récolte;Altitude\n"
                             "B1;Alice Dupont;hier;1\nB2;Personne;2024;2\nB3;Alice Dupont;2024;haut\nB4;Alice Dupont;2024;4\n"
                             "B5;Alice Dupont;2024;5;trop\n\"B6;Alice Dupont;2024;6\n";
    const ImportPlan plan = planFor(u"Individus"_s, table);
    const QStringList expected{u"Altitude : ce n'est pas un nombre ×1 @4"_s, u"Collecteur : nom introuvable ×1 @3"_s,
                               u"Date de récolte : ce n'est pas une date ×1 @2"_s,
                               u"La ligne a plus de cellules que la ligne de titres ×1 @6"_s,
                               u"Un guillemet est ouvert et jamais refermé ×1 @7"_s};
    const ImportReport rehearsal = run(plan, true);
    EXPECT_EQ(reasons(rehearsal), expected);
    EXPECT_EQ(m_project.single(u"SELECT COUNT(*) FROM Individus"_s), 0);
    EXPECT_TRUE(rehearsal.refusedFile.isEmpty());

    const ImportReport report = run(plan);
    EXPECT_EQ(reasons(report), expected);
    EXPECT_EQ(report.added, 1);
    const QString refused = read(report.refusedFile);
    EXPECT_TRUE(refused.contains(u"Altitude;Motif\r\nB1;Alice Dupont;hier;1;Date de récolte : ce n'est pas une date (« hier »)\r\n"_s))
        << refused.toStdString();
    EXPECT_EQ(refused.count(u"\r\n"_s), 6);
}

TEST_F(CsvImportTest, ChangesRecordsByIdentifierAndLeavesAbsentColumnsAndEmptyCellsAlone)
{
    import(u"Individus"_s, "Numéro;Altitude;Habitat\nC1;100;pré\nC2;200;bois\n");
    const QByteArray table = "ID Individus;Altitude;Numéro\n1;150;\n2;;C2bis\n77;1;x\n";
    EXPECT_EQ(CsvImport::problem(planFor(u"Individus"_s, "Altitude\n1\n", true)),
              u"Aucune colonne ne donne l'identifiant des enregistrements à modifier."_s);
    ImportPlan plan = planFor(u"Individus"_s, table, true);
    EXPECT_EQ(reasons(run(plan)), QStringList({u"Aucun enregistrement n'a cet identifiant ×1 @4"_s}));
    const QString all = u"SELECT [Numéro],[Altitude],[Habitat] FROM Individus ORDER BY [ID Individus]"_s;
    EXPECT_EQ(m_project.rows(all), QStringList({u"C1|150|pré"_s, u"C2bis|200|bois"_s}));
    plan.emptyErases = true;
    run(plan);
    EXPECT_EQ(m_project.rows(all), QStringList({u"∅|150|pré"_s, u"C2bis|∅|bois"_s}));
}

TEST_F(CsvImportTest, UnknownNamesAreListedAndDecided)
{
    ImportPlan plan = planFor(u"Individus"_s, "Numéro;Collecteur;Localité;Taxon\nD1;Alice Dupond;Mont;Quercus robbur\nD2;Alice Dupond;Mont;Acer rubrum L.\n"
                                              "D3;Alice Dupond;;Quercus robur\n");
    const QList<UnknownName> names = CsvImport(m_project.session).unknownNames(plan, m_project.progression);
    QStringList texts;
    for (const UnknownName& name : names)
        texts << listOfType(name.type) + u' ' + name.name + u" ×"_s + QString::number(name.rows) + u' '
                     + (name.near.isEmpty() ? QString() : name.near.first().name);
    EXPECT_EQ(texts, QStringList({u"Collecteurs Alice Dupond ×3 Alice Dupont"_s, u"Localités Mont ×2 "_s,
                                  u"Taxons Quercus robbur ×1 Quercus"_s, u"Taxons Acer rubrum L. ×1 "_s}));
    plan.decisions = {{nameKey(data::Botaniste, u"Alice Dupond"_s), {NameDecision::Choose, 1}},
                      {nameKey(data::Localité, u"Mont"_s), {NameDecision::Create, 0}},
                      {nameKey(data::Taxon, u"Quercus robbur"_s), {NameDecision::Leave, 0}},
                      {nameKey(data::Taxon, u"Acer rubrum L."_s), {NameDecision::Create, 0}}};
    const ImportReport report = run(plan);
    EXPECT_EQ(report.added, 3) << report.text().toStdString();
    EXPECT_EQ(report.created, (QList<std::pair<QString, qint64>>{{u"Localités"_s, 1}, {u"Taxons"_s, 1}}));
    EXPECT_EQ(m_project.rows(u"SELECT [ID Collecteurs],[ID Localités] FROM Individus ORDER BY [Numéro]"_s),
              QStringList({u"1|2"_s, u"1|2"_s, u"1|∅"_s}));
    EXPECT_EQ(m_project.rows(u"SELECT a.[Nom Complet],a.[Auteurs],f.[Taxon] FROM Taxons AS a INNER JOIN Taxons AS f ON "
                             "a.[ID Famille]=f.[ID Taxons] WHERE a.[Nom Complet]=\"Acer rubrum\""_s),
              QStringList({u"Acer rubrum|L.|Incertae Sedis"_s}));
}

TEST_F(CsvImportTest, SubRecordsFindTheirIndividualByNumber)
{
    import(u"Individus"_s, "Numéro\nE1\nE2\nE2\n");
    const ImportReport report = import(u"Déterminations"_s, "Numéro;Taxon;Réserve\nE1;Quercus robur;CF.\nE2;Quercus robur;\nE9;Quercus robur;\nE1;;\n");
    EXPECT_EQ(report.added, 1);
    EXPECT_EQ(reasons(report), QStringList({u"Aucun individu n'a ce numéro ×1 @4"_s, u"Aucune valeur à enregistrer ×1 @5"_s,
                                            u"Plusieurs individus ont ce numéro ×1 @3"_s}));
    EXPECT_EQ(m_project.rows(u"SELECT [ID Individus],[KeyParent],[Réserve] FROM Déterminations"_s), QStringList({u"1|1-Individus|cf."_s}));
    EXPECT_FALSE(CsvImport::problem(planFor(u"Déterminations"_s, "Taxon\nQuercus robur\n")).isEmpty());
}

TEST_F(CsvImportTest, ReferenceListsKeepTheirRules)
{
    const ImportReport taxa = import(u"Taxons"_s, "Famille;Nom complet;Date de publication\nRosaceae;Rosa canina var. alba Hook.;1850\n"
                                                  ";Quercus robur L.;\n;Nova species;\nFagaceae;QUERCUS;\n");
    EXPECT_EQ(taxa.added, 1) << taxa.text().toStdString();
    EXPECT_EQ(taxa.present, 2);
    EXPECT_EQ(reasons(taxa), QStringList({u"La famille manque ×1 @4"_s}));
    EXPECT_EQ(m_project.rows(u"SELECT [Nom Complet],[Auteurs],[DateOriginal] FROM Taxons WHERE [Nom Complet] LIKE \"Rosa*\" ORDER BY [Nom Complet]"_s),
              QStringList({u"Rosa|∅|∅"_s, u"Rosa canina|∅|∅"_s, u"Rosa canina var. alba|Hook.|1850"_s, u"Rosaceae|∅|∅"_s}));

    const ImportReport places = import(u"Localités"_s, "Nom;Parent;Longitude;Latitude;Référence GPS\nPré;Val;6,1;45,1;P1\nSource;Pré;;;\nVal;;0;0;\n"
                                                       "Loin;Ailleurs;;;\nPic;;;;ABCDEFGHIJKLMNOPQRSTUVWXYZ\n");
    EXPECT_EQ(places.present, 1);
    EXPECT_EQ(reasons(places).filter(u"parente : nom introuvable ×1 @5"_s).size(), 1) << places.text().toStdString();
    EXPECT_EQ(places.refused, 2);
    EXPECT_EQ(m_project.rows(u"SELECT [Nom Entier],[CodeRegion],[ID Type],[LongDD] FROM Localités WHERE [ID Localités]>1 ORDER BY [ID Localités]"_s),
              QStringList({u"Val - Pré|1/2|1|6.1"_s, u"Pré - Source|1/2/3|2|0"_s}));

    const ImportReport people = import(u"Collecteurs"_s, "Nom\nAlice Dupont\nMarie Curie\n");
    EXPECT_EQ(people.present, 1);
    EXPECT_EQ(m_project.rows(u"SELECT [Initiales],[Bot] FROM Collecteurs WHERE [Collecteur]=\"Marie Curie\""_s), QStringList({u"M.C.|true"_s}));
}

TEST_F(CsvImportTest, KeepsTheColumnsChosenForTheNextTime)
{
    ImportPlan plan = planFor(u"Individus"_s, "Code;Altitude;Remarque\nF1;12;sec\n");
    EXPECT_EQ(plan.mapping, ColumnMapping({{}, u"Altitude"_s, {}}));
    plan.mapping = {u"Numéro"_s, {}, u"Habitat"_s};
    run(plan);
    EXPECT_EQ(planFor(u"Individus"_s, "REMARQUE;code;altitude\nx;y;z\n").mapping, ColumnMapping({u"Habitat"_s, u"Numéro"_s, {}}));
}

TEST_F(CsvImportTest, StoppedInTheMiddleItLeavesNothing)
{
    class Impatient : public platform::Progression {
    public:
        void step(const QString&, int percent) override { m_stop = percent > 40; }
        bool cancelled() const override { return m_stop; }

    private:
        bool m_stop = false;
    } impatient;
    QByteArray table("Numéro;Altitude\n");
    for (int i = 0; i < 100'000; ++i)
        table += "G" + QByteArray::number(i) + (i == 5 ? ";haut\n" : ";1\n");
    const ImportPlan plan = planFor(u"Individus"_s, table);
    try {
        CsvImport(m_project.session).run(plan, impatient, false);
        FAIL() << "not stopped";
    } catch (const jet::Error& error) {
        EXPECT_EQ(error.number(), 3059);
    }
    EXPECT_EQ(m_project.single(u"SELECT COUNT(*) FROM Individus"_s), 0);
    EXPECT_FALSE(QFile::exists(refusedPath(plan.file)));
    EXPECT_TRUE(QDir(m_project.folder.path()).entryList({u".tableau*"_s}, QDir::Hidden | QDir::Files).isEmpty());
}

} // namespace
} // namespace app
