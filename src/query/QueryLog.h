// Where queries log.
#pragma once

#include <QLoggingCategory>

namespace query {

/// "herbora.query"
Q_DECLARE_LOGGING_CATEGORY(queryLog)

} // namespace query
