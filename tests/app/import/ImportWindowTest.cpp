#include "app/Session.h"
#include "app/ui/import/ImportWindow.h"
#include "platform/ui/PrintPreview.h"
#include "app/ui/WindowFixture.h"

#include <QProcess>

namespace app {
namespace {

using namespace Qt::StringLiterals;

class ImportWindowTest : public support::WindowTest {
protected:
    ImportWindow* open(const QByteArray& table)
    {
        makeProject();
        openProject();
        QFile file(path(u"tableau.csv"_s));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(table);
        file.close();
        trigger(u"importCsv"_s);
        auto* window = widget<ImportWindow>(u"importTableau"_s);
        window->filePage().setTarget(u"Individus"_s);
        dialogues.expectOpenFile(u"Importer un tableau"_s, u"Tableaux (*.csv *.txt *.tsv)|*.csv;*.txt;*.tsv|Tous les fichiers (*)|*|"_s,
                                 file.fileName());
        window->findChild<QPushButton*>(u"importParcourir"_s)->click();
        return window;
    }
    void next(ImportWindow* window, ImportWindow::Step expected)
    {
        QTest::keyClick(window, Qt::Key_Return); // the default button
        settle();
        EXPECT_EQ(window->step(), expected);
    }
};

TEST_F(ImportWindowTest, WalksFromTheFileToTheResultByKeyboard)
{
    ImportWindow* window = open("Numéro;Collecteur;Altitude\nIMP1;Nouvelle Personne;12,5\nIMP2;;haut\n");
    EXPECT_EQ(window->findChild<QTableWidget*>(u"importApercu"_s)->item(0, 2)->text(), u"12,5"_s);
    next(window, ImportWindow::Columns);
    EXPECT_EQ(window->columnsPage().mapping(), ColumnMapping({u"Numéro"_s, u"ID Collecteurs"_s, u"Altitude"_s}));
    next(window, ImportWindow::Names);
    auto* decision = window->findChild<QComboBox*>(u"importDecision0"_s);
    ASSERT_TRUE(decision);
    decision->setCurrentIndex(1); // create
    next(window, ImportWindow::Rehearsal);
    for (const QString& line : {u"Enregistrements à ajouter : 1"_s, u"Noms à créer dans Collecteurs : 1"_s})
        EXPECT_TRUE(window->report().contains(line)) << window->report().toStdString();
    const auto count = [&] {
        const auto rows = program->session().database().OpenRecordset(u"SELECT [Numéro] FROM Individus WHERE [Numéro] LIKE \"IMP*\""_s);
        return rows->EOF_() ? QString() : rows->Value(0).toString();
    };
    EXPECT_EQ(count(), QString());
    next(window, ImportWindow::Result);
    EXPECT_EQ(count(), u"IMP1"_s);
    EXPECT_TRUE(window->report().contains(u"tableau.refus.csv"_s));
    QTest::keyClick(window, Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(ImportWindowTest, CreatesNamesThatResembleNoOther)
{
    ImportWindow* window = open("Numéro;Collecteur\nIMP1;Zoé Lointaine\nIMP2;Pers\n");
    const auto people = program->session().database().OpenRecordset(u"SELECT [Collecteur] FROM Collecteurs ORDER BY [Collecteur]"_s);
    const QString slip = people->Value(0).toString() + u'e';
    QFile file(path(u"tableau.csv"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(u"Numéro;Collecteur\nIMP1;Zoé Lointaine\nIMP2;%1\n"_s.arg(slip).toUtf8());
    file.close();
    window->filePage().setFile(file.fileName());
    next(window, ImportWindow::Columns);
    next(window, ImportWindow::Names);
    ASSERT_EQ(window->findChild<QTableWidget*>(u"importNoms"_s)->rowCount(), 2);
    EXPECT_EQ(window->findChild<QComboBox*>(u"importDecision0"_s)->currentText(), u"Créer ce nom"_s);
    EXPECT_EQ(window->findChild<QComboBox*>(u"importDecision1"_s)->currentText(), u"Refuser ces lignes"_s) << slip.toStdString();
}

TEST_F(ImportWindowTest, ClosingTheProgramWhileItImportsAsksWhetherToStop)
{
    QByteArray table("Numéro\n");
    for (int i = 0; i < 20'000; ++i)
        table += "IMP" + QByteArray::number(i) + "\n";
    ImportWindow* window = open(table);
    next(window, ImportWindow::Columns);
    next(window, ImportWindow::Names);
    next(window, ImportWindow::Rehearsal);
    QTest::keyClick(window, Qt::Key_Return);
    ASSERT_TRUE(window->isWorking());
    const QString question = u"Une importation est en cours. Faut-il l'arrêter ?\nRien n'en sera gardé."_s;
    dialogues.expectConfirm(question, u"Importer un tableau"_s, false, platform::BoxIcon::Question, platform::Answer::No);
    this->window().close();
    EXPECT_TRUE(this->window().isVisible());
    EXPECT_TRUE(window->isWorking());
    dialogues.expectConfirm(question, u"Importer un tableau"_s, true, platform::BoxIcon::Question, platform::Answer::No);
    this->window().close();
    EXPECT_FALSE(this->window().isVisible());
    const auto rows = program->session().database().OpenRecordset(u"SELECT COUNT(*) FROM Individus WHERE [Numéro] LIKE \"IMP*\""_s);
    EXPECT_EQ(rows->Value(0).toInt(), 0);
}

TEST_F(ImportWindowTest, SaysThatItWasStopped)
{
    QByteArray table("Numéro\n");
    for (int i = 0; i < 20'000; ++i)
        table += "IMP" + QByteArray::number(i) + "\n";
    ImportWindow* window = open(table);
    next(window, ImportWindow::Columns);
    next(window, ImportWindow::Names);
    QTest::keyClick(window, Qt::Key_Return);
    window->findChild<QPushButton*>(u"importFermer"_s)->click();
    settle();
    EXPECT_EQ(window->step(), ImportWindow::Names);
    EXPECT_EQ(window->findChild<QLabel*>(u"importArret"_s)->text(), u"Arrêté : rien n'a été écrit."_s);
}

TEST_F(ImportWindowTest, AFieldIsFilledByOneColumnAndProblemsKeepFromGoingOn)
{
    ImportWindow* window = open("Numéro;Code\nA;B\n");
    next(window, ImportWindow::Columns);
    auto* second = window->findChild<QComboBox*>(u"importChamp1"_s);
    second->setCurrentIndex(second->findData(u"Numéro"_s));
    EXPECT_EQ(window->columnsPage().mapping(), ColumnMapping({{}, u"Numéro"_s}));
    second->setCurrentIndex(0);
    EXPECT_FALSE(window->findChild<QPushButton*>(u"importSuivant"_s)->isEnabled());
    EXPECT_FALSE(window->findChild<QLabel*>(u"importProbleme"_s)->text().isEmpty());
}

TEST_F(ImportWindowTest, AGridIsPreviewedAndSavedAsPdf)
{
    makeProject();
    openProject();
    GridTab* grid = openRecords(u"Individus"_s);
    ASSERT_TRUE(grid);
    trigger(u"print"_s);
    auto* preview = widget<platform::PrintPreview>(u"apercuImpression"_s);
    dialogues.expectSaveFile(u"Enregistrer en PDF"_s, u"Documents PDF (*.pdf)|*.pdf|"_s, path(u"liste.pdf"_s));
    preview->saveAsPdf();
    QProcess reader;
    reader.start(u"pdftotext"_s, {u"-layout"_s, u"-enc"_s, u"UTF-8"_s, path(u"liste.pdf"_s), u"-"_s});
    ASSERT_TRUE(reader.waitForFinished());
    const QString text = QString::fromUtf8(reader.readAll());
    EXPECT_TRUE(text.contains(grid->title()) && text.contains(u"Page 1 sur 1"_s)) << text.toStdString();
    for (const QString& row : shown(*grid, {u"Numéro"_s})) {
        for (const QString& word : row.split(u' ')) // a narrow column breaks its texts
            EXPECT_TRUE(text.contains(word)) << row.toStdString();
    }
    preview->close();
}

} // namespace
} // namespace app
