// The error of work that was stopped on purpose.
#pragma once

namespace jet {

/// Number of the error that stopped work ends with. Windows say nothing of it: whoever stopped the work knows.
constexpr int cancelledError = 3059;

} // namespace jet
