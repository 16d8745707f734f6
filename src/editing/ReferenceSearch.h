// Reference rows by the beginning of their names, while one types.
#pragma once

#include "jet/Database.h"

#include <QList>
#include <QString>

namespace editing {

/// A row of a reference list that fits what was typed.
struct ReferenceMatch {
    qint32 id = 0;
    QString name;   ///< What the field shows once it is chosen.
    QString detail; ///< What tells rows of the same name apart; empty for nothing.
    bool operator==(const ReferenceMatch&) const = default;
};

/// The first rows whose name begins with the text, in the order of the names, through the index of the names.
class ReferenceSearch {
public:
    explicit ReferenceSearch(jet::Database& database) : m_database(database) {}

    static constexpr int most = 50;
    /// `type` is the type code of the field: 13 collectors (also by initials), 14 localities, 15 taxa. An empty text
    /// finds the first rows of all. Failures are jet::Error.
    QList<ReferenceMatch> matches(int type, const QString& typed) const;
    /// Records of a module that belong to an individual, by their identifiers.
    QList<qint32> records(const QString& module, qint32 individu) const;

private:
    void append(QList<ReferenceMatch>& found, const QString& statement) const;

    jet::Database& m_database;
};

} // namespace editing
