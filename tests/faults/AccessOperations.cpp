#include "AccessOperations.h"

#include "Project.h"
#include "app/AccessImport.h"
#include "app/ProjectFiles.h"

#include <QFile>
#include <QFileInfo>
#include <stdexcept>

namespace faults {

using namespace Qt::StringLiterals;

namespace {

const QString projectFile = u"projet.hbx"_s;
const QString oldFile = u"ancien.mdb"_s;

void prepare(const QString& folder)
{
    if (!QFile::copy(u"" HERBORA_ACCESS_SAMPLE ""_s, folder + u'/' + oldFile))
        throw std::runtime_error("l'ancienne base n'a pas pu être copiée");
}

bool convert(const QString& folder)
{
    Workplace place(folder);
    platform::NoProgression progression;
    try {
        app::convertAccess(place.session().surroundings(), {folder + u'/' + oldFile, folder + u'/' + projectFile},
                           progression);
        return true;
    } catch (const jet::Error& error) {
        return say(error.description());
    }
}

/// The user tries again when there is no project. An opening would bring it up to date, which is another operation; of
/// that only the first thing is done here: unfinished files go.
void convertUnlessThere(const QString& folder)
{
    const QString project = folder + u'/' + projectFile;
    if (QFileInfo::exists(project))
        app::removeStrayFiles(project);
    else if (!convert(folder))
        throw std::runtime_error("l'ancienne base ne peut plus être convertie");
}

QString state(const QString& folder)
{
    return fingerprint(folder + u'/' + projectFile);
}

} // namespace

std::vector<Operation> accessOperations()
{
    return {{u"importer-access"_s, prepare, convert, convertUnlessThere, state, {projectFile, oldFile}, {oldFile}}};
}

} // namespace faults
