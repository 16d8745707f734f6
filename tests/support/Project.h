// A small real project in a temporary folder, with everything around it scripted.
#pragma once

#include "app/Session.h"
#include "support/ScriptedDialogues.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace support {

/// A clock that stands still.
class FixedClock : public platform::Clock {
public:
    QDateTime time{QDate(2026, 3, 7), QTime(14, 5, 9)};
    QDateTime now() const override { return time; }
};

/// Keeps the steps of a progression.
class RecordedProgression : public platform::Progression {
public:
    QStringList steps; ///< "percent text"
    void step(const QString& text, int percent) override
    {
        steps << QString::number(percent) + QLatin1Char(' ') + text;
    }
};

/// A session on a folder of its own. `create()` makes "projet.hbx" and leaves it open.
class TestProject {
public:
    TestProject()
        : settings(folder.filePath(QStringLiteral("Herbora.ini"))),
          session({dialogues, clock, settings, folder.path(), QStringLiteral("1.0")})
    {
    }

    QString path(const QString& name = QStringLiteral("projet.hbx")) const { return folder.filePath(name); }
    void create() { ASSERT_TRUE(session.create(path(), progression)); }
    bool open() { return session.open(path(), progression); }
    jet::Database& db() { return session.database(); }
    /// The first value of the first row; Null when there is none.
    QVariant single(const QString& statement);
    /// One text a row, cells joined by "|", Null as "∅".
    QStringList rows(const QString& statement);

    QTemporaryDir folder;
    ScriptedDialogues dialogues;
    FixedClock clock;
    RecordedProgression progression;
    platform::Settings settings;
    app::Session session;
};

} // namespace support
