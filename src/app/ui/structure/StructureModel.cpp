#include "app/ui/structure/StructureModel.h"

#include "app/structure/StructureEditing.h"
#include "app/ui/Icons.h"
#include "data/FieldType.h"
#include "editing/FieldTypes.h"

#include <QApplication>
#include <QFont>
#include <QPalette>

namespace app {

using namespace Qt::StringLiterals;

namespace {

/// The flags behind the check marks, by column.
int flagOf(int column)
{
    switch (column) {
    case StructureModel::Required:
        return data::Obligatoire;
    case StructureModel::Unique:
        return data::Unique;
    case StructureModel::Mixed:
        return data::MixteUnique;
    case StructureModel::Linked:
        return data::Interface;
    default:
        return 0;
    }
}

QIcon iconOfType(int type)
{
    switch (type) {
    case data::Longitude:
    case data::Latitude:
        return themeIcon(u"globe"_s);
    case data::OuiNon:
        return themeIcon(u"checkbox"_s);
    case data::Réel:
    case data::Entier:
        return themeIcon(u"accessories-calculator"_s);
    case data::Date:
        return themeIcon(u"view-calendar"_s);
    case data::Image:
        return themeIcon(u"viewimage"_s);
    case data::TexteMémo:
        return themeIcon(u"text-x-generic"_s);
    case data::ListeMultiple:
        return themeIcon(u"format-list-unordered"_s);
    case data::ListeSimple:
        return themeIcon(u"format-list-ordered"_s);
    case data::Botaniste:
    case data::Localité:
    case data::Taxon:
        return iconNamed(editing::fieldTypeRow(type).icon);
    case data::LienCourant:
        return themeIcon(u"insert-link"_s);
    default:
        return themeIcon(u"draw-text"_s);
    }
}

const QStringList& fieldTitles()
{
    static const QStringList titles{u"Nom"_s,          u"Type"_s,        u"Nulle Interdit"_s,
                                    u"Valeur Unique"_s, u"Combinaison Unique"_s, u"Lien Interface"_s,
                                    u"Description"_s,   u"Elément"_s,     u"Exemple abrégé"_s};
    return titles;
}

} // namespace

StructureModel::StructureModel(const StructureEditing& editing, QObject* parent)
    : QAbstractItemModel(parent), m_editing(editing)
{
    refresh();
}

StructureModel::Line StructureModel::fieldLine(const DraftModule& module, const DraftField& field) const
{
    Line line{.kind = Kind::Field, .id = field.id, .type = field.record.type, .texts = {}, .checks = {}, .icon = {},
              .readOnly = m_editing.isReadOnly(module, field), .tip = {}, .lines = {}};
    line.texts = QStringList{field.record.caption, StructureEditing::typeText(field.record.type), {}, {}, {}, {},
                             field.record.help, StructureEditing::descriptorText(field),
                             m_editing.example(module, field)};
    for (int column = Required; column <= Linked; ++column)
        line.checks << ((field.record.flags & flagOf(column)) ? 1 : 0);
    line.icon = iconOfType(field.record.type);
    line.tip = line.readOnly ? u"Ce champ appartient au programme : il ne peut être modifié"_s : field.record.help;
    return line;
}

StructureModel::Line StructureModel::moduleLine(const DraftModule& module) const
{
    Line line{.kind = Kind::Module, .id = module.id, .type = 0, .texts = {}, .checks = {}, .icon = {},
              .readOnly = m_editing.isReadOnly(module), .tip = m_editing.status(module), .lines = {}};
    const data::ModuleRecord& record = module.record;
    line.texts = QStringList{m_editing.moduleText(module), m_editing.status(module), m_editing.provider(module),
                             record.version, QString::number(m_editing.records(module)), {}, record.help, record.label,
                             m_editing.example(module)};
    line.icon = iconNamed(u"module:"_s + record.name, {record});
    line.lines.push_back({.kind = Kind::Titles, .id = 0, .type = 0, .texts = fieldTitles(), .checks = {}, .icon = {},
                          .readOnly = true, .tip = {}, .lines = {}});
    for (const DraftField& field : module.fields)
        line.lines.push_back(fieldLine(module, field));
    line.lines.push_back({.kind = Kind::FieldCount, .id = 0, .type = 0,
                          .texts = {QString::number(module.fields.size()) + u" champ(s) définis"_s}, .checks = {},
                          .icon = {}, .readOnly = true, .tip = {}, .lines = {}});
    return line;
}

void StructureModel::refresh()
{
    beginResetModel();
    m_lines.clear();
    for (const DraftModule& module : m_editing.draft().modules())
        m_lines.push_back(moduleLine(module));
    m_lines.push_back({.kind = Kind::ModuleCount, .id = 0, .type = 0,
                       .texts = {QString::number(m_editing.draft().modules().size()) + u" module(s) définis"_s},
                       .checks = {}, .icon = {}, .readOnly = true, .tip = {}, .lines = {}});
    endResetModel();
}

const StructureModel::Line* StructureModel::line(const QModelIndex& index) const
{
    if (!index.isValid())
        return nullptr;
    if (index.internalId() == 0)
        return &m_lines.at(size_t(index.row()));
    return &m_lines.at(index.internalId() - 1).lines.at(size_t(index.row()));
}

StructureModel::Kind StructureModel::kind(const QModelIndex& index) const
{
    const Line* one = line(index);
    return one ? one->kind : Kind::ModuleCount;
}

QModelIndex StructureModel::indexOf(int id) const
{
    for (size_t module = 0; id != 0 && module < m_lines.size(); ++module) {
        if (m_lines[module].id == id)
            return createIndex(int(module), 0, quintptr(0));
        for (size_t field = 0; field < m_lines[module].lines.size(); ++field) {
            if (m_lines[module].lines[field].id == id)
                return createIndex(int(field), 0, quintptr(module + 1));
        }
    }
    return {};
}

QModelIndex StructureModel::index(int row, int column, const QModelIndex& parent) const
{
    if (!hasIndex(row, column, parent))
        return {};
    return createIndex(row, column, parent.isValid() ? quintptr(parent.row()) + 1 : quintptr(0));
}

QModelIndex StructureModel::parent(const QModelIndex& child) const
{
    return child.isValid() && child.internalId() > 0 ? createIndex(int(child.internalId() - 1), 0, quintptr(0))
                                                     : QModelIndex();
}

int StructureModel::rowCount(const QModelIndex& parent) const
{
    if (!parent.isValid())
        return int(m_lines.size());
    return parent.internalId() == 0 && parent.column() == 0 ? int(line(parent)->lines.size()) : 0;
}

int StructureModel::columnCount(const QModelIndex&) const
{
    return ColumnCount;
}

QVariant StructureModel::text(const Line& line, int column) const
{
    return line.texts.value(column);
}

QVariant StructureModel::data(const QModelIndex& index, int role) const
{
    const Line* one = line(index);
    if (!one)
        return {};
    const int column = index.column();
    const bool title = one->kind == Kind::Titles;
    const bool count = one->kind == Kind::FieldCount || one->kind == Kind::ModuleCount;
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        // The name without what is said behind it.
        if (role == Qt::EditRole && one->kind == Kind::Module && column == Name)
            return m_editing.draft().module(one->id)->record.name;
        return text(*one, column);
    case Qt::DecorationRole:
        return column == Name && !one->icon.isNull() ? QVariant(one->icon) : QVariant();
    case Qt::CheckStateRole:
        if (one->kind == Kind::Field && column >= Required && column <= Linked)
            return one->checks[column - Required] ? Qt::Checked : Qt::Unchecked;
        return {};
    case Qt::TextAlignmentRole:
        if (one->kind == Kind::Module && column == Mixed)
            return QVariant(Qt::AlignRight | Qt::AlignVCenter);
        return {};
    case Qt::FontRole: {
        QFont font = QApplication::font();
        font.setBold(one->kind == Kind::Module && column == Name);
        font.setItalic(count);
        return title || count || font.bold() ? QVariant(font) : QVariant();
    }
    case Qt::BackgroundRole:
        return title ? QVariant(QApplication::palette().brush(QPalette::Button)) : QVariant();
    case Qt::ForegroundRole:
        if (title)
            return QApplication::palette().brush(QPalette::ButtonText);
        if (count || (one->readOnly && one->kind == Kind::Field))
            return QApplication::palette().brush(QPalette::PlaceholderText);
        return {};
    case Qt::ToolTipRole:
        return one->tip.isEmpty() ? text(*one, column) : QVariant(one->tip);
    case Qt::AccessibleTextRole:
        if (one->kind == Kind::Field && column >= Required && column <= Linked)
            return QString(fieldTitles()[column] + (one->checks[column - Required] ? u" : oui"_s : u" : non"_s));
        return {};
    case idRole:
        return one->id;
    case typeRole:
        return one->type;
    default:
        return {};
    }
}

