// Building the tree of modules and fields.
#include "query/StructureLoading.h"

#include "data/FieldType.h"
#include "editing/FieldTypes.h"

namespace query {

using namespace Qt::StringLiterals;

namespace {

/// Records reached through links one after the other; beyond, the tree would grow without end.
constexpr int maximalDepth = 4;

struct Column {
    QString champ;
    QString caption;
    int type;
};

/// Names of ranks as the expression of the rank gives them.
const QStringList& ranks()
{
    static const QStringList names{u"Famille"_s, u"Genre"_s, u"Espèce"_s, u"Taxon Infra"_s};
    return names;
}

QList<Column> stampColumns()
{
    return {{u"DateCreate"_s, u"Date Création"_s, data::Date}, {u"DateModify"_s, u"Date Modification"_s, data::Date}};
}

QList<Column> taxonColumns()
{
    return {{u"ID Taxons"_s, u"Identifiant"_s, data::Entier},
            {u"Nom Complet"_s, u"Nom"_s, data::Texte},
            {u"Taxon"_s, u"Taxon"_s, data::Texte},
            {u"Auteurs"_s, u"Auteur(s)"_s, data::Texte},
            {fieldRank, u"Rang Taxonomique"_s, data::ListeSimple},
            {fieldValid, u"Valide"_s, data::OuiNon},
            {u"ID Famille"_s, u"Famille"_s, data::Taxon},
            {u"ID Genre"_s, u"Genre"_s, data::Taxon},
            {u"ID Espèce"_s, u"Espèce"_s, data::Taxon},
            {u"ID Infra"_s, u"Taxon infraspécifique"_s, data::Taxon},
            {u"ID Valid"_s, u"Nom Valide"_s, data::Taxon},
            {u"DateOriginal"_s, u"Date Publication"_s, data::Texte},
            {u"TypeSpecimen"_s, u"Echantillon Type"_s, data::Texte},
            {u"Commentaire"_s, u"Commentaire"_s, data::TexteMémo},
            {u"AuteurSynonymie"_s, u"Auteur(s) de la synonymie"_s, data::Texte},
            {u"DateSynonymie"_s, u"Date de la synonymie"_s, data::Texte},
            {u"CommentSynonymie"_s, u"Commentaire de la synonymie"_s, data::TexteMémo}};
}

QList<Column> localityColumns()
{
    return {{u"ID Localités"_s, u"Identifiant"_s, data::Entier},
            {u"Localité"_s, u"Nom de la Localité"_s, data::Texte},
            {u"Nom Entier"_s, u"Nom Entier"_s, data::Texte},
            {u"LongDD"_s, u"Longitude"_s, data::Longitude},
            {u"LatDD"_s, u"Latitude"_s, data::Latitude},
            {u"Altitude"_s, u"Altitude"_s, data::Réel},
            {u"GPSRef"_s, u"Référence GPS"_s, data::Texte},
            {u"CodeRegion"_s, u"Code Région"_s, data::Texte},
            {u"XOrigine"_s, u"X origine"_s, data::Réel},
            {u"YOrigine"_s, u"Y origine"_s, data::Réel},
            {u"Largeur"_s, u"Largeur"_s, data::Réel},
            {u"Longueur"_s, u"Longueur"_s, data::Réel}};
}

QList<Column> collectorColumns()
{
    return {{u"ID Collecteurs"_s, u"Identifiant"_s, data::Entier},
            {u"Collecteur"_s, u"Nom"_s, data::Texte},
            {u"Initiales"_s, u"Initiales"_s, data::Texte},
            {u"Bot"_s, u"Botaniste"_s, data::OuiNon},
            {u"Organisme"_s, u"Organisme"_s, data::Texte}};
}

/// The identifier stands first: the first child is what a region criterion is made of.
QList<Column> referenceColumns(const QString& table)
{
    if (table == u"Taxons")
        return taxonColumns() + stampColumns();
    if (table == u"Localités")
        return localityColumns() + stampColumns();
    return collectorColumns() + stampColumns();
}

addin::ChpEditionPtr record(const QString& module, const Column& column)
{
    auto field = std::make_shared<addin::ChpEdition>();
    field->ctype = column.type;
    field->champ = column.champ;
    field->Caption = column.caption;
    field->NomModule = module;
    if (column.champ == fieldRank)
        field->Descripteurs = ranks();
    return field;
}

addin::ChpEditionPtr record(const QString& module, const data::FieldRecord& source)
{
    auto field = record(module, Column{source.column, source.caption, source.type});
    field->TextHelp = source.help;
    field->AllowNull = !source.required();
    field->Descripteurs = source.descriptors;
    return field;
}

const data::ModuleRecord* find(const QList<data::ModuleRecord>& modules, const QString& name)
{
    for (const data::ModuleRecord& module : modules) {
        if (module.name.compare(name, Qt::CaseInsensitive) == 0)
            return &module;
    }
    return nullptr;
}

/// The module of which a link field holds a record: its provider, or the name of its column.
QString linkedModule(const QList<data::ModuleRecord>& modules, const data::FieldRecord& field)
{
    const data::ModuleRecord* module = find(modules, field.provider);
    if (!module && field.column.startsWith(u"ID "))
        module = find(modules, field.column.mid(3));
    return module ? module->name : QString();
}

QString referenceTable(int type)
{
    switch (type) {
    case data::Botaniste: return u"Collecteurs"_s;
    case data::Localité: return u"Localités"_s;
    case data::Taxon: return u"Taxons"_s;
    default: return {};
    }
}

/// How often the table was entered through a link on the way to this node, and through how many links in all.
int entries(const Node* node, const QString& table, int* depth)
{
    int times = 0;
    *depth = 0;
    for (; node; node = node->parent) {
        if (node->linked.isEmpty())
            continue;
        ++*depth;
        times += node->linked == table ? 1 : 0;
    }
    return times;
}

/// Captions are unique beneath a node, since paths are made of them.
QString uniqueText(const Node& parent, const QString& text, const QString& addition)
{
    const auto taken = [&](const QString& candidate) {
        return std::any_of(parent.children.begin(), parent.children.end(),
                           [&](const auto& other) { return other->text == candidate; });
    };
    if (!taken(text))
        return text;
    QString candidate = text + u" ("_s + addition + u')';
    for (int number = 2; taken(candidate); ++number)
        candidate = text + u" ("_s + QString::number(number) + u')';
    return candidate;
}

} // namespace

void TreeLoader::load()
{
    const data::ModuleRecord* first = find(m_modules, m_rootName);
    if (!first)
        return;
    root = moduleNode(nullptr, *first);
    loadModule(*root, *first);
    if (!m_fullList)
        return;
    for (const data::ModuleRecord& module : m_modules) {
        if (&module == first)
            continue;
        root->children.push_back(moduleNode(root.get(), module));
        loadModule(*root->children.back(), module);
    }
}

std::unique_ptr<Node> TreeLoader::moduleNode(Node* parent, const data::ModuleRecord& module)
{
    auto node = std::make_unique<Node>();
    node->key = u"ID "_s + module.name;
    node->text = module.label.isEmpty() ? module.name : module.label;
    if (parent)
        node->text = uniqueText(*parent, node->text, module.name);
    node->icon = module.icon.isEmpty() ? module.name : u"module:"_s + module.name;
    node->module = module.name;
    node->parent = parent;
    order.push_back(node.get());
    return node;
}

void TreeLoader::loadModule(Node& parent, const data::ModuleRecord& module)
{
    for (const data::FieldRecord& field : module.fields) {
        if (!data::columnOfType(field.type, field.column))
            continue; // no column, nothing to ask for
        const QString linked = field.type == data::LienCourant ? linkedModule(m_modules, field)
                                                               : referenceTable(field.type);
        add(parent, record(module.name, field), linked);
    }
    QList<Column> permanent;
    if (module.name != m_rootName)
        permanent << Column{u"KeyParent"_s, u"IDParent"_s, data::Texte};
    permanent << Column{fieldCount, u"Compte"_s, data::Entier};
    permanent += stampColumns();
    permanent << Column{u"Locked"_s, u"Verrou"_s, data::OuiNon};
    for (const Column& column : permanent)
        add(parent, record(module.name, column), {});
}

void TreeLoader::add(Node& parent, const addin::ChpEditionPtr& field, const QString& linked)
{
    auto node = std::make_unique<Node>();
    node->field = std::make_unique<editing::Cl_Edition>(m_context);
    node->field->setChpEdition(field);
    node->key = node->field->key();
    node->text = uniqueText(parent, field->Caption.isEmpty() ? field->champ : field->Caption, field->champ);
    node->icon = node->field->IconName();
    node->module = field->NomModule;
    node->parent = &parent;
    Node& added = *node;
    order.push_back(node.get());
    parent.children.push_back(std::move(node));
    if (!linked.isEmpty())
        loadLinked(added, linked);
}

void TreeLoader::loadLinked(Node& link, const QString& table)
{
    const data::ModuleRecord* module = find(m_modules, table);
    int depth = 0;
    const int before = entries(link.parent, table, &depth);
    // A taxon leads to its family, genus …, which are taxa; a module is not entered twice.
    if (depth >= maximalDepth || before >= (module ? 1 : 2))
        return;
    link.linked = table;
    if (module && link.field->ctype() == data::LienCourant) {
        loadModule(link, *module);
        return;
    }
    for (const Column& column : referenceColumns(table))
        add(link, record(table, column), referenceTable(column.type));
}

} // namespace query
