// Answers written beforehand. Each question is compared with the one expected next, whole: text, title, icon,
// buttons, default. One that nobody expected fails the test at once; one that never came fails it at
// the end.
#pragma once

#include "platform/Dialogues.h"
#include "support/Print.h"

#include <deque>
#include <functional>
#include <gtest/gtest.h>

namespace support {

/// Add expectations in the order in which the questions will come. Paths and lists not compared are said so.
class ScriptedDialogues : public platform::Dialogues {
public:
    using Answer = platform::Answer;
    using BoxIcon = platform::BoxIcon;

    ScriptedDialogues() = default;
    ~ScriptedDialogues() override { verify(); }
    ScriptedDialogues(const ScriptedDialogues&) = delete;
    ScriptedDialogues& operator=(const ScriptedDialogues&) = delete;

    // --- What is to come ---------------------------------------------------------------------
    /// A box, compared in everything.
    void expect(const platform::Message& message, Answer answer)
    {
        add(described(message), answer, {});
    }
    /// A box with an Ok button.
    void expectTell(const QString& text, const QString& title, BoxIcon icon = BoxIcon::Information)
    {
        expect({text, title, icon, platform::BoxButtons::Ok, Answer::Ok}, Answer::Ok);
    }
    /// A yes/no box.
    void expectConfirm(const QString& text, const QString& title, bool yes,
                       BoxIcon icon = BoxIcon::Question, Answer byDefault = Answer::Yes)
    {
        expect({text, title, icon, platform::BoxButtons::YesNo, byDefault}, yes ? Answer::Yes : Answer::No);
    }
    /// A box whose text holds these pieces in this order; for texts with what the test cannot know (a
    /// description of the system). Title, icon and buttons are compared exactly.
    void expectLike(const QStringList& pieces, const QString& title, BoxIcon icon,
                    platform::BoxButtons buttons = platform::BoxButtons::Ok, Answer answer = Answer::Ok)
    {
        const Answer byDefault = buttons == platform::BoxButtons::Ok ? Answer::Ok : Answer::Yes;
        add(described({pieces.join(QStringLiteral(" … ")), title, icon, buttons, byDefault}), answer, pieces);
    }
    /// Nothing answers for "cancelled".
    void expectInput(const QString& title, const QString& prompt, const QString& byDefault,
                     std::optional<QString> answer)
    {
        add(inputText(title, prompt, byDefault), QVariant::fromValue(answer), {});
    }
    void expectChoice(const platform::Choice& choice, std::optional<QList<int>> answer)
    {
        add(described(choice), QVariant::fromValue(answer), {});
    }
    /// File questions: title and filter are compared; an empty answer stands for "cancelled".
    void expectOpenFile(const QString& title, const QString& filter, const QString& answer)
    {
        add(fileText(QStringLiteral("openFile"), title, filter), answer, {});
    }
    void expectOpenFiles(const QString& title, const QString& filter, const QStringList& answer)
    {
        add(fileText(QStringLiteral("openFiles"), title, filter), answer, {});
    }
    void expectSaveFile(const QString& title, const QString& filter, const QString& answer)
    {
        add(fileText(QStringLiteral("saveFile"), title, filter), answer, {});
    }
    void expectFolder(const QString& title, const QString& answer)
    {
        add(fileText(QStringLiteral("chooseFolder"), title, {}), answer, {});
    }

    // --- What came ---------------------------------------------------------------------------
    /// Every question so far, as described in failures.
    const QStringList& asked() const { return m_asked; }
    bool done() const { return m_expected.empty(); }
    /// Fails for each expectation that is still open, and forgets it.
    void verify()
    {
        for (const Expectation& open : m_expected)
            ADD_FAILURE() << "never asked: " << open.question.toStdString();
        m_expected.clear();
    }
    /// Folders and proposals of the file questions, in their order.
    const QStringList& places() const { return m_places; }

