#include "query/ui/CriteriaModel.h"

#include "data/FieldType.h"
#include "query/ui/FieldTreeModel.h"

#include <QFont>
#include <QGuiApplication>
#include <QPalette>

namespace query {

using namespace Qt::StringLiterals;

namespace {

QColor errorColour()
{
    return QGuiApplication::palette().color(QPalette::Base).lightness() < 128 ? QColor(0xff, 0x8a, 0x80)
                                                                             : QColor(0xc6, 0x28, 0x28);
}

/// The label of an operator, as the type of the field names it.
QString operatorLabel(const Node* field, const QString& op)
{
    if (field && field->field) {
        const QList<QStringList>& table = field->field->TabOperateur();
        const qsizetype at = table[1].indexOf(operatorOf(*field, op));
        if (at >= 0)
            return table[0][at];
    }
    static const QHash<QString, QString> others{{u"IN"_s, u"Parmi"_s}, {u"NOT IN"_s, u"Hors de"_s},
                                                {u"IS"_s, u"Vide"_s}, {u"IS NOT"_s, u"Non vide"_s},
                                                {u"="_s, u"Egale"_s}, {u"<>"_s, u"Différent"_s}};
    return others.value(op, op);
}

bool sameShape(const QList<Criterion>& a, const QList<Criterion>& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const Criterion& x, const Criterion& y) { return x.depth == y.depth; });
}

} // namespace

void CriteriaModel::setQuery(Query* query)
{
    beginResetModel();
    m_query = query;
    m_rows = query ? query->criteria().rows() : QList<Criterion>();
    m_errors.clear();
    endResetModel();
}

void CriteriaModel::refresh()
{
    if (!m_query)
        return;
    const QList<Criterion>& rows = m_query->criteria().rows();
    if (!sameShape(rows, m_rows))
        return setQuery(m_query);
    // Editors that are open stay so: a reset would close them.
    for (int row = 0; row < rows.size(); ++row) {
        if (m_rows[row] == rows[row])
            continue;
        m_rows[row] = rows[row];
        m_errors.remove(row);
        Q_EMIT dataChanged(indexOf(row, 0), indexOf(row, ColumnCount - 1));
    }
}

void CriteriaModel::setErrors(const QHash<int, QString>& errors)
{
    if (errors == m_errors)
        return;
    m_errors = errors;
    for (int row = 0; row < m_rows.size(); ++row)
        Q_EMIT dataChanged(indexOf(row, 0), indexOf(row, ColumnCount - 1), {Qt::ForegroundRole, Qt::ToolTipRole});
}

// --- Places ----------------------------------------------------------------------------------

/// Rows right beneath a row; -1 stands for the top.
QList<int> CriteriaModel::children(int parent) const
{
    QList<int> found;
    const int depth = parent < 0 ? 0 : m_rows.at(parent).depth + 1;
    for (int row = parent + 1; row < m_rows.size() && m_rows.at(row).depth >= depth; ++row) {
        if (m_rows.at(row).depth == depth)
            found << row;
    }
    return found;
}

int CriteriaModel::parentOf(int row) const
{
    const int depth = m_rows.at(row).depth;
    int above = row - 1;
    while (above >= 0 && m_rows.at(above).depth >= depth)
        --above;
    return depth == 0 ? -1 : above;
}

QModelIndex CriteriaModel::indexOf(int row, int column) const
{
    if (row < 0 || row >= m_rows.size())
        return {};
    return createIndex(int(children(parentOf(row)).indexOf(row)), column, quintptr(row));
}

QModelIndex CriteriaModel::index(int row, int column, const QModelIndex& parent) const
{
    if (column < 0 || column >= ColumnCount || row < 0)
        return {};
    const QList<int> rows = children(rowOf(parent));
    return row < rows.size() ? createIndex(row, column, quintptr(rows[row])) : QModelIndex();
}

QModelIndex CriteriaModel::parent(const QModelIndex& child) const
{
    const int row = rowOf(child);
    return row < 0 || row >= m_rows.size() ? QModelIndex() : indexOf(parentOf(row));
}

int CriteriaModel::rowCount(const QModelIndex& parent) const
{
    return parent.column() > 0 ? 0 : int(children(rowOf(parent)).size());
}

