#include "platform/ui/RunningInstances.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// Asks from another thread, as another program would, while this one answers.
bool handed(const QString& folder, const QString& file)
{
    bool taken = false;
    bool ended = false;
    const std::unique_ptr<QThread> other(QThread::create([&] { taken = platform::RunningInstances(folder).hand(file); }));
    QObject::connect(other.get(), &QThread::finished, qApp, [&] { ended = true; });
    other->start();
    EXPECT_TRUE(QTest::qWaitFor([&] { return ended; }, 10000));
    other->wait();
    return taken;
}

TEST(RunningInstances, HandAFileToTheProgramThatHasIt)
{
    QTemporaryDir folder;
    const QString sockets = folder.filePath(u"herbora"_s);
    EXPECT_FALSE(handed(sockets, u"a.hbx"_s)); // nobody runs

    QStringList asked;
    platform::RunningInstances running(sockets);
    running.listen([&](const QString& file) {
        asked << file;
        return file == u"/é/mon herbier.hbx";
    });
    EXPECT_TRUE(handed(sockets, u"/é/mon herbier.hbx"_s));
    EXPECT_FALSE(handed(sockets, u"/autre.hbx"_s));
    EXPECT_FALSE(handed(sockets, {}));
    EXPECT_EQ(asked, (QStringList{u"/é/mon herbier.hbx"_s, u"/autre.hbx"_s, QString()}));
}

TEST(RunningInstances, ClearAwayTheSocketsOfProgramsThatAreGone)
{
    QTemporaryDir folder;
    QFile left(folder.filePath(u"99999.socket"_s));
    ASSERT_TRUE(left.open(QIODevice::WriteOnly));
    left.close();
    EXPECT_FALSE(handed(folder.path(), u"a.hbx"_s));
    EXPECT_FALSE(left.exists());
}

} // namespace
