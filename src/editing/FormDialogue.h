// The form that a user fills, as an interface: a window, or a test's answers.
#pragma once

#include "editing/Cl_Editions.h"

namespace editing {

/// Shows a collection as a form and takes the values typed.
class FormDialogue {
public:
    virtual ~FormDialogue() = default;
    /// True when the user confirmed and `save` (called at each confirmation) gave true; when it gives
    /// false the form stays open, with the errors that `save` wrote into the fields.
    virtual bool edit(const QString& title, Cl_Editions& form,
                      const std::function<bool(Cl_Editions&)>& save) = 0;
};

} // namespace editing
