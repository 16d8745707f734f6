#include "app/ui/Captures.h"

#include "app/ui/Desk.h"
#include "app/ui/Icons.h"
#include "app/ui/Photographer.h"
#include "app/ui/Program.h"

#include <QApplication>
#include <QDir>
#include <QTextStream>

namespace app {

using namespace Qt::StringLiterals;

namespace {

/// Says what is said, and declines every question.
class PrintedDialogues : public platform::Dialogues {
public:
    platform::Answer ask(const platform::Message& message) override
    {
        QTextStream(stderr) << message.title << " : " << message.text << '\n';
        switch (message.buttons) {
        case platform::BoxButtons::Ok:
            return platform::Answer::Ok;
        case platform::BoxButtons::YesNo:
            return platform::Answer::No;
        case platform::BoxButtons::YesNoCancel:
            break;
        }
        return platform::Answer::Cancel;
    }
    std::optional<QString> input(const QString&, const QString&, const QString&) override { return {}; }
    std::optional<QList<int>> choose(const platform::Choice&) override { return {}; }
    QString openFile(const QString&, const QString&, const QString&) override { return {}; }
    QStringList openFiles(const QString&, const QString&, const QString&) override { return {}; }
    QString saveFile(const QString&, const QString&, const QString&) override { return {}; }
    QString chooseFolder(const QString&, const QString&) override { return {}; }
};

void photographTables(Photographer& photographer)
{
    photographer.open(u"Individus"_s);
    photographer.take(u"individus"_s);
    photographer.open(u"Déterminations"_s);
    photographer.take(u"determinations"_s);
    for (const std::unique_ptr<Desk>& desk : photographer.program().window().desks())
        desk->photograph(photographer);
}

/// The offscreen platform remarks on every window that it cannot tell a manager its sizes; nobody needs that.
class QuietPlatform {
public:
    QuietPlatform() { previous = qInstallMessageHandler(pass); }
    ~QuietPlatform() { qInstallMessageHandler(previous); }

private:
    static void pass(QtMsgType type, const QMessageLogContext& context, const QString& message)
    {
        if (!message.contains(u"propagateSizeHints") && previous)
            previous(type, context, message);
    }
    static inline QtMessageHandler previous = nullptr;
};

} // namespace

QPalette darkPalette()
{
    QPalette palette(QColor(0x31, 0x36, 0x3b), QColor(0x2a, 0x2e, 0x32));
    palette.setColor(QPalette::Base, QColor(0x1b, 0x1e, 0x20));
    palette.setColor(QPalette::AlternateBase, QColor(0x23, 0x26, 0x29));
    palette.setColor(QPalette::Highlight, QColor(0x2f, 0x7d, 0x57));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(0x6c, 0xbb, 0x72));
    palette.setColor(QPalette::PlaceholderText, QColor(0xa1, 0xa9, 0xb1));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
        palette.setColor(QPalette::Disabled, role, QColor(0x7f, 0x8c, 0x8d));
    return palette;
}

int takeCaptures(const QString& folder, const QString& file, const QString& applicationFolder)
{
    if (!QDir().mkpath(folder)) {
        QTextStream(stderr) << u"Impossible de créer le dossier "_s << folder << '\n';
        return 1;
    }
    const QuietPlatform quiet;
    PrintedDialogues dialogues;
    Program program({applicationFolder, {}, {}}, dialogues);
    program.window().show();
    Photographer photographer(program, folder);
    const QPalette light = QApplication::palette();

    photographer.settle();
    photographer.take(u"accueil"_s);
    program.window().commands().openPath(file);
    photographer.settle();
    if (!program.session().isOpen())
        return 1;
    photographer.take(u"projet"_s);
    photographTables(photographer);
    photographer.setPalette(darkPalette(), u"-sombre"_s);
    program.window().documents().closeAll();
    photographer.take(u"projet"_s);
    photographTables(photographer);
    photographer.setPalette(light, {});
    program.window().close();
    return photographer.allWritten() ? 0 : 1;
}

} // namespace app
