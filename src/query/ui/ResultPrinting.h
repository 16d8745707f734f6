// A result on paper.
#pragma once

#include "platform/ui/PrintPreview.h"

#include <memory>

namespace query {

class Results;

/// Shows the rows found so far in the preview; the project must be this thread's. A result of more than
/// platform::mostPreviewedRows rows is not printed, which is said: it is the export that such rows are for.
void printResults(Results& results, const QString& title, const platform::PrintWorld& world);

} // namespace query
