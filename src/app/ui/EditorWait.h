// Long work that was begun in a form, with its progress above it.
#pragma once

#include "platform/ui/TaskRunner.h"

namespace app {

/// Does the work beside the windows and comes back when it is done; meanwhile nothing else can be done, and after a
/// moment its progress is shown with a button that stops it. What it throws is thrown here. Must not be called while
/// the runner is at work.
void runBeside(platform::TaskRunner& runner, const QString& title,
               const std::function<void(platform::Progression&)>& work);

} // namespace app
