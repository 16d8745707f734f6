// Names of taxa, places and people in tables, and the rows of the reference lists that they mean.
#pragma once

#include "editing/ReferenceSearch.h"
#include "platform/Clock.h"
#include "platform/Dialogues.h"
#include "reference/ReferenceList.h"

#include <QHash>
#include <memory>

namespace app {

/// What a name was found to mean.
struct NameFound {
    qint32 id = 0;        ///< 0 for nothing, or not one alone.
    bool several = false; ///< Several rows have it.
};

/// A name that a table has and no row, or more than one.
struct UnknownName {
    int type = 0;         ///< data::Botaniste, data::Localité, data::Taxon.
    QString name;
    qint64 rows = 0;      ///< Of the table.
    qint64 line = 0;      ///< The first of them.
    bool several = false;
    QList<editing::ReferenceMatch> near = {}; ///< Rows that begin like it.
};

/// Whether the name is that of several rows, or so like a row's that it is more likely a slip than another name.
bool mayBeMeant(const UnknownName& name);

/// What becomes of the rows with such a name.
struct NameDecision {
    enum Kind { Refuse, Choose, Create, Leave };
    Kind kind = Refuse; ///< Leave: the field stays empty.
    qint32 id = 0;      ///< Of the row chosen.
};

/// By type and folded name.
using NameKey = std::pair<int, QString>;
using NameDecisions = QHash<NameKey, NameDecision>;
NameKey nameKey(int type, const QString& name);

/// "Collecteurs", "Localités", "Taxons".
QString listOfType(int type);

/// Finds rows by whole names, without case: taxa by their full name, with or without authors, "sp." standing for the genus;
/// places by name, full name or GPS reference; people by name or initials. A number is the identifier of a row. What was found
/// is kept. Failures are jet::Error.
class NameMatching {
public:
    explicit NameMatching(jet::Database& database) : m_database(database) {}

    NameFound find(int type, const QString& name);
    /// Rows whose names begin like this one; at most ten.
    QList<editing::ReferenceMatch> near(int type, const QString& name) const;
    /// Another row may have the name now.
    void forget(int type, const QString& name) { m_found.remove(nameKey(type, name)); }

private:
    NameFound search(int type, const QString& name) const;
    NameFound taxon(const QString& name) const;
    NameFound first(const QString& statement) const;
    bool exists(int type, qint32 id) const;

    jet::Database& m_database;
    QHash<NameKey, NameFound> m_found;
};

/// Answers what the reference classes ask while nobody is there, and keeps what they say.
class QuietDialogues : public platform::Dialogues {
public:
    platform::Answer ask(const platform::Message& message) override;
    std::optional<QString> input(const QString&, const QString&, const QString&) override { return {}; }
    std::optional<QList<int>> choose(const platform::Choice&) override { return {}; }
    QString openFile(const QString&, const QString&, const QString&) override { return {}; }
    QStringList openFiles(const QString&, const QString&, const QString&) override { return {}; }
    QString saveFile(const QString&, const QString&, const QString&) override { return {}; }
    QString chooseFolder(const QString&, const QString&) override { return {}; }

    QString said() const { return m_said; }
    QString takeSaid() { return std::exchange(m_said, {}); }

private:
    QString m_said;
};

/// Adds names to the reference lists by the rules of their classes. A species brings its genus along, a genus without a
/// family goes under "Incertae Sedis", from where it can be moved.
class NameCreation {
public:
    /// The world's dialogues are replaced by quiet ones.
    NameCreation(jet::Database& database, const platform::Clock& clock, const editing::EditingContext& editing);
    ~NameCreation();

    /// Gives the identifier. Throws RowRefused with what the class said.
    qint32 create(int type, const QString& name);
    /// Initials of a name: "Marie Curie" gives "M.C.".
    static QString initials(const QString& name);
    /// After a Save: throws jet::Error where it failed by something else than what the form holds.
    static void passOn(const reference::ReferenceList& list, const QString& said);

private:
    qint32 createPerson(const QString& name);
    qint32 createPlace(const QString& name);
    qint32 createTaxon(const QString& name);
    qint32 taxonUnder(int rank, qint32 parent, const QString& name, const QString& authors);

    jet::Database& m_database;
    QuietDialogues m_dialogues;
    reference::ReferenceContext m_world;
};

/// A plant name taken apart.
struct PlantName {
    QString genus, species, infra; ///< `infra` with its rank: "var. alba".
    QString authors;               ///< Of the lowest name.
    static PlantName of(const QString& name);
};

} // namespace app
