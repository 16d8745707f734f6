#include "cli/Terminal.h"

#include <cstdio>
#include <unistd.h>

namespace cli {

using namespace Qt::StringLiterals;
using platform::Answer;
using platform::BoxButtons;

void printLine(const QString& text)
{
    const QByteArray bytes = text.toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
}

void printError(const QString& text)
{
    const QByteArray bytes = text.toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stderr);
}

std::optional<QString> TerminalDialogues::askLine(const QString& prompt)
{
    if (m_answers != Answers::Ask || !::isatty(STDIN_FILENO)) {
        printError(u"Question sans réponse (aucun terminal) : "_s + prompt);
        return {};
    }
    printError(prompt);
    QTextStream in(stdin);
    return in.readLine().trimmed();
}

Answer TerminalDialogues::ask(const platform::Message& message)
{
    m_messages << message.text;
    if (message.buttons == BoxButtons::Ok) {
        printError(message.text);
        return Answer::Ok;
    }
    if (m_answers == Answers::Yes)
        return Answer::Yes;
    if (m_answers == Answers::No)
        return Answer::No;
    const auto line = askLine(message.text + u" [o/n]"_s);
    if (!line)
        return message.buttons == BoxButtons::YesNoCancel ? Answer::Cancel : Answer::No;
    const QString word = line->toLower();
    return word == u"o" || word == u"oui" ? Answer::Yes : Answer::No;
}

std::optional<QString> TerminalDialogues::input(const QString& title, const QString& prompt,
                                                const QString& byDefault)
{
    const auto line = askLine(title + u" : "_s + prompt + u" ["_s + byDefault + u']');
    if (line && line->isEmpty())
        return byDefault;
    return line;
}

std::optional<QList<int>> TerminalDialogues::choose(const platform::Choice& choice)
{
    QString prompt = choice.title + u" : "_s + choice.prompt;
    for (qsizetype i = 0; i < choice.items.size(); ++i)
        prompt += u"\n  "_s + QString::number(i + 1) + u". "_s + choice.items[i];
    const auto line = askLine(prompt);
    if (!line)
        return {};
    QList<int> chosen;
    for (const QString& part : line->split(u',', Qt::SkipEmptyParts)) {
        const int number = part.trimmed().toInt();
        if (number >= 1 && number <= choice.items.size())
            chosen << number - 1;
    }
    return chosen;
}

void TerminalProgression::step(const QString& text, int percent)
{
    m_steps.append({text, percent});
    if (m_print)
        printLine(u"%1 %  %2"_s.arg(percent, 3).replace(u"%2"_s, text));
}

QString plainCell(QString text)
{
    return text.replace(u'\t', u' ').replace(u'\r', u' ').replace(u'\n', u' ');
}

} // namespace cli
