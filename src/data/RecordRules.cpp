#include "data/RecordRules.h"

#include "data/StatementTemplate.h"
#include "jet/Recordset.h"
#include "jet/SqlText.h"

#include <QLoggingCategory>

namespace data {

using namespace Qt::StringLiterals;
using jet::nom;
using jet::texte;

namespace {

Q_LOGGING_CATEGORY(rulesLog, "herbora.records")

/// Identifiers of one statement; longer lists are cut into pieces.
constexpr qsizetype pieceSize = 500;

template<typename T, typename Work>
void inPieces(const QList<T>& list, Work work)
{
    for (qsizetype from = 0; from < list.size(); from += pieceSize)
        work(list.mid(from, pieceSize));
}

QString quotedKeys(const QList<qint32>& ids, const QString& module)
{
    QStringList keys;
    for (const qint32 id : ids)
        keys << texte(parentKey(id, module));
    return keys.join(u',');
}

void appendIds(jet::Database& database, const QString& statement, QList<qint32>& ids)
{
    const auto rows = database.OpenRecordset(statement);
    for (; !rows->EOF_(); rows->MoveNext())
        ids << rows->Value(0).toInt();
}

/// A grid over a join gives a record once for each of its rows.
QList<qint32> withoutRepetitions(const QList<qint32>& ids)
{
    QList<qint32> once;
    QSet<qint32> seen;
    for (const qint32 id : ids) {
        if (!seen.contains(id))
            once << id;
        seen.insert(id);
    }
    return once;
}

qint64 countOf(const QMap<QString, QList<qint32>>& keys)
{
    qint64 count = 0;
    for (const QList<qint32>& list : keys)
        count += list.size();
    return count;
}

QString records(qint64 count)
{
    return QString::number(count) + u" enregistrement(s)"_s;
}

} // namespace

QString parentKey(qint32 id, const QString& module)
{
    return QString::number(id) + u'-' + module;
}

RecordRules::RecordRules(jet::Database& database, const Dictionary& dictionary,
                         const platform::Clock& clock, platform::Dialogues& dialogues)
    : m_database(database), m_dictionary(dictionary), m_clock(clock), m_dialogues(dialogues)
{
}

const ModuleRecord* RecordRules::savable(const QString& module) const
{
    const ModuleRecord* record = m_dictionary.module(module);
    const bool served = !isConnected || isConnected(module);
    return record && served && m_database.schema().table(module) ? record : nullptr;
}

void RecordRules::setModuleLocked(const QString& module, bool locked)
{
    m_lockedModules.removeAll(module);
    if (locked)
        m_lockedModules << module;
}

bool RecordRules::isModuleLocked(const QString& module) const
{
    return m_lockedModules.contains(module, Qt::CaseInsensitive);
}

bool RecordRules::isLocked(const QString& module, qint32 id) const
{
    if (id <= 0)
        return false;
    const auto rows = m_database.OpenRecordset(u"SELECT [Locked] FROM "_s + nom(module) + u" WHERE "_s
                                               + nom(u"ID "_s + module) + u"="_s + QString::number(id));
    return !rows->EOF_() && rows->Value(0).toBool();
}

void RecordRules::check(const QString& module, const RecordValues& record) const
{
    if (const ModuleRecord* definition = m_dictionary.module(module)) {
        for (const FieldRecord& field : definition->fields) {
            const auto value =
                std::find_if(record.values.begin(), record.values.end(),
                             [&](const auto& v) { return jet::sameName(v.first, field.column); });
            const bool given = value != record.values.end();
            if (field.required() && (given ? !value->second.isValid() : record.id <= 0))
                throw RecordRefused(u"Valeur Nulle non autorisée pour ce champ"_s);
        }
    }
    if (!savable(module))
        throw RecordRefused(u"Erreur Système: ce n'est pas un module sauvegardable"_s);
    if (isModuleLocked(module))
        throw RecordRefused(u"Erreur d'accès: le Module est actuellement verrouillé"_s);
    if (isLocked(module, record.id))
        throw RecordRefused(u"Erreur d'accès: l'enregistrement est actuellement verrouillé"_s);
    if (!record.valid)
        throw RecordRefused(u"Erreur d'écriture: L'enregistrement n'est pas valide. Impossible d'écrire les données dans la base "_s);
}

qint32 RecordRules::save(const QString& module, const RecordValues& record)
{
    check(module, record);
    try {
        jet::Operation operation(m_database, u"Enregistrement dans "_s + module);
        const QString now = platform::stamp(m_clock);
        const auto rows = m_database.OpenRecordset(module, jet::RecordsetType::Table);
        rows->SetIndex(u"PrimaryKey"_s);
        if (record.id > 0) {
            rows->Seek(u"="_s, {record.id});
            if (rows->NoMatch())
                jet::fail(3167);
            rows->Edit();
        } else {
            rows->AddNew();
            rows->SetValue(u"DateCreate", now);
        }
        for (const auto& [column, value] : record.values)
            rows->SetValue(column, value);
        if (module != moduleIndividus && record.individu > 0)
            rows->SetValue(u"ID Individus", record.individu);
        rows->SetValue(u"KeyParent", record.keyParent.isEmpty() ? QVariant() : QVariant(record.keyParent));
        rows->SetValue(u"DateModify", now);
        rows->Update();
        rows->MoveToLastModified();
        const qint32 id = rows->Value(u"ID "_s + module).toInt();
        rows->Close();
        operation.commit();
        return id;
    } catch (const jet::Error& error) {
        qCWarning(rulesLog).noquote() << module << error.number() << error.description();
        throw RecordRefused(u"Erreur d'écriture: La sauvegarde a échoué ! Le serveur a bloqué la transaction"_s
                            + u'\n' + error.description());
    }
}

void RecordRules::setLocked(const QString& module, qint32 id, bool locked)
{
    m_database.Execute(u"UPDATE "_s + nom(module) + u" SET [Locked]="_s + (locked ? u"True"_s : u"False"_s)
                       + u" WHERE "_s + nom(u"ID "_s + module) + u"="_s + QString::number(id));
}

/// Records under the given ones: for individuals all they own, else along the parent keys.
RecordRules::Keys RecordRules::descendants(const QString& module, const QList<qint32>& ids) const
{
    return module == moduleIndividus ? owned(ids) : below(module, ids);
}

RecordRules::Keys RecordRules::owned(const QList<qint32>& individuals) const
{
    Keys found;
    for (const ModuleRecord& other : m_dictionary.modules()) {
        if (other.isIndividus())
            continue;
        inPieces(individuals, [&](const QList<qint32>& piece) {
            appendIds(m_database,
                      u"SELECT "_s + nom(other.idColumn()) + u" FROM "_s + nom(other.name)
                          + u" WHERE [ID Individus] IN ("_s + jet::liste(piece) + u')',
                      found[other.name]);
        });
    }
    return found;
}

RecordRules::Keys RecordRules::below(const QString& module, const QList<qint32>& ids) const
{
    Keys found;
    QHash<QString, QSet<qint32>> seen; // a ring of parents (made by hand) ends
    seen[module] = QSet<qint32>(ids.begin(), ids.end());
    Keys level{{module, ids}};
    while (!level.isEmpty()) {
        Keys next;
        for (auto parent = level.cbegin(); parent != level.cend(); ++parent) {
            for (const ModuleRecord& child : m_dictionary.modules()) {
                QList<qint32> children = childrenOf(parent.key(), parent.value(), child);
                QSet<qint32>& known = seen[child.name];
                children.removeIf([&](qint32 id) { return known.contains(id); });
                if (children.isEmpty())
                    continue;
                known.unite(QSet<qint32>(children.begin(), children.end()));
                found[child.name] += children;
                next[child.name] += children;
            }
        }
        level = next;
    }
    return found;
}

QList<qint32> RecordRules::childrenOf(const QString& parent, const QList<qint32>& ids, const ModuleRecord& child) const
{
    QList<qint32> children;
    inPieces(ids, [&](const QList<qint32>& piece) {
        appendIds(m_database,
                  u"SELECT "_s + nom(child.idColumn()) + u" FROM "_s + nom(child.name) + u" WHERE [KeyParent] IN ("_s
                      + quotedKeys(piece, parent) + u')',
                  children);
    });
    return children;
}

bool RecordRules::askDeletion(const QString& module, const QList<qint32>& ids, qint64 children) const
{
    QString text =
        ids.size() == 1
            ? u"Voulez-vous supprimer définitivement l'enregistrement < "_s + module + u" - ID"_s
                  + QString::number(ids.first()) + u" > ?"_s
            : u"Voulez-vous supprimer définitivement les "_s + records(ids.size())
                  + u" du module < "_s + module + u" > ?"_s;
    if (children > 0)
        text += u"\nAinsi que les "_s + records(children) + u" fils"_s;
    return m_dialogues.confirm(text, caption, platform::BoxIcon::Question, platform::Answer::No);
}

/// Deletes the records of every module whose parent is among those gone, and what is under them.
///
/// The condition on the keys of the records just deleted comes on top of the test that the parent is no
/// more: so the time grows with what is deleted, and a record that had lost its parent before is left to the
/// optimise command, which detaches it instead of deleting it.
int RecordRules::deleteOrphans(const QString& parent, const QList<qint32>& gone, QStringList& report)
{
    int total = 0;
    for (const ModuleRecord& child : m_dictionary.modules()) {
        QList<qint32> ids;
        int deleted = 0;
        inPieces(gone, [&](const QList<qint32>& piece) {
            const QString among = u" AND [tmodule].[KeyParent] IN ("_s + quotedKeys(piece, parent) + u')';
            const QList<QPair<QString, QString>> words{{u"tmodule"_s, child.name}};
            appendIds(m_database,
                      filled(u"SELECT [ID tmodule] FROM [tmodule] WHERE True"_s + among, words), ids);
            m_database.Execute(
                filled(u"UPDATE [tmodule] LEFT JOIN ["_s + parent
                           + u"] AS HERBORA ON val([tmodule].[KeyParent]) = [HERBORA].[ID "_s + parent + u"]"_s
                           + u" SET [tmodule].[KeyParent]="_s + texte(u"DELETED"_s)
                           + u" WHERE [tmodule].KeyParent Like "_s + texte(u"*-"_s + parent)
                           + u" AND [HERBORA].[ID "_s + parent + u"] IS NULL "_s
                           + u" AND [tmodule].[KeyParent] &'' <>"_s + texte(u"DELETED"_s) + among,
                       words));
            deleted += m_database.Execute(
                filled(u"DELETE * FROM [tmodule] WHERE [tmodule].[KeyParent]="_s + texte(u"DELETED"_s),
                       words));
        });
        if (deleted == 0)
            continue;
        report << u"--> "_s + records(deleted) + u" du module < "_s + child.name + u" >"_s;
        total += deleted + deleteOrphans(child.name, ids, report);
    }
    return total;
}

int RecordRules::deleteNow(const QString& module, const QList<qint32>& ids, const Keys& children,
                           QStringList& report)
{
    int deleted = 0;
    inPieces(ids, [&](const QList<qint32>& piece) {
        deleted += m_database.Execute(u"DELETE * FROM "_s + nom(module) + u" WHERE [ID "_s + module
                                      + u"] IN ("_s + jet::liste(piece) + u")"
                                        " AND [Locked]=False"_s);
    });
    report << u"--> "_s + records(deleted) + u" supprimé(s) "_s;
    report << u"Suppression attendue:"_s + records(countOf(children)) + u" fils"_s;
    const int sons = module == moduleIndividus ? reportOwned(children, report)
                                               : deleteOrphans(module, goneOf(module, ids), report);
    report << records(sons) + u" fils supprimés"_s << records(deleted + sons) + u" supprimés au Total"_s;
    return deleted + sons;
}

/// The relation has taken the records of the individuals along, whatever their parents: nothing is left to delete,
/// and what another individual owns stays.
int RecordRules::reportOwned(const Keys& children, QStringList& report) const
{
    int sons = 0;
    for (const ModuleRecord& module : m_dictionary.modules()) {
        const qsizetype taken = goneOf(module.name, children.value(module.name)).size();
        if (taken > 0)
            report << u"--> "_s + records(taken) + u" du module < "_s + module.name + u" >"_s;
        sons += int(taken);
    }
    return sons;
}

/// Those of the records that are there no more.
QList<qint32> RecordRules::goneOf(const QString& module, const QList<qint32>& ids) const
{
    QSet<qint32> kept;
    inPieces(ids, [&](const QList<qint32>& piece) {
        QList<qint32> there;
        appendIds(m_database,
                  u"SELECT "_s + nom(u"ID "_s + module) + u" FROM "_s + nom(module) + u" WHERE "_s
                      + nom(u"ID "_s + module) + u" IN ("_s + jet::liste(piece) + u')',
                  there);
        kept.unite(QSet<qint32>(there.begin(), there.end()));
    });
    QList<qint32> gone = ids;
    gone.removeIf([&](qint32 id) { return kept.contains(id); });
    return gone;
}

QString RecordRules::deleteRecords(const QString& module, const QList<qint32>& selected)
{
    const QList<qint32> ids = withoutRepetitions(selected);
    if (ids.isEmpty() || !savable(module))
        return {};
    QStringList report{u"Suppression attendue : "_s + records(ids.size()) + u" du Module < "_s + module
                       + u" >"_s};
    try {
        const Keys children = descendants(module, ids);
        if (!askDeletion(module, ids, countOf(children)))
            return {};
        jet::Operation operation(m_database, u"Suppression dans "_s + module);
        deleteNow(module, ids, children, report);
        Keys deleted = children;
        deleted[module] += ids;
        clearCurrentLinks(deleted);
        operation.commit();
    } catch (const jet::Error& error) {
        qCWarning(rulesLog).noquote() << "deletion" << module << error.number() << error.description();
        m_dialogues.tell(u"La suppression a échoué, aucun enregistrement n'a été supprimé :\n"_s
                             + error.description(),
                         caption, platform::BoxIcon::Stop);
        return {};
    }
    const QString text = report.join(u'\n');
    m_dialogues.tell(text, caption + u": Rapport de Suppression"_s);
    return text;
}

void RecordRules::clearCurrentLinks(const Keys& gone)
{
    const jet::TableDef* individus = m_database.schema().table(moduleIndividus);
    for (auto link = gone.cbegin(); link != gone.cend(); ++link) {
        const QString column = u"ID "_s + link.key();
        if (link.key() == moduleIndividus || !individus || !individus->field(column))
            continue;
        const QList<QPair<QString, QString>> words{{u"tmodule"_s, link.key()}};
        inPieces(link.value(), [&](const QList<qint32>& piece) {
            m_database.Execute(
                filled(u"UPDATE [Individus] LEFT JOIN [tmodule] ON [Individus].[ID tmodule] = [tmodule].[ID tmodule] "
                       " SET [Individus].[ID tmodule] = Null,"
                       " [Individus].[DateModify]="_s,
                       words)
                + texte(platform::stamp(m_clock))
                + filled(u" WHERE [tmodule].[ID tmodule] Is Null"
                         " AND [Individus].[ID tmodule] Is Not Null"_s,
                         words)
                + u" AND [Individus]."_s + nom(column) + u" IN ("_s + jet::liste(piece) + u')');
        });
    }
}

} // namespace data
