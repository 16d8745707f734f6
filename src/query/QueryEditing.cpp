// Editing the columns and criteria of a query.
#include "query/Query.h"

#include "data/FieldType.h"
#include "editing/Cl_Editions.h"
#include "editing/Formats.h"
#include "jet/SqlText.h"

#include <QFileInfo>

namespace query {

using namespace Qt::StringLiterals;

namespace {

bool sameText(const QString& a, const QString& b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

/// An alias stands in brackets in the statement.
QString writable(QString alias)
{
    return alias.replace(u'[', u'(').replace(u']', u')').replace(u'\n', u' ').trimmed();
}

struct Side {
    QString champ;
    QString caption;
    QString prompt;
    int type;
};

const QList<Side>& sides()
{
    static const QList<Side> all{
        {u"LongDD"_s, u"Longitude X1"_s,
         u"Indiquez la longitude minimale du point GPS (Décimale ou [W-E]ddd°mm'ss.000)"_s, data::Longitude},
        {u"LatDD"_s, u"Latitude Y1"_s,
         u"Indiquez la latitude minimale du points GPS (Décimale ou [N-S]dd°mm'ss.000)"_s, data::Latitude},
        {u"LongDD"_s, u"Longitude X2"_s,
         u"Indiquez la longitude maximale du point GPS (Décimale ou [W-E]ddd°mm'ss.000)"_s, data::Longitude},
        {u"LatDD"_s, u"Latitude Y2"_s,
         u"Indiquez la latitude maximale du points GPS (Décimale ou [N-S]dd°mm'ss.000)"_s, data::Latitude}};
    return all;
}

} // namespace

// --- Output columns --------------------------------------------------------------------------

bool Query::aliasTaken(const QString& alias, int except) const
{
    if (sameText(alias, u"Individu"_s) || sameText(alias, u"ID "_s + m_definition.module))
        return true; // the statement begins with these
    const int other = columnOf(alias);
    return other >= 0 && other != except;
}

QString Query::freeAlias(const QString& wanted) const
{
    QString alias = writable(wanted);
    for (int number = 2; aliasTaken(alias, -1); ++number)
        alias = writable(wanted) + u' ' + QString::number(number);
    return alias;
}

int Query::columnOf(const QString& alias) const
{
    for (int i = 0; i < m_definition.columns.size(); ++i) {
        if (sameText(m_definition.columns[i].alias, alias))
            return i;
    }
    return -1;
}

int Query::addColumn(const QString& path, const QString& alias)
{
    const Node* field = m_structure.node(path);
    if (!field)
        return -1;
    m_definition.columns << OutputColumn{m_structure.path(*field), freeAlias(alias.isEmpty() ? field->text : alias), {}, {}};
    changed();
    return int(m_definition.columns.size()) - 1;
}

int Query::addReadableColumn(const QString& path)
{
    static const QHash<int, QString> names{
        {data::Botaniste, u"Collecteur"_s}, {data::Localité, u"Nom Entier"_s}, {data::Taxon, u"Nom Complet"_s}};
    const Node* field = m_structure.node(path);
    if (field && field->field) {
        for (const auto& child : field->children) {
            if (child->champ() == names.value(field->ctype()))
                return addColumn(m_structure.path(*child), field->text);
        }
    }
    return addColumn(path);
}

void Query::removeColumn(int column)
{
    if (column < 0 || column >= m_definition.columns.size())
        return;
    m_definition.columns.removeAt(column);
    changed();
}

void Query::moveColumn(int from, int to)
{
    const auto inside = [this](int i) { return i >= 0 && i < m_definition.columns.size(); };
    if (!inside(from) || !inside(to) || from == to)
        return;
    m_definition.columns.move(from, to);
    changed();
}

void Query::setOrder(int column, const QString& order)
{
    if (column < 0 || column >= m_definition.columns.size())
        return;
    m_definition.columns[column].order = order == orderUp || order == orderDown ? order : QString();
    changed();
}

bool Query::setAlias(int column, const QString& alias)
{
    if (column < 0 || column >= m_definition.columns.size())
        return false;
    const QString wanted = writable(alias);
    if (wanted.isEmpty())
        return false;
    if (aliasTaken(wanted, column)) {
        m_world.dialogues.tell(u"Erreur: Le nom n'est pas unique dans la collection des alias de champs."_s, title(),
                               platform::BoxIcon::Stop);
        return false;
    }
    m_definition.columns[column].alias = wanted;
    changed();
    return true;
}

bool Query::editAlias(int column)
{
    if (column < 0 || column >= m_definition.columns.size())
        return false;
    const std::optional<QString> answer = m_world.dialogues.input(
        title(), u"Modifier le nom de l'alias ou appuyer sur ESC pour annuler les modifications"_s,
        m_definition.columns[column].alias);
    return answer && setAlias(column, *answer);
}

bool Query::sort(const QString& alias, const QString& order)
{
    const int column = columnOf(alias);
    if (column < 0)
        return false;
    for (OutputColumn& other : m_definition.columns)
        other.order.clear();
    m_definition.columns[column].order = order;
    changed();
    return true;
}

QString Query::filterPrompt(const QString& alias) { return u"Filtrer '"_s + alias + u"' sur :"_s; }
QString Query::sortCaption(const QString& alias) { return u"Trier '"_s + alias + u'\''; }
QString Query::hideCaption(const QString& alias) { return u"Masquer '"_s + alias + u'\''; }

// --- Criteria --------------------------------------------------------------------------------

QString Query::rootPath() const
{
    return m_structure.root() ? m_structure.path(*m_structure.root()) : QString();
}

qsizetype Query::command(const QString& key, qsizetype row, const QString& path)
{
    Criteria& criteria = m_definition.criteria;
    Criterion fresh{.path = path};
    if (const Node* field = m_structure.node(path))
        fresh.op = operatorOf(*field, u"="_s);
    qsizetype at = row;
    if (key == u"add")
        at = criteria.add(fresh);
    else if (key == u"addchild")
        at = criteria.addChild(row, fresh);
    else if (key == u"addbrother")
        at = criteria.addBrother(row, fresh);
    else if (key == u"delete")
        criteria.remove(row);
    else if (key == u"up")
        at = criteria.up(row);
    else if (key == u"down")
        at = criteria.down(row);
    else
        return row;
    changed();
    return at;
}

qsizetype Query::addOrEmpty(qsizetype row)
{
    if (row < 0 || row >= m_definition.criteria.count() || m_definition.criteria.at(row).path.isEmpty())
        return row;
    const Criterion& own = m_definition.criteria.at(row);
    const qsizetype at = m_definition.criteria.addChild(
        row, {.link = linkOr, .path = own.path, .op = u"IS"_s, .value = {}, .permanent = own.permanent});
    changed();
    return at;
}

/// Puts the rows into a group where one of them is linked by OU, so that what is added holds for them all.
void Query::closeOff()
{
    const QList<Criterion> rows = m_definition.criteria.rows();
    bool open = false;
    for (const qsizetype row : m_definition.criteria.brothers(0, rows.size()))
        open = open || (row > 0 && rows[row].link == linkOr);
    if (!open)
        return;
    QList<Criterion> grouped{Criterion{}};
    for (Criterion row : rows) {
        ++row.depth;
        grouped << row;
    }
    m_definition.criteria.setRows(grouped);
}

/// Rows that hold together, linked by ET to what is there.
void Query::insertGroup(const QList<Criterion>& rows)
{
    if (rows.isEmpty())
        return;
    closeOff();
    QList<Criterion> all = m_definition.criteria.rows();
    const bool group = std::any_of(rows.begin() + 1, rows.end(),
                                   [](const Criterion& row) { return row.depth == 0 && row.link == linkOr; });
    if (group)
        all << Criterion{};
    const qsizetype first = all.size();
    for (Criterion row : rows) {
        row.depth += group ? 1 : 0;
        all << row;
    }
    all[first].link = linkAnd;
    m_definition.criteria.setRows(all);
    changed();
}

qsizetype Query::insertText(const QString& text)
{
    const QList<Criterion> rows = Criteria::fromText(text);
    for (Criterion row : rows) {
        if (const Node* field = m_structure.node(row.path))
            row.op = operatorOf(*field, row.op);
        m_definition.criteria.add(row);
    }
    if (!rows.isEmpty())
        changed();
    return rows.size();
}

void Query::insertTerms(const QString& path, const QStringList& terms)
{
    QString text;
    for (const QString& term : terms)
        text += (text.isEmpty() ? linkAnd : linkOr) + u'\t' + path + u"\t=\t"_s + term + u"\r\n"_s;
    insertGroup(Criteria::fromText(text));
}

bool Query::insertTerms(int ctype, const QStringList& terms)
{
    const QStringList paths = m_structure.fieldsOfType(ctype);
    QStringList shown;
    for (const QString& path : paths)
        shown << QString(path).replace(pathSeparator, u'/');
    const std::optional<QList<int>> chosen = m_world.dialogues.choose(
        {title(), u"Sélectionner le champ d'exécution de la requête pour les termes sélectionnés"_s, u"Champ"_s, shown});
    if (!chosen || chosen->isEmpty())
        return false;
    insertTerms(paths.at(chosen->first()), terms);
    return true;
}

void Query::insertIdentifiers(const QList<qint32>& ids, const QString& module)
{
    const QString path = module.isEmpty() ? rootPath() : m_structure.PathFromPermanent(module, {});
    if (!path.isEmpty())
        insertGroup({{.path = path, .op = u"IN"_s, .value = jet::liste(ids)}});
}

bool Query::askIdentifiers()
{
    const QString module = m_definition.module;
    const std::optional<QString> answer = m_world.dialogues.input(
        u"Edition d'une série de ID "_s + module,
        module + u": Editer une série d'objet. Inscrivez les ID séparés par une virgule (ex: 1258,1245,3154,...)"_s);
    if (!answer || answer->trimmed().isEmpty())
        return false;
    insertGroup({{.path = rootPath(), .op = u"IN"_s, .value = answer->trimmed()}});
    return true;
}

QString Query::placeField() const
{
    for (const QString& path : m_structure.fieldsOfType(data::Localité)) {
        if (!m_structure.node(path)->children.empty())
            return path;
    }
    return {};
}

void Query::insertPlaces(const QList<qint32>& localities)
{
    if (const QString field = placeField(); !field.isEmpty())
        insertGroup({{.path = field, .op = u"IN"_s, .value = jet::liste(localities)}});
}

bool Query::insertFrom(data::PropertyStore& store, int except)
{
    QList<data::PropertyObject> objects;
    QStringList names;
    for (const data::PropertyObject& object : store.list(data::kindRequête, m_definition.module)) {
        if (object.id == except)
            continue; // a query cannot insert itself
        objects << object;
        names << object.name;
    }
    const std::optional<QList<int>> chosen = m_world.dialogues.choose(
        {u"Insérer des Requêtes"_s, u"Sélectionnez les requêtes que vous souhaitez insérer"_s, u"Nom de la Requête"_s,
         names, true});
    if (!chosen)
        return false;
    for (const int position : *chosen) {
        const data::PropertyObject& object = objects.at(position);
        const QString text = store.value(object.kind, object.module, object.name).toString();
        insertGroup(definitionFrom(text, object.module, m_structure).criteria.rows());
    }
    return !chosen->isEmpty();
}

bool Query::insertQueries()
{
    return insertFrom(m_world.store, m_id > 0 ? m_id : -1);
}

QString Query::insertBaseCaption(const QString& name)
{
    return u"depuis la base "_s + name;
}

bool Query::insertBase(const QString& file)
{
    try {
        const auto other = jet::Database::Open(file, {.password = {}, .readOnly = true});
        data::PropertyStore store(*other, m_world.clock);
        return insertFrom(store, -1);
    } catch (const jet::Error& error) {
        m_world.dialogues.tell(error.description(), insertBaseCaption(QFileInfo(file).fileName()),
                               platform::BoxIcon::Stop);
        return false;
    }
}

bool Query::insertRectangle(const QString& x1, const QString& y1, const QString& x2, const QString& y2)
{
    const Node* place = m_structure.node(placeField());
    if (!place)
        return false;
    try {
        const auto degrees = [this](int type, const QString& text) {
            return valueSql(type, text, m_structure.context()).toDouble();
        };
        const auto [west, east] = std::minmax({degrees(data::Longitude, x1), degrees(data::Longitude, x2)});
        const auto [south, north] = std::minmax({degrees(data::Latitude, y1), degrees(data::Latitude, y2)});
        const QString field = m_structure.path(*place);
        const auto child = [&](const QString& champ) {
            for (const auto& candidate : place->children) {
                if (candidate->champ() == champ)
                    return m_structure.path(*candidate);
            }
            return QString();
        };
        const auto row = [&](const QString& champ, const QString& op, double value) {
            return Criterion{.path = child(champ), .op = op, .value = jet::nombre(value)};
        };
        insertGroup({row(u"LongDD"_s, u">"_s, west), row(u"LongDD"_s, u"<"_s, east), row(u"LatDD"_s, u"<"_s, north),
                     row(u"LatDD"_s, u">"_s, south)});
        return true;
    } catch (const RowRefused&) {
        return false;
    }
}

bool Query::askRectangle(editing::FormDialogue& form)
{
    editing::Cl_Editions fields(m_structure.context());
    for (const Side& side : sides()) { // two sides have one column each, so they are not added by column
        auto field = std::make_unique<editing::Cl_Edition>(m_structure.context());
        field->setCtype(side.type);
        field->setChamp(side.champ);
        field->setCaption(side.caption);
        field->setTextHelp(side.prompt);
        field->setAllowNull(false);
        fields.AppendItem(std::move(field));
    }
    return form.edit(u"Rectangle GPS"_s, fields, [this](editing::Cl_Editions& filled) {
        if (!filled.valid())
            return false;
        const auto text = [&](int i) { return jet::nombre(filled.Item(i)->value().toDouble()); };
        return insertRectangle(text(0), text(1), text(2), text(3));
    });
}

bool Query::filter(const QString& alias, const QString& op, const QString& value)
{
    const int column = columnOf(alias);
    if (column < 0 || m_definition.columns[column].path.isEmpty())
        return false;
    insertGroup({{.path = m_definition.columns[column].path, .op = op, .value = value}});
    return true;
}

bool Query::askFilter(const QString& alias, const QString& op, const QString& byDefault)
{
    const std::optional<QString> answer =
        m_world.dialogues.input(u"Filtre sur un champ"_s, filterPrompt(alias), byDefault);
    return answer && filter(alias, op, *answer);
}

} // namespace query