    // --- Dialogues ---------------------------------------------------------------------------
    Answer ask(const platform::Message& message) override
    {
        const Answer refusal = message.buttons == platform::BoxButtons::Ok      ? Answer::Ok
                               : message.buttons == platform::BoxButtons::YesNo ? Answer::No
                                                                                : Answer::Cancel;
        const QString text = message.text;
        return take<Answer>(described(message), refusal, [&](const Expectation& next) {
            return !next.pieces.isEmpty() && holds(text, next.pieces)
                   && next.question == described(withText(message, next.pieces.join(QStringLiteral(" … "))));
        });
    }
    std::optional<QString> input(const QString& title, const QString& prompt, const QString& byDefault = {}) override
    {
        return take<std::optional<QString>>(inputText(title, prompt, byDefault), {});
    }
    std::optional<QList<int>> choose(const platform::Choice& choice) override
    {
        return take<std::optional<QList<int>>>(described(choice), {});
    }
    QString openFile(const QString& title, const QString& filter, const QString& folder = {}) override
    {
        m_places << folder;
        return take<QString>(fileText(QStringLiteral("openFile"), title, filter), {});
    }
    QStringList openFiles(const QString& title, const QString& filter, const QString& folder = {}) override
    {
        m_places << folder;
        return take<QStringList>(fileText(QStringLiteral("openFiles"), title, filter), {});
    }
    QString saveFile(const QString& title, const QString& filter, const QString& proposal = {}) override
    {
        m_places << proposal;
        return take<QString>(fileText(QStringLiteral("saveFile"), title, filter), {});
    }
    QString chooseFolder(const QString& title, const QString& folder = {}) override
    {
        m_places << folder;
        return take<QString>(fileText(QStringLiteral("chooseFolder"), title, {}), {});
    }

private:
    struct Expectation {
        QString question;
        QVariant answer;
        QStringList pieces;
    };

    template <typename T> void add(const QString& question, const T& answer, const QStringList& pieces)
    {
        m_expected.push_back({question, QVariant::fromValue(answer), pieces});
    }
    void add(const QString& question, const QVariant& answer, const QStringList& pieces)
    {
        m_expected.push_back({question, answer, pieces});
    }

    /// The answer of the next expectation when the question is that one; else a failure, and the refusal.
    template <typename T>
    T take(const QString& question, const T& refusal,
           const std::function<bool(const Expectation&)>& alike = {})
    {
        m_asked << question;
        if (m_expected.empty()) {
            ADD_FAILURE() << "nobody expected: " << question.toStdString();
            return refusal;
        }
        const Expectation next = m_expected.front();
        if (next.question != question && !(alike && alike(next))) {
            ADD_FAILURE() << "asked:    " << question.toStdString() << "\nexpected: " << next.question.toStdString();
            return refusal;
        }
        m_expected.pop_front();
        return next.answer.value<T>();
    }

    static platform::Message withText(platform::Message message, const QString& text)
    {
        message.text = text;
        return message;
    }
    static bool holds(const QString& text, const QStringList& pieces)
    {
        qsizetype from = 0;
        for (const QString& piece : pieces) {
            const qsizetype at = text.indexOf(piece, from);
            if (at < 0)
                return false;
            from = at + piece.size();
        }
        return true;
    }
    static QString described(const platform::Message& message)
    {
        static const QStringList icons{QStringLiteral("stop"), QStringLiteral("question"), QStringLiteral("warning"),
                                       QStringLiteral("information")};
        static const QStringList buttons{QStringLiteral("ok"), QStringLiteral("yes/no"),
                                         QStringLiteral("yes/no/cancel")};
        static const QStringList answers{QStringLiteral("ok"), QStringLiteral("yes"), QStringLiteral("no"),
                                         QStringLiteral("cancel")};
        return QStringLiteral("[%1, %2, default %3] «%4» %5")
            .arg(icons.at(int(message.icon)), buttons.at(int(message.buttons)), answers.at(int(message.byDefault)),
                 message.title, message.text);
    }
    static QString described(const platform::Choice& choice)
    {
        return QStringLiteral("[choose%1] «%2» %3 | %4: %5")
            .arg(choice.several ? QStringLiteral(" several") : QString(), choice.title, choice.prompt, choice.column,
                 choice.items.join(QStringLiteral("; ")));
    }
    static QString inputText(const QString& title, const QString& prompt, const QString& byDefault)
    {
        return QStringLiteral("[input] «%1» %2 (%3)").arg(title, prompt, byDefault);
    }
    static QString fileText(const QString& kind, const QString& title, const QString& filter)
    {
        return QStringLiteral("[%1] «%2» %3").arg(kind, title, filter);
    }

    std::deque<Expectation> m_expected;
    QStringList m_asked;
    QStringList m_places;
};

} // namespace support
