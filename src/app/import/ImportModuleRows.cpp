// Rows as records of a module.
#include "app/Session.h"
#include "app/import/ImportRows.h"
#include "data/FieldType.h"
#include "data/RecordRules.h"
#include "data/ReferenceTypes.h"
#include "jet/Recordset.h"
#include "jet/SqlText.h"
#include "jet/text/TextOrder.h"

#include <map>

namespace app {

using namespace Qt::StringLiterals;

namespace {

const QString individus = data::moduleIndividus;
const QString determinations = data::moduleDéterminations;
constexpr qint64 pageOfRows = 4096;

class ImportedModuleRows : public ImportRows {
public:
    explicit ImportedModuleRows(ImportJob& job)
        : ImportRows(job), m_module(job.plan.target.name), m_database(job.session.database()),
          m_rules(m_database, job.session.dictionary(), job.session.surroundings().clock, m_quiet)
    {
        m_stamp = platform::stamp(job.session.surroundings().clock);
        m_rules.isConnected = [&session = job.session](const QString& module) { return session.addins().item(module) != nullptr; };
        m_linked = m_database.schema().table(individus) && m_database.schema().table(individus)->field(u"ID "_s + determinations);
    }

    void take(const QStringList& cells) override
    {
        data::RecordValues record{.id = m_job.plan.update ? m_job.identifier(cells, importId) : 0};
        if (record.id > 0)
            standing(record);
        else
            owner(cells, record);
        data::RecordValues below;
        for (const ImportColumn& column : m_job.columns)
            read(column, cells, isSecond(column.field) ? below : record);
        if (record.id <= 0)
            complete(record);
        write(record, below);
    }

private:
    bool isSecond(const ImportField& field) const { return !field.module.isEmpty() && field.module != m_module; }

    /// What a record that is changed keeps: its individual and what it stands under.
    void standing(data::RecordValues& record)
    {
        if (!m_standing) {
            m_standing = m_database.OpenRecordset(m_module, jet::RecordsetType::Table);
            m_standing->SetIndex(u"PrimaryKey"_s);
        }
        m_standing->Seek(u"="_s, {record.id});
        if (m_standing->NoMatch())
            throw RowRefused{u"Aucun enregistrement n'a cet identifiant"_s, QString::number(record.id)};
        if (m_module != individus)
            record.individu = m_standing->Value(u"ID Individus").toInt();
        record.keyParent = m_standing->Value(u"KeyParent").toString();
    }

    void owner(const QStringList& cells, data::RecordValues& record)
    {
        if (m_module == individus)
            return;
        record.individu = m_job.identifier(cells, importIndividu);
        const QString number = ImportJob::cell(cells, m_job.column(importNuméro));
        if (record.individu > 0 && !isIndividual(record.individu))
            throw RowRefused{u"Aucun individu n'a cet identifiant"_s, QString::number(record.individu)};
        if (record.individu == 0)
            record.individu = individualOf(number);
        record.keyParent = data::parentKey(record.individu, individus);
    }

    bool isIndividual(qint32 id)
    {
        if (!m_individuals) {
            m_individuals = m_database.OpenRecordset(individus, jet::RecordsetType::Table);
            m_individuals->SetIndex(u"PrimaryKey"_s);
        }
        m_individuals->Seek(u"="_s, {id});
        return !m_individuals->NoMatch();
    }

    bool isRecord(const QString& module, qint32 id)
    {
        if (!m_database.schema().table(module))
            return false;
        const auto rows = m_database.OpenRecordset(module, jet::RecordsetType::Table);
        rows->SetIndex(u"PrimaryKey"_s);
        rows->Seek(u"="_s, {id});
        return !rows->NoMatch();
    }

    /// By its number, which the file does not index: all are read once, their keys kept as hashes.
    qint32 individualOf(const QString& number)
    {
        if (number.isEmpty())
            throw RowRefused{u"La ligne ne dit pas de quel individu il s'agit"_s, {}};
        if (!m_numbersRead)
            readNumbers();
        const qint32 id = m_numbers.value(qHash(jet::text::key(number), 0));
        if (id == 0)
            throw RowRefused{u"Aucun individu n'a ce numéro"_s, number};
        if (id < 0)
            throw RowRefused{u"Plusieurs individus ont ce numéro"_s, number};
        return id;
    }

    void readNumbers()
    {
        m_numbersRead = true;
        const auto rows = m_database.OpenRecordset(u"SELECT [ID Individus],[Numéro] FROM [Individus] WHERE [Numéro] IS NOT NULL"_s,
                                                   jet::RecordsetType::Snapshot);
        while (!rows->EOF_()) {
            for (const auto& values : rows->GetRows(pageOfRows)) {
                qint32& id = m_numbers[qHash(jet::text::key(values[1].toString()), 0)];
                id = id == 0 ? values[0].toInt() : -1;
            }
        }
    }

