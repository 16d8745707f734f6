// Where the engine logs.
#pragma once

#include <QLoggingCategory>

namespace jet {

/// "herbora.jet"
Q_DECLARE_LOGGING_CATEGORY(jetLog)

} // namespace jet
