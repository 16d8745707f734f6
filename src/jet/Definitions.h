// Definitions of tables, fields, indexes, relations and stored queries. They
// are plain values: nothing happens to a file until a Database appends them.
#pragma once

#include "jet/Types.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

namespace jet {

/// One column. Names are compared without case (accents count); at most 64
/// characters, none of . ! [ ] ` and no leading blank.
struct Field {
    QString Name = {};
    DataType Type = DataType::Text;
    int Size = 0;                 ///< Text: width in characters, 1 to 255; 0 means 255.
    bool Required = false;        ///< Null is refused (3314).
    bool AllowZeroLength = false; ///< Text and Memo: "" is accepted (else 3315).
    bool AutoIncrement = false;   ///< Long only; at most one in a table.
    QString DefaultValue = {};         ///< An expression of the dialect; empty means none.
    QString ValidationRule = {};       ///< ">0", "Like \"a*\"", …; only False refuses (3316, 3317).
    QString ValidationText = {};       ///< What a refusal says; empty gives the general text.
};

/// One column of an index.
struct IndexField {
    QString Name = {};
    bool Descending = false;
};

struct Index {
    QString Name = {};
    QList<IndexField> Fields = {};
    bool Primary = false; ///< Implies Unique and refuses Null (3058).
    bool Unique = false;  ///< Rows with a Null in any key column are exempt.
    bool IgnoreNulls = false;
    bool Required = false;
    bool Foreign = false; ///< Made by a relation on its foreign table.
};

struct TableDef {
    QString Name = {};
    QList<Field> Fields = {};
    QList<Index> Indexes = {};

    const Field* field(QStringView name) const; ///< Case-blind; nullptr when absent.
    const Index* index(QStringView name) const;
    const Index* primaryKey() const;
    /// The integer key that identifies a row in the store: the AutoNumber
    /// column when there is one, else the hidden column "_rid".
    QString rowIdColumn() const;
    bool hasHiddenRowId() const;
};

/// A relation kept by the file. The columns of `Fields` are (primary, foreign).
struct Relation {
    QString Name = {};
    QString Table = {};        ///< The primary table.
    QString ForeignTable = {};
    QList<QPair<QString, QString>> Fields = {};
    bool UpdateCascade = false;
    bool DeleteCascade = false;
};

/// A stored query: a name and a text of the dialect.
struct QueryDef {
    QString Name = {};
    QString SQL = {};
    QDateTime DateCreated = {};
    QDateTime LastUpdated = {};
};

/// Two object names are the same name (case folded, accents kept).
bool sameName(QStringView a, QStringView b);
/// The key under which an object name is looked up.
QString nameKey(QStringView name);

} // namespace jet
