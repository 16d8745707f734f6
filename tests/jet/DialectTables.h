// A small herbarium in the layout of the store, made without the engine above it.
#pragma once

#include "jet/Compile.h"
#include "jet/Store.h"
#include "jet/sql/Parser.h"

#include <QTemporaryDir>

/// Tables, their definitions and a few records. Statements are compiled and run as a Database
/// would.
class DialectTables {
public:
    DialectTables();

    jet::Compiled compile(const QString& statement) const;
    /// The first SQL text: of the query, or all steps of the action joined by ";".
    QString sql(const QString& statement) const;
    jet::CompiledQuery query(const QString& statement) const;

    /// The rows of a query: cells joined by "|" (Null as "Null"), row identifiers left out.
    QStringList rows(const jet::CompiledQuery& query);
    QStringList rows(const QString& statement) { return rows(query(statement)); }
    /// The rows of a text of the store.
    QStringList storeRows(const QString& sql, const QVariantList& values = {}, int from = 0);
    QString plan(const QString& sql);      ///< What EXPLAIN QUERY PLAN says, in one line.
    int execute(const QString& statement); ///< Gives the number of records changed.

    void begin() { m_store.run(QStringLiteral("SAVEPOINT one")); }
    void rollback();

    jet::Schema schema;

private:
    void table(const QString& name, const QStringList& fields, const QStringList& indexes);
    void fill();

    QTemporaryDir m_folder;
    jet::Store m_store;
};
