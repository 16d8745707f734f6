#include "images/ui/FoldersDialog.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QShortcut>
#include <QVBoxLayout>

namespace images {

using namespace Qt::StringLiterals;

namespace {

const QString titlePick = u"Selectionnez le répertoire Images"_s;
constexpr QSize usualSize(620, 360);

} // namespace

FoldersDialog::FoldersDialog(const QStringList& folders, platform::Dialogues& dialogues, QWidget* parent)
    : QDialog(parent), m_dialogues(dialogues), m_list(new QTreeWidget(this))
{
    setObjectName(u"imageFolders"_s);
    setWindowTitle(u"Sélection"_s);
    auto* prompt = new QLabel(u"Sélectionnez et ordonnez les chemins pour la recherche des images"_s, this);
    prompt->setWordWrap(true);
    prompt->setBuddy(m_list);
    m_list->setObjectName(u"folderList"_s);
    m_list->setAccessibleName(prompt->text());
    m_list->setHeaderLabels({u"Répertoire"_s, u"État"_s});
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setTextElideMode(Qt::ElideMiddle);
    m_list->header()->setStretchLastSection(false);
    m_list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_list->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);

    auto* column = new QVBoxLayout;
    column->addWidget(command(u"addFolder"_s, u"&Ajouter…"_s, &FoldersDialog::add));
    column->addWidget(m_remove = command(u"removeFolder"_s, u"&Retirer"_s, &FoldersDialog::remove));
    column->addSpacing(12);
    column->addWidget(m_up = command(u"folderUp"_s, u"&Monter"_s, &FoldersDialog::up));
    column->addWidget(m_down = command(u"folderDown"_s, u"&Descendre"_s, &FoldersDialog::down));
    column->addStretch(1);
    auto* row = new QHBoxLayout;
    row->addWidget(m_list, 1);
    row->addLayout(column);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(prompt);
    layout->addLayout(row, 1);
    layout->addWidget(buttons);
    resize(usualSize);

    for (const QString& folder : folders)
        append(folder);
    m_list->setCurrentItem(m_list->topLevelItem(0));
    auto* del = new QShortcut(QKeySequence::Delete, m_list, nullptr, nullptr, Qt::WidgetShortcut);
    connect(del, &QShortcut::activated, this, &FoldersDialog::remove);
    connect(m_list, &QTreeWidget::currentItemChanged, this, &FoldersDialog::showPossible);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    showPossible();
}

QPushButton* FoldersDialog::command(const QString& name, const QString& text, void (FoldersDialog::*run)())
{
    auto* button = new QPushButton(text, this);
    button->setObjectName(name);
    button->setAutoDefault(false); // Return accepts
    connect(button, &QPushButton::clicked, this, run);
    return button;
}

QStringList FoldersDialog::folders() const
{
    QStringList all;
    for (int i = 0; i < m_list->topLevelItemCount(); ++i)
        all << m_list->topLevelItem(i)->text(0);
    return all;
}

void FoldersDialog::append(const QString& folder)
{
    const bool there = QDir(folder).exists();
    auto* item = new QTreeWidgetItem(m_list, {folder, there ? QString() : u"introuvable"_s});
    item->setToolTip(0, folder);
    if (!there)
        item->setForeground(0, palette().brush(QPalette::PlaceholderText));
}

void FoldersDialog::add()
{
    const QTreeWidgetItem* current = m_list->currentItem();
    const QString folder = m_dialogues.chooseFolder(titlePick, current ? current->text(0) : QString());
    if (folder.isEmpty())
        return;
    // ";" separates the folders where they are kept.
    if (folder.contains(u';')) {
        m_dialogues.tell(u"Le nom d'un répertoire d'images ne peut pas contenir de point-virgule."_s, windowTitle(),
                         platform::BoxIcon::Warning);
        return;
    }
    qsizetype at = folders().indexOf(folder);
    if (at < 0) {
        append(folder);
        at = m_list->topLevelItemCount() - 1;
    }
    m_list->setCurrentItem(m_list->topLevelItem(int(at)));
}

void FoldersDialog::remove()
{
    delete m_list->currentItem();
    showPossible();
}

void FoldersDialog::move(int by)
{
    const int from = m_list->indexOfTopLevelItem(m_list->currentItem());
    const int to = from + by;
    if (from < 0 || to < 0 || to >= m_list->topLevelItemCount())
        return;
    QTreeWidgetItem* item = m_list->takeTopLevelItem(from);
    m_list->insertTopLevelItem(to, item);
    m_list->setCurrentItem(item);
}

void FoldersDialog::showPossible()
{
    const int current = m_list->indexOfTopLevelItem(m_list->currentItem());
    m_remove->setEnabled(current >= 0);
    m_up->setEnabled(current > 0);
    m_down->setEnabled(current >= 0 && current + 1 < m_list->topLevelItemCount());
}

} // namespace images
