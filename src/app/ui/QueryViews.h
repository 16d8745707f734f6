// What add-ins may ask of the windows.
#pragma once

#include "app/HostViews.h"

#include <QObject>

namespace app {

class Workplace;

/// Answers for the tab that is shown: a query, or the records of a module. Calls from another thread wait for that of the
/// windows, which must not be waiting for them.
class QueryViews : public QObject, public HostViews {
    Q_OBJECT
public:
    explicit QueryViews(Workplace& place) : m_place(place) {}

    quintptr windowHandle() const override;
    QString activeModule() const override;
    QString currentStatement() const override;
    QString mode() const override;
    QList<qint32> selectedRecords() const override;
    QList<qint32> shownRecords() const override;
    void refresh(const QString& module) override;
    bool editRecord(const QString& key) override;
    editing::FormDialogue* form() override;

private:
    bool isHome() const;
    template <typename Answer> auto there(Answer answer) const;

    Workplace& m_place;
};

} // namespace app
