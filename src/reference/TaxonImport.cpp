#include "reference/TaxonImport.h"

#include "jet/Cancelled.h"
#include "jet/text/TextOrder.h"
#include "platform/ReplaceFile.h"
#include "reference/Cl_Taxon.h"
#include "reference/TaxonFile.h"
#include "reference/TaxonIndex.h"

#include <QFileInfo>
#include <QLocale>
#include <algorithm>
#include <vector>

namespace reference {

using namespace Qt::StringLiterals;

namespace {

constexpr int unwritableError = 3051;
constexpr qint64 linesBetweenLooks = 512;
constexpr qsizetype widestName = 255;

/// Why a row cannot be taken.
struct Refusal {
    QString reason;
};

/// A path beside the file that nothing has yet: "liste.refus.tsv", "liste.refus-2.tsv".
QString freePath(const QString& file)
{
    const QFileInfo info(file);
    const QString stem = info.absolutePath() + u'/' + info.completeBaseName() + u".refus"_s;
    QString path = stem + u".tsv"_s;
    for (int n = 2; QFileInfo::exists(path); ++n)
        path = stem + u'-' + QString::number(n) + u".tsv"_s;
    return path;
}

/// The rows that were not taken, by their numbers.
class RefusedRows {
public:
    void add(qint64 line, const QString& reason)
    {
        qsizetype place = m_reasons.indexOf(reason);
        if (place < 0) {
            place = m_reasons.size();
            m_reasons << reason;
        }
        m_rows.push_back({line, int(place)});
    }
    bool isEmpty() const { return m_rows.empty(); }

    /// Writes them with their reasons beside the file they come from, in its order; gives the path.
    QString write(TaxonFile& file, const QString& source)
    {
        const QString path = freePath(source);
        std::sort(m_rows.begin(), m_rows.end(), [](const Row& a, const Row& b) { return a.line < b.line; });
        platform::FileReplacement out(path);
        said(path, out.open());
        said(path, out.write(file.header() + "\tmotif\n"));
        qint64 line = 0;
        auto row = m_rows.begin();
        for (file.rewind(); row != m_rows.end() && file.next(); ++line) {
            if (row->line != line)
                continue;
            said(path, out.write(file.raw() + '\t' + m_reasons[row->reason].toUtf8() + '\n'));
            ++row;
        }
        said(path, out.commit());
        return path;
    }

private:
    struct Row {
        qint64 line;
        int reason;
    };
    static void said(const QString& path, const QString& error)
    {
        if (!error.isEmpty())
            throw jet::Error(unwritableError, u"Les noms ont été importés, mais les lignes refusées n'ont pas pu être écrites dans « "_s
                                                  + path + u" » : "_s + error);
    }

    QStringList m_reasons;
    std::vector<Row> m_rows;
};

class Run {
public:
    Run(jet::Database& database, const platform::Clock& clock, const QString& path, platform::Progression& progression)
        : m_path(path), m_file(path), m_progression(progression), m_database(database), m_clock(clock)
    {
    }

    ImportReport all()
    {
        survey();
        tell(u"Lecture des noms du projet"_s, 10);
        m_index = std::make_unique<TaxonIndex>(m_database, m_clock);
        static const QStringList texts{u"Importation des familles"_s, u"Importation des genres"_s,
                                       u"Importation des espèces"_s, u"Importation des taxons infraspécifiques"_s};
        for (int rank = 1; rank <= 4; ++rank)
            readRank(rank, texts[rank - 1]);
        linkSynonyms();
        return m_report;
    }
    /// Once the names are in the file for good; gives the path, empty when nothing was refused.
    QString writeRefused() { return m_refused.isEmpty() ? QString() : m_refused.write(m_file, m_path); }

private:
    struct Synonym {
        qint32 taxon;
        int accepted; ///< Position among the identifiers.
        qint64 line;
    };

    /// A step where it is another one, and a look whether the user wants to stop.
    void tell(const QString& text, int percent)
    {
        if (m_progression.cancelled())
            jet::fail(jet::cancelledError);
        if (text == m_told && percent == m_percent)
            return;
        m_told = text;
        m_percent = percent;
        m_progression.step(text, percent);
    }

