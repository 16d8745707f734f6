// Mesures d'un arbre sur pied : circonférence, hauteurs, houppier, surface terrière.
#pragma once

#include "addin/Base.h"
#include "addin/gtAddin.h"

#include <QObject>

/// Le module « Dendrométrie ».
class ModuleDendrometrie : public addin::gtAddin {
public:
    void connecter(addin::Base* hote) { m_hote = hote; }

    QString NomModule() const override;
    QString NomObjet() const override;
    QString MenuString() const override;
    QString Version() const override;
    QByteArray Icone() const override;
    addin::TabEditions GetTabEditions() override;

    bool RaiseEvents() const override { return true; }
    /// Les méthodes de mesure données par le complément restent dans la liste.
    void ItemAction(const QString& action, const QVariantList& arguments, bool& cancel) override;

    /// La table du module est là : la surface terrière y est mise à jour.
    void SetRecordset(addin::Rows* rows) override;

private:
    void calculerSurfaces();

    addin::Base* m_hote = nullptr;
};

/// L'objet d'entrée de la bibliothèque.
class Dendrometrie : public QObject, public addin::Plugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID HerboraPlugin_iid)
    Q_INTERFACES(addin::Plugin)
public:
    int InterfaceVersion() const override { return addin::interfaceVersion; }
    addin::gtAddin* Connexion(addin::Base* host) override;

private:
    ModuleDendrometrie m_module;
};
