#include "app/Demo.h"
#include "app/DemoRecords.h"
#include "data/FieldType.h"
#include "data/Verification.h"
#include "jet/Recordset.h"
#include "support/Project.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

/// A table of the demo folder, read here on its own: header names to cells.
QList<QHash<QString, QString>> tableOf(const QString& name)
{
    QFile file(qEnvironmentVariable("HERBORA_SOURCE") + u"/demo/"_s + name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
    QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
    const QStringList header = lines.takeFirst().split(u'\t');
    QList<QHash<QString, QString>> rows;
    for (const QString& line : std::as_const(lines)) {
        const QStringList cells = line.split(u'\t');
        QHash<QString, QString> row;
        for (qsizetype i = 0; i < header.size(); ++i)
            row.insert(header[i], cells.value(i));
        rows << row;
    }
    return rows;
}

QHash<QString, QHash<QString, QString>> keyed(const QString& name, const QString& key)
{
    QHash<QString, QHash<QString, QString>> rows;
    for (const auto& row : tableOf(name))
        rows.insert(row[key], row);
    return rows;
}

QByteArray digest(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QCryptographicHash hash(QCryptographicHash::Sha1);
    hash.addData(&file);
    return hash.result();
}

/// The demo project, built once for the tests that only read it.
class DemoProject : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        s_project = new support::TestProject;
        ASSERT_TRUE(app::buildDemo(s_project->session, s_project->path(), s_project->progression));
    }
    static void TearDownTestSuite()
    {
        delete s_project;
        s_project = nullptr;
    }
    static support::TestProject& project() { return *s_project; }
    static QVariant single(const QString& statement) { return s_project->single(statement); }

private:
    static support::TestProject* s_project;
};

support::TestProject* DemoProject::s_project = nullptr;

TEST_F(DemoProject, HoldsEveryRecordOfTheTables)
{
    QSet<QString> people, taxa, measured;
    for (const auto& person : tableOf(u"people.tsv"_s))
        people.insert(person[u"name"_s].toCaseFolded());
    for (const auto& taxon : tableOf(u"taxa.tsv"_s))
        taxa.insert(QString(taxon[u"name"_s] + u'\n' + taxon[u"authors"_s]).toCaseFolded());
    for (const auto& measure : tableOf(u"measures.tsv"_s))
        measured.insert(measure[u"individual_id"_s]);
    const QList<QPair<QString, qsizetype>> expected{
        {u"Collecteurs"_s, people.size()},
        {u"Taxons"_s, taxa.size()},
        {u"Localités"_s, tableOf(u"localities.tsv"_s).size() + tableOf(u"maps/maps.tsv"_s).size()},
        {u"Individus"_s, tableOf(u"individuals.tsv"_s).size()},
        {u"Déterminations"_s, tableOf(u"determinations.tsv"_s).size()},
        {u"Images"_s, tableOf(u"images/images.tsv"_s).size()},
        {u"Mesures"_s, measured.size()},
    };
    for (const auto& [table, count] : expected)
        EXPECT_EQ(single(u"SELECT Count(*) FROM ["_s + table + u"]"_s).toLongLong(), count) << table.toStdString();
    EXPECT_EQ(single(u"SELECT Sum([NombreMesures]) FROM [Mesures]"_s).toInt(), tableOf(u"measures.tsv"_s).size());
}

TEST_F(DemoProject, IsSoundByTheRulesOfTheProgram)
{
    EXPECT_EQ(data::verify(project().db(), project().session.modules()), QStringList());
}

