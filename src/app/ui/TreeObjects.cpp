#include "app/ui/TreeObjects.h"

namespace app {

TreeObjects::TreeObjects(const Session& session, std::function<void()> changed)
    : m_session(session), m_store(&session.properties()), m_changed(std::move(changed))
{
    session.properties().addObserver(this);
}

TreeObjects::~TreeObjects()
{
    if (m_session.isOpen() && &m_session.properties() == m_store)
        m_session.properties().removeObserver(this);
}

void TreeObjects::objectAdded(const data::PropertyObject&)
{
    m_changed();
}

void TreeObjects::objectRemoved(const data::PropertyObject&)
{
    m_changed();
}

} // namespace app
