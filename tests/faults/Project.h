// A small project under test: made, changed and read through the program's own session.
#pragma once

#include "app/Session.h"

#include <QString>
#include <functional>

namespace faults {

/// Says yes to every question and puts every text on standard error, where the trial looks for it.
class YesDialogues : public platform::Dialogues {
public:
    platform::Answer ask(const platform::Message& message) override;
    std::optional<QString> input(const QString& title, const QString& prompt,
                                 const QString& byDefault) override;
    std::optional<QList<int>> choose(const platform::Choice& choice) override;
    QString openFile(const QString& title, const QString& filter, const QString& folder) override;
    QStringList openFiles(const QString& title, const QString& filter,
                          const QString& folder) override;
    QString saveFile(const QString& title, const QString& filter, const QString& proposal) override;
    QString chooseFolder(const QString& title, const QString& folder) override;
};

/// Always the same instant, so that two runs write the same bytes.
class StoppedClock : public platform::Clock {
public:
    QDateTime now() const override { return QDateTime(QDate(2024, 5, 6), QTime(12, 0)); }
};

/// A session with its surroundings, for the time of one operation. Its settings file lies outside
/// `folder`: a fault there is another operation's matter.
class Workplace {
public:
    explicit Workplace(const QString& folder);

    app::Session& session() { return m_session; }
    QString project() const { return m_folder + QStringLiteral("/projet.hbx"); }
    bool create();
    bool open();
    bool optimise();

private:
    QString m_folder;
    YesDialogues m_dialogues;
    StoppedClock m_clock;
    platform::Settings m_settings;
    platform::NoProgression m_progression;
    app::Session m_session;
};

/// Prints a message on standard error and gives false.
bool say(const QString& message);

/// Everything in a project, as one number: definitions, rows of all tables in order, stored
/// queries, version. "absent" when there is no file. Throws std::runtime_error when the file is not
/// sound.
QString fingerprint(const QString& path);

/// A project with a few records in every table.
void makeProject(const QString& folder);

/// Opens the project of the folder with a session, does `work` as one named operation, closes.
bool withProject(const QString& folder, const std::function<void(jet::Database&)>& work);

} // namespace faults