TEST_F(DemoProject, GivesEveryTaxonItsRankItsAncestorsAndItsFullName)
{
    struct Row {
        QString taxon, fullName;
        std::array<int, 4> ranks;
        int rank = 0;
    };
    QHash<int, Row> taxa;
    const auto rows = project().db().OpenRecordset(u"Taxons"_s, jet::RecordsetType::Table);
    for (; !rows->EOF_(); rows->MoveNext()) {
        const int id = rows->Value(u"ID Taxons").toInt();
        Row row{rows->Value(u"Taxon").toString(), rows->Value(u"Nom Complet").toString(), {}};
        int r = 0;
        for (const QString& column : {u"ID Famille"_s, u"ID Genre"_s, u"ID Espèce"_s, u"ID Infra"_s}) {
            const QVariant value = rows->Value(column);
            row.ranks[size_t(r++)] = value.toInt();
            EXPECT_EQ(value.isValid(), row.rank == 0) << id << ' ' << r; // Null below the own rank
            if (value.toInt() == id)
                row.rank = r;
        }
        EXPECT_GE(row.rank, 1) << id;
        taxa.insert(id, row);
    }
    ASSERT_GT(taxa.size(), 900);
    QHash<int, int> ranks;
    for (const Row& row : taxa) {
        ++ranks[row.rank];
        for (int above = 1; above < row.rank; ++above) {
            const Row ancestor = taxa.value(row.ranks[size_t(above - 1)]);
            EXPECT_EQ(ancestor.rank, above) << row.fullName.toStdString();
            EXPECT_TRUE(std::equal(ancestor.ranks.begin(), ancestor.ranks.begin() + above, row.ranks.begin()));
        }
        const Row genus = taxa.value(row.ranks[1]);
        const Row species = taxa.value(row.ranks[2]);
        const QString composed = row.rank == 3   ? genus.taxon + u' ' + row.taxon
                                 : row.rank == 4 ? species.fullName + u' ' + row.taxon
                                                 : row.taxon;
        EXPECT_EQ(row.fullName, composed);
        const QString cased = row.rank >= 3 ? row.taxon.toLower() : row.taxon.left(1).toUpper() + row.taxon.mid(1).toLower();
        EXPECT_EQ(row.taxon, cased);
    }
    EXPECT_EQ(ranks[1], 78);
    EXPECT_EQ(ranks[4], 57);
}

TEST_F(DemoProject, SinksSynonymsUnderTheirAcceptedNames)
{
    const auto taxa = keyed(u"taxa.tsv"_s, u"taxon_id"_s);
    int synonyms = 0;
    for (const auto& taxon : taxa) {
        if (taxon[u"accepted_id"_s].isEmpty())
            continue;
        ++synonyms;
        const QVariant accepted = single(
            u"SELECT Valide.[Nom Complet] FROM Taxons INNER JOIN Taxons AS Valide ON Taxons.[ID Valid]=Valide.[ID Taxons]"
            " WHERE Taxons.[Nom Complet]=\""_s + taxon[u"name"_s] + u"\" AND Taxons.[Auteurs]=\""_s
            + taxon[u"authors"_s] + u'"');
        EXPECT_EQ(accepted.toString(), taxa[taxon[u"accepted_id"_s]][u"name"_s]);
    }
    EXPECT_EQ(single(u"SELECT Count(*) FROM Taxons WHERE [ID Valid] IS NOT NULL"_s).toInt(), synonyms);
}

TEST_F(DemoProject, CodesThePathOfEveryPlace)
{
    struct Row {
        QString name, code, whole;
        int type;
    };
    QHash<QString, Row> byCode;
    const auto rows = project().db().OpenRecordset(u"Localités"_s, jet::RecordsetType::Table);
    for (; !rows->EOF_(); rows->MoveNext()) {
        const QString code = rows->Value(u"CodeRegion").toString();
        EXPECT_EQ(code.section(u'/', -1), rows->Value(u"ID Localités").toString());
        byCode.insert(code, {rows->Value(u"Localité").toString(), code, rows->Value(u"Nom Entier").toString(),
                             rows->Value(u"ID Type").toInt()});
    }
    for (const Row& row : byCode) {
        if (row.type < 0) // a map
            continue;
        EXPECT_EQ(row.type, row.code.count(u'/'));
        if (row.type == 0) {
            EXPECT_EQ(row.whole, row.name);
            continue;
        }
        const QString parent = row.code.section(u'/', 0, -2);
        ASSERT_TRUE(byCode.contains(parent)) << row.code.toStdString();
        EXPECT_EQ(row.whole, byCode[parent].name + u" - "_s + row.name);
    }
}

