// herbora-cli: the same session without a window.
#include "cli/Commands.h"

#include <QCoreApplication>
#include <QLocale>

namespace {

using namespace Qt::StringLiterals;

int run(const cli::Arguments& arguments)
{
    static const QHash<QString, int (*)(const cli::Arguments&)> commands{
        {u"creer"_s, cli::runCreate},       {u"infos"_s, cli::runInfos},
        {u"sql"_s, cli::runSql},            {u"optimiser"_s, cli::runOptimise},
        {u"verifier"_s, cli::runVerify},    {u"demo"_s, cli::runDemo},
        {u"requete"_s, cli::runRequest},      {u"importer"_s, cli::runImport},
        {u"exporter"_s, cli::runExport},
#ifdef HERBORA_IMAGES
        {u"imagettes"_s, cli::runImagettes},
#endif
    };
    if (arguments.has(u"--version"_s)) {
        cli::printLine(u"herbora-cli " HERBORA_VERSION ""_s);
        return cli::Success;
    }
    if (arguments.has(u"--help"_s) || arguments.command == u"aide") {
        cli::printLine(cli::helpText());
        return cli::Success;
    }
    if (arguments.command.isEmpty())
        throw cli::UsageError{u"Indiquez une commande."_s};
    const auto command = commands.find(arguments.command);
    if (command == commands.end())
        throw cli::UsageError{u"Commande inconnue : "_s + arguments.command};
    return (*command)(arguments);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(u"herbora"_s);
    QLocale::setDefault(QLocale(QLocale::French, QLocale::France));
    try {
        return run(cli::parseArguments(QCoreApplication::arguments().mid(1)));
    } catch (const cli::UsageError& error) {
        cli::printError(error.text);
        cli::printError(u"« herbora-cli --help » donne l'usage."_s);
        return cli::Usage;
    } catch (const std::exception& error) {
        cli::printError(u"Erreur : "_s + QString::fromUtf8(error.what()));
        return cli::Failure;
    }
}
