#include "app/ui/structure/TypeDelegate.h"

#include "app/structure/StructureEditing.h"
#include "app/ui/structure/StructureModel.h"

#include <QComboBox>

namespace app {

using namespace Qt::StringLiterals;

QWidget* TypeDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    if (index.column() != StructureModel::Type)
        return QStyledItemDelegate::createEditor(parent, option, index);
    auto* types = new QComboBox(parent);
    types->setAccessibleName(u"Type du champ"_s);
    for (const auto& [text, type] : StructureEditing::typesOffered())
        types->addItem(text, type);
    return types;
}

void TypeDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    if (auto* types = qobject_cast<QComboBox*>(editor))
        types->setCurrentIndex(types->findData(index.data(StructureModel::typeRole)));
    else
        QStyledItemDelegate::setEditorData(editor, index);
}

void TypeDelegate::setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const
{
    if (auto* types = qobject_cast<QComboBox*>(editor))
        model->setData(index, types->currentData());
    else
        QStyledItemDelegate::setModelData(editor, model, index);
}

} // namespace app
