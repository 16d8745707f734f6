// A line that finds rows of a reference list by the beginning of their names.
#pragma once

#include "editing/ui/EntryLine.h"

#include <QCompleter>
#include <QStandardItemModel>
#include <QTimer>

namespace reference {

struct ReferenceWorld;

/// The names found hang below it while one types; Return takes the one that is highlighted, Escape gives the line up.
class FindLine : public editing::EntryLine {
    Q_OBJECT
public:
    FindLine(std::shared_ptr<ReferenceWorld> world, int type, QWidget* parent = nullptr);

    void find(const QString& text); ///< As if it were typed.

Q_SIGNALS:
    void found(qint32 id);
    void givenUp();

private:
    void showMatches();
    bool handle(QKeyEvent* event);
    void take(const QModelIndex& index);

    std::shared_ptr<ReferenceWorld> m_world;
    int m_type;
    QCompleter* m_completer;
    QStandardItemModel* m_matches;
};

} // namespace reference