const Node* CriteriaModel::field(const QModelIndex& index) const
{
    const int row = rowOf(index);
    return m_query && row >= 0 && row < m_rows.size() ? m_query->structure().node(m_rows.at(row).path) : nullptr;
}

// --- Cells -----------------------------------------------------------------------------------

QString CriteriaModel::cell(const Criterion& row, int column) const
{
    const Node* field = m_query->structure().node(row.path);
    switch (column) {
    case Link:
        return row.link;
    case Field:
        if (row.path.isEmpty())
            return row.permanent.isEmpty() ? u"(groupe)"_s : u"(champ supprimé)"_s;
        return readablePath(row.path);
    case Operator:
        return row.path.isEmpty() ? QString() : operatorLabel(field, row.op);
    default:
        if (row.path.isEmpty())
            return {};
        return row.value.trimmed().isEmpty() ? u"(vide)"_s : QString(row.value).replace(u'\n', u" ; "_s);
    }
}

QVariant CriteriaModel::data(const QModelIndex& index, int role) const
{
    const int at = rowOf(index);
    if (!m_query || at < 0 || at >= m_rows.size())
        return {};
    const Criterion& row = m_rows.at(at);
    switch (role) {
    case Qt::DisplayRole:
        // What the first row of a level is linked to is nothing.
        return index.column() == Link && index.row() == 0 && rowOf(index.parent()) < 0 ? QString()
                                                                                      : cell(row, index.column());
    case Qt::EditRole:
        return index.column() == Value ? row.value : cell(row, index.column());
    case PlainRole:
        return row.value;
    case Qt::ForegroundRole:
        if (!m_errors.value(at).isEmpty())
            return errorColour();
        if (index.column() == Value && row.value.trimmed().isEmpty())
            return QGuiApplication::palette().color(QPalette::PlaceholderText);
        return {};
    case Qt::ToolTipRole:
        return m_errors.contains(at) ? m_errors.value(at) : index.column() == Value ? row.value : QString();
    case Qt::FontRole:
        if (row.path.isEmpty() && index.column() == Field) {
            QFont font;
            font.setItalic(true);
            return font;
        }
        return {};
    default:
        return {};
    }
}

bool CriteriaModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    const int at = rowOf(index);
    if (!m_query || at < 0 || at >= m_rows.size() || role != Qt::EditRole)
        return false;
    Criterion row = m_rows.at(at);
    const QString text = value.toString();
    if (index.column() == Link)
        row.link = text;
    else if (index.column() == Operator)
        row.op = field(index) ? operatorOf(*field(index), text) : text;
    else if (index.column() == Value)
        row.value = text;
    if (row == m_rows.at(at))
        return true;
    m_query->editCriteria([&](Criteria& criteria) { criteria.set(at, row); });
    return true;
}

QVariant CriteriaModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const QStringList texts{u"Liaison"_s, u"Champ"_s, u"Opérateur"_s, u"Valeur"_s};
    return orientation == Qt::Horizontal && role == Qt::DisplayRole ? QVariant(texts.value(section)) : QVariant();
}

Qt::ItemFlags CriteriaModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::ItemIsDropEnabled;
    const int at = rowOf(index);
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDropEnabled;
    const bool empty = at < m_rows.size() && m_rows.at(at).path.isEmpty();
    const bool linked = index.row() > 0 || index.parent().isValid();
    flags.setFlag(Qt::ItemIsEditable, index.column() == Link ? linked : index.column() != Field && !empty);
    return flags;
}

QStringList CriteriaModel::mimeTypes() const
{
    return {fieldMime};
}

bool CriteriaModel::canDropMimeData(const QMimeData* data, Qt::DropAction, int, int, const QModelIndex&) const
{
    return m_query && data->hasFormat(fieldMime);
}

bool CriteriaModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                                 const QModelIndex& parent)
{
    if (!canDropMimeData(data, action, row, column, parent))
        return false;
    if (row < 0 && parent.isValid()) {
        Q_EMIT fieldsDropped(fieldsIn(data), rowOf(parent), true);
    } else {
        const QModelIndex before = row > 0 ? index(row - 1, 0, parent) : QModelIndex();
        Q_EMIT fieldsDropped(fieldsIn(data), rowOf(before), false);
    }
    return true;
}

} // namespace query
