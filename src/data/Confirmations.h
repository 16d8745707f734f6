// Every confirmation of the program, by its code.
#pragma once

#include "platform/Dialogues.h"

namespace data {

/// Asks the confirmation of that code; `name` is put where its text names something. Unknown codes are a
/// mistake of the caller and give Cancel.
platform::Answer confirmation(platform::Dialogues& dialogues, int code, const QString& name = {});

/// The same for those with two answers: true for yes.
bool confirmed(platform::Dialogues& dialogues, int code, const QString& name = {});

} // namespace data
