// Bytes of a foreign file, read with every offset checked.
#pragma once

#include "jet/Error.h"

#include <QByteArray>
#include <QtEndian>
#include <cstring>

namespace jet::access {

/// The file is not as it should be: 3049.
[[noreturn]] inline void damaged(const QString& what)
{
    throw Error(3049, QStringLiteral("Le fichier Access est endommagé : ") + what + QLatin1Char('.'));
}

/// A view; reading outside of it is 3049. The bytes belong to somebody else.
class Bytes {
public:
    Bytes() = default;
    Bytes(const char* data, qsizetype size) : m_data(data), m_size(size) {}
    explicit Bytes(const QByteArray& bytes) : Bytes(bytes.constData(), bytes.size()) {}

    qsizetype size() const { return m_size; }
    const char* data() const { return m_data; }
    bool has(qint64 offset, qint64 count) const
    {
        return offset >= 0 && count >= 0 && offset <= m_size && count <= m_size - offset;
    }
    /// The part from `offset` on.
    Bytes part(qint64 offset, qint64 count) const
    {
        check(offset, count);
        return {m_data + offset, qsizetype(count)};
    }
    quint8 u8(qint64 offset) const { return read<quint8>(offset); }
    quint16 u16(qint64 offset) const { return read<quint16>(offset); }
    quint32 u32(qint64 offset) const { return read<quint32>(offset); }
    quint64 u64(qint64 offset) const { return read<quint64>(offset); }
    double real(qint64 offset) const
    {
        const quint64 bits = u64(offset);
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }
    /// A number of one or of two bytes.
    int count(qint64 offset, int size) const { return size == 1 ? u8(offset) : u16(offset); }
    QByteArray copy() const { return {m_data, m_size}; }

private:
    void check(qint64 offset, qint64 count) const
    {
        if (!has(offset, count))
            damaged(QStringLiteral("une structure sort de sa page"));
    }
    template<typename T>
    T read(qint64 offset) const
    {
        check(offset, sizeof(T));
        return qFromLittleEndian<T>(m_data + offset);
    }

    const char* m_data = nullptr;
    qsizetype m_size = 0;
};

} // namespace jet::access
