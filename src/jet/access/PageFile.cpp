#include "jet/access/PageFile.h"

#include <QFileInfo>
#include <QStringDecoder>
#include <array>
#include <cmath>
#include <numeric>

namespace jet::access {

using namespace Qt::StringLiterals;

namespace {

constexpr size_t cachedPages = 24;
const QByteArray magicJet("Standard Jet DB", 16); // with its NUL
const QByteArray magicAce("Standard ACE DB", 16);

/// The stream cipher RC4, applied in place.
void applyStream(const QByteArray& key, char* data, qsizetype size)
{
    std::array<quint8, 256> state;
    std::iota(state.begin(), state.end(), quint8(0));
    quint8 j = 0;
    for (size_t i = 0; i < state.size(); ++i) {
        j = quint8(j + state[i] + quint8(key[qsizetype(i) % key.size()]));
        std::swap(state[i], state[j]);
    }
    quint8 i = 0;
    j = 0;
    for (qsizetype at = 0; at < size; ++at) {
        j = quint8(j + state[++i]);
        std::swap(state[i], state[j]);
        data[at] = char(quint8(data[at]) ^ state[quint8(state[i] + state[j])]);
    }
}

QByteArray littleEndian(quint32 number)
{
    QByteArray bytes(4, '\0');
    qToLittleEndian(number, bytes.data());
    return bytes;
}

[[noreturn]] void refuse(const QString& path, const QString& why)
{
    throw Error(3343, u"Le fichier « %1 » ne peut pas être importé : %2. Il n'a pas été modifié."_s.arg(path, why));
}

bool hasMagic(const QByteArray& start)
{
    const QByteArray name = start.mid(header::magic, 16);
    return name == magicJet || name == magicAce;
}

/// The characters of code page 1252 that are not those of Latin-1.
QString from1252(const Bytes& bytes)
{
    static const char16_t special[] = u"\u20AC\u0081\u201A\u0192\u201E\u2026\u2020\u2021\u02C6\u2030\u0160\u2039\u0152"
                                      u"\u008D\u017D\u008F\u0090\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u02DC\u2122"
                                      u"\u0161\u203A\u0153\u009D\u017E\u0178";
    QString text(bytes.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const auto c = quint8(bytes.data()[i]);
        text[i] = c >= 0x80 && c < 0xA0 ? QChar(special[c - 0x80]) : QChar(char16_t(c));
    }
    return text;
}

/// The name of a code page for the text decoders; empty for those of which there is none.
QByteArray encodingName(int codePage)
{
    switch (codePage) {
    case 874: return "windows-874";
    case 932: return "Shift_JIS";
    case 936: return "GBK";
    case 949: return "EUC-KR";
    case 950: return "Big5";
    default: break;
    }
    return codePage >= 1250 && codePage <= 1258 ? "windows-" + QByteArray::number(codePage) : QByteArray();
}

} // namespace

bool isAccessFile(const QString& path)
{
    QFile file(path);
    return QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly) && hasMagic(file.read(header::masked));
}

QString fromCodePage(const Bytes& bytes, int codePage)
{
    const QByteArray name = codePage == 1252 ? QByteArray() : encodingName(codePage);
    if (!name.isEmpty()) {
        QStringDecoder decoder(name.constData());
        if (decoder.isValid())
            return decoder(QByteArrayView(bytes.data(), bytes.size()));
    }
    return from1252(bytes);
}

