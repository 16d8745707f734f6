#include "query/Structure.h"

#include "data/FieldType.h"
#include "query/StructureLoading.h"

namespace query {

using namespace Qt::StringLiterals;

int Node::ctype() const
{
    return field ? field->ctype() : int(data::Entier);
}

Structure::Structure(jet::Database& database, editing::EditingContext context)
    : m_database(database), m_context(std::move(context))
{
}

Structure::~Structure() = default;

void Structure::LoadStructure(const QList<data::ModuleRecord>& modules)
{
    m_modules = modules;
    m_nodes.clear();
    m_order.clear();
    m_tree.reset();
    if (!m_database.isOpen())
        return;
    TreeLoader loader(m_modules, m_context, m_root, m_fullList);
    loader.load();
    m_tree = std::move(loader.root);
    m_order = std::move(loader.order);
    for (Node* node : m_order)
        m_nodes.insert(node->key, node);
}

void Structure::setNomModule(const QString& module)
{
    m_root = module;
    LoadStructure(QList(m_modules));
}

void Structure::setModeFullList(bool full)
{
    m_fullList = full;
    LoadStructure(QList(m_modules));
}

const Node* Structure::child(const Node& node, const QString& text) const
{
    for (const auto& candidate : node.children) {
        if (candidate->text == text)
            return candidate.get();
    }
    return nullptr;
}

const Node* Structure::node(const QString& keyOrPath) const
{
    if (!m_tree || keyOrPath.isEmpty())
        return nullptr;
    if (Node* known = m_nodes.value(keyOrPath))
        return known;
    const QStringList texts = keyOrPath.split(pathSeparator);
    const Node* at = texts.first() == m_tree->text ? m_tree.get() : nullptr;
    for (qsizetype i = 1; at && i < texts.size(); ++i)
        at = child(*at, texts[i]);
    return at;
}

QString Structure::path(const Node& node) const
{
    QStringList texts;
    for (const Node* at = &node; at; at = at->parent)
        texts.prepend(at->text);
    return texts.join(pathSeparator);
}

QString Structure::PathFromKey(const QString& key) const
{
    const Node* known = m_nodes.value(key);
    return known ? path(*known) : QString();
}

QString Structure::KeyFromPath(const QString& path) const
{
    const Node* found = node(path);
    return found ? found->key : QString();
}

editing::Cl_Edition* Structure::ClasseFromPath(const QString& keyOrPath) const
{
    const Node* found = node(keyOrPath);
    return found ? found->field.get() : nullptr;
}

QString Structure::icon(const QString& keyOrPath) const
{
    const Node* found = node(keyOrPath);
    return found ? found->icon : QString();
}

QString Structure::PermanentFieldName(const QString& keyOrPath) const
{
    QStringList names;
    for (const Node* at = node(keyOrPath); at && !at->champ().isEmpty(); at = at->parent)
        names.prepend(at->champ());
    return names.join(pathSeparator);
}

QString Structure::PathFromPermanent(const QString& module, const QString& permanent) const
{
    const Node* at = module.isEmpty() ? m_tree.get() : node(u"ID "_s + module);
    if (!at && m_tree) { // a module is found whatever the case of its name
        for (const Node* candidate : m_order) {
            if (candidate->isModule() && candidate->module.compare(module, Qt::CaseInsensitive) == 0)
                at = candidate;
        }
    }
    for (const QString& name : permanent.split(pathSeparator, Qt::SkipEmptyParts)) {
        if (!at)
            return {};
        const auto found = std::find_if(at->children.begin(), at->children.end(), [&](const auto& candidate) {
            return candidate->champ().compare(name, Qt::CaseInsensitive) == 0;
        });
        at = found == at->children.end() ? nullptr : found->get();
    }
    return at ? path(*at) : QString();
}

QStringList Structure::namedFields(const QString& keyOrPath) const
{
    QStringList names;
    const Node* at = node(keyOrPath);
    if (at && at->isModule())
        return {at->module + u".ID "_s + at->module};
    for (; at && !at->isModule(); at = at->parent)
        names.prepend(at->module + u'.' + at->champ());
    return names;
}

QStringList Structure::fieldsOfType(int type, const QString& name) const
{
    QStringList paths;
    for (const Node* candidate : m_order) {
        if (candidate->field && candidate->ctype() == type && (name.isEmpty() || candidate->champ() == name))
            paths << path(*candidate);
    }
    return paths;
}

QString Structure::LsChampsType(int type, const QString& name) const
{
    QString list;
    for (const QString& path : fieldsOfType(type, name))
        list += path + u';';
    return list;
}

bool Structure::checked(const QString& key) const
{
    const Node* known = m_nodes.value(key);
    return known && known->checked;
}

void Structure::setChecked(const QString& key, bool checked)
{
    if (Node* known = m_nodes.value(key))
        known->checked = checked;
}

void Structure::ClearChecked()
{
    for (Node* known : m_order)
        known->checked = false;
}

} // namespace query
