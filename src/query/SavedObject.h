// Saving a named object of a project with the questions that go with it.
#pragma once

#include "data/PropertyStore.h"
#include "platform/Dialogues.h"

namespace query {

/// An object to be saved; `id` 0 for one that was never saved.
struct SavedObject {
    int id = 0;
    QString kind;
    QString module;
    QString name;
    QString value;
};

/// Saves it: asks before it overwrites the object of that number, else (or on no) asks for a name until it is free. Gives the
/// object as it was saved; nothing when the user cancelled. Throws jet::Error.
std::optional<SavedObject> saveObject(jet::Database& database, const platform::Clock& clock,
                                      platform::Dialogues& dialogues, SavedObject object);

} // namespace query