PageFile::PageFile(const QString& path, const QString& password) : m_path(path), m_file(path)
{
    if (!QFileInfo(path).isFile())
        fail(3024, path);
    if (!m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        fail(3051, path);
    readHeader(password);
}

// --- The header ----------------------------------------------------------------------------------

void PageFile::readHeader(const QString& password)
{
    QByteArray head = m_file.read(jet3.pageSize);
    if (!hasMagic(head))
        fail(3343, m_path);
    m_version = quint8(head[header::version]);
    m_format = m_version == 0 ? &jet3 : &jet4;
    m_pageCount = quint32(qMin<qint64>(m_file.size() / m_format->pageSize, 0xFFFFFF));
    if (m_pageCount < 3 || head.size() < jet3.pageSize)
        damaged(u"il ne compte que %1 octets, moins que ses premières pages"_s.arg(m_file.size()));
    m_budget = 8 * m_file.size();
    const QByteArray key(reinterpret_cast<const char*>(header::maskKey), sizeof header::maskKey);
    applyStream(key, head.data() + header::masked, m_version == 0 ? header::maskedSize3 : header::maskedSize4);
    const Bytes bytes(head);
    checkKind(bytes);
    m_codePage = bytes.u16(header::codePage);
    m_pageKey = bytes.u32(header::pageKey);
    if (m_version >= 2 && m_pageKey != 0)
        refuse(m_path, u"il est chiffré par ACE (Access 2007 ou plus récent) ; ouvrez-le dans Access et retirez son "
                       u"mot de passe"_s);
    checkPassword(bytes, password);
}

/// Before Jet 3 the header was not masked and had other contents.
void PageFile::checkKind(const Bytes& head) const
{
    const bool known = head.u32(header::constants) == 0x100 && head.u32(header::constants + 4) == 0x101
                       && head.u32(header::objectsPage) == 2;
    if (known)
        return;
    if (m_version == 0)
        refuse(m_path, u"son format est antérieur à Jet 3 (Access 2.0 ou plus ancien) ; convertissez-le d'abord "
                       u"avec Access 97 à 2003"_s);
    damaged(u"son en-tête est altéré"_s);
}

void PageFile::checkPassword(const Bytes& head, const QString& password)
{
    QString own;
    if (m_version == 0) {
        const QByteArray bytes = head.part(header::password, header::passwordSize3).copy();
        own = fromCodePage(Bytes(bytes.constData(), qstrnlen(bytes.constData(), uint(bytes.size()))), m_codePage);
    } else {
        const double created = head.real(header::created);
        const auto days = std::isfinite(created) && std::abs(created) < 1e9 ? quint32(qint32(created)) : 0;
        for (int at = 0; at < header::passwordSize4; at += 4) {
            const quint32 two = head.u32(header::password + at) ^ days;
            own += QChar(char16_t(two & 0xFFFF));
            own += QChar(char16_t(two >> 16));
        }
        own.truncate(qMax<qsizetype>(0, own.indexOf(u'\0') < 0 ? own.size() : own.indexOf(u'\0')));
    }
    m_hasPassword = !own.isEmpty() && m_version < 2; // ACE keeps none here: with one it encrypts
    if (m_hasPassword && own != password)
        fail(3031, m_path);
}

QString PageFile::versionName() const
{
    switch (m_version) {
    case 0: return u"Jet 3 (Access 97)"_s;
    case 1: return u"Jet 4 (Access 2000 à 2003)"_s;
    case 2: return u"ACE (Access 2007)"_s;
    default: return u"ACE (Access 2010 ou plus récent)"_s;
    }
}

// --- Pages and rows ------------------------------------------------------------------------------

QByteArray PageFile::page(quint32 number)
{
    const auto known = m_cache.constFind(number);
    if (known != m_cache.constEnd())
        return *known;
    if (number >= m_pageCount)
        damaged(u"la page %1 est au-delà de sa fin"_s.arg(number));
    if (!m_file.seek(qint64(number) * m_format->pageSize))
        fail(3043, m_path);
    QByteArray bytes = m_file.read(m_format->pageSize);
    if (bytes.size() != m_format->pageSize)
        fail(3043, m_path);
    if (m_pageKey != 0 && number != 0)
        applyStream(littleEndian(m_pageKey ^ number), bytes.data(), bytes.size());
    if (m_cached.size() >= cachedPages) {
        m_cache.remove(m_cached.front());
        m_cached.pop_front();
    }
    m_cached.push_back(number);
    m_cache.insert(number, bytes);
    return bytes;
}

QByteArray PageFile::page(quint32 number, PageType type)
{
    const QByteArray bytes = page(number);
    if (quint8(bytes[0]) != type)
        damaged(u"la page %1 n'est pas du type attendu"_s.arg(number));
    return bytes;
}

quint32 PageFile::owner(quint32 number)
{
    if (m_owners.isEmpty()) {
        m_owners.fill(unusedPage, m_pageCount);
        for (quint32 one = 1; one < m_pageCount; ++one) {
            const QByteArray bytes = page(one);
            const bool empty = bytes[0] == 0 && bytes.count('\0') == bytes.size();
            if (!empty)
                m_owners[one] = quint8(bytes[0]) == DataPage ? owner(bytes) : otherPage;
        }
    }
    return number < m_pageCount ? m_owners[number] : unusedPage;
}

bool PageFile::spend(qint64 bytes)
{
    m_budget -= bytes;
    return m_budget >= 0;
}

int PageFile::rowsOn(const QByteArray& page) const
{
    const int most = (m_format->pageSize - m_format->dataSlots) / 2;
    return qMin<int>(Bytes(page).u16(m_format->dataRowCount), most);
}

std::optional<RowBytes> PageFile::row(const QByteArray& page, int row) const
{
    if (quint8(page[0]) != DataPage || row < 0 || row >= rowsOn(page))
        return {};
    const Bytes bytes(page);
    const int slot = m_format->dataSlots + 2 * row;
    const quint16 word = bytes.u16(slot);
    const int start = word & SlotOffset;
    const int end = row == 0 ? m_format->pageSize : bytes.u16(slot - 2) & SlotOffset;
    // No row reaches into the slots; rows that overlapped would let a small file hold any number of records.
    if (start < m_format->dataSlots + 2 * rowsOn(page) || end > m_format->pageSize || start > end)
        return {};
    return RowBytes{page, bytes.part(start, end - start), (word & SlotDeleted) != 0, (word & SlotPointer) != 0};
}

std::optional<RowBytes> PageFile::row(RowPointer pointer)
{
    if (pointer.page == 0 || pointer.page >= m_pageCount)
        return {};
    return row(page(pointer.page), pointer.row);
}

} // namespace jet::access
