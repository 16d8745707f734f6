#include "jet/access/Transfer.h"

#include "jet/Compile.h"
#include "jet/TableSql.h"
#include "jet/Triggers.h"

#include <QMap>
#include <limits>

namespace jet::access {

using namespace Qt::StringLiterals;

namespace {

constexpr int rowsBetweenCalls = 2000;

/// Errors of the new file itself, which end the whole: full disk, cancelled, no rights, not enough memory.
bool endsAll(const Error& error)
{
    static const QList<int> numbers{7, 3026, 3027, 3034, 3043, 3049, 3051, 3059};
    return numbers.contains(error.number());
}

/// Runs it; an error about what is transferred becomes a remark.
bool attempt(QStringList& remarks, const QString& what, const std::function<void()>& work)
{
    try {
        work();
        return true;
    } catch (const Error& error) {
        if (endsAll(error))
            throw;
        remarks += what + u" : "_s + error.description();
        return false;
    }
}

/// One table on its way.
class TableTransfer {
public:
    TableTransfer(AccessFile& from, Database& to, TransferReport& report, const TableEntry& entry)
        : m_from(from), m_to(to), m_report(report), m_source(from.definition(entry))
    {
        m_target = AccessFile::tableDef(from.pages(), m_source, from.propertiesOf(entry.name));
        m_indexes = m_target.Indexes;
        m_target.Indexes.clear();
    }

    void run(const std::function<void(double)>& progress)
    {
        remarkTypes();
        for (Field& field : m_target.Fields)
            keepWhatIsUnderstood(field);
        keepOneCounter();
        m_to.AppendTable(m_target);
        if (!copyRows(progress))
            copyWithoutCounter(progress);
        setCounter();
        compareCounts();
        makeIndexes();
    }

private:
    QString named(const QString& column = {}) const
    {
        return column.isEmpty() ? u"Table « %1 »"_s.arg(m_target.Name)
                                : u"Table « %1 », champ « %2 »"_s.arg(m_target.Name, column);
    }
    void remark(const QString& where, const QString& what) { m_report.remarks += where + u" : "_s + what; }

    void remarkTypes()
    {
        for (const Column& column : m_source.columns) {
            if (column.type == ColumnType::Complex)
                remark(named(column.name), u"les valeurs multiples ou pièces jointes ne sont pas reprises, seul leur "
                                           u"numéro l'est"_s);
            if ((column.type == ColumnType::Numeric && column.precision > 15) || column.type == ColumnType::BigInt)
                remark(named(column.name), u"les nombres de plus de 15 chiffres sont repris comme textes"_s);
            if (column.calculated)
                remark(named(column.name), u"le champ calculé est repris avec ses valeurs, sans sa formule"_s);
        }
    }

    /// Rules and defaults in words that the dialect does not have are left out.
    void keepWhatIsUnderstood(Field& field)
    {
        if (field.AutoIncrement)
            field.DefaultValue.clear(); // Access writes one there that only itself understands
        const auto try_ = [&](QString& text, const QString& what, const std::function<void()>& check) {
            const QString kept = text;
            if (!kept.isEmpty() && !attempt(m_report.remarks, named(field.Name) + u", "_s + what + u" « "_s + kept + u" » laissée"_s, check))
                text.clear();
        };
        try_(field.DefaultValue, u"valeur par défaut"_s, [&] { defaultSql(m_to.store(), field); });
        try_(field.ValidationRule, u"règle de validation"_s, [&] {
            TableDef alone{.Name = m_target.Name, .Fields = m_target.Fields};
            for (Field& other : alone.Fields) {
                if (!sameName(other.Name, field.Name))
                    other.ValidationRule.clear();
            }
            columnRules(alone);
        });
    }

    void keepOneCounter()
    {
        bool known = false;
        for (Field& field : m_target.Fields) {
            if (field.AutoIncrement && known) {
                remark(named(field.Name), u"un seul champ par table se numérote lui-même ; celui-ci ne le fait plus"_s);
                field.AutoIncrement = false;
            }
            known = known || field.AutoIncrement;
        }
    }

    Statement insertion()
    {
        QStringList names, places;
        for (const Field& field : m_target.Fields) {
            names += quoted(field.Name);
            places += u"?"_s;
        }
        return {m_to.store(), u"INSERT INTO %1(%2) VALUES(%3)"_s.arg(quoted(m_target.Name), names.join(u','),
                                                                     places.join(u','))};
    }

