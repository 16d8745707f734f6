// herbora: the program with its window.
#include "app/ui/Captures.h"
#include "app/ui/Program.h"
#include "platform/ui/QtDialogues.h"
#include "platform/ui/RunningInstances.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QTextStream>
#include <QTimer>
#include <algorithm>
#include <optional>

namespace {

using namespace Qt::StringLiterals;

constexpr int usageError = 2;

/// What a second start asks of the program that runs: true when it shows that file, or anything when none is named.
bool takeOver(app::Program& program, const QString& file)
{
    app::MainWindow& window = program.window();
    const QString canonical = QFileInfo(file).canonicalFilePath();
    const bool free = !program.session().isOpen() && !window.commands().isBusy();
    if (!file.isEmpty() && !free && (window.commands().isBusy() || canonical != program.session().path()))
        return false;
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
    if (free && !file.isEmpty())
        QTimer::singleShot(0, &window, [&window, canonical] { window.commands().openPath(canonical); });
    return true;
}

int runWindow(const QString& file)
{
    platform::RunningInstances instances(platform::RunningInstances::defaultFolder());
    if (instances.hand(file.isEmpty() ? file : QFileInfo(file).absoluteFilePath()))
        return 0;
    const QString folder = QCoreApplication::applicationDirPath();
    platform::QtDialogues dialogues;
    app::Program program({folder, platform::Settings::defaultFile(folder), app::WindowState::defaultFile()}, dialogues);
    dialogues.setParent(&program.window());
    program.window().show();
    instances.listen([&program](const QString& asked) { return takeOver(program, asked); });
    const auto association = platform::desktopFileAssociation();
    QTimer::singleShot(0, &program.window(), [&] { program.startUp(*association, file); });
    return QApplication::exec();
}

/// What the command line asks for.
struct Request {
    QString file;
    QString captures; ///< The folder for pictures.
    bool takeCaptures = false;
    std::optional<int> status; ///< Everything was said: the program ends with it.
};

Request readCommandLine()
{
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Herbora : données botaniques de terrain et d'herbier"_s);
    const QCommandLineOption help({u"h"_s, u"help"_s}, u"Affiche cette aide."_s);
    const QCommandLineOption version({u"v"_s, u"version"_s}, u"Affiche la version."_s);
    const QCommandLineOption captures(
        u"captures"_s, u"Ouvre FICHIER, écrit des images des fenêtres dans DOSSIER et s'arrête."_s, u"DOSSIER"_s);
    parser.addOptions({help, version, captures});
    parser.addPositionalArgument(u"FICHIER"_s, u"Projet à ouvrir (.hbx) ; par défaut, le dernier ouvert."_s,
                                 u"[FICHIER]"_s);
    QTextStream out(stdout);
    QTextStream errors(stderr);
    const bool understood = parser.parse(QCoreApplication::arguments());
    Request request{parser.positionalArguments().value(0), {}, false, {}};
    if (!understood)
        errors << parser.errorText() << '\n';
    else if (parser.positionalArguments().size() > 1)
        errors << u"Un seul fichier peut être ouvert.\n"_s;
    else if (parser.isSet(captures) && request.file.isEmpty())
        errors << u"--captures demande un fichier à ouvrir.\n"_s;
    else if (parser.isSet(help))
        out << parser.helpText();
    else if (parser.isSet(version))
        out << u"herbora " HERBORA_VERSION "\n"_s;
    else
        return {request.file, parser.value(captures), parser.isSet(captures), {}};
    out.flush();
    request.status = parser.isSet(help) || parser.isSet(version) ? 0 : usageError;
    return request;
}

/// Looked at before there is an application object, which needs a screen.
bool isAmong(int argc, char** argv, std::initializer_list<QByteArrayView> wanted)
{
    return std::any_of(argv + 1, argv + argc, [&](const char* argument) {
        return std::find(wanted.begin(), wanted.end(), QByteArrayView(argument)) != wanted.end();
    });
}

bool hasScreen(int argc, char** argv)
{
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY")
           || qEnvironmentVariableIsSet("QT_QPA_PLATFORM") || isAmong(argc, argv, {"-platform", "--platform"});
}

} // namespace

int main(int argc, char** argv)
{
    if (isAmong(argc, argv, {"--help", "-h", "--version", "-v"})) {
        QCoreApplication application(argc, argv);
        app::useFrench();
        return readCommandLine().status.value_or(0);
    }
#ifdef Q_OS_LINUX
    if (!hasScreen(argc, argv)) {
        if (!isAmong(argc, argv, {"--captures"})) {
            QTextStream(stderr) << u"Aucun écran : ni DISPLAY ni WAYLAND_DISPLAY. Utilisez herbora-cli, "
                                   "ou --captures pour des images des fenêtres.\n"_s;
            return 1;
        }
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
#endif
    QApplication application(argc, argv);
    app::prepareApplication();
    const Request request = readCommandLine();
    if (request.status)
        return *request.status;
    if (request.takeCaptures)
        return app::takeCaptures(request.captures, request.file, QCoreApplication::applicationDirPath());
    return runWindow(request.file);
}
