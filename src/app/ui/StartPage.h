// What stands in the middle while no tab is open.
#pragma once

#include "app/ui/ChoiceButton.h"
#include "app/ui/RecentFiles.h"
#include "app/ui/TreeModel.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <QWidget>
#include <functional>

namespace app {

/// Without a project: create, open, the demo, the recent ones, the first pages of the manual. With a project: its modules
/// and reference lists with the number of their records, and what one does with them.
class StartPage : public QWidget {
    Q_OBJECT
public:
    explicit StartPage(RecentFiles& recent, QWidget* parent = nullptr);

    /// Counts the records behind a key of the module tree (-1: not now).
    using Counter = std::function<qint64(const QString& key)>;

    void showWelcome();
    /// `commands` are offered beside the modules and keep their state; `count` is asked whenever the page comes into
    /// sight.
    void showProject(const TreeModel& model, const QString& path, const QList<QAction*>& commands, Counter count);
    void count();

Q_SIGNALS:
    void newWanted();
    void openWanted();
    void demoWanted();
    void manualWanted(const QString& page);
    void recentWanted(const QString& path);
    void recordsWanted(const QString& key);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void clearChoices();
    /// What is added next goes into this column.
    void beginColumn();
    void addHeading(const QString& text);
    ChoiceButton* addChoice(const QString& name, const QIcon& icon, const QString& text, const QString& description);
    void addCommand(QAction* action);
    void addRecent();
    void addManual();

    RecentFiles& m_recent;
    QLabel* m_title;
    QLabel* m_subtitle;
    QWidget* m_choices = nullptr;
    QVBoxLayout* m_column;
    QHBoxLayout* m_columns = nullptr; ///< Of the choices.
    QVBoxLayout* m_list = nullptr;    ///< The column that is being filled.
    QList<std::pair<QString, ChoiceButton*>> m_counted; ///< By key of the module tree.
    Counter m_count;
    bool m_welcome = true;
};

} // namespace app
