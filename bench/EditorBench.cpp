// The record editor on scale: an individual with 2,000 sub-records opens in less than 300 ms and gives way to the next in
// less than 100 ms, painted; names are found among a million within 50 ms; a descriptor is renamed in 100,000 records.
#include "app/Demo.h"
#include "app/DemoModules.h"
#include "app/References.h"
#include "editing/DescriptorLists.h"
#include "editing/ui/FormDialog.h"
#include "editing/ui/RecordEditorWindow.h"

#include <QApplication>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>

namespace {

using namespace Qt::StringLiterals;
using editing::IndividualEditing;

constexpr int subRecords = 2'000;
constexpr int users = 100'000; ///< Records that hold the descriptor.

/// Gives the new name of a descriptor; anything else ends the measurement.
class Answers : public platform::Dialogues {
public:
    QString name;
    platform::Answer ask(const platform::Message& message) override { stop(message.text); }
    std::optional<QString> input(const QString&, const QString&, const QString&) override { return name; }
    std::optional<QList<int>> choose(const platform::Choice& choice) override { stop(choice.prompt); }
    QString openFile(const QString& title, const QString&, const QString&) override { stop(title); }
    QStringList openFiles(const QString& title, const QString&, const QString&) override { stop(title); }
    QString saveFile(const QString& title, const QString&, const QString&) override { stop(title); }
    QString chooseFolder(const QString& title, const QString&) override { stop(title); }

private:
    [[noreturn]] void stop(const QString& text)
    {
        std::fprintf(stderr, "%s\n", qPrintable(text));
        std::exit(1);
    }
};

struct Project {
    Project() : settings(QString()), session({dialogues, clock, settings, folder.path(), u"1.0"_s})
    {
        if (!session.create(folder.filePath(u"projet.hbx"_s), progression))
            std::exit(1);
        session.dictionary().put(app::demoMeasuresModule());
        session.dictionary().save();
        session.dictionary().load();
    }
    void run(const QString& statement) { session.database().Execute(statement); }
    /// So many collectors, numbered from 1 on, to be multiplied.
    void fillNumbers(int count)
    {
        jet::Operation operation(session.database(), u"Nombres"_s);
        for (int i = 0; i < count; ++i)
            run(u"INSERT INTO Collecteurs ([Collecteur],[Initiales]) VALUES (\""_s + QString::number(i) + u"\",\""_s + QString::number(i) + u"\")"_s);
        operation.commit();
    }

    QTemporaryDir folder;
    Answers dialogues;
    platform::SystemClock clock;
    platform::Settings settings;
    platform::NoProgression progression;
    app::Session session;
};

// --- Opening and moving on -----------------------------------------------------------------------

/// Individuals 1 to 10 with 2,000 measures each.
struct EditorProject : Project {
    EditorProject()
        : context(session.references().context()), rules(session.database(), session.dictionary(), clock, dialogues),
          search(session.database()), form({})
    {
        fillNumbers(subRecords);
        for (int i = 1; i <= 10; ++i) {
            const QString id = QString::number(i);
            run(u"INSERT INTO Individus ([Numéro]) VALUES (\""_s + id + u"\")"_s);
            run(u"INSERT INTO Mesures ([ID Individus],[KeyParent],[Rubrique],[Diamètre]) SELECT "_s + id + u",\""_s + id
                + u"-Individus\",\"arbre \" & [ID Collecteurs], [ID Collecteurs] FROM Collecteurs"_s);
        }
    }
    editing::EditingTools tools()
    {
        return {session.database(), session.dictionary(), session.properties(), rules, clock, dialogues, context};
    }

