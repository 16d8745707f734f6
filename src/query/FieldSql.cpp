// What a field is in a statement: its expression, its table, its joins.
#include "query/Structure.h"

#include "data/FieldType.h"
#include "jet/SqlText.h"
#include "query/QueryLog.h"


namespace query {

using namespace Qt::StringLiterals;
using jet::nom;

namespace {


const QString base = u"[@@BASEHB@@]"_s;

/// Gives a neutral text for a name that cannot be written; the failure is logged.
template<typename Text>
Text trapped(const Text& neutral, const std::function<Text()>& work)
{
    try {
        return work();
    } catch (const jet::Error& error) {
        qCWarning(queryLog).noquote() << error.description();
        return neutral;
    }
}

/// The number before "-key".
QString numberOf(const QString& key)
{
    return key.section(u'-', 0, 0).trimmed();
}

bool isPlainWord(const QString& name)
{
    return std::all_of(name.begin(), name.end(), [](QChar c) { return c.isLetterOrNumber() || c == u'_'; });
}

/// Counts the records of a module under each individual.
QString countStatement(const QString& module)
{
    // The root is counted without a join: a table cannot be joined to itself under one name.
    if (module.compare(data::moduleIndividus, Qt::CaseInsensitive) == 0)
        return u"SELECT Individus.[ID Individus], Count(Individus.[ID Individus]) AS [N]"
               " FROM Individus"
               " GROUP BY Individus.[ID Individus]"_s;
    QString text = u"SELECT Individus.[ID Individus], Count(Images.[ID Images]) AS [N]"
                   " FROM Individus LEFT JOIN Images ON Individus.[ID Individus] = Images.[ID Individus]"
                   " GROUP BY Individus.[ID Individus]"_s;
    if (!isPlainWord(module)) { // a table name with blanks stands in brackets
        text.replace(u"Images."_s, u"[Images]."_s);
        text.replace(u"JOIN Images "_s, u"JOIN [Images] "_s);
    }
    return text.replace(u"Images"_s, module);
}

} // namespace

QString Structure::alias(const Node& node) const
{
    const Node* link = node.through();
    return nom(link ? node.module + numberOf(link->key) : node.module);
}

QString Structure::identifier(const Node& node) const
{
    const QString column = nom(u"ID "_s + node.module);
    return node.through() ? alias(node) + u'.' + column : column;
}

QString Structure::expression(const Node& node) const
{
    if (node.isModule())
        return alias(node) + u'.' + nom(u"ID "_s + node.module);
    const QString champ = node.champ();
    if (champ == fieldCount)
        return nom(u"N_"_s + node.module) + u".[N]"_s;
    if (champ == fieldRank)
        return QString(u"IIf([@@BASEHB@@].[ID Genre] Is Null,'Famille',"
                       "IIf([@@BASEHB@@].[ID Espèce] Is Null,'Genre',"
                       "IIf([@@BASEHB@@].[ID Infra] Is Null,'Espèce','Taxon Infra')))"_s)
            .replace(base, alias(node));
    if (champ == fieldValid)
        return QString(u"ISNULL([@@BASEHB@@].[ID Valid])"_s).replace(base, alias(node));
    return alias(node) + u'.' + nom(champ);
}

QString Structure::ChampsFromPath(const QString& path) const
{
    const Node* found = node(path);
    return found ? trapped<QString>({}, [&] { return expression(*found); }) : QString();
}

QString Structure::Table(const QString& path, int mode) const
{
    const Node* found = node(path);
    if (!found)
        return {};
    return trapped<QString>({}, [&]() -> QString {
        const QString plain = nom(found->module);
        const QString other = alias(*found);
        switch (mode) {
        case 0: return plain;
        case 1: return other;
        case 2: return other == plain ? plain : plain + u" AS "_s + other;
        case 3: return identifier(*found);
        default: return {};
        }
    });
}

QString Structure::rootTable() const
{
    return trapped<QString>({}, [&] { return nom(m_root); });
}

QString Structure::ensureCountQuery(const QString& module) const
{
    const QString name = u"N_"_s + module;
    try {
        const jet::QueryDef* stored = m_database.schema().query(name);
        if (!stored || !stored->DateCreated.isValid()) {
            if (stored)
                m_database.DeleteQueryDef(name);
            m_database.CreateQueryDef(name, countStatement(module));
        }
    } catch (const jet::Error& error) {
        qCWarning(queryLog).noquote() << name << error.description();
    }
    return name;
}

/// The record to which a link field leads: its own identifier equals the link column of the table that holds the
/// field, each under its alias, so that two links to one table stay apart.
QString Structure::linkJoin(const Node& link) const
{
    const Node& target = *link.children.front();
    const QString declared = nom(target.module) + u" AS "_s + alias(target);
    return declared + u" ON "_s + alias(link) + u'.' + nom(link.champ()) + u'=' + identifier(target) + u')';
}

QStringList Structure::joins(const QString& path, bool withChild) const
{
    const Node* found = node(path);
    if (!found)
        return {};
    const bool region = found->field && found->ctype() == data::Localité && found->field->Operateur() == u"<";
    if ((region || withChild) && !found->children.empty() && found->field)
        found = found->children.front().get();
    return trapped<QStringList>({}, [&] {
        const QString root = rootTable();
        const auto underRoot = [&](const QString& table) {
            return table + u" ON "_s + root + u".[ID Individus]="_s + table + u".[ID Individus])"_s;
        };
        if (found->champ() == fieldCount)
            return QStringList{underRoot(nom(ensureCountQuery(found->module)))};
        QStringList pieces;
        for (const Node* at = found; at; at = at->parent) {
            if (at->isModule() && at->parent)
                pieces.prepend(underRoot(nom(at->module)));
            else if (at != found && !at->isModule())
                pieces.prepend(linkJoin(*at));
        }
        return pieces;
    });
}

QString Structure::TablesJoin(const QString& path, bool withChild) const
{
    QString chain;
    for (const QString& piece : joins(path, withChild))
        chain += u" LEFT JOIN "_s + piece;
    return chain.trimmed();
}

QString Structure::fromClause(const QList<QStringList>& joins) const
{
    QStringList pieces{rootTable()};
    for (const QStringList& chain : joins) {
        for (const QString& piece : chain) {
            if (!pieces.contains(piece, Qt::CaseInsensitive))
                pieces << piece;
        }
    }
    return u"FROM "_s + QString(pieces.size() - 1, u'(') + pieces.join(u" LEFT JOIN "_s);
}

} // namespace query
