#include "platform/SystemReason.h"

#include <QFileDevice>
#include <cerrno>

namespace platform {

using namespace Qt::StringLiterals;

QString systemReason(int code)
{
    switch (code) {
    case ENOSPC:
    case EDQUOT: return u"il n'y a plus de place sur le disque"_s;
    case EACCES:
    case EPERM: return u"les droits ne suffisent pas"_s;
    case EROFS: return u"le disque est protégé en écriture"_s;
    case ENOENT: return u"ce fichier ou son dossier n'existe pas"_s;
    case ENOTDIR: return u"son dossier n'en est pas un"_s;
    case EISDIR: return u"c'est un dossier"_s;
    case EEXIST: return u"ce nom est déjà pris"_s;
    case ENAMETOOLONG: return u"le nom est trop long"_s;
    case EFBIG: return u"le fichier serait trop grand"_s;
    case EBUSY:
    case ETXTBSY: return u"le fichier est utilisé par un autre programme"_s;
    case EMFILE:
    case ENFILE: return u"trop de fichiers sont ouverts"_s;
    case EIO: return u"le disque ne répond pas comme il devrait"_s;
    default: return u"erreur %1 du système"_s.arg(code);
    }
}

QString fileReason(const QFileDevice& file, int code)
{
    switch (file.error()) {
    case QFileDevice::PermissionsError: return systemReason(EACCES);
    case QFileDevice::ResourceError: return systemReason(code == 0 ? ENOSPC : code);
    default: break;
    }
    // A write that ends short says nothing: the disk took what it could.
    return systemReason(code != 0 ? code : file.isWritable() ? ENOSPC : EIO);
}

} // namespace platform
