// Names of taxa: shown, rebuilt, synonyms.
#include "reference/Cl_Taxon.h"

#include "jet/SqlText.h"

#include <QLoggingCategory>
#include <QSet>

namespace reference {

using namespace Qt::StringLiterals;
using jet::texte;

namespace {

Q_LOGGING_CATEGORY(namesLog, "herbora.taxons")

} // namespace

QString Cl_Taxon::NomTaxon(qint32 id, int mode) const
{
    if (id == -2)
        return u"< Taxon valide >"_s;
    QString name = u"Indetermineae"_s; // what a missing name has always shown
    id = std::abs(id);
    if (!position(id))
        return name;
    const QString full = text(u"Nom Complet"_s);
    const bool synonym = value(u"ID Valid"_s).isValid();
    switch (mode) {
    case 0: name = full.trimmed(); break;
    case 1: name = text(u"Taxon"_s).trimmed(); break;
    case 6: name = TaxonsSynonymes(id, u"\r\n"_s); break;
    default:
        name = full + u' ' + text(u"Auteurs"_s);
        if (mode == 3 && synonym)
            name += u" = "_s + NomTaxon(IDValid(id, false), 2);
        else if (mode == 4 && synonym)
            name += u" = "_s + NomTaxon(IDValid(id, true), 2);
        else if (mode == 5 && synonym)
            name += u" = "_s + NomTaxon(IDValid(id, false), 3);
        break;
    }
    return name.trimmed();
}

/// A family is never part of a full name; species come before their infraspecific taxa, whose
/// names begin with theirs.
void Cl_Taxon::RefrsNomComplet(qint32 id)
{
    const QString stamp = u", [Taxons].[DateModify] = "_s + texte(now());
    const QString u1 = u"UPDATE [Taxons] SET [Nom Complet]=[Taxon] "_s + stamp;
    const QString u2 = u"UPDATE Taxons INNER JOIN Taxons AS Taxons_1 ON Taxons.[ID Genre] = Taxons_1.[ID Taxons]  SET Taxons.[Nom Complet] = [Taxons_1].[Taxon] &\" \" &[Taxons].[Taxon]"_s
                       + stamp;
    const QString u3 = u"UPDATE Taxons INNER JOIN Taxons AS Taxons_1 ON Taxons.[ID Espèce] = Taxons_1.[ID Taxons]  SET Taxons.[Nom Complet] = [Taxons_1].[Nom Complet] &\" \" &[Taxons].[Taxon]"_s
                       + stamp;
    const QString number = QString::number(id);
    QStringList statements;
    switch (OrdreTaxon(id)) {
    case 1:
        statements = {u1 + u" WHERE [ID Taxons]="_s + number};
        break;
    case 2:
        // In the third the blank before WHERE is missing: the text before it ends with a quote.
        statements = {u1 + u" WHERE [ID Taxons]="_s + number,
                      u2 + u" WHERE Taxons.[ID Taxons]=Taxons.[ID Espèce] And Taxons.[ID Genre]="_s + number,
                      u3 + u"WHERE Taxons.[ID Taxons]=[Taxons].[ID Infra] AND Taxons.[ID Genre]="_s + number};
        break;
    case 3:
        statements = {u2 + u" WHERE Taxons.[ID Taxons]="_s + number,
                      u3 + u" WHERE Taxons.[ID Taxons]=Taxons.[ID Infra] AND Taxons.[ID Espèce]="_s + number};
        break;
    case 4:
        statements = {u3 + u" WHERE Taxons.[ID Taxons]="_s + number};
        break;
    default:
        break;
    }
    for (const QString& statement : std::as_const(statements))
        m_context.database.Execute(statement);
}

QList<qint32> Cl_Taxon::IDSynonymes(qint32 id) const
{
    QList<qint32> all;
    QSet<qint32> seen{id};
    QString statement =
        u"SELECT Taxons.[ID Taxons] From Taxons WHERE Taxons.[ID Valid]="_s + QString::number(id);
    while (!statement.isEmpty()) {
        QList<qint32> pass;
        const auto rows = m_context.database.OpenRecordset(statement);
        for (; !rows->EOF_(); rows->MoveNext()) {
            const qint32 found = rows->Value(0).toInt();
            if (!seen.contains(found)) // a ring of synonyms ends here
                pass << found;
            seen << found;
        }
        all += pass;
        statement = pass.isEmpty() ? QString()
                                   : u"SELECT Taxons.[ID Taxons] From Taxons WHERE Taxons.[ID Valid] IN ("_s
                                         + jet::liste(pass) + u')';
    }
    return all;
}

QString Cl_Taxon::SQLSynonymes(qint32 id) const
{
    try {
        const QList<qint32> ids = IDSynonymes(id);
        if (ids.isEmpty())
            return {};
        return u"SELECT Taxons.[Nom Complet] &\" \" &Taxons.Auteurs as Taxon, Taxons.DateSynonymie,Taxons.AuteurSynonymie, Taxons.[ID Taxons] as _IDTaxon From Taxons "
               "WHERE Taxons.[ID Taxons] IN ("_s
               + jet::liste(ids) + u')';
    } catch (const jet::Error& error) {
        qCWarning(namesLog).noquote() << "synonyms" << error.number() << error.description();
        return {};
    }
}

QString Cl_Taxon::TaxonsSynonymes(qint32 id, const QString& separator) const
{
    const QString statement = SQLSynonymes(id);
    if (statement.isEmpty())
        return {};
    try {
        QStringList names;
        const auto rows = m_context.database.OpenRecordset(statement);
        for (; !rows->EOF_(); rows->MoveNext())
            names << rows->Value(u"Taxon").toString();
        return names.join(separator);
    } catch (const jet::Error& error) {
        qCWarning(namesLog).noquote() << "synonyms" << error.number() << error.description();
        return {};
    }
}

} // namespace reference
