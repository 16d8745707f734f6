// Projects that older versions of the program kept in Access files, made into projects of today.
#pragma once

#include "jet/access/Transfer.h"
#include "platform/Progression.h"

#include <optional>

namespace app {

class Session;
struct Surroundings;

/// The name of the database property that keeps the report with the project.
inline const QString importReportProperty = QStringLiteral("RapportImportation");

/// What is to be converted into what.
struct AccessPlan {
    QString source;
    QString target; ///< Nothing stands there.
    QString password = {};
};

/// The name of the converted project beside its source: "name (converti).hbx", numbered when that is taken.
QString convertedPath(const QString& source);

/// Asks the one question that says what will happen, where the project shall stand when it cannot stand beside the
/// old file, and the password when the file has one. Nothing when the user declines or the file cannot be converted,
/// which is said.
std::optional<AccessPlan> planConversion(const Surroundings& surroundings, const QString& source);
/// Asks for the password of the source, if it has one, until it is the right one. False like planConversion.
bool askPassword(const Surroundings& surroundings, AccessPlan& plan);

/// Converts as one operation: the new project is there whole or not at all, the old file is only read. Modules whose
/// provider nobody has are kept as the user's own, so that no opening purges them. Gives the report. Throws jet::Error;
/// 3059 when the user stopped it.
QString convertAccess(const Surroundings& surroundings, const AccessPlan& plan, platform::Progression& progression);

/// convertAccess, then the opening sequence on the new project. A failure is said to the user and gives false; the
/// project that is open stays open unless the new one could be made.
bool convertAndOpen(Session& session, const AccessPlan& plan, platform::Progression& progression);

} // namespace app
