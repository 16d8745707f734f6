// What the sources of IndividualEditing share.
#pragma once

#include "editing/IndividualEditing.h"
#include "editing/Trapped.h"
#include "jet/Error.h"

namespace editing {

inline const QString& individus = data::moduleIndividus;

inline const QString temporaryMarker = QStringLiteral("HBTEMP");

/// Does the work; a refusal or failure is said under the title, and gives the neutral result.
template<typename Result, typename Work>
Result IndividualEditing::guarded(const QString& title, Result neutral, Work work) const
{
    try {
        return work();
    } catch (const data::RecordRefused& refused) {
        tell(refused.text(), title);
    } catch (const jet::Error& error) {
        qCWarning(editingLog).noquote() << title << error.number() << error.description();
        tell(error.description(), title);
    }
    return neutral;
}

} // namespace editing
