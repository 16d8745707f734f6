#include "app/import/CsvFile.h"

#include "jet/Error.h"
#include "platform/SystemReason.h"

#include <array>
#include <cerrno>

namespace app {

using namespace Qt::StringLiterals;

namespace {

constexpr int unreadableError = 3051;
constexpr qint64 pieceSize = 1 << 18;       // bytes read at once
constexpr qint64 sampleSize = 1 << 18;      // bytes that separator and decimal mark are judged by
constexpr qsizetype longestRow = 1 << 21;   // characters; a longer row has a quote that nobody closed
constexpr int sampledRows = 200;

/// 80 to 9F of Windows-1252; the other bytes are those of Latin-1.
constexpr std::array<char16_t, 32> windowsPart{
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

QString fromWindows(const QByteArray& bytes)
{
    QString text(bytes.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const auto byte = uchar(bytes[i]);
        text[i] = byte >= 0x80 && byte < 0xA0 ? QChar(windowsPart[byte - 0x80]) : QChar(char16_t(byte));
    }
    return text;
}

/// Right after the call that failed.
[[noreturn]] void unreadable(const QFile& file)
{
    const QString reason = platform::fileReason(file, errno);
    throw jet::Error(unreadableError, u"Impossible de lire « %1 » : %2."_s.arg(file.fileName(), reason));
}

void openFile(QFile& file)
{
    if (!file.open(QIODevice::ReadOnly))
        unreadable(file);
}

bool isUtf8(QFile& file)
{
    QStringDecoder decoder(QStringDecoder::Utf8);
    file.seek(0);
    while (!file.atEnd() && !decoder.hasError())
        [[maybe_unused]] const QString piece = decoder(file.read(pieceSize));
    return !decoder.hasError();
}

CsvFormat::Encoding detectEncoding(QFile& file, const QByteArray& sample)
{
    if (sample.startsWith("\xFF\xFE"))
        return CsvFormat::Utf16LE;
    if (sample.startsWith("\xFE\xFF"))
        return CsvFormat::Utf16BE;
    // Without a mark: most bytes of a table are ASCII, whose other half is zero.
    std::array<qsizetype, 2> zeros{};
    for (qsizetype i = 0; i < sample.size(); ++i)
        zeros[size_t(i % 2)] += sample[i] == '\0';
    if (zeros[1] > sample.size() / 4)
        return CsvFormat::Utf16LE;
    if (zeros[0] > sample.size() / 4)
        return CsvFormat::Utf16BE;
    return isUtf8(file) ? CsvFormat::Utf8 : CsvFormat::Windows1252;
}

/// The first rows of a file as a format cuts them.
QList<QStringList> firstRows(const QString& path, const CsvFormat& format)
{
    CsvReader reader(path, format);
    QList<QStringList> rows{reader.header()};
    while (rows.size() < sampledRows && reader.next()) {
        if (!reader.damaged())
            rows << reader.cells();
    }
    return rows;
}

/// How well a separator cuts: the cells of the header, as far as the rows have as many.
double fit(const QList<QStringList>& rows)
{
    const qsizetype cells = rows.first().size();
    if (cells < 2)
        return 0;
    const auto alike = std::count_if(rows.begin(), rows.end(), [&](const QStringList& row) { return row.size() == cells; });
    return double(cells) * double(alike) / double(rows.size());
}

bool isNumberWith(const QString& text, QChar mark)
{
    const qsizetype at = text.indexOf(mark);
    if (at < 1 || at + 1 == text.size() || text.indexOf(mark, at + 1) >= 0)
        return false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool sign = i == 0 && (text[i] == u'-' || text[i] == u'+');
        if (i != at && !sign && (text[i] < u'0' || text[i] > u'9'))
            return false;
    }
    return true;
}

QChar detectDecimal(const QList<QStringList>& rows, QChar separator)
{
    int commas = 0, points = 0;
    for (qsizetype row = 1; row < rows.size(); ++row) {
        for (const QString& cell : rows[row]) {
            commas += isNumberWith(cell.trimmed(), u',');
            points += isNumberWith(cell.trimmed(), u'.');
        }
    }
    if (commas == points)
        return separator == u',' ? u'.' : u',';
    return commas > points ? u',' : u'.';
}

} // namespace

QString encodingName(CsvFormat::Encoding encoding)
{
    static const QStringList names{u"UTF-8"_s, u"Windows-1252"_s, u"UTF-16 LE"_s, u"UTF-16 BE"_s};
    return names.value(encoding);
}

QString separatorName(QChar separator)
{
    return separator == u'\t' ? u"tabulation"_s : separator == u',' ? u"virgule"_s : u"point-virgule"_s;
}

CsvFormat detectCsvFormat(const QString& path)
{
    QFile file(path);
    openFile(file);
    CsvFormat format;
    format.encoding = detectEncoding(file, file.read(sampleSize));
    file.close();
    double best = 0;
    QList<QStringList> rows;
    for (const QChar separator : {u';', u'\t', u','}) {
        CsvFormat tried = format;
        tried.separator = separator;
        const QList<QStringList> cut = firstRows(path, tried);
        if (const double fits = fit(cut); rows.isEmpty() || fits > best) {
            best = fits;
            rows = cut;
            format.separator = separator;
        }
    }
    format.decimal = detectDecimal(rows, format.separator);
    return format;
}

QString csvRow(const QStringList& cells, QChar separator)
{
    QString line;
    for (const QString& cell : cells) {
        if (&cell != &cells.first())
            line += separator;
        const bool quoted = cell.contains(separator) || cell.contains(u'"') || cell.contains(u'\n') || cell.contains(u'\r');
        line += quoted ? u'"' + QString(cell).replace(u'"', u"\"\""_s) + u'"' : cell;
    }
    return line + u"\r\n"_s;
}

CsvReader::CsvReader(const QString& path, const CsvFormat& format) : m_file(path), m_format(format)
{
    using Encoding = QStringConverter::Encoding;
    static const std::array<Encoding, 4> encodings{Encoding::Utf8, Encoding::Latin1, Encoding::Utf16LE, Encoding::Utf16BE};
    m_decoder = QStringDecoder(encodings[size_t(format.encoding)]);
    openFile(m_file);
    if (!readRow())
        return;
    m_header = m_cells;
    for (QString& name : m_header)
        name = name.trimmed();
}

QString CsvReader::decode(const QByteArray& bytes)
{
    QString text = m_format.encoding == CsvFormat::Windows1252 ? fromWindows(bytes) : QString(m_decoder(bytes));
    if (m_file.pos() == bytes.size() && text.startsWith(QChar(0xFEFF)))
        text.remove(0, 1);
    return text;
}

bool CsvReader::fill()
{
    if (m_ended)
        return false;
    const QByteArray bytes = m_file.read(pieceSize);
    if (bytes.isEmpty()) {
        m_ended = true;
        if (m_file.error() != QFileDevice::NoError)
            unreadable(m_file);
        return false;
    }
    m_buffer.remove(0, m_at);
    m_at = 0;
    m_buffer += decode(bytes);
    return true;
}

/// A quote ends its cell where a separator or the end of the row stands behind it. Within a line another one is part of the
/// text: so our own exports have it, which do not double quotes. Behind line ends it shows that a quote was never closed.
bool CsvReader::closes(qsizetype at) const
{
    for (++at; at < m_buffer.size() && m_buffer[at] == u' ';)
        ++at;
    return at >= m_buffer.size() || m_buffer[at] == m_format.separator || m_buffer[at] == u'\n' || m_buffer[at] == u'\r';
}

/// Cuts the row that begins at m_at; takes it only when all of it is there.
CsvReader::Parsed CsvReader::parse()
{
    m_cells.clear();
    QString cell;
    qint64 lines = 0;
    bool quoted = false, wasQuoted = false;
    for (qsizetype i = m_at; i < m_buffer.size(); ++i) {
        const QChar c = m_buffer[i];
        if (i + 1 == m_buffer.size() && (c == u'"' || c == u'\r') && !m_ended)
            return Parsed::NeedMore; // what follows tells what it means
        if (quoted) {
            const bool doubled = c == u'"' && i + 1 < m_buffer.size() && m_buffer[i + 1] == u'"';
            if (c == u'"' && !doubled) {
                quoted = !closes(i);
                if (quoted && lines > 0)
                    return Parsed::Unclosed;
                if (!quoted)
                    continue;
            }
            lines += c == u'\n';
            cell += c;
            i += doubled;
        } else if (c == u'"' && cell.trimmed().isEmpty() && !wasQuoted) {
            cell.clear();
            quoted = wasQuoted = true;
        } else if (wasQuoted && c == u' ') {
            continue;
        } else if (c == m_format.separator) {
            m_cells << std::exchange(cell, {});
            wasQuoted = false;
        } else if (c == u'\n' || c == u'\r') {
            i += c == u'\r' && i + 1 < m_buffer.size() && m_buffer[i + 1] == u'\n';
            m_cells << cell;
            m_at = i + 1;
            m_line += lines + 1;
            return Parsed::Row;
        } else {
            cell += c;
        }
        if (i - m_at > longestRow)
            return Parsed::Unclosed;
    }
    if (!m_ended)
        return Parsed::NeedMore;
    if (quoted)
        return Parsed::Unclosed;
    m_cells << cell;
    m_at = m_buffer.size();
    return Parsed::Row;
}

void CsvReader::takeDamaged()
{
    qsizetype end = m_buffer.indexOf(u'\n', m_at);
    end = end < 0 ? m_buffer.size() : end;
    m_cells = {m_buffer.mid(m_at, end - m_at).trimmed()};
    m_at = qMin(end + 1, m_buffer.size());
    ++m_line;
    m_damaged = true;
}

bool CsvReader::readRow()
{
    while (m_at < m_buffer.size() || fill()) {
        m_damaged = false;
        m_rowLine = m_line;
        Parsed parsed = parse();
        while (parsed == Parsed::NeedMore) {
            fill();
            parsed = parse();
        }
        if (parsed == Parsed::Unclosed)
            takeDamaged();
        const bool empty = std::all_of(m_cells.begin(), m_cells.end(), [](const QString& cell) { return cell.trimmed().isEmpty(); });
        if (!empty)
            return true;
    }
    return false;
}

bool CsvReader::next()
{
    return readRow();
}

int CsvReader::percent() const
{
    const qint64 size = m_file.size();
    const qint64 held = m_buffer.size() - m_at; // about as many bytes
    return size > 0 ? int(qBound(qint64(0), (m_file.pos() - held) * 100 / size, qint64(100))) : 100;
}

} // namespace app
