#include "platform/ui/ChoiceDialog.h"

#include <QScreen>

namespace platform {

using namespace Qt::StringLiterals;

ChoiceDialog::ChoiceDialog(const Choice& choice, QWidget* parent)
    : QDialog(parent), m_list(new QTreeWidget(this)),
      m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this))
{
    setObjectName(u"choice"_s);
    setWindowTitle(choice.title);
    auto* prompt = new QLabel(choice.prompt, this);
    prompt->setTextFormat(Qt::PlainText);
    prompt->setWordWrap(true);
    prompt->setBuddy(m_list);
    fill(choice);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(prompt);
    layout->addWidget(m_list, 1);
    layout->addWidget(m_buttons);
    m_list->resizeColumnToContents(0);
    const int room = screen()->availableGeometry().width() * 3 / 4;
    const int rows = qBound(8, int(choice.items.size()) + 4, 24);
    resize(qBound(420, m_list->columnWidth(0) + 60, room), fontMetrics().lineSpacing() * (rows + 4));

    QPushButton* ok = m_buttons->button(QDialogButtonBox::Ok);
    ok->setEnabled(!m_list->selectedItems().isEmpty());
    connect(m_list, &QTreeWidget::itemSelectionChanged, this,
            [this, ok] { ok->setEnabled(!m_list->selectedItems().isEmpty()); });
    connect(m_list, &QTreeWidget::itemDoubleClicked, this, &QDialog::accept);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void ChoiceDialog::fill(const Choice& choice)
{
    m_list->setObjectName(u"choiceList"_s);
    m_list->setAccessibleName(choice.prompt.isEmpty() ? choice.title : choice.prompt);
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setHeaderLabels({choice.column});
    m_list->setHeaderHidden(choice.column.isEmpty());
    m_list->setSelectionMode(choice.several ? QAbstractItemView::ExtendedSelection
                                            : QAbstractItemView::SingleSelection);
    for (const QString& item : choice.items)
        new QTreeWidgetItem(m_list, {item});
    if (m_list->topLevelItemCount() > 0 && !choice.several)
        m_list->setCurrentItem(m_list->topLevelItem(0));
}

QList<int> ChoiceDialog::chosen() const
{
    QList<int> positions;
    for (int row = 0; row < m_list->topLevelItemCount(); ++row) {
        if (m_list->topLevelItem(row)->isSelected())
            positions << row;
    }
    return positions;
}

} // namespace platform
