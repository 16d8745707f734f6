// What a user types or chooses, taken into a field and judged while it is typed.
#pragma once

#include "editing/Cl_Edition.h"
#include "jet/Database.h"

namespace editing {

/// Nothing typed is lost: a text that cannot be a value of the field stays in it as it was written, and the field
/// carries the reason as its error, so that no save accepts it.
class FieldInput {
public:
    /// Without a database, widths and validation rules are not looked at.
    explicit FieldInput(jet::Database* database = nullptr) : m_database(database) {}

    /// Writes the value (an empty text stands for Null) and the field's own error. A locked field stays as it is.
    void take(Cl_Edition& field, const QVariant& typed) const;
    /// Sets the field's own error after its value, as it stands.
    void judge(Cl_Edition& field) const;
    /// Why the value cannot be saved; empty when it can. A Null that is not allowed is the field's own matter.
    QString problem(const Cl_Edition& field) const;
    /// A value that stands in the field as it was written, since it could not be understood.
    static bool isRaw(const Cl_Edition& field);

private:
    QString columnProblem(const Cl_Edition& field) const;
    QString holderOf(const Cl_Edition& field) const;
    bool satisfies(const Cl_Edition& field, const jet::Field& column) const;

    jet::Database* m_database;
};

/// The value as an editing line shows it: coordinates as texts, numbers with the comma; empty for Null.
QString typedText(const Cl_Edition& field);

} // namespace editing
