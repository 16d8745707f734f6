#include "reference/Cl_Collecteur.h"

#include "data/FieldType.h"
#include "jet/SqlText.h"

#include <QLoggingCategory>

namespace reference {

using namespace Qt::StringLiterals;
using jet::texte;

namespace {

Q_LOGGING_CATEGORY(peopleLog, "herbora.collecteurs")

constexpr int duplicateError = 3022;

const QStringList& columns()
{
    static const QStringList names{u"Collecteur"_s, u"Initiales"_s, u"Bot"_s, u"Organisme"_s};
    return names;
}

} // namespace

Cl_Collecteur::Cl_Collecteur(const ReferenceContext& context) : ReferenceList(context, u"Collecteurs"_s) {}

QString Cl_Collecteur::NomBotaniste(qint32 id, int mode) const
{
    if (!position(id))
        return u"< Indéfini >"_s;
    return text(mode == 1 ? u"Initiales"_s : mode == 2 ? u"Organisme"_s : u"Collecteur"_s);
}

Found Cl_Collecteur::SearchBotanistes(const QString& pattern) const
{
    QString statement = u"SELECT [ID Collecteurs],[Collecteur] From Collecteurs"_s;
    if (!pattern.isEmpty())
        statement += u" WHERE [Collecteur] LIKE "_s + texte(pattern) + u" OR [Initiales] LIKE "_s + texte(pattern);
    try {
        return search(statement + u" ORDER BY [Collecteur]"_s, pattern);
    } catch (const jet::Error& error) {
        qCWarning(peopleLog).noquote() << "search" << error.number() << error.description();
        return {};
    }
}

bool Cl_Collecteur::confirmDelete(const QList<qint32>& ids) const
{
    const QString what =
        ids.size() == 1 ? u"Vous allez SUPPRIMER le Collecteur "_s + quotedName(NomBotaniste(ids.first(), 0)) + u"...!!!"_s
                        : u"Vous allez SUPPRIMER les "_s + QString::number(ids.size()) + u" Collecteurs sélectionnés...!!!"_s;
    return m_context.dialogues.confirm(what + u"\rLa suppression d'un Collecteur entraîne la rupture définitive des liens"
                                              "\r\rSupprimer les Collecteurs sélectionnés ?"_s,
                                       u"Suppression..."_s, platform::BoxIcon::Stop);
}

bool Cl_Collecteur::Delete(const QList<qint32>& ids, bool silent)
{
    if (ids.isEmpty() || (!silent && !confirmDelete(ids)))
        return false;
    try {
        m_context.database.Execute(u"DELETE * FROM Collecteurs WHERE Collecteurs.[ID Collecteurs] IN ("_s
                                   + jet::liste(ids) + u')');
    } catch (const jet::Error& error) {
        qCWarning(peopleLog).noquote() << "delete" << error.number() << error.description();
        m_context.dialogues.tell(u"La suppression a échoué :\n"_s + error.description(), u"Suppression..."_s,
                                 platform::BoxIcon::Stop);
        return false;
    }
    for (const qint32 id : ids)
        Q_EMIT ReferenceList::Delete(id);
    Q_EMIT TableModified(u"Botanistes"_s);
    Q_EMIT Refresh(true);
    return true;
}

void Cl_Collecteur::FillTabEdit(editing::Cl_Editions& form, qint32 id)
{
    using namespace data;
    form.Clear();
    const bool known = position(id);
    const auto now = [&](const QString& column) { return known ? value(column) : QVariant(); };
    form.Add(Texte, u"Nom"_s, now(u"Collecteur"_s), u"Indiquez le nom du ou des collecteurs(s)"_s, u"Collecteur"_s, false, 0);
    form.Add(Texte, u"Initiales"_s, now(u"Initiales"_s), u"Indiquez les initiales"_s, u"Initiales"_s, false, 0);
    form.Add(OuiNon, u"Botaniste"_s, !known || now(u"Bot"_s).toBool() ? u"True"_s : u"False"_s,
             u"S'agit il d'un botaniste?"_s, u"Bot"_s, false, 0);
    form.Add(Texte, u"Organisme"_s, now(u"Organisme"_s), u"Indiquez éventuellement le nom de l'organisme"_s, u"Organisme"_s, true, 0);
    for (const auto& field : form)
        field->ChpEdition()->Changed = false;
}

bool Cl_Collecteur::Save(editing::Cl_Editions& form)
{
    const qint32 id = current();
    m_failure = 0;
    try {
        QList<QPair<QString, QVariant>> values;
        for (const QString& column : columns()) {
            const editing::Cl_Edition* field = form.Item(column);
            if (!field)
                continue;
            const bool flag = field->ctype() == data::OuiNon;
            values.append({column, flag ? QVariant(field->value().toString() == u"True") : field->value()});
        }
        const qint32 saved = write(id, values);
        editing::Cl_Editions fresh(m_context.editing);
        FillTabEdit(fresh, saved);
        takeOver(form, fresh);
        position(saved);
        Q_EMIT Change(saved);
        return true;
    } catch (const jet::Error& error) {
        qCWarning(peopleLog).noquote() << "save" << error.number() << error.description();
        m_failure = error.number();
        if (editing::Cl_Edition* name = form.Item(u"Collecteur"_s))
            name->setTextError(error.number() == duplicateError ? u"Ce nom existe déjà"_s : error.description());
        position(id);
        return false;
    }
}

bool Cl_Collecteur::Add(const QString& name)
{
    if (!m_context.form)
        return false;
    editing::Cl_Editions form(m_context.editing);
    FillTabEdit(form, 0);
    if (!name.isEmpty())
        form.Item(u"Collecteur"_s)->setValue(name);
    return m_context.form->edit(u"Nouveau botaniste"_s, form, [this](editing::Cl_Editions& f) {
        position(0);
        return Save(f);
    });
}

bool Cl_Collecteur::Edit(qint32 id)
{
    if (!m_context.form || !position(id))
        return false;
    editing::Cl_Editions form(m_context.editing);
    FillTabEdit(form, id);
    return m_context.form->edit(NomBotaniste(id, 0), form, [this, id](editing::Cl_Editions& f) {
        position(id);
        return Save(f);
    });
}

} // namespace reference
