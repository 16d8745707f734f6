// Changes of the structure of the open project.
#include "app/References.h"
#include "app/Session.h"

#include <QLoggingCategory>

namespace app {

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(restructuringLog, "herbora.session")

} // namespace

/// Selections of modules that are no more.
void Session::forgetSelections()
{
    m_selections.removeIf([this](const auto& selection) { return !m_dictionary->module(selection.key()); });
}

bool Session::changeStructure(const std::function<void()>& work)
{
    // Their descriptors know the fields as they were.
    m_references.reset();
    QString failure;
    try {
        jet::Operation operation(*m_database, u"Modification de la structure"_s);
        work();
        connectModules();
        operation.commit();
        forgetSelections();
        return true;
    } catch (const jet::Error& error) {
        qCWarning(restructuringLog).noquote() << "structure:" << error.number() << error.description();
        failure = error.description();
    } catch (const std::exception& error) {
        failure = QString::fromUtf8(error.what());
    }
    try {
        connectModules();
    } catch (const jet::Error& error) {
        qCWarning(restructuringLog).noquote() << "structure:" << error.number() << error.description();
    }
    m_surroundings.dialogues.tell(u"La structure n'a pas été enregistrée :\n"_s + failure, u"Herbora"_s,
                                  platform::BoxIcon::Stop);
    return false;
}

} // namespace app
