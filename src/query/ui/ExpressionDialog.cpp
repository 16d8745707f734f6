#include "query/ui/ExpressionDialog.h"

#include "query/BatchReplace.h"

#include <QPushButton>
#include <QSplitter>
#include <QVBoxLayout>

namespace query {

using namespace Qt::StringLiterals;

ExpressionDialog::ExpressionDialog(Structure& structure, FieldTreeModel::Icons icons, const QString& caption,
                                   const QString& expression, QWidget* parent)
    : QDialog(parent), m_structure(structure), m_fields(new CbModule(std::move(icons))),
      m_text(new QPlainTextEdit(expression)), m_error(new QLabel),
      m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel))
{
    setObjectName(u"Form14"_s);
    setWindowTitle(u"Expression - "_s + caption);
    m_fields->setStructure(&structure);
    m_text->setObjectName(u"texteExpression"_s);
    m_text->setAccessibleName(u"Expression"_s);
    m_text->setTabChangesFocus(true);
    m_text->setPlaceholderText(u"Par exemple : IIf([Individus].[Altitude] Is Null, 0, [Individus].[Altitude] * 2)"_s);
    m_error->setObjectName(u"erreurExpression"_s);
    m_error->setWordWrap(true);
    QPalette palette = m_error->palette();
    palette.setColor(QPalette::WindowText, palette.color(QPalette::Base).lightness() < 128 ? QColor(0xff, 0x8a, 0x80)
                                                                                          : QColor(0xc6, 0x28, 0x28));
    m_error->setPalette(palette);
    auto* side = new QWidget;
    auto* column = new QVBoxLayout(side);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_text, 1);
    column->addWidget(m_error);
    auto* sides = new QSplitter;
    sides->setChildrenCollapsible(false);
    sides->addWidget(m_fields);
    sides->addWidget(side);
    sides->setSizes({240, 400});
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(sides, 1);
    layout->addWidget(m_buttons);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &ExpressionDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_text, &QPlainTextEdit::textChanged, this, &ExpressionDialog::check);
    connect(m_fields, &CbModule::columnWanted, this, [this](const QString& path) {
        const Node* node = m_structure.node(path);
        if (!node || node->isModule())
            return;
        m_text->insertPlainText(m_structure.ChampsFromPath(path));
        m_text->setFocus();
    });
    resize(680, 380);
    m_text->setFocus();
    check();
}

ExpressionDialog::~ExpressionDialog()
{
    m_fields->setStructure(nullptr);
}

void ExpressionDialog::check()
{
    const QString error = BatchReplace::checkExpression(m_text->toPlainText());
    m_error->setText(error);
    m_buttons->button(QDialogButtonBox::Ok)->setEnabled(error.isEmpty() && !expression().isEmpty());
}

void ExpressionDialog::accept()
{
    check();
    if (m_error->text().isEmpty())
        QDialog::accept();
}

} // namespace query
