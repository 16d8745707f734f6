#include "app/ModuleTree.h"

#include "app/Session.h"
#include "jet/Recordset.h"
#include "jet/SqlText.h"

#include <QHash>
#include <QLoggingCategory>

namespace app {

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(treeLog, "herbora.tree")

const QString groupRequête = u"Requête"_s;
const QString groupModèle = u"Modèle"_s;
const QString groupSélections = u"Sélections"_s;
const QString groupFlottantes = u"Sélections flottantes"_s;

QString moduleIcon(const data::ModuleRecord& module)
{
    return module.icon.isEmpty() ? module.name : u"module:"_s + module.name;
}

TreeNode objectNode(const data::PropertyObject& object)
{
    const QString number = QString::number(object.id);
    TreeNode node;
    node.text = object.name;
    node.tag = object.id;
    node.icon = object.kind;
    if (object.kind == data::kindModèle)
        node.key = number + u"-model"_s;
    else if (object.kind == data::kindRequête)
        node.key = number + u"-query"_s;
    else
        node.key = number + u"-base"_s;
    return node;
}

TreeNode moduleNode(const data::ModuleRecord& module, const Session& session)
{
    TreeNode node{module.name, module.name, moduleIcon(module), {}, {}};
    const auto objects = session.properties().list(u"Requête,Base,Modèle"_s, module.name);
    for (const data::PropertyObject& object : objects)
        node.children << objectNode(object);
    return node;
}

TreeNode selectionsNode(const Session& session)
{
    TreeNode floating{groupFlottantes, groupFlottantes, u"Sélection"_s, {}, {}};
    for (const data::ModuleRecord& module : session.modules())
        floating.children << TreeNode{module.name + u"-self"_s,
                                      module.name + u" < "_s
                                          + QString::number(session.selectionCount(module.name))
                                          + u" >"_s,
                                      moduleIcon(module), {}, {}};
    return {groupSélections, groupSélections, u"Sélection"_s, {}, {floating}};
}

} // namespace

const TreeNode* TreeNode::find(QStringView wanted) const
{
    if (key == wanted)
        return this;
    for (const TreeNode& child : children) {
        if (const TreeNode* found = child.find(wanted))
            return found;
    }
    return nullptr;
}

TreeNode buildModuleTree(const Session& session)
{
    TreeNode root{u"Bases"_s, session.projectName(), u"Database"_s, {}, {}};
    for (const data::ModuleRecord& module : session.modules())
        root.children << moduleNode(module, session);
    root.children << TreeNode{groupRequête, u"Requêtes"_s, u"Requête"_s, {}, {}}
                  << selectionsNode(session)
                  << TreeNode{groupModèle, u"Modèles d'ajout"_s, u"Modèle"_s, {}, {}}
                  << TreeNode{u"Lsbotanistes"_s, u"Botanistes"_s, u"Lsbotanistes"_s, {}, {}}
                  << TreeNode{u"Lslocalités"_s, u"Localités"_s, u"Lslocalités"_s, {}, {}}
                  << TreeNode{u"Lstaxons"_s, u"Taxons"_s, u"Lstaxons"_s, {}, {}};
    return root;
}

NodeKind kindOfKey(const QString& key, const Session& session)
{
    if (key == u"Bases")
        return NodeKind::Root;
    if (key.endsWith(u"-model"))
        return NodeKind::Model;
    if (key.contains(u"-query"))
        return NodeKind::Query;
    if (key.endsWith(u"-self"))
        return NodeKind::Selection;
    if (key.endsWith(u"-base"))
        return NodeKind::Property;
    if (key == u"Lstaxons")
        return NodeKind::Taxa;
    if (key == u"Lslocalités")
        return NodeKind::Localities;
    if (key == u"Lsbotanistes")
        return NodeKind::Collectors;
    if (key == groupRequête || key == groupModèle || key == groupSélections || key == groupFlottantes)
        return NodeKind::Group;
    return session.dictionary().module(key) ? NodeKind::Module : NodeKind::None;
}

qint64 recordCount(const Session& session, const QString& key)
{
    static const QHash<NodeKind, QString> lists{{NodeKind::Taxa, u"Taxons"_s},
                                                {NodeKind::Localities, u"Localités"_s},
                                                {NodeKind::Collectors, u"Collecteurs"_s}};
    const NodeKind kind = kindOfKey(key, session);
    const QString table = kind == NodeKind::Module ? session.dictionary().module(key)->name : lists.value(kind);
    if (table.isEmpty())
        return -1;
    try {
        const auto rows = session.database().OpenRecordset(u"SELECT Count(*) FROM "_s + jet::nom(table),
                                                           jet::RecordsetType::Snapshot);
        return rows->Value(0).toLongLong();
    } catch (const jet::Error& error) {
        qCInfo(treeLog).noquote() << key << error.number() << error.description();
        return -1;
    }
}

} // namespace app
