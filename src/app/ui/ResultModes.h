// The ways in which results of queries are looked at besides rows.
#pragma once

#include "query/ui/ResultMode.h"

namespace app {

class Workplace;

/// One factory for each mode that is built in; "data" is the window's own.
QList<query::ResultModeFactory> resultModes(Workplace& place);

} // namespace app
