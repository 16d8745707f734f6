// What the trees, lists and browsers of the reference lists work with.
#pragma once

#include "data/FieldType.h"
#include "data/PropertyStore.h"
#include "editing/FieldInput.h"
#include "editing/ReferenceSearch.h"
#include "platform/Progression.h"
#include "reference/AddressOpener.h"
#include "reference/Referring.h"
#include "reference/WebLinks.h"

#include <QIcon>
#include <QObject>
#include <functional>

namespace editing {
class ReferenceChooser;
}
namespace platform {
class TaskRunner;
}

namespace reference {

using LongWork = std::function<void(platform::Progression&)>;

/// Belongs to one open project; every tab and dialog on its lists shares it. The functions are never empty.
struct ReferenceWorld {
    jet::Database& database;
    Cl_Taxon& taxa;
    Cl_Localité& places;
    Cl_Collecteur& people;
    const WebLinks& links;
    data::PropertyStore& store;
    platform::Dialogues& dialogues;
    editing::FormDialogue& form;
    editing::EditingContext context;
    AddressOpener& opener;
    Referring referring;
    editing::ReferenceSearch search;
    editing::FieldInput input;
    editing::ReferenceChooser* chooser = nullptr;
    bool readOnly = false;

    platform::TaskRunner* runner = nullptr; ///< Who takes the database away for a while; null: nobody.
    /// Does long work beside the windows and comes back when it is done; what it throws is thrown here.
    std::function<void(const QString& title, const LongWork&)> beside = [](const QString&, const LongWork& work) {
        platform::NoProgression none;
        work(none);
    };
    /// Shows individuals as rows of their own.
    std::function<void(const QString& title, const QList<qint32>& individuals)> showIndividuals =
        [](const QString&, const QList<qint32>&) {};
    /// Tells everybody that rows of a table were written.
    std::function<void(const QString& table)> written = [](const QString&) {};
    std::function<QIcon(const QString& name)> icon = [](const QString& name) { return QIcon::fromTheme(name); };
    /// What windows remember from one start to the next.
    std::function<QVariant(const QString& key)> remembered = [](const QString&) { return QVariant(); };
    std::function<void(const QString& key, const QVariant&)> remember = [](const QString&, const QVariant&) {};

    /// The database is another thread's for a while: nothing may be read or written.
    bool isAway() const;
    /// Runs what a user asked for, at once or when the database is back; not at all when the object is gone by then.
    void whenHere(QObject* owner, const std::function<void()>& work) const;
    /// Comes back when the database is here.
    void waitHere() const;
    /// Work on many rows that the user may stop; the failure of the work is said.
    void workLong(const QString& title, const std::function<void()>& work);

    /// The list behind a type code, its table, and the kind of its web links.
    ReferenceList& list(int type) const
    {
        if (type == data::Taxon)
            return taxa;
        return type == data::Localité ? static_cast<ReferenceList&>(places) : people;
    }
    static QString table(int type)
    {
        return type == data::Taxon      ? QStringLiteral("Taxons")
               : type == data::Localité ? QStringLiteral("Localités")
                                        : QStringLiteral("Collecteurs");
    }
    static QString linksKind(int type)
    {
        return type == data::Taxon ? linksTaxons : type == data::Localité ? linksLocalités : linksBotanistes;
    }
    QString name(int type, qint32 id) const
    {
        if (type == data::Taxon)
            return taxa.NomTaxon(id, 0);
        return type == data::Localité ? places.NomLocalité(id, 1) : people.NomBotaniste(id, 0);
    }
};

} // namespace reference
