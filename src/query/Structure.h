// The modules of a project as a tree of fields, and what each field is in a statement.
#pragma once

#include "data/Modules.h"
#include "editing/Cl_Edition.h"
#include "jet/Database.h"

#include <QHash>
#include <memory>
#include <vector>

namespace query {

/// Between the captions of a path. It cannot be typed, so no caption holds it.
inline constexpr QChar pathSeparator{0x1F};

/// Internal names of fields that are no columns.
inline const QString fieldCount = QStringLiteral("@HBCountModule@");
inline const QString fieldRank = QStringLiteral("@@RANGTAXON@@");
inline const QString fieldValid = QStringLiteral("@@TAXONVALID@@");

/// One node: a module (no descriptor) or a field.
struct Node {
    QString key;    ///< "ID " and the module name, or the descriptor's key ("17-key").
    QString text;   ///< Caption.
    QString icon;   ///< Name of an icon.
    QString module; ///< Table that holds the field; of a module node the module.
    QString linked; ///< A field that leads to a record of another table: that table. Its fields are the children.
    std::unique_ptr<editing::Cl_Edition> field;
    bool checked = false;
    Node* parent = nullptr;
    std::vector<std::unique_ptr<Node>> children;

    bool isModule() const { return !field; }
    QString champ() const { return field ? field->champ() : QString(); }
    /// 6 (a whole number) for a module node, which stands for the identifier of its records.
    int ctype() const;
    /// The link field through which the table of this node is reached; null when it hangs under the root.
    const Node* through() const { return parent && !parent->isModule() ? parent : nullptr; }
};

/// What the control `CbModule` shows and knows.
///
/// The root is the module `NomModule`; beneath it stand its fields, then one node for each other module with its fields.
/// Link fields (type 17) and references (types 13 to 15) have the fields of the record they lead to as children. Every
/// operation traps its errors: an unknown key or path gives an empty text or null.
class Structure {
public:
    Structure(jet::Database& database, editing::EditingContext context);
    ~Structure();

    /// Rebuilds the tree from the modules, in their order.
    void LoadStructure(const QList<data::ModuleRecord>& modules);
    QString NomModule() const { return m_root; }
    void setNomModule(const QString& module); ///< Reloads the tree.
    bool ModeFullList() const { return m_fullList; }
    /// False shows the root module alone, as the choice of fields of one module wants it. Reloads the tree.
    void setModeFullList(bool full);

    const Node* root() const { return m_tree.get(); } ///< Null before LoadStructure.
    int Count() const { return int(m_nodes.size()); }
    const editing::EditingContext& context() const { return m_context; }
    const QList<data::ModuleRecord>& modules() const { return m_modules; }

    // --- Keys and paths ----------------------------------------------------------------------
    const Node* node(const QString& keyOrPath) const;
    QString path(const Node& node) const;
    QString PathFromKey(const QString& key) const;
    QString KeyFromPath(const QString& path) const;
    editing::Cl_Edition* ClasseFromPath(const QString& keyOrPath) const;
    QString icon(const QString& keyOrPath) const;
    /// Internal names of the node and of the fields above it; empty for a module.
    QString PermanentFieldName(const QString& keyOrPath) const;
    /// The path with that permanent name beneath the module (empty: the root); empty when there is none. With an
    /// empty name, the path of the module.
    QString PathFromPermanent(const QString& module, const QString& permanent) const;
    /// Module and column of the field and of every link field above it, outermost first ("Mesures.ID Taxons",
    /// "Taxons.Auteurs"); of a module its identifier.
    QStringList namedFields(const QString& keyOrPath) const;
    /// Paths of the fields of a type, each followed by ";"; with a name, only those of that internal name.
    QString LsChampsType(int type, const QString& name = {}) const;
    QStringList fieldsOfType(int type, const QString& name = {}) const;

    bool checked(const QString& key) const;
    void setChecked(const QString& key, bool checked);
    void ClearChecked();

    // --- Pieces of statements ----------------------------------------------------------------
    /// The expression of a field, without alias.
    QString ChampsFromPath(const QString& path) const;
    /// 0 "[module]", 1 the alias, 2 the declaration in FROM, 3 the identifier column.
    QString Table(const QString& path, int mode) const;
    /// The chain of LEFT JOINs, each closed by ")"; empty for a field of the root.
    QString TablesJoin(const QString& path, bool withChild = false) const;
    /// The same as the pieces behind " LEFT JOIN ".
    QStringList joins(const QString& path, bool withChild = false) const;
    /// "FROM ", one "(" for each join, the root table and the joins; repeated pieces are written once.
    QString fromClause(const QList<QStringList>& joins) const;
    /// The root table in brackets.
    QString rootTable() const;

private:
    struct Loader;
    QString alias(const Node& node) const;
    QString identifier(const Node& node) const;
    QString expression(const Node& node) const;
    QString linkJoin(const Node& link) const;
    const Node* child(const Node& node, const QString& text) const;
    QString ensureCountQuery(const QString& module) const;

    jet::Database& m_database;
    editing::EditingContext m_context;
    QList<data::ModuleRecord> m_modules;
    QString m_root = data::moduleIndividus;
    bool m_fullList = true;
    std::unique_ptr<Node> m_tree;
    QHash<QString, Node*> m_nodes; ///< By key.
    std::vector<Node*> m_order;    ///< As loaded.
};

} // namespace query
