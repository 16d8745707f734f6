#include "data/Confirmations.h"

#include <QLoggingCategory>

namespace data {

using namespace Qt::StringLiterals;
using platform::Answer;
using platform::BoxButtons;
using platform::BoxIcon;

namespace {

Q_LOGGING_CATEGORY(confirmationLog, "herbora.confirmations")

enum class Box { Stop, Ask3, Ask };

/// One confirmation. "%1" in the text stands for the name. The wording, its faults included, is what
/// users have read for years.
struct Confirmation {
    int code;
    QString text;
    QString title;
    Box box;
};

const QList<Confirmation>& catalogue()
{
    static const QList<Confirmation> table{
        {1, u"L'observation courante a été modifiée...\nVoulez-vous enregistrer les modifications ?"_s,
         u"Confirmation d'enregistrement"_s, Box::Ask3},
        {2, u"Supprimer l'image et le Fichier associé dans le répertoire Images ?"_s,
         u"Suppression Image"_s, Box::Stop},
        {3, u"Supprimer l'observation et les images qui lui sont associées ?"_s,
         u"Suppression Observation"_s, Box::Stop},
        {4, u"Etes-vous sûr de vouloir supprimer ce Taxon ?"_s, u"Suppression Taxon"_s, Box::Stop},
        {5, u"Etes-vous sûr de vouloir supprimer cet Individu ?"_s, u"Suppression Individu"_s, Box::Stop},
        {6, u"Etes-vous sûr de vouloir supprimer cette Localité ?"_s, u"Suppression Localité"_s, Box::Stop},
        {7, u"Etes-vous sûr de vouloir supprimer ce Botaniste ?"_s, u"Suppression Botaniste"_s, Box::Stop},
        {8, u"Etes-vous sûr de vouloir supprimer cette détermination ?"_s,
         u"Suppression Détermination"_s, Box::Stop},
        {9,
         u"Plusieurs champs de critères sont orphelins dans la base des Observations\n"
         "Ces champs ne sont affectés à aucun onglet de la base Critères et ne rentreront pas dans la description des individus\n"
         "La suppression de ces champs détruira DEFINITIVEMENT les informations contenues\n"
         "Leur maintien entraînera une incohérence dès lors que vous créerez un nouvel onglet qui ne leur correspond pas \n\n"
         "Souhaitez-vous supprimer ces champs et rétablir la cohérence ?"_s,
         u"Cohérence des critères de description"_s, Box::Ask},
        {10, u"La structure a été modifiée,  voulez-vous enregistrer les modifications ?"_s,
         u"Modification de la structure"_s, Box::Stop},
        {11, u"Etes-vous sûr de modifier la localité pour l'individu en cours ?"_s,
         u"Modification de la localité"_s, Box::Stop},
        {12, u"Etes-vous sûr de modifier l'identification courante de l'individu ?"_s,
         u"Modification de l'identification"_s, Box::Stop},
        {13, u"Etes-vous sûr de modifier le nom de Taxon de l'identification en cours ?"_s,
         u"Modification de l'identification"_s, Box::Stop},
        {14, u"Etes-vous sûr de modifier Le déterminateur de l'identification en cours ?"_s,
         u"Modification de l'identification"_s, Box::Stop},
        {15, u"Etes-vous sûr de modifier la date de détermination de l'identification en cours ?"_s,
         u"Modification de l'identification"_s, Box::Stop},
        {16, u"Etes-vous sûr de modifier l'herbier de l'herbier en cours ?"_s,
         u"Modification d'un herbier"_s, Box::Stop},
        {20, u"Etes-vous sûr de modifier le Nom du Botaniste en cours?"_s,
         u"Modification d'un Botaniste"_s, Box::Stop},
        {21, u"Etes-vous sûr de modifier les initiales du Botaniste en cours?"_s,
         u"Modification d'un Botaniste"_s, Box::Stop},
        {122, u"Etes-vous sûr de modifier les propriétés  de l'individu en cours?"_s,
         u"Modification d'un Individu"_s, Box::Stop},
        {222, u"Etes-vous sûr de modifier les propriétés  du Taxon en cours?"_s,
         u"Modification d'un Taxon"_s, Box::Stop},
        {322, u"Etes-vous sûr de modifier les propriétés  de la Localité en cours?"_s,
         u"Modification d'une Localité"_s, Box::Stop},
        {400, u"La propriété '%1' a été modifiée. Voulez-vous enregistrez les changements ?"_s,
         u"Gestion des propriétés"_s, Box::Ask},
        {401, u" Supprimer la propriété %1 ?"_s, u"Gestion des propriétés"_s, Box::Ask},
        {500, u"Le Domaine '%1' a été modifié. Voulez-vous enregistrez les changements ?"_s,
         u"Sauvegarde du domaine"_s, Box::Ask},
        {501, u" Supprimer le domaine courant %1 ?"_s, u"Sauvegarde du domaine"_s, Box::Ask},
    };
    return table;
}

} // namespace

Answer confirmation(platform::Dialogues& dialogues, int code, const QString& name)
{
    for (const Confirmation& entry : catalogue()) {
        if (entry.code != code)
            continue;
        const QString text = QString(entry.text).replace(u"%1"_s, name);
        return dialogues.ask({text, entry.title,
                              entry.box == Box::Stop ? BoxIcon::Stop : BoxIcon::Question,
                              entry.box == Box::Ask3 ? BoxButtons::YesNoCancel : BoxButtons::YesNo,
                              Answer::Yes});
    }
    qCWarning(confirmationLog) << "unknown confirmation" << code;
    return Answer::Cancel;
}

bool confirmed(platform::Dialogues& dialogues, int code, const QString& name)
{
    return confirmation(dialogues, code, name) == Answer::Yes;
}

} // namespace data
