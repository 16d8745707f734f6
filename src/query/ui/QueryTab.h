// The window in which a query is made, run and looked at.
#pragma once

#include "platform/ui/DocumentTab.h"
#include "query/ui/CbModule.h"
#include "query/ui/ColumnsGrid.h"
#include "query/ui/CriteriaGrid.h"
#include "query/ui/QueryActions.h"
#include "query/ui/ResultPane.h"

#include <QPlainTextEdit>
#include <QSplitter>
#include <QTabWidget>
#include <QToolBar>

namespace editing {
class FormDialogue;
}

namespace query {

/// What the window needs of the world around it.
struct QuerySurroundings {
    QueryWorld world;
    QList<data::ModuleRecord> modules;
    editing::EditingContext context;
    platform::TaskRunner& runner;
    editing::FormDialogue* form = nullptr;
    FieldTreeModel::Icons icons = {};
    QList<ResultModeFactory> modes = {};
    /// The floating selection of a module.
    std::function<QList<qint32>(const QString& module)> selection = {};
    /// What windows remember from one start to the next; may be empty.
    std::function<QVariant(const QString& key)> remembered = {};
    std::function<void(const QString& key, const QVariant&)> remember = {};
};

/// The window `Form1`, as a tab. It belongs to the open project: it is gone before that is closed.
class QueryTab : public platform::DocumentTab {
    Q_OBJECT
public:
    QueryTab(const QuerySurroundings& surroundings, const QString& key, QWidget* parent = nullptr);
    ~QueryTab() override;

    QString key() const override { return m_key; }
    QString title() const override;
    QIcon icon() const override;
    QString statusText() const override;
    bool can(platform::TabCommand command) const override;
    void run(platform::TabCommand command) override;
    bool mayClose() override;
    void recordsWritten(const QStringList& modules) override;

    Query& query() { return *m_query; }
    ResultPane& pane() { return *m_pane; }
    CbModule& fields() { return *m_fields; }
    ColumnsGrid& columns() { return *m_columns; }
    CriteriaGrid& criteria() { return *m_criteria; }
    const QueryActions& actions() const { return *m_actions; }
    /// The name shown in place of that of a query never saved.
    void setCaption(const QString& caption);
    void showDefinition(bool shown);
    /// Checks the criteria, and runs when nothing is wrong with them.
    void execute();
    /// The statement as it ran last, or as it would run.
    QString statement() const { return m_statement; }

Q_SIGNALS:
    /// Records to walk through, and the one to begin with.
    void editWanted(const QString& module, const QList<qint32>& records, qint32 first);
    void recordsChanged(const QStringList& modules); ///< Written by the window itself.
    void selectionWanted(const QString& module, const QList<qint32>& records); ///< For the floating selection.
    void dragWanted(const QString& module, const QList<qint32>& records);
    void said(const QString& text); ///< In a word, what was done.

private:
    void arrange();
    QWidget* makeDefinition();
    QWidget* makeGrids();
    QWidget* makeStatement();
    QToolBar* makeToolBar();
    void connectQuery();
    void connectGrids();
    void connectPane();
    void connectActions();
    void queryChanged();
    void refreshLater();
    void refresh();
    void showStatement();
    void showErrors();
    bool checked();
    void addFields(const QStringList& paths, int at);
    void addCriteria(const QStringList& paths, int row, bool onto);
    void insertSelection();
    void insertBase();
    void undo(QList<QueryDefinition>& from, QList<QueryDefinition>& to);
    void updateActions();
    void showColumnMenu(int column, const QPoint& at);
    void addFilters(QMenu& menu, const QString& alias, const QString& value);
    void statistics();
    void exportRows();
    void print();
    void replace();
    void save();
    void takeOwnText();

    QuerySurroundings m_around;
    QString m_key;
    QString m_caption;
    std::unique_ptr<Structure> m_structure;
    std::unique_ptr<Query> m_query;
    QueryActions* m_actions;
    CbModule* m_fields;
    ColumnsGrid* m_columns;
    CriteriaGrid* m_criteria;
    QTabWidget* m_tabs;
    QPlainTextEdit* m_select;
    QPlainTextEdit* m_where;
    QPlainTextEdit* m_whole;
    QWidget* m_definition = nullptr;
    QLabel* m_note;
    QSplitter* m_splitter;
    ResultPane* m_pane;
    QString m_statement;
    QueryDefinition m_last; ///< As it was before the change that is told.
    QList<QueryDefinition> m_undo;
    QList<QueryDefinition> m_redo;
    bool m_undoing = false;
    bool m_refreshing = false; ///< Is about to.
};

} // namespace query
