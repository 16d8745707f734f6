#include "query/ui/CriterionEditors.h"

#include "data/FieldType.h"
#include "query/CriterionSql.h"
#include "query/ui/CriteriaModel.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QKeyEvent>

namespace query {

using namespace Qt::StringLiterals;

namespace {

constexpr int idRole = Qt::UserRole;
constexpr int nameRole = Qt::UserRole + 1;
constexpr int mostLines = 6;

bool isName(int type)
{
    return type == data::Botaniste || type == data::Localité || type == data::Taxon;
}

/// Numbers are listed with commas too, so none may stand in the name behind one.
QString chosenText(qint32 id, QString name)
{
    return QString::number(id) + u" - "_s + name.replace(u',', u' ').replace(u';', u' ').simplified();
}

} // namespace

// --- Names -----------------------------------------------------------------------------------

NameEdit::NameEdit(int type, NameSearch search, QWidget* parent)
    : QLineEdit(parent), m_type(type), m_search(std::move(search)), m_completer(new QCompleter(this)),
      m_matches(new QStandardItemModel(this))
{
    setObjectName(u"valeurNom"_s);
    setPlaceholderText(u"Début du nom"_s);
    m_completer->setModel(m_matches);
    m_completer->setWidget(this);
    m_completer->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    m_completer->setMaxVisibleItems(15);
    m_completer->popup()->setAccessibleName(u"Noms trouvés"_s);
    connect(m_completer, qOverload<const QModelIndex&>(&QCompleter::activated), this, &NameEdit::choose);
    connect(this, &QLineEdit::textEdited, this, &NameEdit::showMatches);
}

QString NameEdit::value() const
{
    QStringList items;
    for (const QString& item : text().split(u';')) {
        if (!item.trimmed().isEmpty())
            items << item.trimmed();
    }
    return items.join(u'\n');
}

void NameEdit::setValue(const QString& value)
{
    setText(QString(value).replace(u'\n', u" ; "_s));
    selectAll();
}

void NameEdit::showMatches()
{
    const QString typed = text().section(u';', -1).trimmed();
    m_matches->clear();
    const auto found = typed.isEmpty() || !m_search ? QList<editing::ReferenceMatch>() : m_search(m_type, typed);
    for (const editing::ReferenceMatch& match : found) {
        auto* item = new QStandardItem(match.detail.isEmpty() ? match.name : match.name + u"   "_s + match.detail);
        item->setData(match.id, idRole);
        item->setData(match.name, nameRole);
        m_matches->appendRow(item);
    }
    if (found.isEmpty())
        return m_completer->popup()->hide();
    m_completer->complete();
    m_completer->popup()->setCurrentIndex(m_completer->completionModel()->index(0, 0));
}

void NameEdit::choose(const QModelIndex& index)
{
    if (!index.isValid())
        return;
    QString before = text().section(u';', 0, -2).trimmed();
    if (!before.isEmpty())
        before += u" ; "_s;
    setText(before + chosenText(index.data(idRole).toInt(), index.data(nameRole).toString()));
}

void NameEdit::keyPressEvent(QKeyEvent* event)
{
    const bool take = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Tab;
    if (take && m_completer->popup()->isVisible()) {
        m_completer->popup()->hide();
        choose(m_completer->popup()->currentIndex());
        event->accept();
        return;
    }
    QLineEdit::keyPressEvent(event);
}

// --- Texts -----------------------------------------------------------------------------------

ValueEdit::ValueEdit(QWidget* parent) : QPlainTextEdit(parent)
{
    setObjectName(u"valeurTexte"_s);
    setTabChangesFocus(true);
    setLineWrapMode(NoWrap);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    document()->setDocumentMargin(2);
    setToolTip(u"Maj+Entrée pour plusieurs valeurs, une par ligne"_s);
    connect(this, &QPlainTextEdit::textChanged, this, &ValueEdit::fit);
}

void ValueEdit::fit()
{
    const int lines = qBound(1, blockCount(), mostLines);
    resize(width(), lines * fontMetrics().lineSpacing() + 8);
    setVerticalScrollBarPolicy(blockCount() > mostLines ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
}

void ValueEdit::showEvent(QShowEvent* event)
{
    QPlainTextEdit::showEvent(event);
    fit();
}

void ValueEdit::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (!(event->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier)))
            return Q_EMIT finished();
        return insertPlainText(u"\n"_s);
    }
    QPlainTextEdit::keyPressEvent(event);
}

// --- Delegate --------------------------------------------------------------------------------

