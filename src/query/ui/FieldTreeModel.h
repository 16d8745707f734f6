// The fields of a project as a tree for views.
#pragma once

#ifndef Q_MOC_RUN // which reads plain letters only
#include "query/Structure.h"
#endif

#include <QAbstractItemModel>
#include <QIcon>
#include <QMimeData>
#include <functional>

namespace query {

class Structure;
struct Node;

/// What is dragged: paths of fields, one a line.
inline const QString fieldMime = QStringLiteral("application/x-herbora-champ");
QStringList fieldsIn(const QMimeData* data);

/// The path as people read it: without the root, "›" between captions; the root's own caption for the root.
QString readablePath(const QString& path);

/// Shows the nodes of the structure itself: whoever rebuilds the structure calls `aboutToRebuild` before and `rebuilt`
/// behind.
class FieldTreeModel : public QAbstractItemModel {
    Q_OBJECT
public:
    enum Role { PathRole = Qt::UserRole + 1, KeyRole };
    using Icons = std::function<QIcon(const QString& name)>;

    FieldTreeModel(Icons icons, QObject* parent = nullptr) : QAbstractItemModel(parent), m_icons(std::move(icons)) {}

    void setStructure(Structure* structure); ///< Null for none.
    void aboutToRebuild() { beginResetModel(); }
    void rebuilt() { endResetModel(); }
    bool checkboxes() const { return m_checkboxes; }
    void setCheckboxes(bool shown);
    const Node* node(const QModelIndex& index) const;
    QModelIndex indexOf(const Node* node) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& = {}) const override { return 1; }
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QStringList mimeTypes() const override { return {fieldMime}; }
    QMimeData* mimeData(const QModelIndexList& indexes) const override;

private:
    Structure* m_structure = nullptr;
    Icons m_icons;
    bool m_checkboxes = false;
};

} // namespace query