TEST_F(DemoProject, MarksThePointsThatAreNotOfTheSource)
{
    int marked = 0, row = 0;
    const QList<QHash<QString, QString>> places = tableOf(u"localities.tsv"_s);
    const auto rows = project().db().OpenRecordset(u"Localités"_s, jet::RecordsetType::Table);
    rows->SetIndex(u"PrimaryKey"_s);
    for (; !rows->EOF_(); rows->MoveNext()) {
        if (rows->Value(u"ID Type").toInt() < 0)
            continue;
        const auto& place = places[row++]; // in the order of the table
        ASSERT_EQ(rows->Value(u"Localité").toString(), place[u"name"_s]);
        const bool given = !place[u"latitude"_s].isEmpty();
        EXPECT_EQ(rows->Value(u"GPSRef").isValid(), !given) << place[u"name"_s].toStdString();
        marked += !given;
        if (given) {
            EXPECT_EQ(rows->Value(u"LatDD").toDouble(), place[u"latitude"_s].toDouble());
        }
    }
    EXPECT_EQ(marked, 324);
    EXPECT_EQ(single(u"SELECT [GPSRef] FROM Localités WHERE [Localité]=\"Gabon\""_s).toString(), u"milieu du pays"_s);
    EXPECT_EQ(single(u"SELECT [GPSRef] FROM Localités WHERE [Localité]=\"Brésil\""_s).toString(), u"moyenne des points"_s);
    EXPECT_NEAR(single(u"SELECT [LatDD] FROM Localités WHERE [Localité]=\"Nouvelle-Calédonie\""_s).toDouble(), -21.2, 0.6);
}

TEST_F(DemoProject, HangsEverySubRecordUnderItsIndividual)
{
    for (const QString& module : {u"Déterminations"_s, u"Images"_s, u"Mesures"_s}) {
        const auto rows = project().db().OpenRecordset(module, jet::RecordsetType::Table);
        for (; !rows->EOF_(); rows->MoveNext())
            EXPECT_EQ(rows->Value(u"KeyParent").toString(), rows->Value(u"ID Individus").toString() + u"-Individus"_s);
    }
}

TEST_F(DemoProject, NamesEachPlantAsItsCurrentDeterminationSays)
{
    QHash<QString, QString> expected;
    const auto taxa = keyed(u"taxa.tsv"_s, u"taxon_id"_s);
    for (const auto& determination : tableOf(u"determinations.tsv"_s)) {
        if (determination[u"current"_s] == u"1"_s)
            expected.insert(determination[u"individual_id"_s], taxa[determination[u"taxon_id"_s]][u"name"_s]);
    }
    const QStringList names = project().rows(
        u"SELECT Taxons.[Nom Complet] FROM (Individus INNER JOIN Déterminations ON Individus.[ID Déterminations]="
        "Déterminations.[ID Déterminations]) INNER JOIN Taxons ON Déterminations.[ID Taxons]=Taxons.[ID Taxons]"
        " WHERE Individus.[ID Individus]=Déterminations.[ID Individus] ORDER BY Individus.[ID Individus]"_s);
    const QList<QHash<QString, QString>> individuals = tableOf(u"individuals.tsv"_s);
    ASSERT_EQ(names.size(), individuals.size());
    for (qsizetype i = 0; i < names.size(); ++i)
        EXPECT_EQ(names[i].toLower(), expected[individuals[i][u"individual_id"_s]].toLower()) << i;
}

