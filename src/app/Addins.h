// The add-ins of the open project.
#pragma once

#include "addin/Base.h"
#include "addin/gtAddin.h"
#include "data/Dictionary.h"

#include <QLoggingCategory>
#include <map>

namespace app {

/// The collection "ColAddin": what serves each connected module, by module name.
///
/// Filled anew by every opening, in its order: connectAll, synchronise, (the dictionary is purged), attach. Nothing that
/// a library does wrong gets further than a message; only one that crashes takes the program with it.
class Addins {
public:
    Addins(QString folder, addin::Base& host, platform::Dialogues& dialogues);
    ~Addins();

    /// Connects the built-in modules, then offers the host to every library of the folder. The first error ends that, with
    /// a critical box; a library made for other headers is passed over with a box. A module that the project's user
    /// defined, or that is connected already, stays as it is.
    void connectAll(const data::Dictionary& dictionary);
    /// Brings the dictionary rows and tables of the connected modules up to date. One whose definitions do not hold is
    /// dropped with a critical box, and the file is as it was before it.
    void synchronise(jet::Database& database, data::Dictionary& dictionary);
    /// The modules whose rows stay: connected ones, the user's, and those whose library is in the folder but could not be
    /// connected; that is a mishap, which must not cost their records.
    QStringList keptModules(const QList<data::ModuleRecord>& modules) const;
    /// Says once for each library that the folder lacks that it is missing.
    void reportMissing(const QList<data::ModuleRecord>& modules);
    /// Attaches what serves each module of the dictionary, with its rows. A connected module that is not among them is
    /// dropped.
    void attach(jet::Database& database, const QList<data::ModuleRecord>& modules);

    bool isEmpty() const { return m_items.empty(); }
    QStringList names() const;
    /// What serves a module; null when it is not connected.
    addin::gtAddin* item(QStringView module) const;
    /// The fields of a module as a form wants them, not bound to a record: what the dictionary says, with what only the
    /// add-in knows (masks, own menus, formats, locked fields).
    addin::TabEditions fields(const data::ModuleRecord& module) const;
    /// Passes an action on list items on to the module's add-in, where it wants that.
    void itemAction(const QString& module, const QString& action, const QVariantList& arguments, bool& cancel);

private:
    struct Item;
    Item* find(QStringView module) const;
    void connectBuiltIn();
    addin::Plugin* pluginOf(const QString& file);
    void connectLibrary(const QString& file, const data::Dictionary& dictionary);
    bool hasLibrary(const QString& name) const;
    void reportCritical(const jet::Error& error);

    QString m_folder;
    addin::Base& m_host;
    platform::Dialogues& m_dialogues;
    QStringList m_libraries; ///< Names of the libraries in the folder.
    std::vector<std::unique_ptr<Item>> m_items;
};

} // namespace app