    editing::EditingContext context;
    data::RecordRules rules;
    editing::ReferenceSearch search;
    editing::FormWindows form;
};

EditorProject& editorProject()
{
    static EditorProject only;
    return only;
}

void paint(QWidget& window)
{
    QApplication::processEvents();
    benchmark::DoNotOptimize(window.grab());
}

struct Editor {
    Editor()
        : editing(editorProject().tools()), window(editing, {editorProject().dialogues, editorProject().form})
    {
    }
    bool open()
    {
        const bool opened = window.EditItems(IndividualEditing::levelPath(u"Individus"_s, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
        paint(window);
        return opened;
    }
    IndividualEditing editing;
    editing::RecordEditorWindow window;
};

void openIndividual(benchmark::State& state)
{
    editorProject();
    for (auto _ : state) {
        Editor editor;
        if (!editor.open())
            state.SkipWithError("not opened");
    }
}

void nextIndividual(benchmark::State& state)
{
    Editor editor;
    editor.open();
    int step = 1;
    for (auto _ : state) {
        if (!editor.editing.canGo(step))
            step = -step;
        editor.editing.go(step);
        paint(editor.window);
    }
}

/// A record among the 2,000, with its form.
void nextRecord(benchmark::State& state)
{
    Editor editor;
    editor.open();
    int step = 1;
    for (auto _ : state) {
        if (!editor.editing.canGoOther(step))
            step = -step;
        editor.editing.goOther(step);
        paint(editor.window);
    }
}

// --- Names ---------------------------------------------------------------------------------------

/// A million taxa and as many localities.
struct NamesProject : Project {
    NamesProject() : search(session.database())
    {
        fillNumbers(1000);
        run(u"INSERT INTO Taxons ([Taxon],[Nom Complet]) SELECT \"t\",\"Genre\" & a.[ID Collecteurs] & \" espece\" & b.[ID Collecteurs]"
            " FROM Collecteurs AS a, Collecteurs AS b"_s);
        run(u"INSERT INTO [Localités] ([Localité],[Nom Entier],[ID Type],[LongDD],[LatDD]) SELECT \"Lieu\" & a.[ID Collecteurs] & \" rive\" & b.[ID Collecteurs],"
            "\"Pays - Lieu\",0,0,0 FROM Collecteurs AS a, Collecteurs AS b"_s);
    }
    editing::ReferenceSearch search;
};

/// As one types a name, letter by letter; the time of the slowest letter.
void completeName(benchmark::State& state, int type, const QString& name)
{
    static NamesProject project;
    double slowest = 0;
    for (auto _ : state) {
        for (int length = 1; length <= name.size(); ++length) {
            const auto start = std::chrono::steady_clock::now();
            const auto found = project.search.matches(type, name.left(length));
            slowest = std::max(slowest, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
            if (found.isEmpty())
                state.SkipWithError("no name found");
        }
    }
    state.counters["slowest_letter_ms"] = slowest * 1000;
}

// --- Descriptors ---------------------------------------------------------------------------------

struct ListsProject : Project {
    ListsProject() : lists(session.database(), session.properties(), clock, dialogues)
    {
        fillNumbers(1000);
        run(u"INSERT INTO Individus ([Numéro]) VALUES (\"1\")"_s);
        run(u"INSERT INTO Mesures ([ID Individus],[Méthode],[Organes]) SELECT 1,\"a\",\"bois;a;tige\""
            " FROM Collecteurs AS x, Collecteurs AS y WHERE y.[ID Collecteurs]<=100"_s);
        for (const QString& column : {u"Méthode"_s, u"Organes"_s})
            session.properties().put(data::kindDescripteur, u"Mesures"_s, column, u"bois;a;tige"_s);
    }
    editing::DescriptorLists lists;
};

void renameDescriptor(benchmark::State& state, const QString& column, int type)
{
    static ListsProject project;
    const editing::ListField field{u"Mesures"_s, column, column, type, true};
    QString old = u"a"_s;
    int round = 0;
    for (auto _ : state) {
        project.dialogues.name = u"nom "_s + QString::number(++round);
        if (!project.lists.rename(field, old))
            state.SkipWithError("not renamed");
        old = project.dialogues.name;
    }
    state.SetItemsProcessed(state.iterations() * users);
}

BENCHMARK(openIndividual)->Unit(benchmark::kMillisecond);
BENCHMARK(nextIndividual)->Unit(benchmark::kMillisecond);
BENCHMARK(nextRecord)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(completeName, taxon, 15, u"Genre77 espece5"_s)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(completeName, localite, 14, u"Lieu77 rive5"_s)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(renameDescriptor, simple, u"Méthode"_s, 12)->Unit(benchmark::kSecond)->Iterations(2);
BENCHMARK_CAPTURE(renameDescriptor, multiple, u"Organes"_s, 11)->Unit(benchmark::kSecond)->Iterations(2);

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // The platform without a screen remarks on every window.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
