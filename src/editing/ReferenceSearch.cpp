#include "editing/ReferenceSearch.h"

#include "data/FieldType.h"
#include "jet/Recordset.h"
#include "jet/SqlText.h"

namespace editing {

using namespace Qt::StringLiterals;
using jet::nom;
using jet::texte;

namespace {

/// A pattern of all that begins with the text, whose own wildcards stand for themselves.
QString beginning(const QString& typed)
{
    QString pattern;
    for (const QChar c : typed.trimmed().normalized(QString::NormalizationForm_C))
        pattern += QStringView(u"*?#[").contains(c) ? u'[' + QString(c) + u']' : QString(c);
    return pattern + u'*';
}

QString condition(const QString& column, const QString& typed)
{
    return typed.trimmed().isEmpty() ? u" WHERE True"_s : u" WHERE "_s + column + u" LIKE "_s + texte(beginning(typed));
}

} // namespace

void ReferenceSearch::append(QList<ReferenceMatch>& found, const QString& statement) const
{
    const auto rows = m_database.OpenRecordset(statement, jet::RecordsetType::Snapshot);
    for (; !rows->EOF_() && found.size() < most; rows->MoveNext()) {
        const ReferenceMatch match{rows->Value(0).toInt(), rows->Value(1).toString(), rows->Value(2).toString()};
        const bool there = std::any_of(found.begin(), found.end(), [&](const auto& m) { return m.id == match.id; });
        if (!there)
            found << match;
    }
}

QList<ReferenceMatch> ReferenceSearch::matches(int type, const QString& typed) const
{
    QList<ReferenceMatch> found;
    switch (type) {
    case data::Taxon:
        append(found, u"SELECT [ID Taxons],[Nom Complet],[Auteurs] FROM Taxons"_s + condition(u"[Nom Complet]"_s, typed)
                          + u" ORDER BY [Nom Complet]"_s);
        break;
    case data::Localité: // maps have negative types
        append(found, u"SELECT [ID Localités],[Nom Entier],[Localité] FROM [Localités]"_s
                          + condition(u"[Localité]"_s, typed) + u" AND [ID Type]>=0 ORDER BY [Localité]"_s);
        for (ReferenceMatch& match : found) {
            if (match.name.isEmpty())
                match.name = match.detail;
            match.detail.clear();
        }
        break;
    case data::Botaniste:
        append(found, u"SELECT [ID Collecteurs],[Collecteur],[Initiales] FROM Collecteurs"_s
                          + condition(u"[Collecteur]"_s, typed) + u" ORDER BY [Collecteur]"_s);
        if (found.size() < most && !typed.trimmed().isEmpty())
            append(found, u"SELECT [ID Collecteurs],[Collecteur],[Initiales] FROM Collecteurs"_s
                              + condition(u"[Initiales]"_s, typed) + u" ORDER BY [Collecteur]"_s);
        break;
    default:
        break;
    }
    return found;
}

QList<qint32> ReferenceSearch::records(const QString& module, qint32 individu) const
{
    QList<qint32> ids;
    if (individu <= 0 || !m_database.schema().table(module))
        return ids;
    const QString id = nom(u"ID "_s + module);
    const auto rows = m_database.OpenRecordset(u"SELECT "_s + id + u" FROM "_s + nom(module) + u" WHERE [ID Individus]="_s
                                               + QString::number(individu) + u" ORDER BY "_s + id);
    for (; !rows->EOF_(); rows->MoveNext())
        ids << rows->Value(0).toInt();
    return ids;
}

} // namespace editing
