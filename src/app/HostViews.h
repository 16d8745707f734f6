// What the windows know and can do, as an interface for the host of the add-ins.
#pragma once

#include "editing/FormDialogue.h"

namespace app {

/// Called on the thread of the add-in's call, which need not be that of the windows.
class HostViews {
public:
    virtual ~HostViews() = default;
    /// Handle of the main window; 0 for none.
    virtual quintptr windowHandle() const = 0;
    virtual QString activeModule() const = 0;     ///< Module shown; empty for none.
    virtual QString currentStatement() const = 0; ///< Of the current query.
    virtual QString mode() const = 0;             ///< "data", "picture" or "map"; empty for none.
    virtual QList<qint32> selectedRecords() const = 0; ///< Of the active module.
    virtual QList<qint32> shownRecords() const = 0;    ///< Of the active module, in their order.
    virtual void refresh(const QString& module) = 0;
    virtual bool editRecord(const QString& key) = 0;
    /// Shows forms; null when there is nothing to show them with.
    virtual editing::FormDialogue* form() = 0;
};

} // namespace app
