#include "app/ui/Workplace.h"

#include "app/Session.h"
#include "app/ui/Desk.h"

namespace app {

Workplace::Workplace(Session& session, platform::TaskRunner& runner, platform::Dialogues& dialogues,
                     WindowState& state, Documents& documents, QWidget& window, QObject* parent)
    : QObject(parent), m_session(session), m_runner(runner), m_dialogues(dialogues), m_state(state),
      m_documents(documents), m_window(window)
{
}

editing::FormDialogue& Workplace::form() const
{
    return m_session.form();
}

void Workplace::fail(const QString& title, const QString& description)
{
    m_dialogues.tell(description, title, platform::BoxIcon::Stop);
}

bool Desk::isOpen() const
{
    return session().isOpen();
}

} // namespace app
