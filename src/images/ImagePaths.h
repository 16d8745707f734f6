// Where pictures lie.
#pragma once

#include "data/PropertyStore.h"

#include <QStringList>

namespace images {

/// The declared folders of a project, in their order: property "Paths" of the object "Images" of the kind
/// "ImagePaths", joined by ";".
QStringList imageFolders(const data::PropertyStore& store);
void setImageFolders(data::PropertyStore& store, const QStringList& folders);

/// The file of a stored name: the name itself when it names a file, else the first folder that has it; empty when
/// none does. A "\" in a stored name separates folders like "/".
QString findPicture(const QString& name, const QStringList& folders);
/// How a picture file is kept in a record: relative to the folder from which findPicture finds it again, else its path.
QString storedName(const QString& path, const QStringList& folders);
/// What is said of a name that is not found.
QString pictureMissing(const QString& name);

} // namespace images
