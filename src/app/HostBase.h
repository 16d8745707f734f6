// The host object that add-ins are handed.
#pragma once

#include "addin/Base.h"
#include "app/HostViews.h"

namespace jet {
class Database;
}

namespace app {

class Session;

/// Answers from the state of the session and, where there are windows, from theirs. Failures are trapped: an add-in
/// gets the empty answer, the log the reason. Lives as long as the session, over several projects.
class HostBase : public addin::Base {
public:
    explicit HostBase(Session& session);
    ~HostBase() override;

    /// The windows; null for none. They must outlive the session or be taken away before.
    void setViews(HostViews* views) { m_views = views; }
    bool EditItem(const QString& key) override;
    addin::TabEditions GetEditObject(const QString& module, qint32 id) override;
    QString OLEFiletype(const QString& file) override;
    QVariant PropertyGet(const QString& kind, const QString& module, const QString& name) override;
    bool PropertyLet(const QString& kind, const QString& module, const QString& name, const QString& value) override;
    QString Botaniste(qint32 id) override;
    qint32 Détermination(qint32 individu) override;
    quintptr Hwnd() override;
    QString GetFileName() override;
    qint32 Individu() override;
    QString Localité(qint32 id) override;
    QString CurrentSQL() override;
    QString ActiveModule() override;
    int CountSel() override;
    QString ModeRun() override;
    void UpdateBase(const QString& module) override;
    QList<qint32> SelectedIDIndividu() override;
    QList<qint32> SelectedIDItems() override;
    QList<qint32> AllIDItems() override;
    QString Taxon(qint32 id) override;
    QList<QVariantList> mdbase(const QString& statement, QString* error) override;
    QVariant Valeur(const QString& module, qint32 id, const QString& column) override;
    bool Wizard(const QString& title, addin::TabEditions& fields) override;

private:
    Session& m_session;
    HostViews* m_views = nullptr;
};

} // namespace app
