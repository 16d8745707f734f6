#include "jet/Error.h"

#include <QStringView>
#include <array>

namespace jet {

using namespace Qt::StringLiterals;

namespace {

struct Sentence {
    int number;
    QStringView text;
};

// One sentence for each number. "%1" and "%2" are the arguments; a part in braces is left out when an
// argument that it names is empty, so that a caller who knows no name still gives a whole sentence.
// The first argument is the object concerned (a file by its path), the second what is around it.
constexpr Sentence sentences[] = {
    // General
    {5, u"La fonction{ « %1 »} a reçu un argument qu'elle n'accepte pas ; corrigez l'expression."},
    {6, u"Le nombre obtenu{ (%1)} dépasse la capacité de son type ; employez une valeur plus petite."},
    {7, u"La mémoire disponible ne suffit pas{ pour %1} ; fermez d'autres programmes et recommencez."},
    {11, u"L'expression{ « %1 »} divise par zéro ; écartez les enregistrements dont le diviseur est nul."},
    {13, u"Les types des valeurs{ de « %1 »} ne s'accordent pas ; convertissez l'une d'elles."},
    {93, u"Le modèle{ « %1 »} n'est pas valide : fermez chaque crochet « [ » et donnez les intervalles dans "
         u"l'ordre croissant (par exemple [a-z])."},
    {94, u"Une valeur vide (Null){ a été donnée à %1,} ne peut servir ici de nombre ; écartez-la de "
         u"l'expression, par exemple avec Nz."},
    // Objects
    {3001, u"L'argument{ « %1 »} n'est pas valide ; corrigez-le et recommencez."},
    {3009, u"La table{ « %1 »} est en cours d'utilisation et ne peut pas être verrouillée ; fermez ce qui "
           u"l'utilise et recommencez."},
    {3010, u"La table{ « %1 »} existe déjà ; choisissez un autre nom."},
    {3012, u"L'objet{ « %1 »} existe déjà ; choisissez un autre nom."},
    {3014, u"Trop de tables sont ouvertes ; fermez des fenêtres et recommencez."},
    {3015, u"L'index{ « %1 »} n'existe pas{ dans la table « %2 »} ; choisissez un index de cette table."},
    {3019, u"L'opération demande un index en cours ; choisissez d'abord un index{ de la table « %1 »}."},
    {3020, u"Aucune modification n'est en cours ; commencez par ajouter ou par modifier un enregistrement."},
    {3021, u"Il n'y a pas d'enregistrement en cours ; placez-vous d'abord sur un enregistrement."},
    {3022, u"Les modifications n'ont pas été enregistrées, car elles créeraient un doublon{ dans « %1 »}{ (%2)} ; "
           u"changez la valeur qui existe déjà ou supprimez le doublon."},
    {3034, u"Aucune opération n'est commencée : il n'y a rien à valider ni à annuler ; recommencez "
           u"l'opération."},
    {3058, u"Une clé primaire ou un index{ (%1)} ne peut pas contenir de valeur vide ; donnez une valeur{ au "
           u"champ « %2 »}."},
    {3059, u"L'opération{ « %1 »} a été annulée par l'utilisateur ; rien n'a été modifié."},
    {3164, u"Le champ{ « %1 »} ne peut pas être modifié ; ôtez-le de l'instruction."},
    {3167, u"L'enregistrement a été supprimé{ de « %1 »} ; actualisez l'affichage."},
    {3190, u"La table{ « %1 »} aurait trop de champs ; supprimez des champs avant d'en ajouter."},
    {3191, u"Le champ{ « %1 »} est défini plusieurs fois{ dans la table « %2 »} ; donnez-lui un autre nom."},
    {3197, u"Les données{ de « %1 »} ont été modifiées entre-temps ; actualisez l'affichage et recommencez."},
    {3219, u"L'opération{ « %1 »} n'est pas possible ici ; rien n'a été modifié."},
    {3251, u"L'opération{ « %1 »} n'est pas possible pour ce type d'objet ; ouvrez-le autrement."},
    {3264, u"La table{ « %1 »} n'a aucun champ ; ajoutez au moins un champ avant de la créer."},
    {3265, u"L'élément{ « %1 »} n'existe pas{ dans « %2 »} ; vérifiez l'orthographe de son nom."},
    {3270, u"La propriété{ « %1 »} n'existe pas ; vérifiez l'orthographe de son nom."},
    {3281, u"L'index ou la table{ « %1 »} ne peut pas être supprimé, car il sert à une relation{ (« %2 »)} ; "
           u"supprimez d'abord cette relation."},
    {3283, u"La table{ « %1 »} a déjà une clé primaire ; supprimez-la avant d'en créer une autre."},
    {3284, u"L'index{ « %1 »} existe déjà{ dans la table « %2 »} ; choisissez un autre nom."},
    {3326, u"Ces enregistrements{ de « %1 »} ne peuvent pas être modifiés ici ; ouvrez la table elle-même."},
    {3366, u"La relation{ « %1 »} n'a aucun champ ; ajoutez au moins une paire de champs."},
    {3367, u"Un objet du nom{ de « %1 »} existe déjà dans la collection ; choisissez un autre nom."},
    {3368, u"La relation{ « %1 »} doit unir autant de champs de chaque côté, et de mêmes types ; corrigez ses "
           u"champs."},
    {3372, u"L'index{ « %1 »} n'existe pas{ dans la table « %2 »} ; vérifiez l'orthographe de son nom."},
    {3375, u"La table{ « %1 »} a déjà un index{ nommé « %2 »} ; choisissez un autre nom."},
    {3379, u"La relation{ « %2 »} ne peut pas être créée, car des enregistrements{ de la table « %1 »} n'ont "
           u"pas de correspondant ; corrigez ou supprimez ces enregistrements."},
    {3380, u"Le champ{ « %1 »} existe déjà{ dans la table « %2 »} ; choisissez un autre nom."},
    {3409, u"Le champ{ « %1 »} d'un index ou d'une relation{ (« %2 »)} n'existe pas ; vérifiez l'orthographe de "
           u"son nom."},
    {3420, u"L'objet{ « %1 »} est fermé ou n'est plus valide ; ouvrez-le à nouveau."},
    {3609, u"Aucun index unique ne porte sur le champ de référence{ de la table « %1 »} ; créez d'abord cet "
           u"index."},
    // Files; %1 is the path
    {3006, u"Le fichier{ « %1 »} est verrouillé par un autre programme ; fermez ce programme et recommencez."},
    {3024, u"Le fichier{ « %1 »} est introuvable ; vérifiez son nom et son dossier."},
    {3026, u"Il n'y a plus de place sur le disque{ pour « %1 »} ; libérez de l'espace et recommencez. Rien "
           u"n'a été modifié."},
    {3027, u"Le fichier{ « %1 »} ne peut pas être modifié, car il est ouvert en lecture seule ; changez ses "
           u"droits ou copiez-le ailleurs."},
    {3031, u"Le mot de passe{ du fichier « %1 »} est absent ou inexact ; saisissez le bon mot de passe."},
    {3033, u"Vous n'avez pas les droits nécessaires{ sur « %1 »} ; demandez-les à son propriétaire."},
    {3036, u"Le fichier{ « %1 »} a atteint sa taille maximale ; optimisez-le ou supprimez des données."},
    {3041, u"Le fichier{ « %1 »} vient d'une version plus récente ; mettez le programme à jour pour l'ouvrir."},
    {3043, u"La lecture ou l'écriture du fichier{ « %1 »} a échoué ; vérifiez que le disque est branché et en "
           u"bon état, puis recommencez."},
    {3044, u"Le chemin{ « %1 »} n'est pas valide ; vérifiez que le dossier existe et donnez le nom d'un fichier."},
    {3045, u"Le fichier{ « %1 »} est déjà ouvert{ par %2} ; fermez-le là-bas et recommencez."},
    {3049, u"Le fichier{ « %1 »} est endommagé{ : %2} ; reprenez une copie de sauvegarde."},
    {3050, u"Le fichier{ « %1 »} ne peut pas être verrouillé ; copiez-le sur un disque local et recommencez."},
    {3051, u"Le fichier{ « %1 »} ne peut pas être ouvert, faute de droits suffisants ; vérifiez les droits du "
           u"fichier et de son dossier."},
    {3183, u"Il n'y a plus de place pour les fichiers temporaires{ dans « %1 »} ; libérez de l'espace et "
           u"recommencez."},
    {3204, u"Le fichier{ « %1 »} existe déjà ; choisissez un autre nom ou supprimez-le d'abord."},
    {3343, u"Le fichier{ « %1 »} n'est pas une base de données reconnue ; choisissez un autre fichier."},
    {3356, u"Le fichier{ « %1 »} est ouvert en mode exclusif{ par %2} ; attendez qu'il soit fermé et "
           u"recommencez."},
    {3424, u"Le fichier{ « %1 »} ne peut pas être créé, car les paramètres de langue{ « %2 »} ne sont pas "
           u"valides ; corrigez-les."},
    // Rules of the data
    {3047, u"L'enregistrement{ de « %1 »} est trop grand ; raccourcissez ses textes."},
    {3162, u"Le champ{ « %1 »} n'accepte pas de valeur vide (Null) ; donnez une valeur."},
    {3163, u"La valeur est trop longue pour le champ{ « %1 »}{ (%2 caractères au plus)} ; raccourcissez-la."},
    {3200, u"L'enregistrement ne peut être ni supprimé ni modifié, car des enregistrements{ de la table « %1 »} "
           u"en dépendent ; supprimez-les ou rattachez-les d'abord ailleurs."},
    {3201, u"L'enregistrement ne peut pas être ajouté ni modifié, car l'enregistrement auquel il se "
           u"rapporte n'existe pas{ dans la table « %1 »} ; créez-le d'abord."},
    {3314, u"Le champ{ « %1 »} doit être rempli ; donnez-lui une valeur."},
    {3315, u"Le champ{ « %1 »} n'accepte pas de texte vide ; donnez un texte ou laissez le champ sans valeur."},
    {3316, u"{%1}"},
    {3317, u"La valeur{ du champ « %1 »} est refusée par sa règle de validation{ « %2 »} ; donnez une valeur "
           u"qui la respecte."},
    {3320, u"La règle de validation{ du champ « %1 »} ou sa valeur par défaut{ « %2 »} n'est pas comprise ; "
           u"corrigez l'expression."},
    {3396, u"La mise à jour ou la suppression en cascade est impossible, car la table{ « %1 »} contient des "
           u"enregistrements liés qui ne peuvent pas changer ; traitez-les d'abord."},
    {3397, u"L'opération en cascade est impossible, car il manque un index à la table{ « %1 »} ; optimisez la "
           u"base de données."},
    {3399, u"L'opération en cascade ne peut pas mettre une valeur vide dans le champ{ « %1 »} ; traitez "
           u"d'abord les enregistrements liés."},
    {3421, u"La valeur{ « %1 »} ne convient pas au type{ du champ « %2 »} ; corrigez-la."},
    // Statements
    {3061, u"Paramètres manquants{ : %1}{ (%2)} ; aucun champ ne porte ce nom, vérifiez son orthographe."},
    {3063, u"Le champ de destination{ « %1 »} est donné deux fois ; retirez l'un des deux."},
    {3065, u"Une requête qui donne des enregistrements ne s'exécute pas comme une action ; ouvrez-la."},
    {3066, u"La requête ne donne aucun champ ; ajoutez-en au moins un."},
    {3067, u"La requête ne porte sur aucune table ; ajoutez une clause FROM."},
    {3070, u"Le nom{ « %1 »} n'est pas celui d'un champ ni d'une expression ; vérifiez son orthographe."},
    {3071, u"L'expression{ « %1 »} est trop complexe pour être évaluée ; simplifiez-la."},
    {3073, u"L'opération doit utiliser une requête qui peut être mise à jour{ (%1)} ; ôtez les regroupements, "
           u"les unions et DISTINCT."},
    {3074, u"Le nom de table{ « %1 »} est répété dans la clause FROM ; donnez-lui un autre nom avec AS."},
    {3075, u"Erreur de syntaxe{ : %1}{ dans l'expression « %2 »} ; corrigez le texte de la requête."},
    {3078, u"La table ou la requête{ « %1 »} est introuvable ; vérifiez qu'elle existe et que son nom est "
           u"bien écrit."},
    {3079, u"Le champ{ « %1 »} existe dans plusieurs tables de la requête ; précisez laquelle, par exemple "
           u"[Table].[Champ]."},
    {3085, u"La fonction{ « %1 »} n'existe pas ; vérifiez l'orthographe de son nom."},
    {3086, u"Les enregistrements{ de « %1 »} ne peuvent pas être supprimés par cette requête ; nommez la table "
           u"à vider et ajoutez DISTINCTROW."},
    {3093, u"La clause ORDER BY{ (« %1 »)} doit reprendre un champ donné par la requête avec DISTINCT ; "
           u"ajoutez-le aux champs."},
    {3095, u"Une fonction d'agrégat{ (« %1 »)} ne peut pas en contenir une autre ; simplifiez l'expression."},
    {3096, u"Une fonction d'agrégat{ (« %1 »)} n'est pas permise dans la clause WHERE ; employez HAVING."},
    {3098, u"Une fonction d'agrégat{ (« %1 »)} n'est pas permise dans la clause GROUP BY ; retirez-la."},
    {3102, u"La requête{ « %1 »} se contient elle-même ; changez la requête à laquelle elle fait appel."},
    {3122, u"L'expression{ « %1 »} ne fait partie d'aucune fonction d'agrégat ; ajoutez-la à la clause GROUP "
           u"BY."},
    {3125, u"Le nom{ « %1 »} n'est pas valide ; évitez les crochets, les points d'exclamation et les points, "
           u"et ne dépassez pas 64 caractères."},
    {3127, u"La clause INSERT INTO nomme un champ inconnu{ : « %1 »}{ (table « %2 »)} ; vérifiez son "
           u"orthographe."},
    {3128, u"La table dont les enregistrements sont à supprimer{ (%1)} n'est pas précisée ; écrivez par exemple "
           u"DELETE [Table].* FROM …"},
    {3129, u"L'instruction n'est pas comprise{ : « %1 »} ; commencez par SELECT, INSERT, UPDATE ou DELETE."},
    {3131, u"Erreur de syntaxe dans la clause FROM{ : %1}{ près de « %2 »} ; corrigez la requête."},
    {3134, u"Erreur de syntaxe dans l'instruction INSERT INTO{ : %1}{ près de « %2 »} ; corrigez la requête."},
    {3138, u"Erreur de syntaxe dans la clause ORDER BY{ : %1}{ près de « %2 »} ; corrigez la requête."},
    {3141, u"Erreur de syntaxe dans l'instruction SELECT{ : %1}{ près de « %2 »} ; vérifiez les mots réservés et "
           u"la ponctuation."},
    {3142, u"Du texte suit la fin de l'instruction{ : « %1 »} ; retirez-le."},
    {3144, u"Erreur de syntaxe dans l'instruction UPDATE{ : %1}{ près de « %2 »} ; corrigez la requête."},
    {3211, u"La table{ « %1 »} est utilisée par un autre travail et ne peut pas être verrouillée ; fermez ce "
           u"qui l'utilise et recommencez."},
    {3296, u"Cette jointure n'est pas possible{ : « %1 »} ; comparez dans la clause ON des champs des deux "
           u"tables."},
    {3306, u"La sous-requête{ « %1 »} doit donner un seul champ ; ôtez les autres."},
    {3307, u"Les requêtes d'une union n'ont pas le même nombre de champs{ (%1 et %2)} ; donnez-leur les mêmes "
           u"champs."},
    {3346, u"Le nombre de valeurs et le nombre de champs{ (%1 et %2)} ne sont pas les mêmes ; complétez "
           u"l'instruction."},
    {3354, u"La sous-requête{ « %1 »} ne doit donner qu'un enregistrement ; ajoutez un critère ou TOP 1."},
    {3360, u"La requête est trop longue ou trop complexe{ (%1)} ; simplifiez-la ou divisez-la."},
    {3417, u"Une requête d'action{ (« %1 »)} ne donne pas d'enregistrements ; choisissez une requête SELECT."},
    {3464, u"Les types de données du critère{ « %1 »} ne s'accordent pas ; comparez un texte à un texte et un "
           u"nombre à un nombre."},
    {3615, u"Les types des champs de la jointure{ « %1 »} ne s'accordent pas ; convertissez l'un d'eux."},
};

QStringView sentence(int number)
{
    for (const Sentence& s : sentences) {
        if (s.number == number)
            return s.text;
    }
    return {};
}

using Arguments = std::array<QString, 2>;

bool isPlace(QStringView text, qsizetype at)
{
    return text[at] == u'%' && at + 1 < text.size() && (text[at + 1] == u'1' || text[at + 1] == u'2');
}

// One pass, so that an argument that itself holds "%2" or a brace stays as it is.
QString filled(QStringView part, const Arguments& arguments, bool& complete)
{
    QString result;
    for (qsizetype i = 0; i < part.size(); ++i) {
        if (!isPlace(part, i)) {
            result += part[i];
            continue;
        }
        const QString& argument = arguments[part[++i] == u'1' ? 0 : 1];
        complete = complete && !argument.isEmpty();
        result += argument;
    }
    return result;
}

QString composed(QStringView text, const Arguments& arguments)
{
    QString result;
    while (!text.isEmpty()) {
        const qsizetype open = text.indexOf(u'{');
        const qsizetype close = text.indexOf(u'}');
        bool complete = true;
        if (open < 0) {
            result += filled(text, arguments, complete);
            break;
        }
        result += filled(text.first(open), arguments, complete);
        complete = true;
        const QString optional = filled(text.sliced(open + 1, close - open - 1), arguments, complete);
        if (complete)
            result += optional;
        text = text.sliced(close + 1);
    }
    return result;
}

} // namespace

Error::Error(int number, QString description, QString source)
    : m_number(number), m_description(std::move(description)), m_source(std::move(source)),
      m_what((QString::number(number) + u" "_s + m_description).toUtf8())
{
}

QString describe(int number, const QString& first, const QString& second)
{
    // A table's rule speaks its own text; one without text is refused in general terms.
    const QStringView known = sentence(number == 3316 && first.isEmpty() ? 3317 : number);
    if (!known.isEmpty())
        return composed(known, {first, second});
    return composed(u"Le moteur de la base de données a signalé l'erreur %1{ : %2} ; recommencez l'opération.",
                    {QString::number(number), first});
}

void fail(int number, const QString& first, const QString& second)
{
    throw Error(number, describe(number, first, second));
}

} // namespace jet
