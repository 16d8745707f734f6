#include "app/References.h"

#include "app/Session.h"

namespace app {

References::References(Session& session)
    : m_context{[&session] { return session.nextId(); }, {},
                std::make_shared<editing::ProjectRecords>(session.database(), session.dictionary(),
                                                          session.properties())},
      m_world{session.database(), session.surroundings().clock, session.surroundings().dialogues, m_context,
              &session.form()},
      m_taxa(m_world), m_places(m_world, session.surroundings().applicationFolder), m_people(m_world),
      m_links(m_taxa, m_places, m_people)
{
    m_context.names = std::make_shared<reference::ProjectNames>(m_taxa, m_places, m_people);
    m_world.editing = m_context;
    for (reference::ReferenceList* list : {static_cast<reference::ReferenceList*>(&m_taxa),
                                           static_cast<reference::ReferenceList*>(&m_places),
                                           static_cast<reference::ReferenceList*>(&m_people)})
        list->setNames(m_context.names);
}

} // namespace app
