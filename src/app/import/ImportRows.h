// The rows of a table, written into the project one by one.
#pragma once

#include "app/import/CsvImport.h"
#include "app/import/ImportValues.h"
#include "editing/ProjectRecords.h"

#include <optional>

namespace app {

/// One cell of a row that stands for a field.
struct ImportColumn {
    int position = 0; ///< In the row.
    ImportField field;
    std::unique_ptr<ImportValues> values;
};

/// What the rows of one import share.
class ImportJob {
public:
    ImportJob(Session& session, const ImportPlan& plan);

    Session& session;
    const ImportPlan& plan;
    ImportReport report;
    editing::EditingContext context; ///< Of its own: its records are read on the thread of the import.
    NameMatching names;
    NameCreation creation;
    std::vector<ImportColumn> columns;

    const ImportColumn* column(const QString& key) const;
    /// The text of a cell; empty where the row is shorter, or has no such column.
    static QString cell(const QStringList& cells, const ImportColumn* column);
    /// The row that a name means after what the user decided; nothing for a field that stays empty. Throws RowRefused.
    std::optional<qint32> resolve(int type, const QString& name, const QString& caption);
    /// The identifier in the column of that key; 0 without one. Throws RowRefused.
    qint32 identifier(const QStringList& cells, const QString& key);

private:
    qint32 created(int type, const QString& name, const QString& caption);
};

/// Takes rows into one target. A row is written whole or not at all: RowRefused and jet::Error leave nothing of it.
class ImportRows {
public:
    explicit ImportRows(ImportJob& job) : m_job(job) {}
    virtual ~ImportRows() = default;
    virtual void take(const QStringList& cells) = 0;

    static std::unique_ptr<ImportRows> make(ImportJob& job);

protected:
    ImportJob& m_job;
};

std::unique_ptr<ImportRows> makeModuleRows(ImportJob& job);
std::unique_ptr<ImportRows> makeTaxonRows(ImportJob& job);
std::unique_ptr<ImportRows> makePlaceRows(ImportJob& job);
std::unique_ptr<ImportRows> makePersonRows(ImportJob& job);

} // namespace app
