#include "app/ui/Captures.h"

#include "app/ui/Icons.h"
#include "app/ui/Program.h"

#include <QDir>
#include <QEventLoop>
#include <QStyle>
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

class Photographer {
public:
    Photographer(Program& program, const QString& folder) : m_program(program), m_folder(folder) {}

    /// Lets the window work until nothing runs and every row is known.
    void settle()
    {
        QEventLoop loop;
        QTimer look;
        int quiet = 0; // one turn more lays out what changed last
        QObject::connect(&look, &QTimer::timeout, &loop, [&] {
            bool still = m_program.runner().isRunning();
            for (GridTab* grid : m_program.window().documents().grids())
                still = still || grid->model().isLoading() || !grid->model().isComplete();
            quiet = still ? 0 : quiet + 1;
            if (quiet > 2)
                loop.quit();
        });
        look.start(20);
        loop.exec();
    }

    void take(const QString& name)
    {
        const QString path = m_folder + u'/' + name + m_suffix + u".png"_s;
        const bool written = m_program.window().grab().save(path);
        m_written = m_written && written;
        if (written)
            QTextStream(stdout) << QDir(path).absolutePath() << '\n';
        else
            QTextStream(stderr) << u"Impossible d'écrire "_s << path << '\n';
    }

    void open(const QString& key)
    {
        ModuleDock& dock = m_program.window().dock();
        const QModelIndex index = dock.model().indexOf(key);
        dock.view().setCurrentIndex(index);
        dock.commands().runDefault();
        settle();
    }

    void setPalette(const QPalette& palette, const QString& suffix)
    {
        QApplication::setPalette(palette);
        followPalette();
        m_suffix = suffix;
        settle();
    }

    bool allWritten() const { return m_written; }

private:
    Program& m_program;
    QString m_folder;
    QString m_suffix;
    bool m_written = true;
};

void photographTables(Photographer& photographer)
{
    photographer.open(u"Individus"_s);
    photographer.take(u"individus"_s);
    photographer.open(u"Déterminations"_s);
    photographer.take(u"determinations"_s);
    photographer.open(u"Lslocalités"_s);
    photographer.take(u"localites"_s);
    photographer.open(u"Lstaxons"_s);
    photographer.take(u"taxons"_s);
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
