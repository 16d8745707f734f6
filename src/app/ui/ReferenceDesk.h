// The browsers of the taxa, localities and collectors in the main window.
#pragma once

#include "app/ui/Desk.h"

namespace reference {
class AddressOpener;
class Chooser;
class ReferenceBrowser;
struct ReferenceWorld;
} // namespace reference

namespace app {

/// One tab for each list. The desk also serves the fields that name rows of the lists (Workplace::chooser), follows web
/// links and imports checklists.
class ReferenceDesk : public Desk {
    Q_OBJECT
public:
    explicit ReferenceDesk(Workplace& place);
    ~ReferenceDesk() override;

    void install(QMenuBar& bar, TreeCommands& tree) override;
    void projectOpened() override;
    void projectClosing() override;
    void showBusy(bool busy) override;
    void photograph(Photographer& photographer) override;

    /// The tab of a list ("Taxons", "Localités", "Collecteurs"), opened where it is not; null without a project.
    reference::ReferenceBrowser* browse(const QString& table);
    /// The tab of a list where it is open; null otherwise.
    reference::ReferenceBrowser* opened(const QString& table) const;
    /// Takes web addresses instead of the desktop.
    void setOpener(std::unique_ptr<reference::AddressOpener> opener);

private:
    void show(const QString& table, qint32 id);
    void importTaxa();
    void followWritten(const QStringList& modules);

    std::unique_ptr<reference::AddressOpener> m_opener;
    std::shared_ptr<reference::ReferenceWorld> m_world; ///< Null while no project is open.
    std::unique_ptr<reference::Chooser> m_chooser;
    QList<QAction*> m_actions;
    bool m_telling = false; ///< What is written comes from a browser itself.
};

} // namespace app
