// What stands in the middle while no tab is open.
#pragma once

#include "app/ui/ChoiceButton.h"
#include "app/ui/RecentFiles.h"
#include "app/ui/TreeModel.h"

#include <QLabel>
#include <QVBoxLayout>
#include <QWidget>

namespace app {

/// Without a project: create, open, the recent ones. With a project: its modules and reference lists.
class StartPage : public QWidget {
    Q_OBJECT
public:
    explicit StartPage(RecentFiles& recent, QWidget* parent = nullptr);

    void showWelcome();
    void showProject(const TreeModel& model, const QString& path);

Q_SIGNALS:
    void newWanted();
    void openWanted();
    void recentWanted(const QString& path);
    void recordsWanted(const QString& key);

private:
    void clearChoices();
    void addHeading(const QString& text);
    ChoiceButton* addChoice(const QString& name, const QIcon& icon, const QString& text, const QString& description);
    void addRecent();

    RecentFiles& m_recent;
    QLabel* m_title;
    QLabel* m_subtitle;
    QWidget* m_choices = nullptr;
    QVBoxLayout* m_column;
    QVBoxLayout* m_list = nullptr;
    bool m_welcome = true;
};

} // namespace app
