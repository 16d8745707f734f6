// herbora: the program with its window.
#include "app/ui/Captures.h"
#include "app/ui/Program.h"
#include "platform/ui/QtDialogues.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTextStream>
#include <QTimer>

namespace {

using namespace Qt::StringLiterals;

constexpr int usageError = 2;

int runWindow(const QString& file)
{
    const QString folder = QCoreApplication::applicationDirPath();
    platform::QtDialogues dialogues;
    app::Program program({folder, platform::Settings::defaultFile(folder), app::WindowState::defaultFile()}, dialogues);
    dialogues.setParent(&program.window());
    program.window().show();
    const auto association = platform::desktopFileAssociation();
    QTimer::singleShot(0, &program.window(), [&] { program.startUp(*association, file); });
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    app::prepareApplication();

    QCommandLineParser parser;
    parser.setApplicationDescription(u"Herbora : données botaniques de terrain et d'herbier"_s);
    const QCommandLineOption help({u"h"_s, u"help"_s}, u"Affiche cette aide."_s);
    const QCommandLineOption version({u"v"_s, u"version"_s}, u"Affiche la version."_s);
    const QCommandLineOption captures(u"captures"_s, u"Ouvre FICHIER, écrit des images des fenêtres dans DOSSIER et s'arrête."_s,
                                      u"DOSSIER"_s);
    parser.addOptions({help, version, captures});
    parser.addPositionalArgument(u"FICHIER"_s, u"Projet à ouvrir (.hbx) ; par défaut, le dernier ouvert."_s,
                                 u"[FICHIER]"_s);
    QTextStream out(stdout);
    QTextStream errors(stderr);
    if (!parser.parse(QCoreApplication::arguments()) || parser.positionalArguments().size() > 1) {
        errors << (parser.errorText().isEmpty() ? u"Un seul fichier peut être ouvert."_s : parser.errorText()) << '\n';
        return usageError;
    }
    if (parser.isSet(help)) {
        out << parser.helpText();
        return 0;
    }
    if (parser.isSet(version)) {
        out << u"herbora " HERBORA_VERSION "\n"_s;
        return 0;
    }
    const QString file = parser.positionalArguments().value(0);
    if (!parser.isSet(captures))
        return runWindow(file);
    if (file.isEmpty()) {
        errors << u"--captures demande un fichier à ouvrir.\n"_s;
        return usageError;
    }
    return app::takeCaptures(parser.value(captures), file, QCoreApplication::applicationDirPath());
}
