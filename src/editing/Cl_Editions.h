// The ordered fields of one form.
#pragma once

#include "editing/Cl_Edition.h"

#include <memory>
#include <vector>

namespace editing {

/// Owns nothing but order and look-up; what a field does lives in its descriptor.
class Cl_Editions {
public:
    explicit Cl_Editions(EditingContext context);

    qint16 Count() const;
    void Clear();
    // For-each over the descriptors in their order.
    auto begin() const { return m_fields.begin(); }
    auto end() const { return m_fields.end(); }

    bool Changed() const;
    bool valid() const;
    /// Position of the first descriptor whose key, champ or Caption (tried in that order) is the name, without case; -1.
    int Index(const QString& name) const;
    /// By position, or by key and then by name; null when there is none.
    Cl_Edition* Item(int position) const;
    Cl_Edition* Item(const QString& name) const;
    void MoveItem(int from, int to);
    addin::TabEditions Tabedition() const;
    void setTabedition(const QString& module, const addin::TabEditions& fields);
    void Remove(int position);
    void Remove(const QString& name);
    /// At the end; a descriptor without a module gets that of the collection.
    void AppendItem(std::unique_ptr<Cl_Edition> field);
    /// Nothing happens when the column is already there.
    void Add(int type, const QString& caption, const QVariant& value, const QString& help,
             const QString& column, bool allowNull, qint32 individu);
    QString NomModule() const { return m_module; }
    /// Binds every field to a record, which loads the values.
    void bind(qint32 individu, qint32 item);

private:
    EditingContext m_context;
    QString m_module;
    std::vector<std::unique_ptr<Cl_Edition>> m_fields;
};

} // namespace editing