    /// The value as the new column takes it.
    QVariant fitted(int column, QVariant value)
    {
        const DataType type = m_target.Fields[column].Type;
        if (value.typeId() != QMetaType::QString)
            return value;
        if (type == DataType::Double)
            return value.toString().toDouble();
        QString text = value.toString();
        if (!text.contains(QChar(u'\0')))
            return value;
        while (text.endsWith(QChar(u'\0')))
            text.chop(1);
        ++m_faults[{column, u"caractères nuls remplacés par des blancs"_s}];
        return text.replace(QChar(u'\0'), u' ');
    }

    /// False when the numbers of the AutoNumber column are not unique.
    bool writeRow(Rows& rows, Statement& statement)
    {
        for (int column = 0; column < int(m_source.columns.size()); ++column) {
            Cell cell = rows.value(column);
            if (!cell.fault.isEmpty())
                ++m_faults[{column, cell.fault + u", laissé vide"_s}];
            if (m_target.Fields[column].AutoIncrement && !cell.value.isValid())
                return false;
            if (m_target.Fields[column].Type == DataType::Boolean && !cell.value.isValid())
                cell.value = false;
            statement.bind(column + 1, fitted(column, cell.value));
        }
        try {
            statement.step();
            ++m_written;
        } catch (const Error& error) {
            if (endsAll(error))
                throw;
            if (error.number() == 3022 || error.number() == 3058)
                return false;
            ++m_faults[{-1, u"enregistrement refusé, "_s + error.description()}];
        }
        statement.reset();
        return true;
    }

    bool copyRows(const std::function<void(double)>& progress)
    {
        m_faults.clear();
        m_written = 0;
        Rows rows(m_from.pages(), m_source);
        // Triggers would ask each row, and refuse what an old file holds against its rules.
        for (const QString& statement : dropColumnRules(m_target.Name))
            m_to.store().run(statement);
        Statement statement = insertion();
        while (rows.next()) {
            if (!writeRow(rows, statement))
                return false;
            if (rows.read() % rowsBetweenCalls == 0)
                progress(rows.done());
        }
        for (const QString& rule : columnRules(m_target))
            m_to.store().run(rule);
        remarkDamage(rows);
        return true;
    }

    void copyWithoutCounter(const std::function<void(double)>& progress)
    {
        for (Field& field : m_target.Fields) {
            if (field.AutoIncrement)
                remark(named(field.Name), u"ses numéros ne sont pas uniques ; le champ est repris comme un entier et ne "
                                          u"se numérote plus lui-même"_s);
            field.AutoIncrement = false;
        }
        m_to.DeleteTable(m_target.Name);
        m_to.AppendTable(m_target);
        copyRows(progress);
    }

    void remarkDamage(const Rows& rows)
    {
        if (rows.mapLost())
            remark(named(), u"la liste de ses pages est perdue ; elles ont été recherchées dans tout le fichier"_s);
        if (rows.damagedPages() > 0)
            remark(named(), u"pages étrangères ou endommagées laissées : %1"_s.arg(rows.damagedPages()));
        if (rows.damagedRows() > 0)
            remark(named(), u"enregistrements illisibles laissés : %1"_s.arg(rows.damagedRows()));
        for (auto fault = m_faults.cbegin(); fault != m_faults.cend(); ++fault) {
            const auto& [column, what] = fault.key();
            remark(column < 0 ? named() : named(m_target.Fields[column].Name), u"%1 (%2 fois)"_s.arg(what, QString::number(fault.value())));
        }
    }

    /// The next number is greater than every one that was given, as in the old file.
    void setCounter()
    {
        const auto counts = [](const Field& field) { return field.AutoIncrement; };
        if (std::none_of(m_target.Fields.begin(), m_target.Fields.end(), counts))
            return;
        if (m_source.counter <= 0 || m_source.counter == std::numeric_limits<qint32>::max())
            return; // random numbers, or an end that a damaged file only pretends
        const QString name = quotedText(m_target.Name);
        m_to.store().run(u"INSERT INTO sqlite_sequence(name,seq) SELECT %1,0 WHERE NOT EXISTS"
                         "(SELECT 1 FROM sqlite_sequence WHERE name=%1);"
                         "UPDATE sqlite_sequence SET seq=max(seq,%2) WHERE name=%1"_s.arg(
                             name, QString::number(m_source.counter)));
    }

