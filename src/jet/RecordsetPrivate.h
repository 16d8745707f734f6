// Inside of Recordset, shared by its sources.
#pragma once

#include "jet/DatabasePrivate.h"
#include "jet/Recordset.h"
#include "jet/RowSet.h"

namespace jet {

class TableRows;

struct Recordset::Private : CursorHolder {
    Private(Database::Private& owner, const TableDef& table);
    Private(Database::Private& owner, RecordsetType type,
            std::shared_ptr<const CompiledQuery> query);
    ~Private() override;

    void finishReading() override;
    void invalidate() override;

    QStringList
    existence() const;      ///< Statements that tell whether the record ?1 of a source exists.
    RowSet& opened() const; ///< 3420 once closed.
    RowSet& started() const;
    int column(QStringView name) const;        ///< -1 when absent.
    int requireColumn(QStringView name) const; ///< 3265.
    QVariant value(int column) const;

    // --- RecordsetEdit.cpp
    enum class Mode { None, Adding, Editing };
    /// What was given to SetValue, by column. `order` keeps the columns in the order given, so
    /// that a loop over records finds its prepared statement again.
    struct Draft {
        Mode mode = Mode::None;
        std::vector<QVariant> values;
        std::vector<bool> isSet;
        std::vector<int> order;
        std::vector<bool> inPieces; ///< AppendChunk has begun the value.
    };
    /// A prepared INSERT or UPDATE and the columns it was made for.
    struct Writer {
        int source = -1; ///< -1 for an INSERT.
        std::vector<int> columns;
        Statement statement;
    };

    void begin(Mode mode);
    void discard();
    const Field& fieldOf(int column);
    void put(int column, QVariant value);
    Writer& writer(int source, const std::vector<int>& columns);
    QString writerSql(int source, const std::vector<int>& columns) const;
    void insertRecord();
    void updateRecord();
    void updateSource(int source, const std::vector<int>& columns);
    void runWriter(Writer& writer);
    void require(bool condition) const; ///< 3027 or 3326 otherwise.
    QString tableOf(int source) const;

    // --- RecordsetFind.cpp
    QString condition(const QString& criterion) const;
    bool findKeyed(const QString& condition);
    bool findByValues(const QString& condition);

    Database::Private* database; ///< nullptr once closed.
    RecordsetType type;
    std::shared_ptr<const CompiledQuery> query; ///< nullptr for a table.
    TableDef tableDef;                          ///< Of a table.
    std::vector<OutputColumn> columns;
    std::vector<RowSource> sources;
    bool updatable = false;
    std::unique_ptr<RowSet> rows;
    TableRows* tableRows = nullptr; ///< `rows`, when they are those of a table.
    QString index;
    bool noMatch = false;

    Draft draft;
    std::vector<std::optional<Field>> fields; ///< Of the base columns, looked up at the first edit.
    std::vector<std::unique_ptr<Writer>> writers;
    qint64 lastModified = 0;
    bool hasLastModified = false;
    mutable int lastColumn = -1; ///< The column named last: loops name them in order.
};

} // namespace jet
