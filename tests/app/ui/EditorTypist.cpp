// A hand that types into the record editor until the process is killed, and tells each letter once it is typed.
//
//   editor_typist PROJECT
//
// What an earlier one left is taken up, and typed on.
#include "app/ui/EditorDesk.h"
#include "app/ui/Program.h"
#include "editing/ui/RecordEditorWindow.h"

#include <QApplication>
#include <QFileInfo>
#include <QPlainTextEdit>
#include <QTest>
#include <QTimer>
#include <cstdio>

namespace {

using namespace Qt::StringLiterals;

/// Takes up what is offered; nothing else is asked.
class Taking : public platform::Dialogues {
public:
    platform::Answer ask(const platform::Message& message) override
    {
        return message.buttons == platform::BoxButtons::Ok ? platform::Answer::Ok : platform::Answer::Yes;
    }
    std::optional<QString> input(const QString&, const QString&, const QString&) override { return {}; }
    std::optional<QList<int>> choose(const platform::Choice&) override { return {}; }
    QString openFile(const QString&, const QString&, const QString&) override { return {}; }
    QStringList openFiles(const QString&, const QString&, const QString&) override { return {}; }
    QString saveFile(const QString&, const QString&, const QString&) override { return {}; }
    QString chooseFolder(const QString&, const QString&) override { return {}; }
};

void typeForEver(editing::RecordEditorWindow& editor)
{
    auto* hand = new QTimer(&editor);
    QObject::connect(hand, &QTimer::timeout, &editor, [&editor] {
        // Anew each time: the form is made again when its record is.
        auto* habitat = editor.findChild<QPlainTextEdit*>(u"editeur-Habitat"_s);
        if (!habitat)
            return;
        if (!habitat->hasFocus()) {
            habitat->setFocus();
            habitat->moveCursor(QTextCursor::End);
        }
        const char letter = char('a' + habitat->toPlainText().size() % 26);
        QTest::keyClick(habitat, letter);
        std::fputc(letter, stdout);
        std::fflush(stdout);
    });
    hand->start(5);
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    app::prepareApplication();
    Taking dialogues;
    const QString project = QString::fromLocal8Bit(argv[1]);
    app::Program program({QFileInfo(project).path(), {}, {}}, dialogues); // without the add-ins beside this program
    program.window().show();
    program.openStartFile(project);
    auto* ready = new QTimer(&program.window());
    QObject::connect(ready, &QTimer::timeout, &program.window(), [&] {
        if (program.window().commands().isBusy() || program.runner().isRunning() || !program.session().isOpen())
            return;
        ready->stop();
        app::EditorDesk* desk = nullptr;
        for (const auto& one : program.window().desks())
            desk = desk ? desk : qobject_cast<app::EditorDesk*>(one.get());
        if (!desk->window())
            program.window().place().editRecords(u"1-Individus;1"_s);
        typeForEver(*desk->window());
    });
    ready->start(10);
    return QApplication::exec();
}
