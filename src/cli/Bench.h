// A session for the command line.
#pragma once

#include "app/Session.h"
#include "cli/Arguments.h"

#include <QCoreApplication>

namespace cli {

/// A session with nothing of the desktop around it; the settings of the window stay untouched.
class Bench {
public:
    Bench(const Arguments& arguments, bool printSteps)
        : dialogues(arguments.answers()), progression(printSteps), settings(QString()),
          session({dialogues, clock, settings, QCoreApplication::applicationDirPath(),
                   QStringLiteral(HERBORA_VERSION)})
    {
    }

    TerminalDialogues dialogues;
    TerminalProgression progression;
    platform::SystemClock clock;
    platform::Settings settings;
    app::Session session;
};

} // namespace cli