TEST_F(DemoProject, KeepsPartialDatesAndLeavesUnknownOnesOut)
{
    const QList<QHash<QString, QString>> individuals = tableOf(u"individuals.tsv"_s);
    const QStringList dates = project().rows(u"SELECT [DateRécolte] FROM Individus ORDER BY [ID Individus]"_s);
    ASSERT_EQ(dates.size(), individuals.size());
    QHash<qsizetype, int> lengths;
    for (const QString& date : dates)
        ++lengths[date.size()];
    EXPECT_EQ(lengths, (QHash<qsizetype, int>{{1, 370}, {7, 3}, {10, 567}}));
    EXPECT_EQ(dates[40], u"1980/12"_s);
    EXPECT_EQ(dates[420], u"∅"_s); // a month without a year is no date
    EXPECT_TRUE(project().rows(u"SELECT [Description] FROM Individus WHERE [ID Individus]=421"_s)[0].contains(
        u"Mois de l'observation : octobre"_s));
    EXPECT_EQ(single(u"SELECT Count(*) FROM Déterminations WHERE [DateDétermination] LIKE \"####\""_s).toInt(), 150);
}

TEST_F(DemoProject, HasAModuleWithAFieldOfEveryType)
{
    const data::ModuleRecord* module = project().session.dictionary().module(u"Mesures");
    ASSERT_TRUE(module);
    EXPECT_TRUE(module->isUser());
    EXPECT_FALSE(module->icon.isEmpty());
    QSet<int> types;
    for (const data::FieldRecord& field : module->fields) {
        types.insert(field.type);
        EXPECT_GT(single(u"SELECT Count(["_s + field.column + u"]) FROM [Mesures]"_s).toInt(), 0)
            << field.caption.toStdString();
        const bool list = field.type == data::ListeSimple || field.type == data::ListeMultiple;
        EXPECT_EQ(field.descriptors.isEmpty(), !list) << field.caption.toStdString();
    }
    EXPECT_EQ(types, (QSet<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12, 13, 14, 15, 17}));
}

TEST_F(DemoProject, UsesOnlyDescriptorsOfItsVocabularies)
{
    const struct { QString module, column; } lists[] = {{u"Individus"_s, u"Herbier"_s},
                                                        {u"Mesures"_s, u"Organes"_s},
                                                        {u"Mesures"_s, u"Méthode"_s}};
    for (const auto& [module, column] : lists) {
        const QStringList vocabulary = project()
                                           .session.properties()
                                           .value(data::kindDescripteur, module, column)
                                           .toString()
                                           .split(u';');
        QSet<QString> used;
        for (const QString& value : project().rows(u"SELECT ["_s + column + u"] FROM ["_s + module + u"] WHERE ["_s
                                                   + column + u"] IS NOT NULL"_s)) {
            for (const QString& item : value.split(u';'))
                used.insert(item);
        }
        EXPECT_GT(used.size(), 2) << column.toStdString();
        for (const QString& item : used)
            EXPECT_TRUE(vocabulary.contains(item)) << item.toStdString();
    }
}

TEST_F(DemoProject, KeepsItsPicturesInItsDeclaredFolder)
{
    const QString folder = project().session.properties().value(u"ImagePaths"_s, u"Images"_s, u"Paths"_s).toString();
    EXPECT_EQ(folder, app::demoImageFolder(project().path()));
    const QStringList files = project().rows(u"SELECT [Fichier] FROM Images"_s);
    EXPECT_EQ(files.size(), 16);
    for (const QString& file : files)
        EXPECT_EQ(digest(folder + u'/' + file),
                  digest(qEnvironmentVariable("HERBORA_SOURCE") + u"/demo/images/"_s + file));
}

