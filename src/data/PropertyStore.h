// Named objects of a project: queries, input models, descriptor lists, base properties.
#pragma once

#include "jet/Database.h"
#include "platform/Clock.h"
#include "platform/Dialogues.h"

#include <QList>

namespace data {

/// Kinds (`Objet`).
inline const QString kindRequête = QStringLiteral("Requête");
inline const QString kindModèle = QStringLiteral("Modèle");
inline const QString kindBase = QStringLiteral("Base");
inline const QString kindDescripteur = QStringLiteral("Descripteur");

struct PropertyObject {
    int id = 0;
    QString kind;
    QString module;
    QString name;
    QString dateModify;
};

class PropertyStore {
public:
    PropertyStore(jet::Database& database, const platform::Clock& clock);

    /// Objects of the kinds ("Requête,Base,Modèle", or "*" for all), of one module or (empty) of all, by name.
    QList<PropertyObject> list(const QString& kinds, const QString& module = {}) const;
    /// The text of an object; Null when there is none.
    QVariant value(const QString& kind, const QString& module, const QString& name) const;
    /// Writes without asking: changes the object of that name or adds it. Gives its `ID Prop`.
    int put(const QString& kind, const QString& module, const QString& name, const QString& value);

    void deleteDescriptor(const QString& module, const QString& column);
    /// Deletes the objects of a removed module. The statement has no parentheses around its OR, so the
    /// descriptor lists of every module go too; that is how it has always been.
    void deleteModule(const QString& module);
    /// Drops from stored queries and models every line that names the module, or (with a column) that field.
    void clean(const QString& module, const QString& column = {});

private:
    void cleanKind(const QString& kind, const std::function<QString(const QString&)>& cleaned);

    jet::Database& m_database;
    const platform::Clock& m_clock;
};

} // namespace data
