// The tree of an individual's records.
#include "editing/IndividualEditingPrivate.h"

#include "jet/Recordset.h"
#include "jet/SqlText.h"

#include <QSet>

namespace editing {

using namespace Qt::StringLiterals;
using jet::nom;

namespace {

/// Fields whose values make the text of a node: so many are said, among so many first ones.
constexpr int toldFields = 2, lookedAtFields = 5;

QString groupKey(const QString& parent, const QString& module)
{
    return module + u'@' + parent;
}

} // namespace

int EditNode::row() const
{
    if (!parent)
        return 0;
    const auto here = std::find_if(parent->children.begin(), parent->children.end(),
                                   [this](const auto& child) { return child.get() == this; });
    return int(here - parent->children.begin());
}

EditedRecord* IndividualEditing::individual() const
{
    return m_records.empty() ? nullptr : m_records.front().get();
}

EditedRecord* IndividualEditing::record(const QString& key) const
{
    return m_byKey.value(key);
}

const EditNode* IndividualEditing::node(const QString& key) const
{
    return m_nodes.value(key);
}

QStringList IndividualEditing::moduleOrder() const
{
    QStringList names;
    for (const data::ModuleRecord& module : m_tools.dictionary.modules())
        names << module.name;
    return names;
}

QStringList IndividualEditing::modules() const
{
    QStringList names = moduleOrder();
    names.removeIf([this](const QString& name) { return name == individus || !m_tools.database.schema().table(name); });
    return names;
}

// --- Reading -------------------------------------------------------------------------------------

void IndividualEditing::readModule(const data::ModuleRecord& module, qint32 individu, Records& found) const
{
    if (!m_tools.database.schema().table(module.name))
        return;
    const QString id = nom(module.idColumn());
    const auto rows = m_tools.database.OpenRecordset(
        u"SELECT "_s + id + u",[KeyParent],[Locked] FROM "_s + nom(module.name) + u" WHERE [ID Individus]="_s
            + QString::number(individu) + u" ORDER BY "_s + id,
        jet::RecordsetType::Snapshot);
    for (; !rows->EOF_(); rows->MoveNext()) {
        auto record = std::make_unique<EditedRecord>();
        record->module = module.name;
        record->id = rows->Value(0).toInt();
        record->key = data::parentKey(record->id, module.name);
        record->parent = rows->Value(1).toString();
        record->locked = rows->Value(2).toBool();
        found.push_back(std::move(record));
    }
}

IndividualEditing::Records IndividualEditing::read(qint32 individu) const
{
    Records found;
    for (const bool root : {true, false}) {
        for (const data::ModuleRecord& module : m_tools.dictionary.modules()) {
            if (module.isIndividus() == root)
                readModule(module, individu, found);
        }
    }
    return found;
}

void IndividualEditing::take(Records&& found)
{
    m_records = std::move(found);
    m_byKey.clear();
    for (const auto& record : m_records)
        m_byKey.insert(record->key, record.get());
    buildTree();
}

bool IndividualEditing::loadIndividual(qint32 individu)
{
    Records found = read(individu);
    if (found.empty() || found.front()->module != individus)
        return false;
    makeCurrent(nullptr);
    take(std::move(found));
    return true;
}

void IndividualEditing::clear()
{
    makeCurrent(nullptr);
    take({});
}

/// Reads the tree again. Records stay with what is typed in them; where reading fails, all stay as they are.
void IndividualEditing::reload(const QString& key)
{
    if (!isOpen())
        return;
    const QString current = m_current ? m_current->key : QString();
    Records found;
    const bool fresh = individual()->isNew() || guarded(u"Lecture"_s, false, [&] {
        found = read(CurrentIndividu());
        return !found.empty() && found.front()->module == individus;
    });
    if (fresh) {
        Records old = std::move(m_records);
        keep(old, found);
        if (std::any_of(old.begin(), old.end(), [this](const auto& record) { return record && record.get() == m_current; }))
            makeCurrent(nullptr);
        take(std::move(found));
    }
    EditedRecord* shown = record(key) ? record(key) : record(current);
    makeCurrent(shown ? shown : individual());
}

/// Moves the records that are still there from the old list, with what the file now says of them. One never saved
/// stays as long as its parent does.
void IndividualEditing::keep(Records& old, Records& found)
{
    QHash<QString, size_t> known;
    for (size_t i = 0; i < found.size(); ++i)
        known.insert(found[i]->key, i);
    for (auto& record : old) {
        if (const auto again = known.constFind(record->key); again != known.cend()) {
            record->parent = found[*again]->parent;
            record->locked = found[*again]->locked;
            found[*again] = std::move(record);
        } else if (record->isNew() && (record->module == individus || known.contains(record->parent))) {
            known.insert(record->key, found.size());
            found.push_back(std::move(record));
        }
    }
}

/// Takes back a record never saved with all under it; all of them (but the individual) for an empty key.
void IndividualEditing::dropNew(const QString& key)
{
    QSet<QString> gone;
    for (const auto& record : m_records) {
        const bool all = key.isEmpty() && record->module != individus;
        if (record->isNew() && (all || (!key.isEmpty() && isUnder(record->key, key))))
            gone << record->key;
    }
    makeCurrent(nullptr);
    std::erase_if(m_records, [&](const auto& record) { return gone.contains(record->key); });
    m_byKey.removeIf([&](const auto& entry) { return gone.contains(entry.key()); });
}

EditedRecord* IndividualEditing::append(const QString& module, const QString& parent)
{
    auto record = std::make_unique<EditedRecord>();
    record->module = module;
    record->key = temporaryMarker + QString::number(++m_temporary) + u'-' + module;
    record->parent = parent;
    EditedRecord* added = record.get();
    m_records.push_back(std::move(record));
    m_byKey.insert(added->key, added);
    return added;
}

// --- Nodes ---------------------------------------------------------------------------------------

/// The record under which a record is shown: its parent; the individual where that is none of its records, or where
/// the parents run in a ring.
QString IndividualEditing::effectiveParent(const EditedRecord& record) const
{
    const EditedRecord* root = individual();
    if (!root || &record == root)
        return {};
    QSet<QString> seen;
    for (const EditedRecord* at = &record; at && at != root; at = m_byKey.value(at->parent)) {
        if (seen.contains(at->key))
            return root->key;
        seen << at->key;
    }
    return m_byKey.contains(record.parent) ? record.parent : root->key;
}

bool IndividualEditing::isUnder(const QString& key, const QString& ancestor) const
{
    QString at = key;
    while (!at.isEmpty() && at != ancestor) {
        const EditedRecord* one = record(at);
        at = one ? effectiveParent(*one) : QString();
    }
    return !at.isEmpty();
}

EditNode* IndividualEditing::addNode(EditNode& parent, EditNode::Kind kind, const QString& key, const QString& module,
                                     EditedRecord* record)
{
    auto node = std::make_unique<EditNode>();
    node->kind = kind;
    node->key = key;
    node->module = module;
    node->record = record;
    node->parent = &parent;
    EditNode* added = node.get();
    parent.children.push_back(std::move(node));
    if (kind != EditNode::Kind::New)
        m_nodes.insert(key, added);
    return added;
}

void IndividualEditing::buildUnder(EditNode& node, const QHash<QString, QList<EditedRecord*>>& children)
{
    const bool root = node.record == individual();
    for (const data::ModuleRecord& module : m_tools.dictionary.modules()) {
        if (module.isIndividus() || !m_tools.database.schema().table(module.name))
            continue;
        const QString key = groupKey(node.key, module.name);
        const QList<EditedRecord*> records = children.value(key);
        if (records.isEmpty() && !root)
            continue;
        EditNode* group = addNode(node, EditNode::Kind::Group, key, module.name, node.record);
        for (EditedRecord* record : records)
            buildUnder(*addNode(*group, EditNode::Kind::Record, record->key, module.name, record), children);
        if (canAdd(module.name))
            addNode(*group, EditNode::Kind::New, u"N"_s, module.name, node.record);
    }
}

void IndividualEditing::buildTree()
{
    m_nodes.clear();
    m_tree = std::make_unique<EditNode>();
    if (EditedRecord* root = individual()) {
        QHash<QString, QList<EditedRecord*>> children;
        for (const auto& record : m_records) {
            if (record.get() != root)
                children[groupKey(effectiveParent(*record), record->module)] << record.get();
        }
        buildUnder(*addNode(*m_tree, EditNode::Kind::Record, root->key, root->module, root), children);
        addNode(*m_tree, EditNode::Kind::Help, u"help"_s, {}, nullptr);
    }
    if (treeChanged)
        treeChanged();
}

QList<EditedRecord*> IndividualEditing::inTreeOrder() const
{
    QList<EditedRecord*> order;
    const std::function<void(const EditNode&)> walk = [&](const EditNode& node) {
        if (node.kind == EditNode::Kind::Record)
            order << node.record;
        for (const auto& child : node.children)
            walk(*child);
    };
    walk(*m_tree);
    return order;
}

QList<EditedRecord*> IndividualEditing::savedInOrder() const
{
    QList<EditedRecord*> order = inTreeOrder();
    order.removeIf([](const EditedRecord* record) { return record->isNew(); });
    return order;
}

QList<EditedRecord*> IndividualEditing::branch(const EditedRecord& record) const
{
    QList<EditedRecord*> list;
    const EditNode* top = node(record.key);
    if (!top)
        return list;
    list << top->record;
    for (const auto& group : top->children) {
        for (const auto& child : group->children) {
            if (child->kind == EditNode::Kind::Record)
                list << child->record;
        }
    }
    return list;
}

void IndividualEditing::makeCurrent(EditedRecord* record)
{
    if (m_current && m_current != record)
        remember(*m_current);
    m_current = record;
    if (currentChanged)
        currentChanged();
}

bool IndividualEditing::select(const QString& key)
{
    EditedRecord* wanted = record(key);
    if (!wanted)
        return false;
    makeCurrent(wanted);
    return true;
}

// --- Texts ---------------------------------------------------------------------------------------

QString IndividualEditing::name(const EditedRecord& record) const
{
    const QString label = u"< "_s + m_tools.context.records->label(record.module);
    return record.isNew() ? label + u" - Ajout >"_s : label + u" - N° "_s + QString::number(record.id) + u" >"_s;
}

/// What the first fields of a form hold, in a few words.
QString IndividualEditing::inWords(const Cl_Editions& form) const
{
    QStringList words;
    for (int i = 0; i < form.Count() && i < lookedAtFields && words.size() < toldFields; ++i) {
        Cl_Edition& field = *form.Item(i);
        const bool empty = !field.value().isValid() || FieldInput::isRaw(field);
        const QString text = empty ? QString() : field.FormatedValue().simplified();
        if (!text.isEmpty())
            words << text;
    }
    return words.join(u", "_s);
}

QString IndividualEditing::describe(const QString& module, qint32 id) const
{
    std::shared_ptr<Cl_Editions>& form = m_scratch[module];
    if (!form) {
        form = std::make_shared<Cl_Editions>(m_tools.context);
        form->setTabedition(module, m_tools.context.records->fields(module).mid(0, lookedAtFields));
    }
    return trapped("summary", QString(), [&] {
        form->bind(CurrentIndividu(), id);
        return inWords(*form);
    });
}

QString IndividualEditing::summary(const EditedRecord& record) const
{
    if (record.summary.isEmpty() && !m_away)
        record.summary = trapped("summary", QString(), [&] {
            return record.form ? inWords(*record.form) : describe(record.module, record.id);
        });
    return record.summary;
}

QString IndividualEditing::nodeCaption(const EditNode& node) const
{
    switch (node.kind) {
    case EditNode::Kind::Root:
        return {};
    case EditNode::Kind::Help:
        return u"Aide"_s;
    case EditNode::Kind::New:
        return u": < Ajout "_s + node.module + u'>';
    case EditNode::Kind::Group: {
        const auto records = std::count_if(node.children.begin(), node.children.end(), [](const auto& child) {
            return child->kind == EditNode::Kind::Record;
        });
        return m_tools.context.records->label(node.module) + u" ("_s + QString::number(records) + u')';
    }
    case EditNode::Kind::Record:
        break;
    }
    const QString says = summary(*node.record);
    const QString number = node.record->isNew() ? name(*node.record) : u"N° "_s + QString::number(node.record->id);
    const QString label = node.record == individual() && !node.record->isNew()
                              ? m_tools.context.records->label(node.module) + u' ' + number
                              : number;
    return says.isEmpty() ? label : label + u" : "_s + says;
}

QString IndividualEditing::about(const EditedRecord& record) const
{
    const QVariantMap values = trapped("object", QVariantMap(), [&] {
        return m_tools.context.records->record(record.module, record.id);
    });
    const QString parent = effectiveParent(record);
    QStringList lines{name(record),
                      u"Module : "_s + record.module,
                      u"Clé : "_s + (record.isNew() ? u"(pas encore enregistré)"_s : record.key),
                      u"Parent : "_s + (parent.isEmpty() ? u"(aucun)"_s : parent.startsWith(temporaryMarker) ? u"(pas encore enregistré)"_s : parent),
                      u"Verrouillé : "_s + (record.locked ? u"Oui"_s : u"Non"_s),
                      u"Création : "_s + values.value(u"DateCreate"_s).toString(),
                      u"Modification : "_s + values.value(u"DateModify"_s).toString()};
    const EditNode* here = node(record.key);
    for (size_t i = 0; here && i < here->children.size(); ++i)
        lines << u"Sous cet enregistrement : "_s + nodeCaption(*here->children[i]);
    return lines.join(u'\n');
}

QString IndividualEditing::help() const
{
    QStringList lines;
    for (const data::ModuleRecord& module : m_tools.dictionary.modules()) {
        lines << module.label + (module.help.isEmpty() ? QString() : u" : "_s + module.help);
        for (const data::FieldRecord& field : module.fields)
            lines << u"    "_s + field.caption + (field.help.isEmpty() ? QString() : u" : "_s + field.help);
        lines << QString();
    }
    return lines.join(u'\n').trimmed();
}

} // namespace editing
