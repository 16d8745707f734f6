// The result area of a query window: the modes, the pages, the panels.
#pragma once

#include "query/ui/DataMode.h"

#include <QLabel>
#include <QStackedWidget>
#include <QToolButton>

namespace query {

/// What the modes are shown for one query at one time.
struct ResultStatements {
    QString module;
    QString name;
    QString data;
    QString picture;
    QString map;
};

/// Runs statements and shows their result in one of the modes. Identifiers are of the root module of the statement.
class ResultPane : public QWidget, public ResultSource {
    Q_OBJECT
public:
    ResultPane(platform::TaskRunner& runner, QList<ResultModeFactory> factories, QWidget* parent = nullptr);
    ~ResultPane() override;

    /// Runs; the selection is kept by identifier, and with `stay` the page and the current row.
    void start(jet::Database& database, const ResultStatements& statements, bool stay = false);
    /// The same again with another order.
    void sortBy(int column, bool descending);
    void again(); ///< Runs what is shown once more; page, current row and selection stay.
    void clear(); ///< Lets go of everything that holds on to the project.
    bool hasResult() const { return m_run.results() != nullptr; }
    ResultRun& run() { return m_run; }
    DataMode& data() { return *m_data; }
    Results* results() const { return m_run.results(); }
    QString mode() const { return m_mode; }
    void setMode(const QString& mode);
    ResultMode& shownMode() const { return *m_shown; }
    QStringList possibleModes() const;
    /// Values of records changed.
    void valuesChanged(const QStringList& modules);
    QList<qint32> selectedRecords() const;
    qint32 currentRecord() const; ///< 0 for none.
    /// Records of the rows around that of a record, in their order, of at most so many rows.
    QList<qint32> recordsAround(qint32 record, qint64 most) const;
    void hideColumn(int column);
    bool hasHiddenColumns() const { return !m_hidden.isEmpty(); }
    void showHiddenColumns();
    void showMessage(const QString& text); ///< In place of the rows; empty shows them.

    // --- ResultSource ------------------------------------------------------------------------
    jet::Database& database() const override { return *m_run.results()->database(); }
    QString module() const override { return m_statements.module; }
    QString name() const override { return m_statements.name; }
    QString statement(const QString& mode) const override;
    qint64 rowCount() const override { return hasResult() ? m_run.results()->CountRow() : 0; }
    bool isComplete() const override { return !hasResult() || m_run.results()->isComplete(); }
    QList<qint32> records() const override;
    QList<qint32> individuals() const override;
    QStringList headers() const override { return hasResult() ? m_run.results()->Header() : QStringList(); }
    QVariant value(qint64 row, int column) const override;
    QString text(qint64 row, int column) const override;

Q_SIGNALS:
    void modeChosen(const QString& mode); ///< By the user.
    void selectionChanged();
    void activated(const QList<qint32>& records);
    void insertPlacesWanted(const QList<qint32>& localities);
    void insertRectangleWanted(const QRectF& degrees);
    void columnMenuWanted(int column, const QPoint& globalPosition);
    void dragWanted();
    void stateChanged();
    void failed(const QString& description);

private:
    QWidget* makePanels();
    void addModes(QLayout& layout);
    void connectRun();
    void connectMode(ResultMode& mode);
    ResultMode* modeOf(const QString& key);
    void showReplaced();
    void showFound();
    void showPanels();
    void goTo(const QString& page);
    void takeModeSelection(ResultMode& mode);
    ResultSelection whole() const;
    void activate(const ResultSelection& selection);
    void returnToRecord();
    void applyHidden();
    void showColumns();

    ResultRun m_run;
    QList<ResultModeFactory> m_factories;
    ResultStatements m_statements;
    ResultStatements m_next; ///< Of the run that is awaited.
    QString m_mode;
    QHash<QString, ResultMode*> m_modes;
    QHash<QString, int> m_seen; ///< The result that each mode shows, by number.
    int m_number = 0;
    ResultMode* m_shown = nullptr;
    DataMode* m_data;
    QStackedWidget* m_stack;
    QLabel* m_message;
    QHash<QString, QToolButton*> m_modeButtons;
    QHash<QString, QToolButton*> m_pageButtons;
    QHash<QString, QLabel*> m_panels;
    QStringList m_hidden; ///< Headers of the columns that are not shown.
    qint32 m_recordWanted = 0; ///< To be the current one again when it is found.
};

} // namespace query