TEST_F(DemoProject, RefusesWhatItsUniqueIndexesForbid)
{
    const QString statements[] = {
        u"INSERT INTO Taxons ([Taxon],[Nom Complet],[Auteurs]) VALUES (\"x\",\"CORDIA\",\"l.\")"_s,
        u"INSERT INTO Collecteurs ([Collecteur],[Initiales]) VALUES (\"james l. zarucchi\",\"JLZ\")"_s};
    for (const QString& statement : statements) {
        try {
            project().db().Execute(statement);
            ADD_FAILURE() << "taken: " << statement.toStdString();
        } catch (const jet::Error& error) {
            EXPECT_EQ(error.number(), 3022);
        }
    }
}

TEST_F(DemoProject, OpensAgainWithoutAChange)
{
    const QString path = project().path();
    project().session.close();
    const QByteArray before = digest(path);
    const QDateTime modified = QFileInfo(path).lastModified();
    ASSERT_TRUE(project().open());
    EXPECT_EQ(project().single(u"SELECT Count(*) FROM Individus"_s).toInt(), 940);
    project().session.close();
    EXPECT_EQ(digest(path), before);
    EXPECT_EQ(QFileInfo(path).lastModified(), modified);
    ASSERT_TRUE(project().open());
}

/// Every row of every table, except the picture folder, which is that of the place.
QStringList contentOf(support::TestProject& project)
{
    QStringList content;
    for (const QString& table : {u"Taxons"_s, u"Individus"_s, u"Déterminations"_s, u"Images"_s, u"Mesures"_s})
        content << project.rows(u"SELECT * FROM ["_s + table + u"] ORDER BY [ID "_s + table + u"]"_s);
    return content;
}

TEST(SyntheticProject, IsTheSameForTheSameSeedAndSound)
{
    const app::DemoOptions options{.individus = 2000, .taxons = 3000, .graine = 7};
    support::TestProject first, again, other;
    ASSERT_TRUE(app::buildDemo(first.session, first.path(), first.progression, options));
    ASSERT_TRUE(app::buildDemo(again.session, again.path(), again.progression, options));
    ASSERT_TRUE(app::buildDemo(other.session, other.path(), other.progression, {.individus = 50, .graine = 8}));

    const QStringList content = contentOf(first);
    EXPECT_EQ(content, contentOf(again));
    const QString numbers = u"SELECT TOP 50 [Numéro] FROM Individus ORDER BY [ID Individus]"_s;
    EXPECT_NE(first.rows(numbers), other.rows(numbers));
    EXPECT_EQ(data::verify(first.db(), first.session.modules()), QStringList());

    EXPECT_EQ(first.single(u"SELECT Count(*) FROM Individus"_s).toInt(), 2000);
    EXPECT_EQ(first.single(u"SELECT Count(*) FROM Taxons"_s).toInt(), 3000);
    int subRecords = 0;
    for (const QString& module : {u"Déterminations"_s, u"Images"_s, u"Mesures"_s})
        subRecords += first.single(u"SELECT Count(*) FROM ["_s + module + u"]"_s).toInt();
    EXPECT_NEAR(subRecords, 6000, 200);
    EXPECT_EQ(first.single(u"SELECT Count(*) FROM Individus INNER JOIN Déterminations ON Individus.[ID Déterminations]="
                           "Déterminations.[ID Déterminations] WHERE Individus.[ID Individus]=Déterminations.[ID Individus]"_s)
                  .toInt(),
              2000);
    EXPECT_GT(first.single(u"SELECT Count(*) FROM Images WHERE [KeyParent] LIKE \"*-Déterminations\""_s).toInt(), 100);
}

/// Wants to stop at the step of that text.
class Stopping : public support::RecordedProgression {
public:
    explicit Stopping(const QString& at) : m_at(at) {}
    bool cancelled() const override { return !steps.isEmpty() && steps.last().contains(m_at); }

private:
    QString m_at;
};

