// The modules that need no library, served like those that do.
#pragma once

#include "addin/gtAddin.h"
#include "data/Modules.h"

namespace app {

/// Serves a module from its dictionary rows: one that the user defined, or one of the program.
class DictionaryAddin : public addin::gtAddin {
public:
    explicit DictionaryAddin(const data::ModuleRecord& module) : m_module(module) {}

    /// Takes over what the dictionary says now (the user's own fields among the program's).
    void setModule(const data::ModuleRecord& module) { m_module = module; }

    bool IndividuMixteUnique() const override;
    bool IndividuUnique() const override;
    QString MenuString() const override;
    QByteArray Icone() const override { return m_module.icon; }
    QString Version() const override { return m_module.version; }
    addin::TabEditions GetTabEditions() override;
    QString NomModule() const override { return m_module.name; }
    QString NomObjet() const override { return m_module.label; }

private:
    data::ModuleRecord m_module;
};

/// Serves `Individus`.
class Cl_Individu : public DictionaryAddin {
public:
    Cl_Individu();
};

/// Serves `Déterminations`.
class CL_Identification : public DictionaryAddin {
public:
    CL_Identification();
};

} // namespace app
