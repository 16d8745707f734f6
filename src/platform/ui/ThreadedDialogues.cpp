#include "platform/ui/ThreadedDialogues.h"

#include <QThread>

namespace platform {

template <typename Question> auto ThreadedDialogues::there(Question question)
{
    if (QThread::currentThread() == m_home.thread())
        return question();
    decltype(question()) answer{};
    QMetaObject::invokeMethod(&m_home, [&] { answer = question(); }, Qt::BlockingQueuedConnection);
    return answer;
}

Answer ThreadedDialogues::ask(const Message& message)
{
    return there([&] { return m_dialogues.ask(message); });
}

std::optional<QString> ThreadedDialogues::input(const QString& title, const QString& prompt,
                                                const QString& byDefault)
{
    return there([&] { return m_dialogues.input(title, prompt, byDefault); });
}

std::optional<QString> ThreadedDialogues::password(const QString& title, const QString& prompt)
{
    return there([&] { return m_dialogues.password(title, prompt); });
}

std::optional<QList<int>> ThreadedDialogues::choose(const Choice& choice)
{
    return there([&] { return m_dialogues.choose(choice); });
}

QString ThreadedDialogues::openFile(const QString& title, const QString& filter, const QString& folder)
{
    return there([&] { return m_dialogues.openFile(title, filter, folder); });
}

QStringList ThreadedDialogues::openFiles(const QString& title, const QString& filter, const QString& folder)
{
    return there([&] { return m_dialogues.openFiles(title, filter, folder); });
}

QString ThreadedDialogues::saveFile(const QString& title, const QString& filter, const QString& proposal)
{
    return there([&] { return m_dialogues.saveFile(title, filter, proposal); });
}

QString ThreadedDialogues::chooseFolder(const QString& title, const QString& folder)
{
    return there([&] { return m_dialogues.chooseFolder(title, folder); });
}

} // namespace platform
