// Questions to the user, as an interface: windows, scripts and tests answer them.
#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace platform {

enum class BoxIcon { Stop, Question, Warning, Information };
enum class BoxButtons { Ok, YesNo, YesNoCancel };
enum class Answer { Ok, Yes, No, Cancel };

/// One message box.
struct Message {
    QString text;
    QString title;
    BoxIcon icon = BoxIcon::Information;
    BoxButtons buttons = BoxButtons::Ok;
    Answer byDefault = Answer::Yes; ///< The button that Return presses.
};

/// One list to choose from.
struct Choice {
    QString title;
    QString prompt;
    QString column; ///< Header above the items.
    QStringList items;
    bool several = false;
};

/// File filters are given as "Text (*.hbx)|*.hbx|", pairs of a text and its patterns.
class Dialogues {
public:
    virtual ~Dialogues() = default;

    virtual Answer ask(const Message& message) = 0;
    /// The text typed, or nothing when the user cancelled.
    virtual std::optional<QString> input(const QString& title, const QString& prompt,
                                         const QString& byDefault = {}) = 0;
    /// The same for a text that nobody shall read on the screen.
    virtual std::optional<QString> password(const QString& title, const QString& prompt)
    {
        return input(title, prompt);
    }
    /// Positions chosen, or nothing when the user cancelled.
    virtual std::optional<QList<int>> choose(const Choice& choice) = 0;
    /// Paths, or empty when the user cancelled.
    virtual QString openFile(const QString& title, const QString& filter,
                             const QString& folder = {}) = 0;
    virtual QStringList openFiles(const QString& title, const QString& filter,
                                  const QString& folder = {}) = 0;
    virtual QString saveFile(const QString& title, const QString& filter,
                             const QString& proposal = {}) = 0;
    virtual QString chooseFolder(const QString& title, const QString& folder = {}) = 0;

    // Shorthands for the usual boxes.
    void tell(const QString& text, const QString& title, BoxIcon icon = BoxIcon::Information);
    bool confirm(const QString& text, const QString& title, BoxIcon icon = BoxIcon::Question,
                 Answer byDefault = Answer::Yes);
};

/// Qt's form of such a filter: "Text (*.hbx)" joined by ";;".
QString qtFilter(const QString& filter);

} // namespace platform
