// Adding many records through the record sets of the engine.
#pragma once

#include "jet/Database.h"
#include "jet/Recordset.h"

#include <QSet>
#include <array>
#include <initializer_list>
#include <utility>

namespace app {

/// Appends rows to one table, with both stamps, and knows the number the next row will get.
class RowAppender {
public:
    using Values = std::initializer_list<std::pair<QStringView, QVariant>>;

    /// `stamp` is written into `DateCreate` and `DateModify`.
    RowAppender(jet::Database& database, const QString& table, const QString& stamp);
    ~RowAppender();

    /// The AutoNumber of the row added next. A record that names itself or its children to come is
    /// written once that way.
    qint32 next() const { return m_next; }
    /// Adds a row and gives its AutoNumber. Throws when it is not the one announced.
    qint32 add(Values values);
    /// The key of a parent of this module, as children keep it ("7-Individus").
    QString key(qint32 id) const { return QString::number(id) + m_keyTail; }

private:
    std::unique_ptr<jet::Recordset> m_rows;
    QString m_table;
    QString m_stamp;
    QString m_keyTail;
    qint32 m_next = 1;
};

/// Adds taxa with their rank columns and full names.
class TaxonWriter {
public:
    TaxonWriter(jet::Database& database, const QString& stamp);

    /// Adds the taxon of rank 1 to 4 under `parent` (0 for a family). A taxon of that full name and
    /// those authors is not added a second time: its number is given.
    qint32 add(int rank, qint32 parent, const QString& name, const QString& authors, const QString& comment);
    bool knows(const QString& fullName) const { return m_fullNames.contains(fullName.toCaseFolded()); }
    qint32 count() const { return m_count; }
    QString fullName(qint32 id) const { return m_entries.value(id).fullName; }
    QString authors(qint32 id) const { return m_entries.value(id).authors; }

private:
    struct Entry {
        int rank = 0;
        std::array<qint32, 4> ranks{}; ///< Ancestors and itself; 0 below the own rank.
        QString name;
        QString fullName;
        QString authors;
    };
    QString composed(int rank, const Entry& parent, const QString& name) const;

    RowAppender m_rows;
    QHash<qint32, Entry> m_entries;
    QHash<QString, qint32> m_byNameAndAuthors;
    QSet<QString> m_fullNames;
    qint32 m_count = 0;
};

} // namespace app
