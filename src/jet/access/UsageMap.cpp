#include "jet/access/UsageMap.h"

namespace jet::access {

using namespace Qt::StringLiterals;

namespace {

void addBits(QList<quint32>& pages, const Bytes& bits, quint64 first, quint32 pageCount)
{
    for (qsizetype byte = 0; byte < bits.size(); ++byte) {
        const quint8 eight = quint8(bits.data()[byte]);
        for (int bit = 0; eight >> bit != 0; ++bit) {
            const quint64 page = first + quint64(byte) * 8 + quint64(bit);
            if ((eight >> bit & 1) && page > 0 && page < pageCount)
                pages.append(quint32(page));
        }
    }
}

} // namespace

QList<quint32> pagesOfMap(PageFile& file, RowPointer map)
{
    const auto row = file.row(map);
    if (!row || row->bytes.size() < usage::inlineBits)
        damaged(u"une table des pages manque"_s);
    const Bytes& bytes = row->bytes;
    QList<quint32> pages;
    if (bytes.u8(usage::kind) == 0) {
        addBits(pages, bytes.part(usage::inlineBits, bytes.size() - usage::inlineBits), bytes.u32(usage::inlineStart),
                file.pageCount());
        return pages;
    }
    if (bytes.u8(usage::kind) != 1)
        damaged(u"une table des pages est d'un genre inconnu"_s);
    quint64 first = 0;
    for (qsizetype at = usage::references; at + 4 <= bytes.size() && first < file.pageCount(); at += 4) {
        if (const quint32 number = bytes.u32(at); number != 0) {
            const QByteArray page = file.page(number, MapPage);
            addBits(pages, Bytes(page).part(usage::pageBits, page.size() - usage::pageBits), first, file.pageCount());
        }
        first += bitsPerMapPage(file.format());
    }
    return pages;
}

QList<quint32> pagesOwnedBy(PageFile& file, quint32 owner)
{
    QList<quint32> pages;
    for (quint32 number = 1; number < file.pageCount(); ++number) {
        if (file.owner(number) == owner)
            pages.append(number);
    }
    return pages;
}

} // namespace jet::access
