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

/// One object as it is to be saved.
struct PropertyDraft {
    int id = 0; ///< `ID Prop` of the object that it was read from; 0 for a new one.
    QString kind;
    QString module;
    QString name;
    QString value;
};

/// Told of the objects that have a node in the module tree (queries, models and base properties), after they are
/// in the store or out of it. The node is keyed by nodeKey() and stands under the object's module.
class PropertyObserver {
public:
    virtual ~PropertyObserver() = default;
    virtual void objectAdded(const PropertyObject& object) = 0;
    virtual void objectRemoved(const PropertyObject& object) = 0;
};

/// The key of an object's node: "12-query", "12-model", "12-base".
QString nodeKey(const PropertyObject& object);

/// Blanks around names and values are never kept. Names are compared without case.
class PropertyStore {
public:
    PropertyStore(jet::Database& database, const platform::Clock& clock);

    /// An observer must be taken back before it goes; the store holds nothing of it.
    void addObserver(PropertyObserver* observer);
    void removeObserver(PropertyObserver* observer);

    /// Saves as the user wants it: over the object that it was read from, or under a name that is asked until it
    /// is unique. Gives its `ID Prop`; 0 when the user gave up or it failed (which is said).
    int save(const PropertyDraft& draft, platform::Dialogues& dialogues);
    /// Asks, then deletes the object. False when the user said no, there is none or it failed (which is said).
    bool remove(int id, platform::Dialogues& dialogues);

    /// Asks for another name of the object until it is unique. Gives it; empty when the user gave up, there is no such
    /// object or it failed (which is said). Title and prompt are those of the question, where the usual ones do not fit.
    QString rename(int id, platform::Dialogues& dialogues, const QString& title = {}, const QString& prompt = {});

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
    int add(const PropertyDraft& draft);
    bool overwrite(const PropertyDraft& draft, platform::Dialogues& dialogues);
    QString askName(const PropertyDraft& draft, platform::Dialogues& dialogues) const;
    void announce(void (PropertyObserver::*event)(const PropertyObject&), const PropertyObject& object) const;
    void cleanKind(const QString& kind, const std::function<QString(const QString&)>& cleaned);

    jet::Database& m_database;
    const platform::Clock& m_clock;
    QList<PropertyObserver*> m_observers;
};

} // namespace data
