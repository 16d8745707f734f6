// The texts of cells as values of fields.
#pragma once

#include "app/import/ImportReport.h"
#include "app/import/ImportTarget.h"
#include "editing/Cl_Edition.h"
#include "editing/FieldInput.h"

namespace app {

/// Reads cells for one field, stricter than a form: there the user sees what became of the text, here nobody does.
class ImportValues {
public:
    ImportValues(const ImportField& field, QChar decimal, const editing::EditingContext& context);

    /// The value as its column takes it; Null for an empty cell. Throws RowRefused. Names of references are not looked up: a
    /// text stays one.
    QVariant read(const QString& cell);

    /// A number with the decimal mark chosen; blanks, and the other mark where it groups thousands, do not count. False when it
    /// is none.
    static bool readNumber(const QString& text, QChar decimal, double& number);

private:
    [[noreturn]] void refuse(const QString& reason, const QString& cell) const;
    QVariant readYesNo(const QString& text) const;
    QVariant readCoordinate(const QString& text) const;
    QVariant readByForm(const QString& text);

    ImportField m_field;
    QChar m_decimal;
    int m_width = 0; ///< Of a text column; 0 for none.
    editing::Cl_Edition m_edition;
    editing::FieldInput m_input;
};

} // namespace app