    void read(const ImportColumn& column, const QStringList& cells, data::RecordValues& record)
    {
        const ImportField& field = column.field;
        if (field.module.isEmpty()) // what says which record is meant
            return;
        const QString cell = cells.value(column.position);
        QVariant value = column.values->read(cell);
        if (value.isValid() && data::isReference(field.type)) {
            const std::optional<qint32> id = m_job.resolve(field.type, value.toString(), field.caption);
            value = id ? QVariant(*id) : QVariant();
        }
        if (value.isValid() && field.type == data::LienCourant && !isRecord(field.field.provider, value.toInt()))
            throw RowRefused{field.caption + u" : aucun enregistrement n'a cet identifiant"_s, cell};
        if (!value.isValid() && (record.id <= 0 || !m_job.plan.emptyErases || !cell.trimmed().isEmpty()))
            return;
        if (!value.isValid() && field.field.required())
            throw RowRefused{field.caption + u" : valeur obligatoire absente"_s, {}};
        record.values.append({field.column, value});
    }

    void complete(const data::RecordValues& record) const
    {
        if (record.values.isEmpty())
            throw RowRefused{u"Aucune valeur à enregistrer"_s, {}};
        for (const ImportField& field : m_job.plan.target.fields) {
            const bool given = std::any_of(record.values.begin(), record.values.end(), [&](const auto& v) { return v.first == field.column; });
            if (field.required && !given)
                throw RowRefused{field.caption + u" : valeur obligatoire absente"_s, {}};
        }
    }

    void write(const data::RecordValues& record, data::RecordValues& below)
    {
        if (below.values.isEmpty()) {
            save(m_module, record);
            return count(record);
        }
        if (record.id > 0)
            throw RowRefused{u"Une détermination ne peut être donnée qu'à un individu ajouté"_s, {}};
        jet::Operation whole(m_database, u"Ligne d'importation"_s);
        below.individu = save(m_module, record);
        below.keyParent = data::parentKey(below.individu, m_module);
        const qint32 id = save(determinations, below);
        if (m_linked)
            save(individus, {.id = below.individu, .values = {{u"ID "_s + determinations, id}}});
        whole.commit();
        count(record);
        ++m_job.report.under;
    }

    void count(const data::RecordValues& record)
    {
        ++(record.id > 0 ? m_job.report.changed : m_job.report.added);
    }

    /// As RecordRules::save, but with one set of rows for all records, and errors of the disk are not taken for those of a
    /// record.
    qint32 save(const QString& module, const data::RecordValues& record)
    {
        try {
            m_rules.check(module, record);
        } catch (const data::RecordRefused& refused) {
            throw RowRefused{refused.text(), {}};
        }
        std::unique_ptr<jet::Recordset>& rows = m_writers[module];
        if (!rows) {
            rows = m_database.OpenRecordset(module, jet::RecordsetType::Table);
            rows->SetIndex(u"PrimaryKey"_s);
        }
        begin(*rows, record.id);
        try {
            for (const auto& [column, value] : record.values)
                rows->SetValue(column, value);
            if (module != individus && record.individu > 0)
                rows->SetValue(u"ID Individus", record.individu);
            rows->SetValue(u"KeyParent", record.keyParent.isEmpty() ? QVariant() : QVariant(record.keyParent));
            rows->SetValue(u"DateModify", m_stamp);
            rows->Update();
        } catch (const jet::Error&) {
            if (rows->Editing())
                rows->CancelUpdate();
            throw;
        }
        if (record.id > 0)
            return record.id;
        rows->MoveToLastModified();
        return qint32(rows->RowId());
    }

    void begin(jet::Recordset& rows, qint32 id)
    {
        if (id <= 0) {
            rows.AddNew();
            rows.SetValue(u"DateCreate", m_stamp);
            return;
        }
        rows.Seek(u"="_s, {id});
        if (rows.NoMatch())
            jet::fail(3167);
        rows.Edit();
    }

    QString m_module;
    jet::Database& m_database;
    QuietDialogues m_quiet;
    data::RecordRules m_rules;
    QString m_stamp; ///< The same for all: they come at once.
    std::map<QString, std::unique_ptr<jet::Recordset>> m_writers;
    std::unique_ptr<jet::Recordset> m_standing;
    std::unique_ptr<jet::Recordset> m_individuals;
    QHash<quint64, qint32> m_numbers; ///< -1 where several have it.
    bool m_numbersRead = false;
    bool m_linked = false;
};

} // namespace

std::unique_ptr<ImportRows> makeModuleRows(ImportJob& job)
{
    return std::make_unique<ImportedModuleRows>(job);
}

} // namespace app
