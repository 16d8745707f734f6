#include "jet/FileProbe.h"

#include "jet/Catalog.h"
#include "jet/Error.h"

#include <QFileInfo>
#include <QStorageInfo>
#include <QtEndian>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace jet {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 headerSize = 100;
const QByteArray magic("SQLite format 3", 16); // with its NUL

quint32 word(const QByteArray& header, int offset)
{
    return qFromBigEndian<quint32>(header.constData() + offset);
}

[[noreturn]] void refuse(const QString& path, const QString& what)
{
    throw Error(3343, u"Le fichier « %1 » n'est pas une base de données d'Herbora : %2 ; choisissez un autre "
                      u"fichier. Il n'a pas été modifié."_s.arg(path, what));
}

[[noreturn]] void failOpening(const QString& path)
{
    fail(errno == ENOENT ? 3024 : errno == EIO ? 3043 : 3051, path);
}

bool looksLikeText(const QByteArray& bytes)
{
    if (QString::fromUtf8(bytes).contains(QChar::ReplacementCharacter))
        return false;
    return std::none_of(bytes.begin(), bytes.end(),
                        [](char c) { return uchar(c) < 0x20 && c != '\t' && c != '\n' && c != '\r'; });
}

/// What a file that is none of ours is, as far as its first bytes tell.
QString kindOf(const QByteArray& bytes)
{
    static const struct { QByteArray start; QString kind; } kinds[] = {
        {"\xFF\xD8\xFF", u"c'est une image JPEG"_s},
        {"\x89PNG", u"c'est une image PNG"_s},
        {"GIF8", u"c'est une image GIF"_s},
        {"BM", u"c'est une image BMP"_s},
        {QByteArray("II*\0", 4), u"c'est une image TIFF"_s},
        {QByteArray("MM\0*", 4), u"c'est une image TIFF"_s},
        {"%PDF", u"c'est un document PDF"_s},
        {QByteArray("PK\x03\x04", 4), u"c'est une archive ou un document compressé"_s},
    };
    if (bytes.isEmpty())
        return u"il est vide"_s;
    for (const auto& one : kinds) {
        if (bytes.startsWith(one.start))
            return one.kind;
    }
    // A letter may be cut at the end of what was read.
    for (int cut = 0; cut < 4 && cut < bytes.size(); ++cut) {
        if (looksLikeText(bytes.chopped(cut)))
            return u"c'est un texte"_s;
    }
    return u"son contenu n'est pas reconnu"_s;
}

bool isOldDatabase(const QByteArray& bytes)
{
    const QByteArray name = bytes.mid(4, 15);
    return name == "Standard Jet DB" || name == "Standard ACE DB";
}

[[noreturn]] void refuseOldDatabase(const QString& path)
{
    throw Error(3343, u"Le fichier « %1 » est une ancienne base Access : elle doit être importée et ne peut pas "
                      u"être ouverte directement. Elle n'a pas été modifiée."_s.arg(path));
}

[[noreturn]] void failDamaged(const QString& path, const QString& how)
{
    fail(3049, path, how);
}

/// Without a journal that could lengthen it again, a file is as long as its header says.
void checkLength(const FileProbe& file, const QByteArray& header, qint64 size)
{
    const quint32 stated = qFromBigEndian<quint16>(header.constData() + 16);
    const qint64 pageSize = stated == 1 ? 65536 : stated;
    const qint64 pages = word(header, 28);
    const bool countIsValid = word(header, 24) == word(header, 92) && pages > 0;
    if (file.hasJournal || !countIsValid || size >= pages * pageSize)
        return;
    failDamaged(file.path, u"il est tronqué, %1 octets sur %2 sont présents"_s.arg(
                               QString::number(size), QString::number(pages * pageSize)));
}

void checkIdentity(const FileProbe& file, const QByteArray& header, qint64 size)
{
    if (word(header, 68) != applicationId) {
        refuse(file.path, u"c'est une base SQLite d'un autre programme"_s);
    }
    const auto layout = qint32(word(header, 60));
    if (layout > layoutVersion)
        fail(3041, file.path);
    if (layout < 1)
        failDamaged(file.path, u"son en-tête est incomplet"_s);
    checkLength(file, header, size);
}

/// Reads up to `count` bytes from the start.
QByteArray firstBytes(const QString& path, qint64 count, qint64& size)
{
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
    if (descriptor < 0)
        failOpening(path);
    struct stat status {};
    QByteArray bytes(count, '\0');
    const bool known = ::fstat(descriptor, &status) == 0;
    const ssize_t read = known ? ::pread(descriptor, bytes.data(), size_t(count), 0) : -1;
    const int code = errno;
    ::close(descriptor);
    errno = code;
    if (read < 0)
        failOpening(path);
    size = status.st_size;
    bytes.truncate(read);
    return bytes;
}

} // namespace

FileProbe probeFile(const QString& path)
{
    const QFileInfo info(path);
    if (path.isEmpty() || !info.absoluteDir().exists())
        fail(3044, path);
    FileProbe file;
    file.path = info.canonicalFilePath();
    struct stat status {};
    if (file.path.isEmpty() || ::stat(QFile::encodeName(file.path).constData(), &status) != 0)
        fail(3024, path);
    if (S_ISDIR(status.st_mode))
        throw Error(3044, u"« %1 » est un dossier ; choisissez un fichier."_s.arg(path));
    if (!S_ISREG(status.st_mode))
        refuse(path, u"ce n'est pas un fichier ordinaire"_s);
    // Under its other name it could be opened a second time, with a journal of another name.
    if (status.st_nlink > 1)
        throw Error(3050, u"Le fichier « %1 » porte plusieurs noms (liens physiques) : l'ouvrir mettrait ses données "
                          u"en danger ; faites-en une copie et ouvrez-la."_s.arg(path));
    const QFileInfo target(file.path);
    const QFileInfo folder(target.absolutePath());
    file.writable = target.isWritable() && folder.isWritable() && !QStorageInfo(folder.filePath()).isReadOnly();
    file.hasJournal = QFileInfo(file.path + u"-journal"_s).size() > 0 || QFileInfo(file.path + u"-wal"_s).size() > 0;
    return file;
}

void checkHeader(const FileProbe& file)
{
    qint64 size = 0;
    const QByteArray header = firstBytes(file.path, headerSize, size);
    if (isOldDatabase(header))
        refuseOldDatabase(file.path);
    if (header.startsWith(magic)) {
        if (header.size() < headerSize)
            failDamaged(file.path, u"il est tronqué"_s);
        return checkIdentity(file, header, size);
    }
    if (header.size() == headerSize && word(header, 68) == applicationId)
        failDamaged(file.path, u"son en-tête est altéré"_s);
    refuse(file.path, kindOf(header));
}

bool isOnNetwork(const QString& path)
{
    static const QByteArray systems[] = {"nfs", "nfs4", "cifs", "smb3", "smbfs", "fuse.sshfs", "9p", "afs", "ceph"};
    const QByteArray system = QStorageInfo(QFileInfo(path).absolutePath()).fileSystemType();
    return std::find(std::begin(systems), std::end(systems), system) != std::end(systems);
}

} // namespace jet
