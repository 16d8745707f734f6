// What the three reference classes share.
#pragma once

#include "editing/FormDialogue.h"
#include "jet/Database.h"
#include "jet/Recordset.h"
#include "platform/Clock.h"
#include "platform/Dialogues.h"

#include <QObject>

namespace reference {

/// What a reference class needs of the world around it.
struct ReferenceContext {
    jet::Database& database;
    const platform::Clock& clock;
    platform::Dialogues& dialogues;
    editing::EditingContext editing;
    editing::FormDialogue* form = nullptr; ///< Null where there is no window: Add and Edit give false.
};

/// Identifiers and names found, in their order.
struct Found {
    QList<qint32> ids;
    QStringList names;
};

/// Keeps a current record of one table and tells what happened to its rows. (The signals stand in this class
/// because their names must be plain for the meta-object compiler.)
class ReferenceList : public QObject {
    Q_OBJECT
public:
    ReferenceList(const ReferenceContext& context, const QString& table);
    ~ReferenceList() override;

    /// What the forms of the list show for identifiers; made of the lists themselves, so it comes after them.
    void setNames(std::shared_ptr<editing::ReferenceNames> names) { m_context.editing.names = std::move(names); }
    /// Number of the jet::Error that the last Save met; 0 when it met none: then it is the form itself that was refused.
    int lastFailure() const { return m_failure; }

Q_SIGNALS:
    void Change(qint32 id);  ///< One row was changed.
    void Delete(qint32 id);  ///< One row was deleted.
    void Refresh(bool all);  ///< A multi-row operation ended.
    void TableModified(const QString& name); ///< The table was modified as a whole.

protected:
    /// Puts the current record on a row; false when there is none (then there is no current record). Outside an operation
    /// a row that cannot be read counts as none.
    bool position(qint32 id) const;
    qint32 current() const { return m_current; }
    QVariant value(const QString& column) const; ///< Of the current record; Null without one.
    QString text(const QString& column) const { return value(column).toString(); }
    /// Reads the current record anew.
    void reread() const { position(m_current); }
    /// Writes columns of a row (0: a new one), with the stamps; gives its identifier.
    qint32 write(qint32 id, const QList<QPair<QString, QVariant>>& values);
    /// Runs a search; when it finds nothing and the pattern holds no "*", once more with one behind it.
    Found search(const QString& statement, const QString& pattern) const;
    QString idColumn() const { return QStringLiteral("ID ") + m_table; }
    QString now() const { return platform::stamp(m_context.clock); }

    ReferenceContext m_context;
    int m_failure = 0;

private:
    bool seek(qint32 id) const;

    QString m_table;
    mutable qint32 m_current = 0;
    mutable std::unique_ptr<jet::Recordset> m_rows;
};

/// Gives the fields of a form the values of a fresh one. The fields themselves stay: controls may be bound to them.
void takeOver(editing::Cl_Editions& form, const editing::Cl_Editions& fresh);

/// The name between double quotes, as the messages have it.
QString quotedName(const QString& name);

} // namespace reference
