#include "images/ImagePaths.h"

#include <QDir>
#include <QFileInfo>

namespace images {

using namespace Qt::StringLiterals;

namespace {

const QString kind = u"ImagePaths"_s;
const QString owner = u"Images"_s;
const QString name = u"Paths"_s;

} // namespace

QStringList imageFolders(const data::PropertyStore& store)
{
    QStringList folders;
    for (const QString& folder : store.value(kind, owner, name).toString().split(u';', Qt::SkipEmptyParts)) {
        if (!folder.trimmed().isEmpty())
            folders << folder.trimmed();
    }
    return folders;
}

void setImageFolders(data::PropertyStore& store, const QStringList& folders)
{
    store.put(kind, owner, name, folders.join(u';'));
}

QString findPicture(const QString& stored, const QStringList& folders)
{
    if (stored.isEmpty())
        return {};
    if (QFileInfo(stored).isFile())
        return stored;
    const QString relative = QString(stored).replace(u'\\', u'/');
    for (const QString& folder : folders) {
        const QString path = QDir(folder).filePath(relative);
        if (QFileInfo(path).isFile())
            return path;
    }
    return {};
}

QString storedName(const QString& path, const QStringList& folders)
{
    const QString file = QFileInfo(path).absoluteFilePath();
    for (const QString& folder : folders) {
        const QString base = QDir(folder).absolutePath();
        if (!file.startsWith(base + u'/'))
            continue;
        const QString relative = file.mid(base.size() + 1);
        // A file of the same name in an earlier folder would be taken for it.
        if (QFileInfo(findPicture(relative, folders)).absoluteFilePath() == file)
            return relative;
    }
    return path;
}

QString pictureMissing(const QString& stored)
{
    return u"L'image "_s + stored + u" est introuvable dans les répertoires déclarés"_s;
}

} // namespace images