    /// Ranks of the rows, and the identifiers that others name as accepted.
    void survey()
    {
        walk(u"Lecture du fichier"_s, 0, 10, [this](const TaxonLine& line) {
            const bool synonym = !line.accepted.isEmpty() && line.accepted != line.id;
            const int rank = line.readable ? line.rank() : 0;
            m_kinds.push_back(quint8(rank == 0 ? 0 : kindOf(rank, synonym)));
            if (synonym && !m_accepted.contains(line.accepted)) {
                m_accepted.insert(line.accepted, int(m_taxa.size()));
                m_taxa.push_back(0);
            }
            if (rank == 0)
                refuse(line.readable ? u"La ligne ne nomme aucun taxon complet"_s : u"Le texte n'est pas en UTF-8"_s);
        });
        m_report.lines = m_line;
    }

    static int kindOf(int rank, bool synonym) { return 2 * rank + (synonym ? 1 : 0); }

    /// Hands every row (of a kind, where one is given), taken apart, to the work; `from` and `to` are percents of the whole.
    template<typename Work> void walk(const QString& text, int from, int to, Work&& work, int kind = 0)
    {
        m_line = 0;
        for (m_file.rewind(); m_file.next(); ++m_line) {
            if (m_line % linesBetweenLooks == 0) {
                tell(text, from + (to - from) * m_file.percent() / 100);
            }
            if (kind == 0 || m_kinds[size_t(m_line)] == kind)
                work(m_file.line());
        }
    }

    void refuse(const QString& reason)
    {
        m_refused.add(m_line, reason);
        ++m_report.refused;
        ++m_report.reasons[reason];
    }

    /// The accepted names come first: of two genera of one name they are the one that stays.
    void readRank(int rank, const QString& text)
    {
        static const std::array<int, 5> parts{10, 12, 18, 80, 95};
        const int from = parts[size_t(rank) - 1];
        const int to = parts[size_t(rank)];
        const auto each = [&](const TaxonLine& line) {
            try {
                take(line, rank);
            } catch (const Refusal& refusal) {
                refuse(refusal.reason);
            }
        };
        walk(text, from, (from + to) / 2, each, kindOf(rank, false));
        walk(text, (from + to) / 2, to, each, kindOf(rank, true));
    }

    void take(const TaxonLine& line, int rank)
    {
        const QString name = nameOf(line, rank);
        const qint32 parent = parentOf(line, rank);
        const QList<qint32> alike = parent < 0 ? QList<qint32>() : m_index->find(rank, parent, name);
        qint32 id = 0;
        for (const qint32 one : alike) {
            const QString authors = m_index->authors(one);
            if (authors.isEmpty() || line.authors.isEmpty() || jet::text::equal(authors, line.authors)) {
                id = one;
                break;
            }
        }
        if (id > 0) {
            ++m_report.present;
        } else if (!alike.isEmpty() && rank <= 2) {
            throw Refusal{rank == 1 ? u"Une famille de ce nom existe avec d'autres auteurs"_s
                                    : u"Un genre de ce nom existe avec d'autres auteurs"_s};
        } else {
            m_report.similar += alike.isEmpty() ? 0 : 1;
            id = add(rank, parent, name, line.authors);
            if (!line.accepted.isEmpty() && line.accepted != line.id)
                m_synonyms.push_back({id, m_accepted.value(line.accepted), m_line});
        }
        if (const auto wanted = m_accepted.constFind(line.id); wanted != m_accepted.constEnd())
            m_taxa[size_t(*wanted)] = id;
    }

    static QString nameOf(const TaxonLine& line, int rank)
    {
        const QString name = rank == 1   ? line.family
                             : rank == 2 ? line.genus
                             : rank == 3 ? line.species
                                         : line.infraRank + u' ' + line.infraEpithet;
        return Cl_Taxon::storedName(name, rank);
    }

    qint32 add(int rank, qint32 parent, const QString& name, const QString& authors)
    {
        if (authors.size() > widestName || m_index->fullName(rank, parent, name).size() > widestName)
            throw Refusal{u"Le nom ou ses auteurs dépassent 255 caractères"_s};
        ++m_report.added[size_t(rank) - 1];
        return m_index->add(rank, parent, name, authors);
    }

    /// What the name goes under; what no row names is added. 0 for a family.
    qint32 parentOf(const TaxonLine& line, int rank)
    {
        if (rank == 1)
            return 0;
        const int above = rank - 1;
        const qint32 higher = above == 3 ? parentOf(line, above) : 0;
        const QString name = nameOf(line, above);
        const QList<qint32> found = name.isEmpty() ? QList<qint32>() : m_index->find(above, higher, name);
        if (!found.isEmpty())
            return above == 2 ? ofFamily(found, line) : found.first();
        if (above == 1 && name.isEmpty())
            throw Refusal{u"La famille manque"_s};
        return add(above, above == 2 ? parentOf(line, above) : higher, name, {});
    }

