#include "app/BuiltInAddins.h"

#include "app/ModuleFields.h"
#include "data/CoreModules.h"

namespace app {

bool DictionaryAddin::IndividuMixteUnique() const
{
    return m_module.flags & data::MixteUnique;
}

bool DictionaryAddin::IndividuUnique() const
{
    return m_module.individuUnique();
}

QString DictionaryAddin::MenuString() const
{
    return m_module.label.isEmpty() ? m_module.name : m_module.label;
}

addin::TabEditions DictionaryAddin::GetTabEditions()
{
    return fieldsOf(m_module);
}

Cl_Individu::Cl_Individu() : DictionaryAddin(data::coreIndividus()) {}

CL_Identification::CL_Identification() : DictionaryAddin(data::coreDéterminations()) {}

} // namespace app
