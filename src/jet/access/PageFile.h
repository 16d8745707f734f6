// An Access file as pages, decoded where they are encoded. It is only read.
#pragma once

#include "jet/access/Bytes.h"
#include "jet/access/PageFormat.h"

#include <QFile>
#include <QHash>
#include <deque>
#include <optional>

namespace jet::access {

/// Whether the file begins as an Access file does, of whatever version. False also for one that cannot be read.
bool isAccessFile(const QString& path);

/// One row of a data page.
struct RowBytes {
    QByteArray page; ///< Keeps the bytes alive.
    Bytes bytes;
    bool deleted = false;
    bool pointer = false; ///< The row was moved: the bytes are the pointer to it.
};

class PageFile {
public:
    /// Reads the header: 3343 no Access file, encrypted by ACE or older than Jet 3; 3031 a password that is not the
    /// file's; 3049 shorter than its first pages; 3024, 3051 not readable.
    PageFile(const QString& path, const QString& password);

    const QString& path() const { return m_path; }
    const PageFormat& format() const { return *m_format; }
    QString versionName() const; ///< "Jet 3 (Access 97)" …
    int codePage() const { return m_codePage; }
    bool hasPassword() const { return m_hasPassword; }
    bool isEncoded() const { return m_pageKey != 0; }
    /// The file ends within a page.
    bool endsWithinPage() const { return m_file.size() % m_format->pageSize != 0; }

    quint32 pageCount() const { return m_pageCount; }
    qint64 size() const { return m_file.size(); }
    /// 3049 beyond the end, 3043 when the disk does not give it.
    QByteArray page(quint32 number);
    /// The same; 3049 when it is of another type.
    QByteArray page(quint32 number, PageType type);

    /// Rows that a data page says it has, as far as their slots fit on it.
    int rowsOn(const QByteArray& page) const;
    /// The row; nothing when its slot makes no sense.
    std::optional<RowBytes> row(const QByteArray& page, int row) const;
    std::optional<RowBytes> row(RowPointer pointer);
    /// Whom a page belongs to: for a data page the page of the table's definition (or the letters "LVAL"), `unusedPage`
    /// for one that is empty or beyond the end, `otherPage` for any other. The first call reads the whole file once.
    quint32 owner(quint32 number);
    static constexpr quint32 unusedPage = 0;
    static constexpr quint32 otherPage = 0xFFFFFFFF;
    quint32 owner(const QByteArray& page) const { return Bytes(page).u32(m_format->dataOwner); }

    /// Takes bytes off what may be read by way of pointers. What a pointer leads to belongs to one value, so that a sound
    /// file has no more of it than its size, however often its tables are read in a conversion; false when a file
    /// wants many times that.
    bool spend(qint64 bytes);

private:
    void readHeader(const QString& password);
    void checkKind(const Bytes& head) const;
    void checkPassword(const Bytes& head, const QString& password);

    QString m_path;
    QFile m_file;
    const PageFormat* m_format = &jet4;
    int m_version = 1;
    int m_codePage = 1252;
    quint32 m_pageKey = 0;
    quint32 m_pageCount = 0;
    bool m_hasPassword = false;
    QList<quint32> m_owners; ///< By page.
    qint64 m_budget = 0;     ///< What spend has left.
    QHash<quint32, QByteArray> m_cache;
    std::deque<quint32> m_cached; ///< In the order in which they came.
};

/// Text of a code page. One that the system does not know is read as 1252.
QString fromCodePage(const Bytes& bytes, int codePage);

} // namespace jet::access
