#include "platform/ui/QtDialogues.h"

#include "platform/ui/ChoiceDialog.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QMessageBox>
#include <QScreen>
#include <QStandardPaths>

namespace platform {

using namespace Qt::StringLiterals;

namespace {

QMessageBox::Icon iconOf(BoxIcon icon)
{
    switch (icon) {
    case BoxIcon::Stop:
        return QMessageBox::Critical;
    case BoxIcon::Question:
        return QMessageBox::Question;
    case BoxIcon::Warning:
        return QMessageBox::Warning;
    case BoxIcon::Information:
        break;
    }
    return QMessageBox::Information;
}

QMessageBox::StandardButtons buttonsOf(BoxButtons buttons)
{
    switch (buttons) {
    case BoxButtons::YesNo:
        return QMessageBox::Yes | QMessageBox::No;
    case BoxButtons::YesNoCancel:
        return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case BoxButtons::Ok:
        break;
    }
    return QMessageBox::Ok;
}

QMessageBox::StandardButton buttonOf(Answer answer)
{
    switch (answer) {
    case Answer::Yes:
        return QMessageBox::Yes;
    case Answer::No:
        return QMessageBox::No;
    case Answer::Cancel:
        return QMessageBox::Cancel;
    case Answer::Ok:
        break;
    }
    return QMessageBox::Ok;
}

Answer answerOf(int button)
{
    switch (button) {
    case QMessageBox::Ok:
        return Answer::Ok;
    case QMessageBox::Yes:
        return Answer::Yes;
    case QMessageBox::No:
        return Answer::No;
    default:
        return Answer::Cancel;
    }
}

/// The texts have plain blanks before ? ! : ; which must not begin a line.
QString unbroken(QString text)
{
    for (const QChar mark : {u'?', u'!', u':', u';', u'»'})
        text.replace(QString(u' ') + mark, QString(QChar::Nbsp) + mark);
    return text.replace(u"« "_s, u"«\u00a0"_s);
}

/// Long texts are easier to read in few long lines than in many short ones.
void widen(QMessageBox& box)
{
    auto* label = box.findChild<QLabel*>(u"qt_msgbox_label"_s);
    if (!label)
        return;
    int widest = 0;
    const QStringList lines = box.text().split(u'\n');
    for (const QString& line : lines)
        widest = qMax(widest, label->fontMetrics().horizontalAdvance(line));
    const int room = box.screen()->availableGeometry().width() * 3 / 5;
    label->setMinimumWidth(std::min({widest, label->fontMetrics().averageCharWidth() * 90, room}));
}

/// A patterns text "*.hbx" or "*.jpg;*.jpeg" gives "hbx", "jpg": added when the user types no extension.
QString suffixOf(const QString& filter)
{
    const QString pattern = filter.section(u'|', 1, 1).section(u';', 0, 0).trimmed();
    const QString suffix = pattern.startsWith(u"*."_s) ? pattern.mid(2) : QString();
    return suffix.contains(u'*') ? QString() : suffix;
}

} // namespace

QWidget* QtDialogues::parent() const
{
    if (QWidget* active = QApplication::activeWindow()) {
        if (!active->isModal())
            m_recent = active;
        return active;
    }
    // Between two boxes no window is active; the second must not bring another window to the front.
    return m_recent && m_recent->isVisible() ? m_recent.data() : m_parent.data();
}

QString QtDialogues::startFolder(const QString& wanted) const
{
    if (!wanted.isEmpty())
        return wanted;
    if (!m_lastFolder.isEmpty())
        return m_lastFolder;
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QFileInfo(documents).isDir() ? documents : QDir::homePath();
}

Answer QtDialogues::ask(const Message& message)
{
    QMessageBox box(parent());
    box.setObjectName(u"message"_s);
    box.setIcon(iconOf(message.icon));
    box.setWindowTitle(message.title);
    box.setTextFormat(Qt::PlainText); // a file name may look like markup
    box.setText(unbroken(message.text));
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    box.setStandardButtons(buttonsOf(message.buttons));
    const QMessageBox::StandardButton wanted = buttonOf(message.byDefault);
    if (box.standardButtons().testFlag(wanted))
        box.setDefaultButton(wanted);
    if (message.buttons == BoxButtons::YesNo)
        box.setEscapeButton(QMessageBox::No);
    widen(box);
    const int button = box.exec();
    return answerOf(button);
}

std::optional<QString> QtDialogues::input(const QString& title, const QString& prompt, const QString& byDefault)
{
    bool accepted = false;
    const QString text = QInputDialog::getText(parent(), title, prompt, QLineEdit::Normal, byDefault, &accepted);
    if (!accepted)
        return {};
    return text.normalized(QString::NormalizationForm_C);
}

std::optional<QString> QtDialogues::password(const QString& title, const QString& prompt)
{
    bool accepted = false;
    const QString text = QInputDialog::getText(parent(), title, prompt, QLineEdit::Password, {}, &accepted);
    return accepted ? std::optional<QString>(text) : std::nullopt;
}

std::optional<QList<int>> QtDialogues::choose(const Choice& choice)
{
    ChoiceDialog dialog(choice, parent());
    if (dialog.exec() != QDialog::Accepted)
        return {};
    return dialog.chosen();
}

QString QtDialogues::openFile(const QString& title, const QString& filter, const QString& folder)
{
    const QString path = QFileDialog::getOpenFileName(parent(), title, startFolder(folder), qtFilter(filter));
    if (!path.isEmpty())
        m_lastFolder = QFileInfo(path).absolutePath();
    return path;
}

QStringList QtDialogues::openFiles(const QString& title, const QString& filter, const QString& folder)
{
    const QStringList paths = QFileDialog::getOpenFileNames(parent(), title, startFolder(folder), qtFilter(filter));
    if (!paths.isEmpty())
        m_lastFolder = QFileInfo(paths.first()).absolutePath();
    return paths;
}

QString QtDialogues::saveFile(const QString& title, const QString& filter, const QString& proposal)
{
    QFileDialog dialog(parent(), title, {}, qtFilter(filter));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(suffixOf(filter));
    const QFileInfo info(proposal);
    dialog.setDirectory(info.isAbsolute() ? info.absolutePath() : startFolder({}));
    dialog.selectFile(info.fileName());
    if (dialog.exec() != QDialog::Accepted)
        return {};
    const QString path = dialog.selectedFiles().value(0);
    m_lastFolder = QFileInfo(path).absolutePath();
    return path;
}

QString QtDialogues::chooseFolder(const QString& title, const QString& folder)
{
    const QString path = QFileDialog::getExistingDirectory(parent(), title, startFolder(folder));
    if (!path.isEmpty())
        m_lastFolder = path;
    return path;
}

} // namespace platform
