#include "cli/Arguments.h"

#include "cli/RequeteExports.h"

namespace cli {

using namespace Qt::StringLiterals;

namespace {

/// The command to which options belong: "--csv" of one is a flag, of another it takes a file.
const QString queryCommand = u"requete"_s;
const QString importCommand = u"importer"_s;

QStringList flags(const QString& command)
{
    QStringList names{u"--json"_s, u"--oui"_s, u"--non"_s, u"--help"_s, u"--version"_s};
    if (command == importCommand)
        names << u"--essai"_s << u"--creer-noms"_s << u"--mettre-a-jour"_s << u"--vider"_s;
    return names << (command == queryCommand ? u"--sql"_s : u"--csv"_s);
}

QStringList valued(const QString& command)
{
    QStringList names{u"--individus"_s, u"--structure"_s, u"--taxons"_s, u"--mot-de-passe"_s};
    if (command == queryCommand)
        names << u"--module"_s << u"--csv"_s << u"--carte"_s << mapFileOptions();
    if (command == importCommand)
        names << u"--module"_s << u"--separateur"_s << u"--encodage"_s << u"--decimale"_s << u"--colonnes"_s;
    return names;
}

/// The first word, wherever the options stand.
QString commandOf(const QStringList& arguments)
{
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == u"--")
            return arguments.value(i + 1);
        if (!arguments[i].startsWith(u"--"))
            return arguments[i];
        if (valued({}).contains(arguments[i]))
            ++i;
    }
    return {};
}

} // namespace

Answers Arguments::answers() const
{
    if (has(u"--oui"_s) && has(u"--non"_s))
        throw UsageError{u"--oui et --non s'excluent."_s};
    return has(u"--oui"_s) ? Answers::Yes : has(u"--non"_s) ? Answers::No : Answers::Ask;
}

QString Arguments::file() const
{
    if (words.isEmpty())
        throw UsageError{u"Indiquez le fichier du projet."_s};
    return words.first();
}

int Arguments::number(const QString& option, int byDefault) const
{
    if (!has(option))
        return byDefault;
    bool valid = false;
    const int value = options.value(option).toInt(&valid);
    if (!valid || value < 0)
        throw UsageError{u"L'option "_s + option + u" attend un nombre entier positif."_s};
    return value;
}

Arguments parseArguments(const QStringList& arguments)
{
    Arguments result;
    const QString command = commandOf(arguments);
    bool onlyWords = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (onlyWords || !argument.startsWith(u"--")) {
            (result.command.isEmpty() ? result.command : result.words.emplaceBack()) = argument;
            continue;
        }
        if (argument == u"--") {
            onlyWords = true;
            continue;
        }
        const QString name = argument.section(u'=', 0, 0);
        if (flags(command).contains(argument)) {
            result.options.insert(argument, {});
        } else if (valued(command).contains(name)) {
            if (argument.contains(u'='))
                result.options.insert(name, argument.section(u'=', 1));
            else if (i + 1 < arguments.size())
                result.options.insert(name, arguments[++i]);
            else
                throw UsageError{u"L'option "_s + name + u" attend une valeur."_s};
        } else {
            throw UsageError{u"Option inconnue : "_s + argument};
        }
    }
    return result;
}

QString helpText()
{
    return u"Usage : herbora-cli COMMANDE FICHIER [OPTIONS]\n"
           "\n"
           "Commandes\n"
           "  creer FICHIER                     crée un projet et l'ouvre une fois\n"
           "      [--structure NOM]             avec les modules d'une structure prête à l'emploi\n"
           "  infos FICHIER [--json]            étapes de l'ouverture, puis l'arbre des modules\n"
           "  sql FICHIER \"INSTRUCTION\" …       exécute une ou plusieurs instructions\n"
           "      [--csv | --json]              forme des lignes obtenues\n"
           "  requete FICHIER NOM               exécute une requête enregistrée\n"
           "      [--module MODULE]             du module, quand plusieurs ont une requête de ce nom\n"
           "      [--sql]                       montre l'instruction sans l'exécuter\n"
           "      [--csv SORTIE]                écrit les lignes dans un fichier\n"
           "      [--points | --kml | --gtm | --scr SORTIE]\n"
           "                                    écrit ses localités : CSV, Google Earth, GPS Trackmaker, AutoCad\n"
           "      [--carte NOM]                 avec l'image de cette carte\n"
           "  importer access FICHIER SORTIE    fait un projet d'une ancienne base Access\n"
           "  importer taxons LISTE FICHIER     ajoute au projet les noms d'une liste (texte à tabulations)\n"
           "  importer structure STRUCTURE FICHIER  reprend les modules d'un projet ou d'un fichier de structure\n"
           "  exporter structure FICHIER SORTIE écrit les modules du projet dans un nouveau fichier, sans enregistrements\n"
           "  importer csv FICHIER TABLEAU      ajoute les lignes d'un tableau (CSV) au projet\n"
           "      --module MODULE               à un module, ou à Taxons, Localités, Collecteurs\n"
           "      [--essai]                     dit ce qui serait fait, sans rien écrire\n"
           "      [--creer-noms]                crée les taxons, localités et collecteurs inconnus\n"
           "      [--colonnes \"TITRE=CHAMP;…\"]  colonnes dont le titre n'est pas celui du champ\n"
           "      [--mettre-a-jour]             modifie les enregistrements dont l'identifiant est donné\n"
           "      [--vider]                     une cellule vide y vide le champ\n"
           "      [--separateur S]              point-virgule, virgule ou tabulation (sinon reconnu)\n"
           "      [--encodage E]                utf-8, windows-1252, utf-16le ou utf-16be\n"
           "      [--decimale D]                virgule ou point\n"
           "  imagettes FICHIER                 fait d'avance les imagettes de toutes les images du projet\n"
           "  optimiser FICHIER                 répare les liens et compacte, en gardant une copie\n"
           "  verifier FICHIER [--json]         intégrité du fichier et règles du projet\n"
           "  demo FICHIER                      crée le projet de démonstration\n"
           "      [--individus N [--taxons N]]  ou un projet synthétique de N individus\n"
           "\n"
           "Options\n"
           "  --oui, --non                      répond oui (non) à toutes les questions\n"
           "  --mot-de-passe MOT                mot de passe du fichier (sql, verifier, importer access)\n"
           "  --help, --version\n"
           "\n"
           "État de sortie : 0 succès, 1 échec, 2 ligne de commande erronée."_s;
}

} // namespace cli
