// The assistant that imports a table.
#pragma once

#include "app/ui/Workplace.h"
#include "app/ui/import/ImportPages.h"

#include <QDialog>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedWidget>

namespace app {

/// Walks through its steps beside the other windows: file, columns, names, rehearsal, result. What reads or writes the
/// project runs on the task runner; meanwhile the steps are shut and only stopping is possible.
class ImportWindow : public QDialog {
    Q_OBJECT
public:
    enum Step { File, Columns, Names, Rehearsal, Result };

    ImportWindow(Workplace& place, QWidget* parent);

    ImportFilePage& filePage() { return *m_file; }
    ImportColumnsPage& columnsPage() { return *m_columns; }
    ImportNamesPage& namesPage() { return *m_names; }
    Step step() const { return Step(m_pages->currentIndex()); }
    bool isWorking() const { return m_working; }
    /// The report shown last.
    QString report() const { return m_text[m_pages->currentIndex() == Result]->toPlainText(); }
    void next();
    void back();
    /// Has the work that runs stopped, if any.
    void stop();
    /// Another task has the project.
    void setAway(bool away);

private:
    QWidget* makeReportPage(int number);
    void go(Step step);
    void updateButtons();
    ImportPlan plan() const;
    void showColumns();
    void searchNames();
    void run(bool rehearsal);
    void work(const QString& text, std::function<void(platform::Progression&)> work, std::function<void()> done);
    void reject() override;

    Workplace& m_place;
    QStackedWidget* m_pages;
    ImportFilePage* m_file;
    ImportColumnsPage* m_columns;
    ImportNamesPage* m_names;
    QPlainTextEdit* m_text[2]; ///< Of the rehearsal and of the result.
    QLabel* m_title;
    QLabel* m_said; ///< That the work was stopped.
    QProgressBar* m_progress;
    QPushButton* m_back;
    QPushButton* m_next;
    QPushButton* m_close;
    QString m_mappedFor; ///< File, format and target that the columns were matched for.
    bool m_working = false;
    bool m_away = false;
};

} // namespace app
