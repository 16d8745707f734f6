// New values in many records of one module at once.
#pragma once

#include "data/Modules.h"
#include "platform/Clock.h"
#include "platform/Dialogues.h"
#include "query/CriterionSql.h"

#include <optional>

namespace query {

/// What a taxon field offers besides taxa: the accepted name of the taxon that a record has.
inline const QString validName = QStringLiteral("< Nom Valide >");

/// One row of the grid.
struct Replacement {
    QString champ;           ///< Column of the module.
    QString value;           ///< "~" stands for the present value; empty for Null.
    bool expression = false; ///< The value is an expression of the dialect.
};

/// How many records a replacement concerns.
struct ReplaceCounts {
    qint64 changed = 0;   ///< Will be written.
    qint64 unchanged = 0; ///< Of these: they hold the new values already.
    qint64 locked = 0;
    qint64 missed = 0;    ///< Not reached by the statement: records without a taxon of a module that has taxa.
};

/// The statements of a replacement, ready to run on whatever thread has the database.
struct ReplacePlan {
    QString title; ///< "Remplacement dans la table Individus"
    QString update;
    QString changed; ///< Counts the records that will be written …
    QString locked;  ///< … that are locked …
    QString open;    ///< … and all that are not.
    QString values;  ///< Values before and after in turn.
    QString preview; ///< The same behind the identifier, in its order.
};

/// A record before and after.
struct ReplacePreview {
    qint32 id = 0;
    QStringList before;
    QStringList after;
};

/// The replacement of one window. The records are those given at the beginning, whatever is selected later. Locked records are
/// never changed.
class BatchReplace {
public:
    /// Without identifiers the scope is the whole module.
    BatchReplace(jet::Database& database, const platform::Clock& clock, platform::Dialogues& dialogues,
                 editing::EditingContext context, data::ModuleRecord module,
                 std::optional<QList<qint32>> selection = {});

    QList<Replacement> rows;

    QString title() const;   ///< "Remplacer dans la base Individus"
    QString caption() const; ///< "< Remplacer dans Individus >", of a window linked to a query.
    QString scope() const;

    /// The assignment of a row. Throws RowRefused for a value that cannot be.
    QString SQLEdition(const Replacement& row) const;
    /// The whole statement. Throws RowRefused.
    QString statement() const;
    ReplacePlan plan() const; ///< Throws RowRefused.
    ReplaceCounts counts() const;
    QList<ReplacePreview> preview(int records) const;
    /// What is asked before anything is changed.
    QString question() const;
    QList<QPair<qsizetype, QString>> errors() const; ///< Row and text.
    /// Asks, changes, tells. Gives the number of records changed; nothing when the user said no or it failed, and then
    /// nothing is changed.
    std::optional<int> execute();

    /// Why brackets do not match; empty when they do.
    static QString checkExpression(const QString& expression);

private:
    QString expression(const Replacement& row) const;
    QString field(const Replacement& row) const;
    bool hasTaxa() const;
    bool takesValidName() const;
    QString source() const;
    QString scopeCondition() const;
    QString condition() const;

    jet::Database& m_database;
    const platform::Clock& m_clock;
    platform::Dialogues& m_dialogues;
    editing::EditingContext m_context;
    data::ModuleRecord m_module;
    std::optional<QList<qint32>> m_selection;
};

/// These throw jet::Error; 3059 when the user stopped them.
ReplaceCounts replaceCounts(jet::Database& database, const ReplacePlan& plan);
QList<ReplacePreview> replacePreview(jet::Database& database, const ReplacePlan& plan, int records);
/// Changes exactly as many records as announced, as one named operation; throws RowRefused when there are more or fewer,
/// and then nothing is changed.
int runReplacement(jet::Database& database, const ReplacePlan& plan, qint64 announced);
inline QString replacedText(int changed)
{
    return QString::number(changed) + QStringLiteral(" enregistrement(s) mis à jour");
}

/// The value of a row as an expression on its field, which is written in brackets already.
QString replaceValue(int ctype, const QString& field, const QString& value, const editing::EditingContext& context);

} // namespace query
