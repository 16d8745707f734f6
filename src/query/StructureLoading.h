// Builds the tree of a Structure.
#pragma once

#include "query/Structure.h"

namespace query {

/// One loading. A module of which the root is not among the modules leaves no tree.
class TreeLoader {
public:
    TreeLoader(const QList<data::ModuleRecord>& modules, const editing::EditingContext& context,
               const QString& root, bool fullList)
        : m_modules(modules), m_context(context), m_rootName(root), m_fullList(fullList)
    {
    }

    void load();

    std::unique_ptr<Node> root;
    std::vector<Node*> order; ///< Nodes as they were loaded.

private:
    std::unique_ptr<Node> moduleNode(Node* parent, const data::ModuleRecord& module);
    void loadModule(Node& parent, const data::ModuleRecord& module);
    void add(Node& parent, const addin::ChpEditionPtr& field, const QString& linked);
    void loadLinked(Node& link, const QString& table);

    const QList<data::ModuleRecord>& m_modules;
    const editing::EditingContext& m_context;
    QString m_rootName;
    bool m_fullList;
};

} // namespace query
