// main() of every test with windows: an application object on the offscreen platform, a French locale,
// and a failure for each warning that nobody announced.
#include "support/Print.h"
#include "support/Warnings.h"

#include <QApplication>
#include <QLocale>
#include <QMutex>
#include <gtest/gtest.h>

namespace {

QMutex mutex;
QStringList unexpected;
QStringList announced;

/// What the offscreen platform says of itself.
bool isOfThePlatform(const QString& text)
{
    return text.startsWith(QStringLiteral("This plugin does not support"))
           || text.contains(QStringLiteral("XDG_RUNTIME_DIR"));
}

void take(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type == QtDebugMsg || type == QtInfoMsg || isOfThePlatform(text))
        return;
    const QMutexLocker lock(&mutex);
    for (qsizetype i = 0; i < announced.size(); ++i) {
        if (text.contains(announced.at(i))) {
            announced.removeAt(i);
            return;
        }
    }
    unexpected << text;
}

class WarningListener : public ::testing::EmptyTestEventListener {
    void OnTestEnd(const ::testing::TestInfo&) override
    {
        const QMutexLocker lock(&mutex);
        for (const QString& text : std::as_const(unexpected))
            ADD_FAILURE() << "unexpected warning: " << text.toStdString();
        for (const QString& text : std::as_const(announced))
            ADD_FAILURE() << "warning that never came: " << text.toStdString();
        unexpected.clear();
        announced.clear();
    }
};

} // namespace

void support::expectWarning(const QString& piece)
{
    const QMutexLocker lock(&mutex);
    announced << piece;
}

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("herbora"));
    QLocale::setDefault(QLocale(QLocale::French, QLocale::France));
    qInstallMessageHandler(take);
    ::testing::UnitTest::GetInstance()->listeners().Append(new WarningListener);
    return RUN_ALL_TESTS();
}
