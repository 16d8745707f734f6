#include "ReferenceFixture.h"

#include "reference/TaxonImport.h"

#include <QFile>

namespace {

using namespace Qt::StringLiterals;

const QByteArray header = "id\tfamily\tgenus\tspecies\tinfra_rank\tinfra_epithet\tauthors\taccepted_id\tstatus\n";

class TaxonImportTest : public ReferenceTest {
protected:
    QString path(const QString& name = u"liste.tsv"_s) const { return project.folder.filePath(name); }
    void write(const QByteArray& rows, const QByteArray& head = header)
    {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(head + rows);
    }
    reference::ImportReport import()
    {
        return reference::TaxonImport(project.db(), project.clock).run(path(), progression);
    }
    reference::ImportReport import(const QByteArray& rows)
    {
        write(rows);
        return import();
    }
    int errorOf(const std::function<void()>& work)
    {
        try {
            work();
        } catch (const jet::Error& error) {
            return error.number();
        }
        return 0;
    }
    QStringList names()
    {
        return project.rows(u"SELECT [Nom Complet],[Auteurs],[ID Famille],[ID Genre],[ID Espèce],[ID Infra],[ID Valid] FROM Taxons ORDER BY [ID Taxons]"_s);
    }
    QStringList refused(const QString& name = u"liste.refus.tsv"_s)
    {
        QFile file(path(name));
        if (!file.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
    }
    support::RecordedProgression progression;
};

TEST_F(TaxonImportTest, ParentsComeFirstWhereverTheyStand)
{
    const auto report = import("4\tFagaceae\tQuercus\tROBUR\tsubsp.\tPedunculata\tX.\t\n"
                               "3\tFagaceae\tQuercus\trobur\t\t\tL.\t\n"
                               "2\tFagaceae\tquercus\t\t\t\tL.\t\n"
                               "1\tfagaceae\t\t\t\t\tDumort.\t\n"
                               "5\tRosaceae\tRosa\tcanina\tvar.\talba\t\t\n");
    EXPECT_EQ(names(), (QStringList{u"Fagaceae|Dumort.|1|∅|∅|∅|∅"_s, u"Quercus|L.|1|2|∅|∅|∅"_s, u"Quercus robur|L.|1|2|3|∅|∅"_s,
                                    u"Quercus robur subsp. pedunculata|X.|1|2|3|4|∅"_s, u"Rosaceae|∅|5|∅|∅|∅|∅"_s,
                                    u"Rosa|∅|5|6|∅|∅|∅"_s, u"Rosa canina|∅|5|6|7|∅|∅"_s, u"Rosa canina var. alba|∅|5|6|7|8|∅"_s}));
    EXPECT_EQ(report.lines, 5);
    EXPECT_EQ(report.added, (std::array<qint64, 4>{2, 2, 2, 2}));
    EXPECT_TRUE(report.refusedFile.isEmpty());
    EXPECT_EQ(progression.steps.last(), u"100 Importation terminée"_s);
    EXPECT_EQ(taxa->OrdreTaxon(8), 4);
}

TEST_F(TaxonImportTest, NothingThatIsThereIsChanged)
{
    import("1\tFagaceae\t\t\t\t\tDumort.\t\n2\tFagaceae\tQuercus\trobur\t\t\tL.\t\n");
    project.db().Execute(u"UPDATE Taxons SET Commentaire=\"à moi\" WHERE [ID Taxons]=3"_s);
    const QStringList before = project.rows(u"SELECT * FROM Taxons WHERE [ID Taxons]<=3 ORDER BY [ID Taxons]"_s);
    project.clock.time = project.clock.time.addDays(1);
    // The family again, the genus with authors that it had not, the species now a synonym, one of other authors, a new one.
    const auto report = import("1\tFAGACEAE\t\t\t\t\tdumort.\t\n"
                               "9\tFagaceae\tQuercus\t\t\t\tL.\t\n"
                               "2\tFagaceae\tQuercus\trobur\t\t\tL.\t4\n"
                               "3\tFagaceae\tQuercus\trobur\t\t\tMill.\t\n"
                               "4\tFagaceae\tQuercus\tpetraea\t\t\tLiebl.\t\n");
    EXPECT_EQ(project.rows(u"SELECT * FROM Taxons WHERE [ID Taxons]<=3 ORDER BY [ID Taxons]"_s), before);
    EXPECT_EQ(report.present, 3);
    EXPECT_EQ(report.similar, 1);
    EXPECT_EQ(report.total(), 2);
    EXPECT_EQ(report.synonyms, 0);
    EXPECT_EQ(names().mid(3), (QStringList{u"Quercus robur|Mill.|1|2|4|∅|∅"_s, u"Quercus petraea|Liebl.|1|2|5|∅|∅"_s}));
    EXPECT_EQ(import().total(), 0) << "a second time";
}

TEST_F(TaxonImportTest, AddedSynonymsLeadToTheAcceptedName)
{
    const auto report = import("a\tFagaceae\tQuercus\tvieja\t\t\tX.\tb\n"
                               "b\tFagaceae\tQuercus\trobur\t\t\tL.\tb\n"
                               "c\tFagaceae\tQuercus\tperdue\t\t\tY.\tz\n");
    EXPECT_EQ(project.rows(u"SELECT [Nom Complet],[ID Valid] FROM Taxons WHERE [ID Espèce]=[ID Taxons] ORDER BY [Nom Complet]"_s),
              (QStringList{u"Quercus perdue|∅"_s, u"Quercus robur|∅"_s, u"Quercus vieja|3"_s}));
    EXPECT_EQ(report.synonyms, 1);
    EXPECT_EQ(report.unresolved, 1);
    EXPECT_EQ(refused().value(1), u"c\tFagaceae\tQuercus\tperdue\t\t\tY.\tz\tAjouté, mais son nom accepté est introuvable"_s);
}

TEST_F(TaxonImportTest, RefusedRowsStandBesideTheFileWithTheirReasons)
{
    const QByteArray rows = "1\tFagaceae\t\t\t\t\t\t\n"
                            "2\t\tOrphelin\tsolus\t\t\t\t\n"
                            "3\tFagaceae\tQuercus\trobur\t\talba\t\t\n"
                            "4\tRosaceae\tAcer\t\t\t\tMill.\t\n"
                            "5\tFagaceae\tAcer\t\t\t\tL.\t\n"
                            "6\tFagaceae\tAcer\t\xff\xfe\t\t\t\t\n"
                            "7\tFagaceae\tQuercus\t" + QByteArray(300, 'x') + "\t\t\t\t\n";
    auto report = import(rows);
    EXPECT_EQ(report.refused, 5);
    EXPECT_EQ(report.refusedFile, path(u"liste.refus.tsv"_s));
    QStringList found;
    for (const QString& row : refused().mid(1))
        found << row.section(u'\t', 0, 0) + u' ' + row.section(u'\t', -1);
    EXPECT_EQ(found, (QStringList{u"2 La famille manque"_s, u"3 La ligne ne nomme aucun taxon complet"_s,
                                  u"5 Un genre de ce nom existe avec d'autres auteurs"_s, u"6 Le texte n'est pas en UTF-8"_s,
                                  u"7 Le nom ou ses auteurs dépassent 255 caractères"_s}));
    EXPECT_EQ(refused().first(), QString::fromLatin1(header.trimmed()) + u"\tmotif"_s);
    EXPECT_TRUE(report.text().contains(u"Lignes refusées : 5\n   La famille manque : 1\n"_s)) << report.text().toStdString();
    import();
    EXPECT_EQ(refused(u"liste.refus-2.tsv"_s).size(), 6) << "the first file stays";
}

TEST_F(TaxonImportTest, AnAcceptedGenusComesBeforeASynonymOfItsName)
{
    const auto report = import("1\tPottiaceae\tAcrocarpus\t\t\t\tNees\t3\n2\tFabaceae\tAcrocarpus\t\t\t\tWight\t2\n"
                               "3\tPottiaceae\tAnoectangium\t\t\t\tBruch\t\n");
    EXPECT_EQ(project.single(u"SELECT Auteurs FROM Taxons WHERE Taxon=\"Acrocarpus\""_s), u"Wight"_s);
    EXPECT_EQ(report.refused, 1);
}

TEST_F(TaxonImportTest, StoppingOrAWrongFileLeavesNothing)
{
    struct Stopping : platform::NoProgression {
        int looks = 0;
        bool cancelled() const override { return const_cast<Stopping*>(this)->looks++ > 4; }
    } stopping;
    write("1\tFagaceae\tQuercus\trobur\t\t\tL.\t\n");
    EXPECT_EQ(errorOf([&] { reference::TaxonImport(project.db(), project.clock).run(path(), stopping); }), 3059);
    EXPECT_TRUE(names().isEmpty());
    write("x\ty\n", "family\tgenus\n");
    EXPECT_EQ(errorOf([&] { import(); }), 3011);
    QFile::remove(path());
    EXPECT_EQ(errorOf([&] { import(); }), 3051);
    EXPECT_TRUE(names().isEmpty());
    EXPECT_FALSE(project.db().inOperation());
}

} // namespace
