#include "query/ui/ReplaceModel.h"

#include "data/FieldType.h"
#include "query/ui/CriteriaModel.h"
#include "query/ui/FieldTreeModel.h"

#include <QGuiApplication>
#include <QPalette>

namespace query {

using namespace Qt::StringLiterals;

namespace {

bool isReplaceable(const Node* field)
{
    if (!field || field->isModule() || !field->parent || field->parent->parent)
        return false;
    static const QStringList kept{u"KeyParent"_s, u"DateCreate"_s, u"DateModify"_s, u"Locked"_s};
    return !field->champ().startsWith(u'@') && !kept.contains(field->champ())
           && data::columnOfType(field->ctype(), field->champ());
}

} // namespace

int ReplaceModel::add(const QString& path)
{
    const Node* field = m_structure.node(path);
    if (!isReplaceable(field))
        return -1;
    for (int row = 0; row < m_rows.size(); ++row) {
        if (m_rows[row].champ == field->champ())
            return row;
    }
    beginInsertRows({}, int(m_rows.size()), int(m_rows.size()));
    m_rows << Replacement{.champ = field->champ(), .value = {}};
    endInsertRows();
    Q_EMIT changed();
    return int(m_rows.size()) - 1;
}

void ReplaceModel::remove(int row)
{
    if (row < 0 || row >= m_rows.size())
        return;
    beginRemoveRows({}, row, row);
    m_rows.removeAt(row);
    endRemoveRows();
    Q_EMIT changed();
}

void ReplaceModel::setValue(int row, const QString& value, bool expression)
{
    if (row < 0 || row >= m_rows.size())
        return;
    m_rows[row].value = value;
    m_rows[row].expression = expression;
    Q_EMIT dataChanged(index(row, 0), index(row, ColumnCount - 1));
    Q_EMIT changed();
}

void ReplaceModel::setErrors(const QHash<int, QString>& errors)
{
    m_errors = errors;
    if (!m_rows.isEmpty())
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
}

const Node* ReplaceModel::field(int row) const
{
    const Node* root = m_structure.root();
    if (!root || row < 0 || row >= m_rows.size())
        return nullptr;
    for (const auto& child : root->children) {
        if (child->champ() == m_rows[row].champ)
            return child.get();
    }
    return nullptr;
}

QString ReplaceModel::caption(int row) const
{
    const Node* known = field(row);
    return known ? known->text : m_rows.value(row).champ;
}

QVariant ReplaceModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size())
        return {};
    const Replacement& row = m_rows[index.row()];
    switch (role) {
    case Qt::DisplayRole:
        if (index.column() == Field)
            return caption(index.row());
        if (row.value.isEmpty())
            return u"(vide)"_s;
        return row.expression ? u"= "_s + row.value : row.value;
    case Qt::EditRole:
    case CriteriaModel::PlainRole:
        return index.column() == Field ? caption(index.row()) : row.value;
    case Qt::ForegroundRole:
        if (!m_errors.value(index.row()).isEmpty())
            return QGuiApplication::palette().color(QPalette::Base).lightness() < 128 ? QColor(0xff, 0x8a, 0x80)
                                                                                     : QColor(0xc6, 0x28, 0x28);
        if (index.column() == Value && row.value.isEmpty())
            return QGuiApplication::palette().color(QPalette::PlaceholderText);
        return {};
    case Qt::ToolTipRole:
        return m_errors.value(index.row());
    default:
        return {};
    }
}

bool ReplaceModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::EditRole || index.column() != Value)
        return false;
    const Replacement& row = m_rows[index.row()];
    if (value.toString() != row.value)
        setValue(index.row(), value.toString(), row.expression);
    return true;
}

QVariant ReplaceModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const QStringList texts{u"Nom du champ"_s, u"Nouvelle Valeur"_s};
    if (orientation != Qt::Horizontal || (role != Qt::DisplayRole && role != Qt::TextAlignmentRole))
        return {};
    return role == Qt::DisplayRole ? QVariant(texts.value(section)) : QVariant(int(Qt::AlignLeft | Qt::AlignVCenter));
}

Qt::ItemFlags ReplaceModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::ItemIsDropEnabled;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    flags.setFlag(Qt::ItemIsEditable, index.column() == Value);
    return flags;
}

QStringList ReplaceModel::mimeTypes() const
{
    return {fieldMime};
}

bool ReplaceModel::canDropMimeData(const QMimeData* data, Qt::DropAction, int, int, const QModelIndex&) const
{
    return data->hasFormat(fieldMime);
}

bool ReplaceModel::dropMimeData(const QMimeData* data, Qt::DropAction, int, int, const QModelIndex&)
{
    for (const QString& path : fieldsIn(data))
        add(path);
    return true;
}

QWidget* ReplaceDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex& index) const
{
    const auto* model = static_cast<const ReplaceModel*>(index.model());
    const Node* field = model->field(index.row());
    if (!field)
        return nullptr;
    if (model->rows().at(index.row()).expression)
        return new ValueEdit(parent);
    return valueEditor(parent, field);
}

} // namespace query
