// A query as it is defined, and the statements made of it.
#pragma once

#include "query/CriterionSql.h"

namespace query {

inline const QString modeData = QStringLiteral("data");
inline const QString modePicture = QStringLiteral("picture");
inline const QString modeMap = QStringLiteral("map");
inline const QString orderUp = QStringLiteral("Croissant");
inline const QString orderDown = QStringLiteral("Décroissant");

/// Rows of the criteria grid, its header counted, from which on a query is refused.
inline constexpr qsizetype limitOfRows = 42;

struct OutputColumn {
    QString path;      ///< Of the field.
    QString alias;     ///< Unique within the query.
    QString order;     ///< Empty, "Croissant" or "Décroissant".
    QString permanent; ///< Where the field is known no more: its stored name.
    bool operator==(const OutputColumn&) const = default;
};

struct QueryDefinition {
    QString module = data::moduleIndividus; ///< Root of the statement.
    QString mode = modeData;
    QList<OutputColumn> columns;
    Criteria criteria;
    bool operator==(const QueryDefinition&) const = default;
};

/// There are too many rows of criteria.
struct TooManyRows {};

/// Why a row of criteria cannot run.
struct RowError {
    qsizetype row;
    QString text;
};

/// Makes statements. `where` and what holds it throw TooManyRows, and RowRefused for the first row that cannot be.
class StatementBuilder {
public:
    StatementBuilder(const Structure& structure, CodeRegion codeRegion)
        : m_structure(structure), m_codeRegion(std::move(codeRegion))
    {
    }

    /// "SELECT DISTINCTROW …": the individual, the record, the output columns; empty without a root.
    QString select(const QueryDefinition& query) const;
    QString from(const QueryDefinition& query) const;
    QString where(const QueryDefinition& query) const; ///< Without the keyword.
    QString orderBy(const QueryDefinition& query) const;
    QString statement(const QueryDefinition& query) const;
    /// The non-empty parts, one a line.
    static QString assembled(const QString& select, const QString& from, const QString& where,
                             const QString& orderBy);

    /// The points: Chp1 individual, Chp2 name of the place, Chp3 longitude, Chp4 latitude, ChpLoc place. The place is
    /// that of the field, by default of the first field of a place; empty when there is none.
    QString mapStatement(const QueryDefinition& query, const QString& field = {}) const;
    /// The pictures: ChpID record, Chp1 file; of the field, by default of the first picture field.
    QString pictureStatement(const QueryDefinition& query, const QString& field = {}) const;
    /// The values of an output column with the identifier of their first record and their count, most frequent
    /// first.
    QString statisticsStatement(const QueryDefinition& query, const QString& alias) const;

    QList<RowError> check(const QueryDefinition& query) const;

private:
    QString group(const Criteria& criteria, qsizetype row) const;
    QString level(const Criteria& criteria, qsizetype row, qsizetype end, bool firstLinked) const;
    QString criteriaFrom(const QueryDefinition& query, const QString& field) const;
    QString identifiedBy(const QueryDefinition& query) const;

    const Structure& m_structure;
    CodeRegion m_codeRegion;
};

/// The condition with a further one that must hold too.
QString SQLConcatWHERE(const QString& where, const QString& further);

} // namespace query
