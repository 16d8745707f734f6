#include "reference/TaxonFile.h"

#include "jet/Error.h"
#include "platform/SystemReason.h"

#include <QStringDecoder>
#include <algorithm>
#include <cerrno>

namespace reference {

using namespace Qt::StringLiterals;

namespace {

constexpr int unreadableFile = 3051;
constexpr int wrongFile = 3011;

/// The names under which a column is known, the first one being that of the format.
const QList<QByteArrayList>& columnNames()
{
    static const QList<QByteArrayList> names{
        {"family", "famille"},
        {"genus", "genre"},
        {"species", "specific_epithet", "esp\xc3\xa8" "ce", "espece"},
        {"infra_rank", "infraspecific_rank", "rang_infra"},
        {"infra_epithet", "infraspecific_epithet", "epithete_infra"},
        {"authors", "author", "auteurs"},
        {"id", "taxon_id", "identifiant"},
        {"accepted_id", "accepted_name_id", "id_valide"},
    };
    return names;
}

void chopEnd(QByteArray& line)
{
    while (line.endsWith('\n') || line.endsWith('\r'))
        line.chop(1);
}

} // namespace

int TaxonLine::rank() const
{
    if (!infraEpithet.isEmpty() || !infraRank.isEmpty())
        return infraEpithet.isEmpty() || infraRank.isEmpty() || species.isEmpty() || genus.isEmpty() ? 0 : 4;
    if (!species.isEmpty())
        return genus.isEmpty() ? 0 : 3;
    return !genus.isEmpty() ? 2 : family.isEmpty() ? 0 : 1;
}

TaxonFile::TaxonFile(const QString& path) : m_file(path)
{
    if (!m_file.open(QIODevice::ReadOnly))
        throw jet::Error(unreadableFile, u"Impossible de lire le fichier « "_s + path + u" » : "_s
                                            + platform::fileReason(m_file, errno) + u'.');
    m_header = m_file.readLine();
    if (m_header.startsWith("\xef\xbb\xbf"))
        m_header.remove(0, 3);
    chopEnd(m_header);
    const QByteArrayList given = m_header.toLower().split('\t');
    for (size_t column = 0; column < m_columns.size(); ++column) {
        m_columns[column] = -1;
        for (const QByteArray& name : columnNames()[qsizetype(column)]) {
            if (m_columns[column] < 0)
                m_columns[column] = int(given.indexOf(name));
        }
    }
    for (const Column needed : {Family, Genus, Species}) {
        if (m_columns[needed] < 0)
            throw jet::Error(wrongFile, u"Le fichier « "_s + path + u" » n'a pas de colonne « "_s
                                            + QString::fromLatin1(columnNames()[needed].first()) + u" »."_s);
    }
}

void TaxonFile::rewind()
{
    m_file.seek(0);
    m_file.readLine();
}

bool TaxonFile::next()
{
    do {
        if (m_file.atEnd())
            return false;
        m_raw = m_file.readLine();
        if (m_raw.isEmpty())
            throw jet::Error(unreadableFile, u"Erreur de lecture : "_s + platform::fileReason(m_file, errno) + u'.');
        chopEnd(m_raw);
    } while (m_raw.trimmed().isEmpty());
    return true;
}

int TaxonFile::percent() const
{
    return m_file.size() > 0 ? int(m_file.pos() * 100 / m_file.size()) : 100;
}

TaxonLine TaxonFile::line() const
{
    const QByteArrayList cells = m_raw.split('\t');
    TaxonLine line;
    const auto bytes = [&](Column column) {
        const int place = m_columns[column];
        return place >= 0 && place < cells.size() ? cells[place].trimmed() : QByteArray();
    };
    const auto text = [&](Column column) {
        QStringDecoder decoder(QStringDecoder::Utf8);
        const QString decoded = decoder(bytes(column));
        line.readable = line.readable && !decoder.hasError();
        return decoded.normalized(QString::NormalizationForm_C).simplified();
    };
    line.family = text(Family);
    line.genus = text(Genus);
    line.species = text(Species);
    line.infraRank = text(InfraRank);
    line.infraEpithet = text(InfraEpithet);
    line.authors = text(Authors);
    line.id = bytes(Id);
    line.accepted = bytes(Accepted);
    return line;
}

} // namespace reference
