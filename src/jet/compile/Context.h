// What the parts of one compilation share.
#pragma once

#include "jet/Schema.h"
#include "jet/sql/Syntax.h"

#include <QStringList>

namespace jet::compiler {

/// One compilation of one statement.
class Context {
public:
    explicit Context(const Schema& schema) : m_schema(schema) {}

    const Schema& schema() const { return m_schema; }

    /// A name that stands for no column: a parameter without a value. They are collected, so that
    /// the message lists them all.
    void noteMissing(const QString& name);
    void failIfMissing() const; ///< 3061 with their number and their names.

    /// The tree of a stored query, kept as long as this object. Between enterQuery and
    /// leaveQuery the same query must not come again: 3102.
    const sql::Query& enterQuery(const QueryDef& query);
    void leaveQuery();

    /// In a default value an unknown name stands for its own text.
    bool namesAreText = false;

private:
    const Schema& m_schema;
    QStringList m_missing;
    QStringList m_openQueries;
    std::vector<std::unique_ptr<sql::Statement>> m_parsed;
};

/// The text of a part of a statement, for messages: [t].[c], 'text', Left(…).
QString written(const sql::Expr& expression);

} // namespace jet::compiler
