// The one open project and everything loaded from it.
#pragma once

#include "app/Addins.h"
#include "app/HostBase.h"
#include "data/Dictionary.h"
#include "data/PropertyStore.h"
#include "editing/FormDialogue.h"
#include "jet/Database.h"
#include "platform/Clock.h"
#include "platform/Dialogues.h"
#include "platform/FileAssociation.h"
#include "platform/Progression.h"
#include "platform/Settings.h"

#include <QHash>
#include <functional>
#include <memory>

namespace app {

class References;

/// What the session needs of the world around it.
struct Surroundings {
    platform::Dialogues& dialogues;
    platform::Clock& clock;
    platform::Settings& settings;
    QString applicationFolder;
    QString version;
};

/// Opens, creates and optimises projects; holds the open database, its dictionary and property store.
///
/// Messages go through Dialogues, progress through Progression; nothing here knows a window. One project is
/// open at a time. No member throws: a failure is said to the user and gives false.
class Session {
public:
    explicit Session(Surroundings surroundings);
    ~Session();

    bool isOpen() const;
    QString path() const;        ///< Canonical path; empty when nothing is open.
    QString projectName() const; ///< File name with its extension.
    bool readOnly() const;

    /// Creates the file with the core tables and modules and those given (readyStructures), then opens it. With
    /// `replace` a project that stands there is kept under its name with ".bak"; anything else there is never replaced.
    bool create(const QString& path, platform::Progression& progression, const QList<data::ModuleRecord>& modules = {},
                bool replace = false);
    /// The opening sequence in twelve steps. A failure leaves no project open.
    bool open(const QString& path, platform::Progression& progression);
    void close();
    /// Writes a copy of the open project under another name; a project that stands there is kept with ".bak", as create
    /// does. False when it failed (said to the user) or was cancelled; then nothing is left of it.
    bool saveCopy(const QString& path, platform::Progression& progression);
    /// Asks, repairs links, compacts with a backup, opens the compacted file.
    bool optimise(platform::Progression& progression);
    /// The two halves of it, for who has something to put away between them.
    bool confirmOptimise() const;
    bool optimiseConfirmed(platform::Progression& progression);
    /// The file that start-up opens: the one named, else that of the setting. When it is missing and its backup is
    /// there, offers to restore it. Empty when there is none.
    QString startFile(const QString& named);
    /// Asks whether project files should open with this program when they do not.
    void checkAssociation(platform::FileAssociation& association);

    /// Runs work on the dictionary and its tables as one named operation, then reads the modules anew and attaches the
    /// add-ins to them. Nothing of the reference lists may be in use. False when it failed, which is said: file and
    /// session are as before.
    bool changeStructure(const std::function<void()>& work);

    jet::Database& database() const;
    data::Dictionary& dictionary() const;
    data::PropertyStore& properties() const;
    /// The modules of the project in their order, those whose library could not be connected among them.
    const QList<data::ModuleRecord>& modules() const;
    /// What serves the connected modules ("ColAddin").
    Addins& addins() const;
    /// What add-ins call back.
    HostBase& host() { return *m_host; }
    /// The reference lists, one of each for every window; made when they are first asked for.
    References& references();
    /// Shows forms through what was given last; false without it.
    editing::FormDialogue& form() { return m_form; }
    /// Null takes it away.
    void setForm(editing::FormDialogue* form) { m_form.target = form; }
    /// The folder of the add-in libraries.
    QString addinFolder() const;
    /// A number that this session has not given before.
    qint32 nextId() { return ++m_counter; }
    /// Records in the floating selection of a module.
    QList<qint32>& selection(const QString& module);
    int selectionCount(const QString& module) const;

    const Surroundings& surroundings() const { return m_surroundings; }

private:
    /// The lists are made once, the window that shows forms may come and go.
    struct Form : editing::FormDialogue {
        bool edit(const QString& title, editing::Cl_Editions& form,
                  const std::function<bool(editing::Cl_Editions&)>& save) override
        {
            return target && target->edit(title, form, save);
        }
        editing::FormDialogue* target = nullptr;
    };

    void runOpening(const QString& path, platform::Progression& progression);
    void openFile(const QString& path);
    void validateStructure();
    void connectModules();
    void forgetSelections();
    void reportOpening(const jet::Error& error);

    Surroundings m_surroundings;
    std::unique_ptr<jet::Database> m_database;
    std::unique_ptr<data::Dictionary> m_dictionary;
    std::unique_ptr<data::PropertyStore> m_properties;
    Form m_form;
    std::unique_ptr<References> m_references;
    std::unique_ptr<HostBase> m_host;
    std::unique_ptr<Addins> m_addins;
    QHash<QString, QList<qint32>> m_selections;
    qint32 m_counter = 0;
};

} // namespace app