void CriterionDelegate::finish(QWidget* editor) const
{
    auto* self = const_cast<CriterionDelegate*>(this);
    Q_EMIT self->commitData(editor);
    Q_EMIT self->closeEditor(editor);
}

QWidget* CriterionDelegate::choiceEditor(QWidget* parent, const QStringList& items) const
{
    auto* box = new QComboBox(parent);
    for (const QString& item : items)
        box->addItem(item, item);
    connect(box, &QComboBox::activated, this, [this, box] { finish(box); });
    return box;
}

QWidget* CriterionDelegate::operatorEditor(QWidget* parent, const Node* field) const
{
    auto* box = new QComboBox(parent);
    box->setAccessibleName(u"Opérateur"_s);
    if (field && field->field) {
        const QList<QStringList>& table = field->field->TabOperateur();
        for (int i = 0; i < table[0].size(); ++i)
            box->addItem(table[0][i], table[1][i]);
    } else {
        box->addItem(u"Egale"_s, u"="_s);
        box->addItem(u"Différent"_s, u"<>"_s);
    }
    box->insertSeparator(box->count());
    const QList<std::pair<QString, QString>> others{
        {u"Parmi"_s, u"IN"_s}, {u"Hors de"_s, u"NOT IN"_s}, {u"Vide"_s, u"IS"_s}, {u"Non vide"_s, u"IS NOT"_s}};
    for (const auto& [label, op] : others) {
        if (box->findData(op) < 0)
            box->addItem(label, op);
    }
    connect(box, &QComboBox::activated, this, [this, box] { finish(box); });
    return box;
}

QWidget* CriterionDelegate::valueEditor(QWidget* parent, const Node* field) const
{
    const int type = field->ctype();
    if (field->field && isName(type)) {
        auto* line = new NameEdit(type, m_search, parent);
        line->setFrame(false);
        return line;
    }
    if (type == data::OuiNon)
        return choiceEditor(parent, {u"Oui"_s, u"Non"_s});
    const bool list = type == data::ListeSimple || type == data::ListeMultiple;
    if (list && field->field && !field->field->ListeItems().isEmpty()) {
        auto* box = qobject_cast<QComboBox*>(choiceEditor(parent, field->field->ListeItems()));
        box->setEditable(true);
        box->setInsertPolicy(QComboBox::NoInsert);
        return box;
    }
    auto* edit = new ValueEdit(parent);
    connect(edit, &ValueEdit::finished, this, [this, edit] { finish(edit); });
    return edit;
}

QWidget* CriterionDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex& index) const
{
    const auto* model = static_cast<const CriteriaModel*>(index.model());
    const Node* field = model->field(index);
    if (index.column() == CriteriaModel::Link)
        return choiceEditor(parent, {linkAnd, linkOr});
    if (index.column() == CriteriaModel::Operator)
        return operatorEditor(parent, field);
    return field ? valueEditor(parent, field) : nullptr;
}

void CriterionDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    const QString plain = index.data(CriteriaModel::PlainRole).toString();
    if (auto* line = qobject_cast<NameEdit*>(editor)) {
        line->setValue(plain);
    } else if (auto* text = qobject_cast<ValueEdit*>(editor)) {
        text->setPlainText(plain);
        text->selectAll();
    } else if (auto* box = qobject_cast<QComboBox*>(editor)) {
        if (box->isEditable())
            box->setEditText(plain);
        else
            box->setCurrentText(index.data(Qt::EditRole).toString());
    }
}

void CriterionDelegate::setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const
{
    if (auto* line = qobject_cast<NameEdit*>(editor))
        model->setData(index, line->value());
    else if (auto* text = qobject_cast<ValueEdit*>(editor))
        model->setData(index, text->toPlainText());
    else if (auto* box = qobject_cast<QComboBox*>(editor))
        model->setData(index, box->isEditable() ? box->currentText() : box->currentData().toString());
}

void CriterionDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                             const QModelIndex&) const
{
    QRect place = option.rect;
    if (qobject_cast<ValueEdit*>(editor))
        place.setHeight(editor->height());
    editor->setGeometry(place);
}

QSize CriterionDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    size.setHeight(qMax(size.height(), option.fontMetrics.height() + 8));
    return size;
}

bool CriterionDelegate::eventFilter(QObject* watched, QEvent* event)
{
    // The editor of texts uses Return itself; the usual filter would take it.
    if (qobject_cast<ValueEdit*>(watched) && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter)
            return false;
    }
    return QStyledItemDelegate::eventFilter(watched, event);
}

} // namespace query
