// The reference lists of the open project, and the descriptors' names made from them.
#pragma once

#include "editing/ProjectRecords.h"
#include "reference/ProjectNames.h"
#include "reference/WebLinks.h"

namespace app {

class Session;

/// One of each for the whole program, so that its signals reach every window. Belongs to the open project: made when it
/// is first asked for, gone before the file is closed. To be used by one thread at a time, as the database.
class References {
public:
    explicit References(Session& session);

    reference::Cl_Taxon& taxa() { return m_taxa; }
    reference::Cl_Localité& places() { return m_places; }
    reference::Cl_Collecteur& people() { return m_people; }
    const reference::WebLinks& links() const { return m_links; }
    /// What descriptors are made with: numbers, names, records.
    const editing::EditingContext& context() const { return m_context; }
    /// The world that the lists were made with.
    const reference::ReferenceContext& world() const { return m_world; }

private:
    editing::EditingContext m_context;
    reference::ReferenceContext m_world;
    reference::Cl_Taxon m_taxa;
    reference::Cl_Localité m_places;
    reference::Cl_Collecteur m_people;
    reference::WebLinks m_links;
};

} // namespace app
