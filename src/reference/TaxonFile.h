// The rows of a checklist file.
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <array>

namespace reference {

/// One row, its texts trimmed and in NFC.
struct TaxonLine {
    QString family, genus, species, infraRank, infraEpithet, authors;
    QByteArray id, accepted;
    bool readable = true; ///< False when it is no UTF-8.

    int rank() const; ///< 1 to 4; 0 when it names nothing, or an infraspecific rank without an epithet.
};

/// Walks a file as often as wanted; only one row is in memory. Failures are jet::Error.
class TaxonFile {
public:
    explicit TaxonFile(const QString& path); ///< Reads the names of the columns.

    const QByteArray& header() const { return m_header; } ///< As it stands, without the end of the line.
    void rewind(); ///< To the first row.
    bool next();   ///< Reads a row; false behind the last one. Empty lines are passed over.
    const QByteArray& raw() const { return m_raw; }
    TaxonLine line() const; ///< The row read last, taken apart.
    int percent() const;    ///< How much of the file was read.

private:
    enum Column { Family, Genus, Species, InfraRank, InfraEpithet, Authors, Id, Accepted, ColumnCount };

    QFile m_file;
    QByteArray m_header;
    QByteArray m_raw;
    std::array<int, ColumnCount> m_columns; ///< Where each stands; -1 for nowhere.
};

} // namespace reference
