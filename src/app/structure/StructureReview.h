// What saving a changed structure would do to the records, looked at before anything is written.
#pragma once

#include "app/structure/StructurePlan.h"
#include "jet/Database.h"
#include "platform/Progression.h"

namespace app {

/// One thing that the user should know.
struct Finding {
    enum Kind {
        Unconverted,  ///< Values become Null.
        Approximated, ///< Values are rounded or cut.
        Missing,      ///< A required field is empty.
        Repeated,     ///< A unique field has the same value twice.
        Refused,      ///< A value is refused by its rule.
        RepeatedKey,  ///< The combination of the fields of the key is there twice.
        SeveralOfOne, ///< An individual has several records.
    };
    /// A value out of a record, and what becomes of it.
    struct Example {
        qint32 record = 0;
        QString value;
        QString becomes; ///< Empty for nothing.
    };
    Kind kind = Missing;
    QString module; ///< As it is called in the file.
    QString field;  ///< Caption; empty where the whole module is meant.
    int from = 0, to = 0; ///< Types, of a conversion.
    qint64 count = 0;
    QList<Example> examples; ///< The first of them.

    /// The structure cannot be saved before the records are put right, or the rule is taken back.
    bool forbids() const { return kind != Unconverted && kind != Approximated; }
    QString text() const;
    QList<qint32> records() const;
};

struct StructureReview {
    QList<Finding> findings;
    QStringList losses; ///< What is deleted with data in it, in sentences.
    QStringList conversions; ///< Fields whose values are converted, in sentences.

    bool forbids() const;
    /// Something of the records is lost: a copy of the project is made first.
    bool losesData() const;
    bool isEmpty() const { return findings.isEmpty() && losses.isEmpty() && conversions.isEmpty(); }
};

/// Looks at every record that the plan concerns; writes nothing. 3059 when the user stops it.
StructureReview reviewOf(jet::Database& database, const StructurePlan& plan, platform::Progression& progression);

/// Records of a module's table; 0 when there is none.
qint64 countRecords(jet::Database& database, const QString& module);
/// Whether a record holds a value in the column. Yes/No fields count where they say yes.
bool holdsData(jet::Database& database, const QString& module, const QString& column);

} // namespace app
