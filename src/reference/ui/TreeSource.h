// Where a reference tree reads its rows.
#pragma once

#include "jet/Recordset.h"

#include <QList>
#include <QString>
#include <functional>
#include <optional>

namespace jet {
class Database;
}

namespace reference {

class Cl_Taxon;

/// One row of a tree; the top of the tree is row 0.
struct TreeRow {
    qint32 id = 0;
    QString name;
    int rank = 0;         ///< Taxa: 1 to 4.
    bool synonym = false; ///< Taxa.
    QString code = {};    ///< Localities: their path code.
    bool map = false;     ///< Localities.
    bool operator==(const TreeRow&) const = default;
};

/// Statements on one table. Failures are jet::Error.
class TreeSource {
public:
    virtual ~TreeSource() = default;

    virtual QString topName() const { return {}; } ///< The node above all rows; empty: there is none.
    virtual QString keyTail(const TreeRow& row) const = 0;
    virtual std::unique_ptr<jet::Recordset> children(const TreeRow& parent) const = 0; ///< In their order.
    virtual TreeRow rowOf(const std::vector<QVariant>& values, const TreeRow& parent) const = 0;
    virtual bool mayHaveChildren(const TreeRow& row) const = 0; ///< Nothing is read for that.
    virtual bool hasChildren(const TreeRow& row) const = 0;
    virtual std::optional<TreeRow> row(qint32 id) const = 0;
    /// Identifiers from below the top down to the row; empty when it is not there.
    virtual QList<qint32> path(qint32 id) const = 0;
    virtual bool accepts(const TreeRow& target) const = 0; ///< Rows may be dropped onto it.
    virtual bool takes(const TreeRow&, const TreeRow&) const { return true; } ///< The target takes that row.
    virtual QString tip(const TreeRow& row) const = 0;
    std::function<bool()> isAway = [] { return false; }; ///< Nothing may be read now.
};

class TaxonSource : public TreeSource {
public:
    TaxonSource(jet::Database& database, const Cl_Taxon& taxa) : m_database(database), m_taxa(taxa) {}

    QString keyTail(const TreeRow&) const override { return QStringLiteral("-Tax"); }
    std::unique_ptr<jet::Recordset> children(const TreeRow& parent) const override;
    TreeRow rowOf(const std::vector<QVariant>& values, const TreeRow& parent) const override;
    bool mayHaveChildren(const TreeRow& row) const override { return row.rank < 4; }
    bool hasChildren(const TreeRow& row) const override;
    std::optional<TreeRow> row(qint32 id) const override;
    QList<qint32> path(qint32 id) const override;
    bool accepts(const TreeRow& target) const override { return target.id > 0; }
    bool takes(const TreeRow& target, const TreeRow& moved) const override { return mayGo(moved.rank, target.rank); }
    /// A name goes under a higher rank, or becomes a synonym of its like or, a species, of a taxon below the species. What
    /// lies under a family would lose its ranks inside a genus.
    static bool mayGo(int moved, int target) { return target <= moved || (moved == 3 && target == 4); }
    QString tip(const TreeRow& row) const override;

private:
    jet::Database& m_database;
    const Cl_Taxon& m_taxa;
};

/// Places and, marked as such, the maps among them.
class PlaceSource : public TreeSource {
public:
    explicit PlaceSource(jet::Database& database) : m_database(database) {}

    QString topName() const override { return QStringLiteral("Monde"); }
    QString keyTail(const TreeRow& row) const override
    {
        return row.map ? QStringLiteral("-Map") : QStringLiteral("-Loc");
    }
    std::unique_ptr<jet::Recordset> children(const TreeRow& parent) const override;
    TreeRow rowOf(const std::vector<QVariant>& values, const TreeRow& parent) const override;
    bool mayHaveChildren(const TreeRow& row) const override { return !row.map; }
    bool hasChildren(const TreeRow& row) const override;
    std::optional<TreeRow> row(qint32 id) const override;
    QList<qint32> path(qint32 id) const override;
    bool accepts(const TreeRow& target) const override { return !target.map; }
    QString tip(const TreeRow& row) const override;

private:
    jet::Database& m_database;
};

} // namespace reference
