#include "platform/Clock.h"
#include "platform/Dialogues.h"
#include "platform/FileAssociation.h"
#include "platform/ReplaceFile.h"
#include "platform/Settings.h"
#include "support/Files.h"
#include "support/Print.h"

#include <QTemporaryDir>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace {

using namespace Qt::StringLiterals;
using support::bytesOf;
using support::put;

TEST(Settings, AreReadAndWrittenBySectionAndKey)
{
    QTemporaryDir folder;
    const QString file = folder.filePath(u"sous-dossier/Herbora.ini"_s);
    platform::Settings settings(file);
    EXPECT_EQ(settings.read(u"Général.DefaultBase"_s), QString());
    EXPECT_TRUE(settings.write(u"Général.DefaultBase"_s, u"/données/été.hbx"_s));
    EXPECT_EQ(settings.read(u"Général.DefaultBase"_s), u"/données/été.hbx"_s);
    EXPECT_EQ(settings.read(u"général.defaultbase"_s), u"/données/été.hbx"_s);
    EXPECT_EQ(bytesOf(file), "[Général]\nDefaultBase=/données/été.hbx\n");
}

TEST(Settings, KeepLinesTheyDoNotKnow)
{
    QTemporaryDir folder;
    const QString file = folder.filePath(u"Herbora.ini"_s);
    put(file, "; à la main\r\n[Autre]\r\nDefaultBase=non\r\n[Général]\r\nCouleur=vert\r\n\r\n[Fin]\r\nx=1\r\n");
    platform::Settings settings(file);
    EXPECT_EQ(settings.read(u"Général.DefaultBase"_s), QString());
    settings.write(u"Général.DefaultBase"_s, u"a=b.hbx"_s);
    EXPECT_EQ(settings.read(u"Général.DefaultBase"_s), u"a=b.hbx"_s);
    EXPECT_EQ(settings.read(u"Autre.DefaultBase"_s), u"non"_s);
    EXPECT_EQ(bytesOf(file),
              "; à la main\n[Autre]\nDefaultBase=non\n[Général]\nCouleur=vert\nDefaultBase=a=b.hbx\n\n[Fin]\nx=1\n");
}

/// A value passes through a buffer of 100 characters: what is read is cut, what is kept is whole.
TEST(Settings, CutLongValuesOnReading)
{
    QTemporaryDir folder;
    platform::Settings settings(folder.filePath(u"Herbora.ini"_s));
    settings.write(u"Général.DefaultBase"_s, QString(99, u'a'));
    EXPECT_EQ(settings.read(u"Général.DefaultBase"_s).size(), 99);
    settings.write(u"Général.DefaultBase"_s, QString(120, u'b'));
    EXPECT_EQ(settings.read(u"Général.DefaultBase"_s), QString(99, u'b'));
    EXPECT_TRUE(bytesOf(settings.file()).contains(QByteArray(120, 'b')));
}

TEST(Settings, SayWhenTheyCannotBeWritten)
{
    platform::Settings settings(u"/proc/herbora/Herbora.ini"_s);
    EXPECT_FALSE(settings.write(u"Général.DefaultBase"_s, u"x"_s));
}

TEST(ReplaceFile, SaysInFrenchWhyItFailedAndLeavesWhatWasThere)
{
    const QTemporaryDir folder;
    EXPECT_EQ(platform::replaceFile(folder.filePath(u"absent/a.txt"_s), "neuf"), u"ce fichier ou son dossier n'existe pas"_s);
    const QString file = folder.filePath(u"a.txt"_s);
    ASSERT_EQ(platform::replaceFile(file, "ancien"), QString());
    // A disk that takes the beginning only.
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{1000, before.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    const QString shortWrite = platform::replaceFile(file, QByteArray(5000, 'x'));
    const QString longWrite = platform::replaceFile(file, QByteArray(500'000, 'x'));
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(shortWrite, u"le fichier serait trop grand"_s);
    EXPECT_EQ(longWrite, u"le fichier serait trop grand"_s);
    EXPECT_EQ(support::bytesOf(file), "ancien");
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList{u"a.txt"_s});
}

TEST(Clock, StampsSortLikeTime)
{
    const QDateTime time(QDate(2026, 3, 7), QTime(14, 5, 9));
    EXPECT_EQ(platform::stamp(time), u"2026/03/07 14:05:09"_s);
    EXPECT_LT(platform::stamp(time), platform::stamp(time.addSecs(1)));
}

TEST(Dialogues, FiltersTakeQtsForm)
{
    EXPECT_EQ(platform::qtFilter(u"Fichiers Herbora (*.hbx)|*.hbx|"_s), u"Fichiers Herbora (*.hbx)"_s);
    EXPECT_EQ(platform::qtFilter(u"Images|*.jpg;*.png|Tout|*"_s), u"Images (*.jpg *.png);;Tout (*)"_s);
}

TEST(FileAssociation, IsWrittenIntoTheUsersFolders)
{
    QTemporaryDir folder;
    const QString data = folder.filePath(u"data"_s);
    const QString config = folder.filePath(u"config"_s);
    const auto association = platform::desktopFileAssociation(data, config);
    put(folder.filePath(u"vide"_s), "");
    EXPECT_NE(association->openCommand(), u"/opt/Her bora \"$x\"/herbora"_s);
    ASSERT_TRUE(association->write(u"/opt/Her bora \"$x\"/herbora"_s));
    EXPECT_EQ(association->openCommand(), u"/opt/Her bora $x/herbora"_s); // quotes are taken out when read
    EXPECT_TRUE(bytesOf(config + u"/mimeapps.list"_s)
                    .contains("application/x-herbora-project=org.herbora.Herbora.desktop;"));
    EXPECT_TRUE(bytesOf(data + u"/mime/packages/org.herbora.Herbora.xml"_s).contains("*.hbx"));
    ASSERT_TRUE(association->write(u"/usr/bin/herbora"_s));
    EXPECT_EQ(association->openCommand(), u"/usr/bin/herbora"_s);
    EXPECT_EQ(bytesOf(config + u"/mimeapps.list"_s).count("x-herbora-project"), 1);
}

} // namespace
