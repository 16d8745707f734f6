// A query that a user defines: its columns, its criteria, its saving.
#pragma once

#include "data/PropertyStore.h"
#include "editing/FormDialogue.h"
#include "platform/Dialogues.h"
#include "platform/Progression.h"
#include "query/QuerySignals.h"
#include "query/QueryText.h"

namespace query {

/// What a query needs of the world around it.
struct QueryWorld {
    jet::Database& database;
    const platform::Clock& clock;
    platform::Dialogues& dialogues;
    data::PropertyStore& store;
    CodeRegion codeRegion; ///< Path code of a place.
};

inline const QString newQuery = QStringLiteral("Nouvelle Requête");

/// The statements whose rows the statistics count.
struct StatisticsPlan {
    QStringList aliases; ///< Of the output columns.
    QStringList statements;
    QString rows; ///< The query itself.
};

/// Counts; empty when the user stopped it. Throws jet::Error.
QString countStatistics(jet::Database& database, const StatisticsPlan& plan, platform::Progression& progression);

/// The query of one window. Changes raise Query_Change and set ToSave. Errors are trapped: an empty text, -1, false.
class Query : public QuerySignals {
public:
    /// The structure is the window's own; its root follows the query's module.
    Query(Structure& structure, QueryWorld world);

    QString NomQuery() const { return m_name; }
    int id() const { return m_id; } ///< `ID Prop`; 0 before the first saving.
    QString NomModule() const { return m_definition.module; }
    void setNomModule(const QString& module); ///< Begins a new query on that root.
    QString ModeRun() const { return m_definition.mode; }
    void setModeRun(const QString& mode);
    bool ToSave() const { return m_toSave; }
    bool isBase() const { return m_kind == data::kindBase; } ///< Shows the structure of the project.
    QString title() const; ///< "Requête < name >", "Base < name >"
    const QueryDefinition& definition() const { return m_definition; }
    Structure& structure() const { return m_structure; }

    /// Asks what has to be asked and writes; false when the user cancelled or it failed.
    bool SaveQuery();
    /// Reads a saved query of the module; a missing one begins a new query (false).
    bool LoadRequête(const QString& name);
    bool LoadRequête(int id);
    void clear(); ///< A new query on the same root.
    /// Shows the structure of the open project: as it was saved under that name, or every field of the root.
    void LoadBase(const QString& name);
    /// Asks for a new name and gives it to the stored query.
    bool rename();
    /// What saving is announced with.
    QString savedText() const;
    /// A definition made elsewhere, under that name; nothing of it is unsaved.
    void begin(const QueryDefinition& definition, const QString& name);
    /// Takes back an earlier state of columns and criteria; the name stays.
    void restore(const QueryDefinition& definition);
    /// Asks whether a changed query is to be saved. True when the window may close.
    bool mayClose();
    /// Resolves the fields again after the structure was changed.
    void refreshStructure(const QList<data::ModuleRecord>& modules);

    // --- Output columns ----------------------------------------------------------------------
    const QList<OutputColumn>& columns() const { return m_definition.columns; }
    /// Gives its position; -1 for an unknown field. The alias is by default the caption; it is numbered when it is taken.
    int addColumn(const QString& path, const QString& alias = {});
    /// Adds what people read of a field: of a person, a place or a taxon its name instead of its number.
    int addReadableColumn(const QString& path);
    void removeColumn(int column);
    void moveColumn(int from, int to);
    void setOrder(int column, const QString& order);
    /// False and a message when another column has it.
    bool setAlias(int column, const QString& alias);
    bool editAlias(int column); ///< Asks for it.
    int columnOf(const QString& alias) const;

    // --- Criteria ----------------------------------------------------------------------------
    const Criteria& criteria() const { return m_definition.criteria; }
    /// Any change to the criteria goes through here.
    template<typename Change>
    auto editCriteria(Change change)
    {
        if constexpr (std::is_void_v<decltype(change(m_definition.criteria))>) {
            change(m_definition.criteria);
            changed();
        } else {
            auto result = change(m_definition.criteria);
            changed();
            return result;
        }
    }
    /// "add", "addchild", "addbrother", "delete", "up", "down" on a row; gives the row concerned. A new row is on the
    /// field of that path.
    qsizetype command(const QString& key, qsizetype row, const QString& path = {});
    /// "ou vide": adds a row of its own beneath this one, by which records without a value match too.
    qsizetype addOrEmpty(qsizetype row);
    /// Rows in the text form of the grid, on the top level; gives how many.
    qsizetype insertText(const QString& text);
    /// One criterion for each of these terms, any of which may hold.
    void insertTerms(const QString& path, const QStringList& terms);
    /// Asks on which field of the type.
    bool insertTerms(int ctype, const QStringList& terms);
    /// Records of the root, or of another module, by their identifiers, as one list.
    void insertIdentifiers(const QList<qint32>& ids, const QString& module = {});
    bool askIdentifiers(); ///< Asks for a series.
    void insertPlaces(const QList<qint32>& localities); ///< "insertmap"
    /// The criteria of other saved queries of the module, chosen in a list.
    bool insertQueries();
    /// The same from another project.
    bool insertBase(const QString& file);
    static QString insertBaseCaption(const QString& name);
    /// The four sides in degrees or degree texts; needs a field of a place.
    bool insertRectangle(const QString& x1, const QString& y1, const QString& x2, const QString& y2);
    bool askRectangle(editing::FormDialogue& form);
    /// A further condition on the field of a column, which holds whatever the others are.
    bool filter(const QString& alias, const QString& op, const QString& value);
    bool askFilter(const QString& alias, const QString& op, const QString& byDefault);
    /// Sorts by that column alone.
    bool sort(const QString& alias, const QString& order);
    static QString filterPrompt(const QString& alias);
    static QString sortCaption(const QString& alias);
    static QString hideCaption(const QString& alias);

    // --- Statements --------------------------------------------------------------------------
    QString TextSQLSelect() const;
    QString TextSQLWhere() const;
    /// Texts of the user's own; they hold until the next change of a grid.
    void setTextSQLSelect(const QString& text);
    void setTextSQLWhere(const QString& text);
    void forgetOwnTexts();
    /// The whole statement; empty when it cannot be built. Too many criteria are said in a box.
    QString SQLStatement() const;
    QString TextSQLStatement() const { return SQLStatement(); }
    QString mapStatement() const;
    QString pictureStatement() const;
    QString statisticsStatement(const QString& alias) const;
    /// What the statistics count; empty when the query cannot be built.
    StatisticsPlan statisticsPlan() const;
    /// The report of the statistics: heading, one line a column, number of rows.
    QString statistics(platform::Progression& progression) const;
    QList<RowError> errors() const { return builder().check(m_definition); }

private:
    StatementBuilder builder() const { return {m_structure, m_world.codeRegion}; }
    QString trapped(const std::function<QString()>& work) const;
    void changed();
    QString freeAlias(const QString& wanted) const;
    bool aliasTaken(const QString& alias, int except) const;
    void insertGroup(const QList<Criterion>& rows);
    bool insertFrom(data::PropertyStore& store, int except);
    void closeOff();
    void take(const QueryDefinition& definition, const QString& name, int id);
    QString rootPath() const;
    QString placeField() const;

    Structure& m_structure;
    QueryWorld m_world;
    QueryDefinition m_definition;
    QString m_kind = data::kindRequête;
    QString m_name = newQuery;
    int m_id = 0;
    bool m_toSave = false;
    QString m_ownSelect;
    QString m_ownWhere;
};

} // namespace query
