// Stored objects that come and go while a project is open.
#pragma once

#include "app/Session.h"

#include <functional>

namespace app {

/// Watches the property store of the open project and asks for the tree to be shown anew. To be made for each project
/// that is opened; the store of a closed one has forgotten it.
class TreeObjects : public data::PropertyObserver {
public:
    TreeObjects(const Session& session, std::function<void()> changed);
    ~TreeObjects() override;

    void objectAdded(const data::PropertyObject& object) override;
    void objectRemoved(const data::PropertyObject& object) override;

private:
    const Session& m_session;
    const data::PropertyStore* m_store;
    std::function<void()> m_changed;
};

} // namespace app
