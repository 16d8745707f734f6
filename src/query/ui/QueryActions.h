// The commands of a query window.
#pragma once

#include <QAction>
#include <QHash>
#include <QMenu>
#include <QObject>

namespace query {

/// Actions by the names under which the commands are known ("execute", "insertquery", "addchild" …).
class QueryActions : public QObject {
    Q_OBJECT
public:
    explicit QueryActions(QObject* parent);

    QAction* operator[](const QString& name) const;
    void on(const QString& name, QObject* receiver, std::function<void()> work) const;
    QMenu* insertMenu(QWidget* parent) const;

private:
    void add(const QString& name, const QString& icon, const QString& text, const QString& tip,
             const QString& shortcut = {});
    void addCriteria();

    QHash<QString, QAction*> m_actions;
};

} // namespace query
