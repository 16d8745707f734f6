// The forms of a taxon and of a synonymy.
#include "reference/Cl_Taxon.h"

#include "data/FieldType.h"
#include "data/OrNull.h"
#include "editing/Formats.h"
#include "jet/text/Values.h"

#include <QLoggingCategory>

namespace reference {

using namespace Qt::StringLiterals;
using data::orNull;

namespace {

Q_LOGGING_CATEGORY(formLog, "herbora.taxons")

constexpr int lowestRank = 4;

QString namePrompt(int rank)
{
    static const QStringList what{u"de la famille"_s, u"du genre"_s, u"de l'espèce"_s, u"du taxon infraspécifique"_s};
    QString prompt = u"Indiquez le nom "_s + (rank >= 1 && rank <= lowestRank ? what[rank - 1] : u"du taxon"_s);
    if (rank == 3)
        prompt += u" - (N'inscrivez pas le nom de genre)"_s;
    else if (rank == 4)
        prompt += u" précédé du rang (ex: 'var. alba')"_s;
    return prompt;
}

QString newTitle(int rank)
{
    static const QStringList titles{u"Nouvelle famille"_s, u"Nouveau genre"_s, u"Nouvelle espèce"_s,
                                    u"Nouveau taxon infrasp."_s};
    return rank >= 1 && rank <= lowestRank ? titles[rank - 1] : u"Nouveau taxon"_s;
}

/// The type of a field on a column of dates. What an older file holds there may be more than a date
/// ("Sp. Pl. 2: 995. 1753"), which a date field would drop.
int dateOrText(const QVariant& held)
{
    const QString text = held.toString();
    return text.isEmpty() || editing::ParseDate(text) == text ? data::Date : data::Texte;
}

const QStringList& textColumns()
{
    static const QStringList columns{u"Auteurs"_s, u"DateOriginal"_s, u"TypeSpecimen"_s, u"Commentaire"_s};
    return columns;
}

} // namespace

QString Cl_Taxon::storedName(const QString& name, int rank)
{
    return rank <= 2 ? jet::text::strConv(name.trimmed(), 3) : name.trimmed().toLower();
}

QString Cl_Taxon::FillTabEdit(editing::Cl_Editions& form, qint32 id, qint32 parent)
{
    const bool known = id > 0 && position(id);
    return fillForm(form, known ? id : 0, parent, known ? RangTaxon() : std::min(OrdreTaxon(parent) + 1, lowestRank));
}

/// Of a name whose parent is still to be chosen the nearest parent is asked alone: it brings along those above it.
void Cl_Taxon::addParents(editing::Cl_Editions& form, qint32 above, int rank, bool known)
{
    static const QStringList helps{u"Nom de la famille"_s, u"Nom du genre"_s, u"Nom de l'espèce"_s};
    for (int r = above > 0 ? 1 : std::max(1, rank - 1); r < rank; ++r) {
        const qint32 ancestor = above > 0 ? IDRangTaxon(above, r) : 0;
        form.Add(data::Taxon, Ordre(r), ancestor > 0 ? QVariant(ancestor) : QVariant(), helps[r - 1], champ(r), false, 0);
        form.Item(champ(r))->setLocked(known); // an existing name changes its place by being moved
    }
}

QString Cl_Taxon::fillForm(editing::Cl_Editions& form, qint32 id, qint32 parent, int rank)
{
    using namespace data;
    form.Clear();
    const bool known = id > 0;
    const QString title = known ? NomTaxon(id, 0) + u" ("_s + Ordre(rank) + u')' : newTitle(rank);
    addParents(form, known ? id : parent, rank, known);
    form.Add(ListeSimple, u"Rang Taxonomique"_s, Ordre(rank), u"Sélectionnez le rang taxonomique du taxon"_s, fieldRank,
             false, 0);
    form.Item(fieldRank)->ChpEdition()->Descripteurs = {Ordre(1), Ordre(2), Ordre(3), Ordre(4)};
    form.Item(fieldRank)->setLocked(known);
    position(known ? id : 0);
    const auto now = [&](const QString& column) { return known ? value(column) : QVariant(); };
    form.Add(OuiNon, u"Valide"_s, now(u"ID Valid"_s).isValid() ? u"False"_s : u"True"_s,
             u"Indiquez si le taxon est valide"_s, fieldValid, true, 0);
    form.Item(fieldValid)->setLocked(true); // the synonymy has a form of its own
    form.Add(Texte, u"Nom"_s, now(u"Taxon"_s), namePrompt(rank), u"Nom Complet"_s, false, 0);
    form.Add(Texte, u"Auteur(s) "_s, now(u"Auteurs"_s), u"Nom du ou des Auteur(s) "_s, u"Auteurs"_s, true, 0);
    const QVariant published = now(u"DateOriginal"_s);
    form.Add(dateOrText(published), u"Date Publication"_s, published, u"Date de la publication originale"_s,
             u"DateOriginal"_s, true, 0);
    form.Add(Texte, u"Echantillon Type"_s, now(u"TypeSpecimen"_s), u"Indiquez le numéro de l'échantillon Type"_s,
             u"TypeSpecimen"_s, true, 0);
    form.Add(TexteMémo, u"Commentaire"_s, now(u"Commentaire"_s), u"Commentaire "_s, u"Commentaire"_s, true, 0);
    const qint32 valid = known ? IDValid(id, false) : -1;
    form.Add(Texte, u"Nom Valide"_s, valid > 0 ? QVariant(NomTaxon(valid, 2)) : QVariant(), u"Taxon Valide"_s,
             u"ID Valid"_s, true, 0);
    form.Item(u"ID Valid"_s)->setLocked(true);
    form.Add(TexteMémo, u"Synonymes"_s, known ? orNull(SQLSynonymes(id)) : QVariant(), u"Liste des taxons synonymes"_s,
             fieldSynonyms, true, 0);
    form.Item(fieldSynonyms)->setLocked(true);
    for (const auto& field : form)
        field->ChpEdition()->Changed = false;
    position(known ? id : 0);
    return title;
}

int Cl_Taxon::rankOfForm(const editing::Cl_Editions& form) const
{
    const editing::Cl_Edition* field = form.Item(fieldRank);
    for (int rank = 1; field && rank <= lowestRank; ++rank) {
        if (field->value().toString() == Ordre(rank))
            return rank;
    }
    return 0;
}

qint32 Cl_Taxon::parentOfForm(const editing::Cl_Editions& form, int rank) const
{
    const editing::Cl_Edition* selector = rank > 1 ? form.Item(champ(rank - 1)) : nullptr;
    return selector ? selector->value().toInt() : 0;
}

qint32 Cl_Taxon::writeForm(const editing::Cl_Editions& form, qint32 id, int rank, qint32 parent)
{
    QList<QPair<QString, QVariant>> values{
        {u"Taxon"_s, storedName(form.Item(u"Nom Complet"_s)->value().toString(), rank)}};
    for (const QString& column : textColumns()) {
        if (const editing::Cl_Edition* field = form.Item(column))
            values.append({column, orNull(field->value().toString())});
    }
    for (int r = 1; r < rank; ++r) {
        const qint32 ancestor = IDRangTaxon(parent, r);
        values.append({champ(r).mid(1).chopped(1), ancestor > 0 ? QVariant(ancestor) : QVariant()});
    }
    jet::Operation operation(m_context.database, u"Enregistrement d'un taxon"_s);
    const qint32 saved = write(id, values);
    write(saved, {{champ(rank).mid(1).chopped(1), saved}});
    operation.commit();
    return saved;
}

/// The row with its full name and those under it, as one. Where the names alone cannot be made anew the row stays saved.
qint32 Cl_Taxon::saveWithNames(const editing::Cl_Editions& form, qint32 id, int rank, qint32 parent)
{
    QString problem;
    jet::Operation operation(m_context.database, u"Enregistrement d'un taxon"_s);
    const qint32 saved = writeForm(form, id, rank, parent);
    try {
        jet::Operation names(m_context.database, u"Nom complet des taxons"_s);
        RefrsNomComplet(saved);
        names.commit();
    } catch (const jet::Error& error) {
        problem = u"Erreur N°"_s + QString::number(error.number())
                  + u"\r\nImpossibilité de reconstruire le nom complet du Taxon et de ses parents\r\n"
                    "Merci de reporter ce Bug en indiquant le plus précisément le contexte"_s;
    }
    operation.commit();
    if (!problem.isEmpty())
        m_context.dialogues.tell(problem, u"Bug dans la gestion de la taxinomie"_s, platform::BoxIcon::Stop);
    return saved;
}

/// The rank goes with the parent; where it does not, the field that is wrong says so.
bool Cl_Taxon::hasPlace(editing::Cl_Editions& form, int rank, qint32 parent) const
{
    editing::Cl_Edition* selector = rank > 1 ? form.Item(champ(rank - 1)) : nullptr;
    for (editing::Cl_Edition* field : {selector, form.Item(fieldRank)}) {
        if (field)
            field->setTextError({});
    }
    if (rank == 1 || (rank > 1 && OrdreTaxon(parent) == rank - 1))
        return true;
    if (selector)
        selector->setTextError(u"Ce n'est pas un nom de ce rang : "_s + Ordre(rank - 1));
    else if (editing::Cl_Edition* field = form.Item(fieldRank))
        field->setTextError(rank == 0 ? u"Indiquez le rang"_s : u"Un nom de ce rang ne peut être ajouté à cet endroit"_s);
    return false;
}

bool Cl_Taxon::Save(editing::Cl_Editions& form)
{
    m_failure = 0;
    try {
        const qint32 id = current();
        editing::Cl_Edition* name = form.Item(u"Nom Complet"_s);
        if (!name || name->value().toString().trimmed().isEmpty()) {
            if (name)
                name->setTextError(u"Impossible d'ajouter un Taxon nulle"_s);
            return false;
        }
        name->setTextError({});
        const int rank = rankOfForm(form);
        const qint32 parent = parentOfForm(form, rank);
        const editing::Cl_Edition* authors = form.Item(u"Auteurs"_s);
        if (!hasPlace(form, rank, parent)
            || !ValidNomTaxon(storedName(name->value().toString(), rank),
                              authors ? authors->value().toString() : QString(), parent, id)) {
            position(id);
            return false;
        }
        const qint32 saved = saveWithNames(form, id, rank, parent);
        editing::Cl_Editions fresh(m_context.editing);
        FillTabEdit(fresh, saved, parent);
        takeOver(form, fresh);
        position(saved);
        Q_EMIT Change(saved);
        return true;
    } catch (const jet::Error& error) {
        qCWarning(formLog).noquote() << "save" << error.number() << error.description();
        m_failure = error.number();
        if (editing::Cl_Edition* name = form.Item(u"Nom Complet"_s))
            name->setTextError(error.description());
        return false;
    }
}

bool Cl_Taxon::Add(qint32 parent, const QString& name)
{
    return editNew(parent, std::min(OrdreTaxon(parent) + 1, lowestRank), name, true);
}

bool Cl_Taxon::AddOfRank(int rank, const QString& name)
{
    return editNew(0, std::clamp(rank, 1, lowestRank), name, false);
}

/// Where the place was chosen in the tree the form begins with the name.
bool Cl_Taxon::editNew(qint32 parent, int rank, const QString& name, bool placed)
{
    if (!m_context.form)
        return false;
    editing::Cl_Editions form(m_context.editing);
    const QString title = fillForm(form, 0, parent, rank);
    form.Remove(fieldSynonyms); // a list, which a form of one name does not show
    for (const QString& key : {champ(1), champ(2), champ(3), fieldRank}) {
        if (placed && form.Item(key))
            form.Item(key)->setLocked(true);
    }
    if (!name.isEmpty())
        form.Item(u"Nom Complet"_s)->setValue(name);
    return m_context.form->edit(title, form, [this](editing::Cl_Editions& f) {
        position(0);
        return Save(f);
    });
}

bool Cl_Taxon::Edit(qint32 id)
{
    if (!m_context.form || !position(id))
        return false;
    editing::Cl_Editions form(m_context.editing);
    const QString title = FillTabEdit(form, id, IDparent(id));
    form.Remove(fieldSynonyms);
    position(id);
    return m_context.form->edit(title, form, [this, id](editing::Cl_Editions& f) {
        position(id);
        return Save(f);
    });
}

bool Cl_Taxon::EditSynonymie(qint32 synonym, qint32 valid)
{
    if (!m_context.form || !position(synonym))
        return false;
    using namespace data;
    const QVariant authors = value(u"AuteurSynonymie"_s);
    const QVariant date = value(u"DateSynonymie"_s);
    const QVariant comment = value(u"CommentSynonymie"_s);
    editing::Cl_Editions form(m_context.editing);
    form.Add(Taxon, u"Taxon Valide"_s, valid, {}, u"Taxon valide"_s, false, 0);
    form.Add(Taxon, u"Taxon Synonyme"_s, synonym, {}, u"Taxon Synonyme"_s, false, 0);
    form.Item(u"Taxon Synonyme"_s)->setLocked(true);
    form.Add(Texte, u"Auteur(s) de la synonymie"_s, authors, u"Auteur(s) de la mise en synonymie"_s, u"AuteurSynonymie"_s, true, 0);
    form.Add(dateOrText(date), u"Date de la synonymie"_s, date, u"Date de la mise en synonymie"_s, u"DateSynonymie"_s, true, 0);
    form.Add(TexteMémo, u"Commentaire"_s, comment, {}, u"CommentSynonymie"_s, true, 0);
    return m_context.form->edit(u"Synonymie"_s, form, [&](editing::Cl_Editions& f) {
        const qint32 accepted = f.Item(0)->value().toInt();
        if (accepted <= 0 || accepted == synonym || !position(accepted)) {
            f.Item(0)->setTextError(u"Indiquez un autre taxon que le synonyme"_s);
            return false;
        }
        try {
            write(synonym, {{u"ID Valid"_s, accepted},
                            {u"AuteurSynonymie"_s, orNull(f.Item(2)->value().toString())},
                            {u"DateSynonymie"_s, orNull(f.Item(3)->value().toString())},
                            {u"CommentSynonymie"_s, orNull(f.Item(4)->value().toString())}});
            return true;
        } catch (const jet::Error& error) {
            f.Item(0)->setTextError(error.description());
            return false;
        }
    });
}

bool Cl_Taxon::clSynonyme_Delete(qint32 synonym)
{
    if (!m_context.dialogues.confirm(u"Etes-vous sûr de vouloir supprimer cette synonymie ?"_s,
                                     u"Suppression d'une synonymie"_s))
        return false;
    try {
        write(synonym, {{u"ID Valid"_s, QVariant()}, {u"AuteurSynonymie"_s, QVariant()},
                        {u"DateSynonymie"_s, QVariant()}, {u"CommentSynonymie"_s, QVariant()}});
    } catch (const jet::Error& error) {
        qCWarning(formLog).noquote() << "synonymy" << error.number() << error.description();
        m_context.dialogues.tell(error.description(), u"Suppression d'une synonymie"_s, platform::BoxIcon::Stop);
        return false;
    }
    Q_EMIT Change(synonym);
    return true;
}

bool Cl_Taxon::clSynonyme_Edit(qint32 synonym)
{
    const qint32 valid = IDValid(synonym, false);
    if (!EditSynonymie(synonym, valid))
        return false;
    Q_EMIT Change(synonym);
    return true;
}

} // namespace reference
