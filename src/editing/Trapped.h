// The one border at which the operations of a field trap their errors.
#pragma once

#include <QLoggingCategory>
#include <exception>

namespace editing {

Q_DECLARE_LOGGING_CATEGORY(editingLog)

/// Does the work; when it throws, logs why and gives the neutral result.
template<typename Result, typename Work>
Result trapped(const char* what, Result neutral, Work&& work)
{
    try {
        return work();
    } catch (const std::exception& error) {
        qCWarning(editingLog) << what << error.what();
        return neutral;
    }
}

/// The same without a result: false when it threw.
template<typename Work> bool trapped(const char* what, Work&& work)
{
    return trapped(what, false, [&] {
        work();
        return true;
    });
}

} // namespace editing