TEST(SyntheticProject, LeavesNothingWhenStopped)
{
    support::TestProject project;
    Stopping stopping(u"Création des individus"_s);
    EXPECT_FALSE(app::buildDemo(project.session, project.path(), stopping, {.individus = 5000}));
    EXPECT_FALSE(project.session.isOpen());
    EXPECT_TRUE(project.dialogues.asked().isEmpty());
    EXPECT_EQ(QDir(project.folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{u"Herbora.ini"_s});
}

TEST(DemoPath, IsLeftAsItIsWhenTaken)
{
    support::TestProject project;
    QFile taken(project.path());
    ASSERT_TRUE(taken.open(QIODevice::WriteOnly));
    taken.write("mine");
    taken.close();
    project.dialogues.expectLike({u"Impossible de créer le projet de démonstration"_s, project.path()}, u"Herbora"_s,
                                 platform::BoxIcon::Stop);
    EXPECT_FALSE(app::buildDemo(project.session, project.path(), project.progression));
    ASSERT_TRUE(taken.open(QIODevice::ReadOnly));
    EXPECT_EQ(taken.readAll(), QByteArray("mine"));
    EXPECT_FALSE(QFileInfo::exists(app::demoImageFolder(project.path())));
}

TEST(DemoInitials, AreThoseOfTheNames)
{
    const struct { QString name, initials; } cases[] = {
        {u"B.C.Kurtz"_s, u"BCK"_s},          {u"JAMES L. ZARUCCHI"_s, u"JLZ"_s}, {u"Leitão-Filho, H.F."_s, u"HFLF"_s},
        {u"H.C. de Lima"_s, u"HCL"_s},       {u"Águila et al."_s, u"Á"_s},       {u"s/c"_s, u"SC"_s},
        {u"123"_s, u"123"_s},
    };
    for (const auto& [name, initials] : cases)
        EXPECT_EQ(app::demoInitials(name), initials);
}

TEST(DemoHerbaria, AreReadFromTheCatalogueTexts)
{
    const struct { QString catalogue; QStringList codes; } cases[] = {
        {u"RB"_s, {u"RB"_s}},
        {u"[RM], NY"_s, {u"RM"_s, u"NY"_s}},
        {u"NY, NY"_s, {u"NY"_s}},
        {u"MONT- 49613"_s, {u"MONT"_s}},
        {u"RSA-POM-94733, GH"_s, {u"RSA-POM"_s, u"GH"_s}},
        {u"Niamoto"_s, {}},
    };
    for (const auto& [catalogue, codes] : cases)
        EXPECT_EQ(app::herbariaOf(catalogue), codes);
}

} // namespace

/// The places of the islands, and no others, lie within the bounds of their map.
TEST_F(DemoProject, HasACalibratedMapWithItsPictureAndPoints)
{
    const auto map = project().db().OpenRecordset(u"SELECT * FROM Localités WHERE [ID Type]<0"_s);
    ASSERT_FALSE(map->EOF_());
    const QString file = map->Value(u"ImageRegion").toString();
    EXPECT_EQ(digest(app::demoImageFolder(project().path()) + u'/' + file),
              digest(qEnvironmentVariable("HERBORA_SOURCE") + u"/demo/maps/"_s + file));
    EXPECT_EQ(map->Value(u"LongDD").toDouble(), 163);
    EXPECT_EQ(map->Value(u"SizeLatDD").toDouble(), -23);
    const QString code = map->Value(u"CodeRegion").toString();
    const QString region = code.left(code.lastIndexOf(u'/'));
    const QString within = u"[LongDD] BETWEEN 163 AND 169 AND [LatDD] BETWEEN -23 AND -19 AND [ID Type]>=0"_s;
    const QString islands = u"[CodeRegion] & \"/\" LIKE \""_s + region + u"/*\""_s;
    EXPECT_EQ(single(u"SELECT Count(*) FROM Localités WHERE "_s + within).toInt(), 6);
    EXPECT_EQ(single(u"SELECT Count(*) FROM Localités WHERE "_s + within + u" AND "_s + islands).toInt(), 6);
}
