// The reference lists as the record editor opens them: to choose a name, a place or a person, or to add one.
#pragma once

#include <QString>
#include <QWidget>
#include <optional>

namespace editing {

/// Opens the tree or the list of a reference field over a form, which stays as it is. `fieldType` is the type code of the
/// field: 13 collectors, 14 localities, 15 taxa. The answer is the identifier of the row chosen; nothing when the user went
/// back.
class ReferenceChooser {
public:
    virtual ~ReferenceChooser() = default;
    /// `current` is the row that the field names now (0: none), `typed` what the user has typed so far.
    virtual std::optional<qint32> choose(int fieldType, qint32 current, const QString& typed, QWidget* over) = 0;
    /// Adds a row, beginning with the name that was typed.
    virtual std::optional<qint32> add(int fieldType, const QString& typed, QWidget* over) = 0;
};

} // namespace editing