    void compareCounts()
    {
        if (m_written == qint64(m_source.rowCount))
            return;
        remark(named(), m_written == 0
                   ? u"aucun enregistrement n'a pu être lu, le fichier en annonce %1 ; il a sans doute été mal fermé"_s.arg(
                         m_source.rowCount)
                   : u"%1 enregistrements repris, le fichier en annonce %2"_s.arg(QString::number(m_written),
                                                                                 QString::number(m_source.rowCount)));
    }

    void makeIndexes()
    {
        int made = 0;
        for (const Index& index : m_indexes) {
            if (attempt(m_report.remarks, named() + u", index « "_s + index.Name + u" » laissé"_s,
                        [&] { m_to.AppendIndex(m_target.Name, index); }))
                ++made;
        }
        m_report.tables.append({m_target.Name, m_written, m_source.rowCount, int(m_target.Fields.size()), made});
    }

    AccessFile& m_from;
    Database& m_to;
    TransferReport& m_report;
    TableDefinition m_source;
    TableDef m_target;
    QList<Index> m_indexes;
    QMap<QPair<int, QString>, qint64> m_faults; ///< By column (-1: the row) and kind.
    qint64 m_written = 0;
};

void transferTables(AccessFile& from, Database& to, TransferReport& report, const TransferProgress& progress)
{
    const QList<TableEntry>& tables = from.tables();
    for (qsizetype i = 0; i < tables.size(); ++i) {
        const QString text = u"Table « %1 »"_s.arg(tables[i].name);
        const auto tell = [&](double part) {
            if (!progress(text, (double(i) + part) / double(tables.size())))
                fail(3059, u"Importation"_s);
        };
        tell(0);
        try {
            TableTransfer(from, to, report, tables[i]).run(tell);
        } catch (const Error& error) {
            // Damage in the old file has the same number as damage in the new one; only the store's own ends all.
            const bool ours = error.number() == 3049 && error.source().isEmpty();
            if (endsAll(error) && !ours)
                throw;
            report.remarks += u"Table « %1 » laissée : %2"_s.arg(tables[i].name, error.description());
            if (to.schema().table(tables[i].name))
                to.DeleteTable(tables[i].name);
        }
    }
}

void transferRelations(AccessFile& from, Database& to, TransferReport& report)
{
    QStringList unenforced;
    for (const Relation& relation : from.relations(&unenforced)) {
        if (attempt(report.remarks, u"Relation « %1 » laissée"_s.arg(relation.Name),
                    [&] { to.AppendRelation(relation); }))
            report.relations += relation.Name;
    }
    for (const QString& name : unenforced)
        report.remarks += u"Relation « %1 » laissée : l'ancien fichier ne l'appliquait pas."_s.arg(name);
}

void transferQueries(AccessFile& from, Database& to, TransferReport& report)
{
    for (StoredQuery query : from.queries()) {
        if (query.problem.isEmpty()) {
            try {
                to.CreateQueryDef(query.name, query.sql);
                report.queries += query.name;
                continue;
            } catch (const Error& error) {
                if (endsAll(error))
                    throw;
                query.problem = error.description();
            }
        }
        report.texts += query;
    }
}

void transferProperties(AccessFile& from, Database& to, TransferReport& report)
{
    const QHash<QString, QVariant> properties = from.databaseProperties();
    for (auto property = properties.cbegin(); property != properties.cend(); ++property)
        attempt(report.remarks, u"Propriété « %1 » laissée"_s.arg(property.key()),
                [&] { to.SetProperty(property.key(), property.value()); });
}

} // namespace

qint64 TransferReport::rows() const
{
    qint64 sum = 0;
    for (const TransferredTable& table : tables)
        sum += table.rows;
    return sum;
}

TransferReport transfer(AccessFile& from, Database& to, const TransferProgress& progress)
{
    TransferReport report;
    Operation operation(to, u"Importation d'une ancienne base"_s);
    report.version = from.pages().versionName();
    transferTables(from, to, report, progress);
    if (!progress(u"Relations et requêtes"_s, 1))
        fail(3059, u"Importation"_s);
    transferRelations(from, to, report);
    transferQueries(from, to, report);
    transferProperties(from, to, report);
    for (const OtherObjects& others : from.otherObjects())
        report.remarks += u"Non repris : %1 %2 (%3)."_s.arg(QString::number(others.names.size()), others.kind,
                                                            others.names.mid(0, 20).join(u", "_s));
    report.remarks = from.remarks() + report.remarks;
    operation.commit();
    return report;
}

} // namespace jet::access