bool StructureModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    const Line* one = line(index);
    if (!one || !(flags(index) & (Qt::ItemIsEditable | Qt::ItemIsUserCheckable)))
        return false;
    const int column = index.column();
    if (role == Qt::CheckStateRole && flagOf(column))
        Q_EMIT flagToggled(one->id, flagOf(column), value.toInt() == Qt::Checked);
    else if (role == Qt::EditRole && column == Name)
        Q_EMIT nameTyped(one->id, value.toString());
    else if (role == Qt::EditRole && column == Description)
        Q_EMIT descriptionTyped(one->id, value.toString());
    else if (role == Qt::EditRole && column == Type)
        Q_EMIT typeChosen(one->id, value.toInt());
    else
        return false;
    return true;
}

Qt::ItemFlags StructureModel::flags(const QModelIndex& index) const
{
    const Line* one = line(index);
    if (!one || one->id == 0)
        return Qt::ItemIsEnabled;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (one->readOnly)
        return flags;
    const int column = index.column();
    const bool field = one->kind == Kind::Field;
    if (column == Name || column == Description || (field && column == Type))
        flags |= Qt::ItemIsEditable;
    if (field && flagOf(column))
        flags |= Qt::ItemIsUserCheckable;
    return flags;
}

QVariant StructureModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const QStringList titles{u"Module"_s, u"Statut"_s, u"Nom DLL"_s, u"Version"_s, u"Enregistrements"_s, {},
                                    u"Description"_s, u"Elément"_s, u"Exemple abrégé"_s};
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return titles.value(section);
}

} // namespace app
