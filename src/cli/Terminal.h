// Questions and progress on a terminal.
#pragma once

#include "platform/Dialogues.h"
#include "platform/Progression.h"

#include <QTextStream>

namespace cli {

/// How questions are answered without a user: --oui, --non, or asked on the terminal.
enum class Answers { Ask, Yes, No };

/// Errors and questions go to standard error. A question that nobody can answer is refused and counted.
class TerminalDialogues : public platform::Dialogues {
public:
    explicit TerminalDialogues(Answers answers) : m_answers(answers) {}

    platform::Answer ask(const platform::Message& message) override;
    std::optional<QString> input(const QString& title, const QString& prompt,
                                 const QString& byDefault) override;
    std::optional<QList<int>> choose(const platform::Choice& choice) override;
    QString openFile(const QString&, const QString&, const QString&) override { return {}; }
    QStringList openFiles(const QString&, const QString&, const QString&) override { return {}; }
    QString saveFile(const QString&, const QString&, const QString&) override { return {}; }
    QString chooseFolder(const QString&, const QString&) override { return {}; }

    const QStringList& messages() const { return m_messages; } ///< Everything said.

private:
    std::optional<QString> askLine(const QString& prompt);

    Answers m_answers;
    QStringList m_messages;
};

/// Keeps the steps, and prints them when asked to.
class TerminalProgression : public platform::Progression {
public:
    struct Step {
        QString text;
        int percent;
    };
    explicit TerminalProgression(bool print) : m_print(print) {}

    void step(const QString& text, int percent) override;
    const QList<Step>& steps() const { return m_steps; }

private:
    bool m_print;
    QList<Step> m_steps;
};

void printLine(const QString& text);  ///< Standard output, UTF-8.
void printError(const QString& text); ///< Standard error, UTF-8.

/// A cell in a line of cells that tabs divide.
QString plainCell(QString text);

} // namespace cli