    /// Of several genera of the name that of the row's family; else the first.
    qint32 ofFamily(const QList<qint32>& genera, const TaxonLine& line) const
    {
        const QList<qint32> family = genera.size() < 2 ? QList<qint32>() : m_index->find(1, 0, nameOf(line, 1));
        for (const qint32 genus : genera) {
            if (family.contains(m_index->familyOf(genus)))
                return genus;
        }
        return genera.first();
    }

    void linkSynonyms()
    {
        const QString reason = u"Ajouté, mais son nom accepté est introuvable"_s;
        for (size_t i = 0; i < m_synonyms.size(); ++i) {
            if (i % linesBetweenLooks == 0)
                tell(u"Importation des synonymies"_s, 95 + int(5 * i / m_synonyms.size()));
            const Synonym& synonym = m_synonyms[i];
            const qint32 accepted = m_taxa[size_t(synonym.accepted)];
            if (accepted > 0 && accepted != synonym.taxon) {
                m_index->sink(synonym.taxon, accepted);
                ++m_report.synonyms;
            } else if (accepted == 0) {
                m_refused.add(synonym.line, reason);
                ++m_report.unresolved;
            }
        }
        if (m_report.unresolved > 0)
            m_report.reasons[reason] = m_report.unresolved;
    }

    QString m_path;
    TaxonFile m_file;
    RefusedRows m_refused;
    platform::Progression& m_progression;
    jet::Database& m_database;
    const platform::Clock& m_clock;
    std::unique_ptr<TaxonIndex> m_index;
    ImportReport m_report;
    QString m_told;
    int m_percent = -1;
    qint64 m_line = 0;
    std::vector<quint8> m_kinds;       ///< Of every row (kindOf); 0 for those that were refused at once.
    QHash<QByteArray, int> m_accepted; ///< Identifiers of the file that others name as accepted.
    std::vector<qint32> m_taxa;        ///< Their taxa; 0 as long as there is none.
    std::vector<Synonym> m_synonyms;
};

QString counted(qint64 count, const QString& one, const QString& many)
{
    return QLocale().toString(count) + u' ' + (count > 1 ? many : one);
}

} // namespace

QString ImportReport::text() const
{
    QStringList ranks;
    const QStringList one{u"famille"_s, u"genre"_s, u"espèce"_s, u"taxon infraspécifique"_s};
    const QStringList many{u"familles"_s, u"genres"_s, u"espèces"_s, u"taxons infraspécifiques"_s};
    for (qsizetype i = 0; i < one.size(); ++i) {
        if (added[size_t(i)] > 0)
            ranks << counted(added[size_t(i)], one[i], many[i]);
    }
    const QLocale locale;
    QStringList lines{u"Lignes lues : "_s + locale.toString(this->lines),
                      u"Noms ajoutés : "_s + locale.toString(total()) + (ranks.isEmpty() ? QString() : u" ("_s + ranks.join(u", "_s) + u')'),
                      u"Noms déjà présents : "_s + locale.toString(present),
                      u"Lignes refusées : "_s + locale.toString(refused)};
    for (auto reason = reasons.begin(); reason != reasons.end(); ++reason)
        lines << u"   "_s + reason.key() + u" : "_s + locale.toString(reason.value());
    if (similar > 0)
        lines << u"Ajoutés à côté d'un nom semblable d'autres auteurs : "_s + locale.toString(similar);
    lines << u"Mis en synonymie : "_s + locale.toString(synonyms);
    if (!refusedFile.isEmpty())
        lines << u"Ces lignes et leurs motifs sont dans « "_s + refusedFile + u" »"_s;
    return lines.join(u'\n');
}

TaxonImport::TaxonImport(jet::Database& database, const platform::Clock& clock) : m_database(database), m_clock(clock) {}

ImportReport TaxonImport::run(const QString& file, platform::Progression& progression)
{
    platform::removeUnfinished(freePath(file)); // of an import that was cut off
    Run work(m_database, m_clock, file, progression);
    jet::Operation operation(m_database, u"Importation de taxons"_s);
    ImportReport report = work.all();
    operation.commit();
    report.refusedFile = work.writeRefused();
    progression.step(u"Importation terminée"_s, 100);
    return report;
}

} // namespace reference
