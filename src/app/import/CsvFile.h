// Tables as spreadsheets write them: what separates the cells, how the text is encoded, and the rows one by one.
#pragma once

#include <QFile>
#include <QString>
#include <QStringConverter>
#include <QStringList>

namespace app {

/// How a file is written. The user sees it and may change it.
struct CsvFormat {
    enum Encoding { Utf8, Windows1252, Utf16LE, Utf16BE };

    QChar separator = QLatin1Char(';'); ///< ";", "," or TAB.
    Encoding encoding = Utf8;
    QChar decimal = QLatin1Char(','); ///< Of numbers: "," or ".".
    bool operator==(const CsvFormat&) const = default;
};

/// "UTF-8", "Windows-1252", "UTF-16 LE", "UTF-16 BE".
QString encodingName(CsvFormat::Encoding encoding);
/// "point-virgule", "virgule", "tabulation".
QString separatorName(QChar separator);

/// Looks at the file: a mark of its encoding or, without one, whether all of it is UTF-8; the separator that cuts the first
/// rows into the same number of cells; the decimal mark that its numbers have. Throws jet::Error.
CsvFormat detectCsvFormat(const QString& path);

/// One row as a line of such a file, with line end. Cells that need it stand in quotes, quotes inside are doubled.
QString csvRow(const QStringList& cells, QChar separator);

/// Walks the rows of a file, the header first. Cells may stand in quotes and then hold separators, line ends and doubled
/// quotes. Only a piece of the file is in memory. Empty lines are passed over. Throws jet::Error.
class CsvReader {
public:
    CsvReader(const QString& path, const CsvFormat& format);

    const QStringList& header() const { return m_header; } ///< Trimmed.
    bool next();                                           ///< Reads a row; false behind the last one.
    const QStringList& cells() const { return m_cells; }
    qint64 line() const { return m_rowLine; } ///< On which the row begins, as an editor counts them, from 1.
    /// A quote that is opened and never closed: the row is its first line alone, in one cell.
    bool damaged() const { return m_damaged; }
    int percent() const; ///< How much of the file was read.

private:
    enum class Parsed { Row, NeedMore, Unclosed };

    bool readRow();
    Parsed parse();
    bool closes(qsizetype at) const;
    bool fill();
    QString decode(const QByteArray& bytes);
    void takeDamaged();

    QFile m_file;
    CsvFormat m_format;
    QStringDecoder m_decoder;
    QString m_buffer;    ///< Text that was decoded and not yet taken.
    qsizetype m_at = 0;  ///< Where the next row begins in it.
    bool m_ended = false;
    bool m_damaged = false;
    qint64 m_line = 1;
    qint64 m_rowLine = 1;
    QStringList m_header;
    QStringList m_cells;
};

} // namespace app
