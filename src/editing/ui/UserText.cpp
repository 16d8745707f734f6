#include "editing/ui/UserText.h"

#include "data/FieldType.h"
#include "platform/Dialogues.h"

#include <QHBoxLayout>
#include <QSignalBlocker>

namespace editing {

using namespace Qt::StringLiterals;

namespace {

constexpr int fewestLines = 2;
const QString pictureFilter =
    u"Images (*.jpg *.jpeg *.png *.tif *.tiff *.bmp *.gif)|*.jpg *.jpeg *.png *.tif *.tiff *.bmp *.gif|Tous (*)|*|"_s;

/// How a value of that type is written.
QString example(int type)
{
    switch (type) {
    case data::Longitude:
        return u"W012°30'00 ou -12,5"_s;
    case data::Latitude:
        return u"N05°07'30 ou 5,125"_s;
    case data::Date:
        return u"aaaa/mm/jj"_s;
    default:
        return {};
    }
}

} // namespace

UserText::UserText(Cl_Edition& parent, const ControlWorld& world, QWidget* owner, bool compact)
    : FieldControl(parent, world, owner)
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    if (parent.ctype() == data::OuiNon)
        makeYesNo();
    else if (parent.ctype() == data::TexteMémo)
        makeMemo(compact);
    else
        makeLine();
    layout->addWidget(editor(), 0, m_yesNo ? Qt::AlignLeft : Qt::Alignment());
    watch(editor());
    if (parent.ctype() == data::Image && this->world().dialogues) {
        m_browse = new QToolButton(this);
        m_browse->setObjectName(u"parcourir-"_s + parent.champ());
        m_browse->setAccessibleName(u"Choisir un fichier : "_s + parent.Caption());
        m_browse->setToolTip(u"Choisir un fichier (F2)"_s);
        m_browse->setIcon(QIcon::fromTheme(u"document-open"_s));
        m_browse->setText(u"…"_s);
        m_browse->setFocusPolicy(Qt::NoFocus);
        connect(m_browse, &QToolButton::clicked, this, &UserText::openList);
        layout->addWidget(m_browse);
    }
    Refresh();
}

QWidget* UserText::editor() const
{
    return m_line ? static_cast<QWidget*>(m_line) : m_memo ? static_cast<QWidget*>(m_memo) : m_yesNo;
}

void UserText::makeLine()
{
    m_line = new EntryLine(this);
    m_line->setPlaceholderText(example(ClParent()->ctype()));
    if (!ClParent()->TextMask().isEmpty()) {
        m_line->setInputMask(ClParent()->TextMask());
        m_blank = m_line->text();
    }
    connect(m_line, &QLineEdit::textEdited, this,
            [this](const QString& text) { edit(text == m_blank ? QString() : text); });
}

void UserText::makeMemo(bool compact)
{
    m_memo = new QPlainTextEdit(this);
    m_memo->setTabChangesFocus(true);
    m_mostLines = compact ? fewestLines : m_mostLines;
    connect(m_memo, &QPlainTextEdit::textChanged, this, [this] {
        fitMemo();
        edit(m_memo->toPlainText());
    });
}

void UserText::makeYesNo()
{
    m_yesNo = new QComboBox(this);
    // The first one stands for a value that nobody gave yet.
    m_yesNo->addItem(QString());
    m_yesNo->addItem(u"Vrai"_s, u"True"_s);
    m_yesNo->addItem(u"Faux"_s, u"False"_s);
    m_yesNo->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    connect(m_yesNo, &QComboBox::activated, this, [this](int) { edit(m_yesNo->currentData()); });
}

void UserText::fitMemo()
{
    const int lines = std::clamp(m_memo->document()->lineCount() + 1, fewestLines, m_mostLines);
    const int frame = 2 * (m_memo->frameWidth() + int(m_memo->document()->documentMargin()));
    m_memo->setFixedHeight(lines * m_memo->fontMetrics().lineSpacing() + frame);
}

void UserText::Refresh()
{
    if (!ClParent())
        return;
    const QSignalBlocker quiet(editor());
    if (m_line) {
        const QString text = typedText(*ClParent());
        if (m_line->text() != text)
            m_line->setText(text);
        m_line->setCursorPosition(m_line->hasFocus() ? m_line->cursorPosition() : 0);
    } else if (m_memo) {
        const QString text = ClParent()->value().toString().replace(u"\r\n"_s, u"\n"_s);
        if (m_memo->toPlainText() != text)
            m_memo->setPlainText(text);
        fitMemo();
    } else {
        m_yesNo->setCurrentIndex(std::max(0, m_yesNo->findData(ClParent()->value())));
    }
}

void UserText::setReadOnly(bool readOnly)
{
    if (m_line)
        m_line->setReadOnly(readOnly);
    else if (m_memo)
        m_memo->setReadOnly(readOnly);
    else
        m_yesNo->setEnabled(!readOnly);
    if (m_browse)
        m_browse->setEnabled(!readOnly);
    shade(editor(), readOnly);
    if (m_line)
        m_line->setPlaceholderText(readOnly ? QString() : example(ClParent()->ctype()));
}

/// What was typed takes the form in which it is kept, once the typing is over.
void UserText::finish()
{
    if (ClParent() && m_line && !FieldInput::isRaw(*ClParent()))
        Refresh();
}

bool UserText::handleKey(QKeyEvent* event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (m_memo && isReturn && event->modifiers() == Qt::NoModifier)
        return false;
    return FieldControl::handleKey(event);
}

void UserText::openList()
{
    if (m_yesNo)
        return m_yesNo->showPopup();
    if (!m_browse || !m_browse->isEnabled() || !ClParent())
        return;
    const QStringList files = world().takeFiles
                                  ? world().dialogues->openFiles(ClParent()->Caption(), pictureFilter)
                                  : QStringList(world().dialogues->openFile(ClParent()->Caption(), pictureFilter));
    if (files.isEmpty() || files.first().isEmpty() || !ClParent())
        return;
    if (world().takeFiles)
        world().takeFiles(*ClParent(), files);
    else
        setValue(files.first());
    Refresh();
}

} // namespace editing
