// Files: what is opened, what is refused and how, what is left behind.
#include "FileFixture.h"

#include "jet/Compaction.h"
#include "jet/text/TextOrder.h"

#include <QCoreApplication>
#include <QLockFile>
#include <QSysInfo>
#include <sys/stat.h>
#include <unistd.h>

using namespace jet;

namespace {

class FileTest : public FileFixture {
protected:
    void createTaxa()
    {
        create();
        db->AppendTable({.Name = u"Taxons"_s,
                         .Fields = {counter(u"ID Taxons"_s), field(u"Nom"_s, DataType::Text, 60)},
                         .Indexes = {primary(u"ID Taxons"_s), unique(u"Unique"_s, {u"Nom"_s})}});
    }

    void addTaxa(int count)
    {
        run(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<%1)"
            " INSERT INTO Taxons(Nom) SELECT 'Carex numero ' || i FROM n"_s.arg(count));
    }

    QString indexSql() { return single(u"SELECT sql FROM sqlite_schema WHERE name='Taxons.Unique'"_s).toString(); }

    /// The content of a lock file that a process left.
    void leaveLock(qint64 process, const QString& host)
    {
        const QString text = QString::number(process) + u"\nherbora\n"_s + host + u'\n';
        write(path + u".lock"_s, text.toUtf8());
    }
};

TEST_F(FileTest, OpeningReadingAndClosingChangeNothing)
{
    createTaxa();
    addTaxa(300);
    close();
    const QByteArray before = bytesOf(path);
    // A date in the past: the present one could be written without being seen.
    const QDateTime then(QDate(2020, 2, 3), QTime(4, 5, 6));
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(then, QFileDevice::FileModificationTime));
    }
    open();
    EXPECT_EQ(db->OpenRecordset(u"SELECT Count(*) FROM Taxons"_s)->Value(0), 300);
    EXPECT_TRUE(db->Check().isEmpty());
    const TableDef* table = db->schema().table(u"TAXONS");
    ASSERT_NE(table, nullptr);
    EXPECT_TRUE(db->ReplaceIndexes(u"Taxons"_s, table->Indexes).isEmpty());
    close();
    EXPECT_TRUE(bytesOf(path) == before);
    EXPECT_EQ(QFileInfo(path).lastModified(), then);
    EXPECT_EQ(filesBeside(), QStringList{u"essai.hbx"_s});
}

// --- What is not opened --------------------------------------------------------------------------

struct Foreign {
    const char* name;
    QByteArray content;
    int number;
    QString says;
};

void PrintTo(const Foreign& foreign, std::ostream* out)
{
    *out << foreign.name;
}

class ForeignFile : public FileTest, public ::testing::WithParamInterface<Foreign> {};

TEST_P(ForeignFile, IsRefusedByNameAndLeftAlone)
{
    write(path, GetParam().content);
    const QDateTime date = QFileInfo(path).lastModified();
    const Error failure = failureOf([&] { Database::Open(path); });
    EXPECT_EQ(failure.number(), GetParam().number);
    EXPECT_TRUE(failure.description().contains(GetParam().says)) << failure.description().toStdString();
    EXPECT_TRUE(failure.description().contains(path)) << failure.description().toStdString();
    EXPECT_TRUE(bytesOf(path) == GetParam().content);
    EXPECT_EQ(QFileInfo(path).lastModified(), date);
    EXPECT_EQ(filesBeside(), QStringList{u"essai.hbx"_s});
}

const QByteArray rest(4000, '\x01');

INSTANTIATE_TEST_SUITE_P(
    Kinds, ForeignFile,
    ::testing::Values(Foreign{"empty", "", 3343, u"vide"_s},
                      Foreign{"text", "Carex alpestris, Tête de Moïse\n", 3343, u"texte"_s},
                      Foreign{"jpeg", "\xFF\xD8\xFF\xE0" + rest, 3343, u"image JPEG"_s},
                      Foreign{"png", "\x89PNG\r\n" + rest, 3343, u"image PNG"_s},
                      Foreign{"noise", rest, 3343, u"pas reconnu"_s},
                      Foreign{"old", QByteArray("\0\1\0\0Standard Jet DB\0", 20) + rest, 3343,
                              u"ancienne base Access"_s},
                      Foreign{"newer old", QByteArray("\0\1\0\0Standard ACE DB\0", 20) + rest, 3343,
                              u"ancienne base Access"_s},
                      Foreign{"beginning", QByteArray("SQLite format 3\0\x10", 17), 3049, u"tronqué"_s}),
    [](const auto& info) { return QString::fromLatin1(info.param.name).remove(u' ').toStdString(); });

TEST_F(FileTest, ADatabaseOfAnotherProgramIsRefused)
{
    shell(u"CREATE TABLE t(a)"_s);
    const QByteArray before = bytesOf(path);
    const Error failure = failureOf([&] { Database::Open(path); });
    EXPECT_EQ(failure.number(), 3343);
    EXPECT_TRUE(failure.description().contains(u"autre programme"_s));
    EXPECT_TRUE(bytesOf(path) == before);
}

TEST_F(FileTest, ImpossiblePathsAreRefused)
{
    EXPECT_EQ(errorOfOpening(), 3024);
    path = folder.path();
    EXPECT_EQ(errorOfOpening(), 3044);
    path = folder.filePath(u"absent/essai.hbx"_s);
    EXPECT_EQ(errorOfOpening(), 3044);
    path.clear();
    EXPECT_EQ(errorOfOpening(), 3044);
    path = folder.filePath(u"tuyau"_s);
    ASSERT_EQ(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    EXPECT_EQ(errorOfOpening(), 3343);
}

TEST_F(FileTest, AFileOfTwoNamesIsRefused)
{
    create();
    close();
    ASSERT_EQ(::link(QFile::encodeName(path).constData(),
                     QFile::encodeName(folder.filePath(u"autre.hbx"_s)).constData()), 0);
    EXPECT_EQ(errorOfOpening(), 3050);
}

TEST_F(FileTest, ASymbolicLinkOpensWhatItPointsTo)
{
    create();
    close();
    const QString link = folder.filePath(u"lien.hbx"_s);
    ASSERT_TRUE(QFile::link(path, link));
    const auto opened = Database::Open(link);
    EXPECT_EQ(opened->Name(), QFileInfo(path).canonicalFilePath());
    EXPECT_EQ(errorOfOpening(), 3045);
}

TEST_F(FileTest, ANewerLayoutIsRefused)
{
    create();
    close();
    shell(u"PRAGMA user_version=2"_s);
    const QByteArray before = bytesOf(path);
    EXPECT_EQ(errorOfOpening(), 3041);
    EXPECT_TRUE(bytesOf(path) == before);
}

TEST_F(FileTest, EveryTruncationIsRefusedOrSeen)
{
    createTaxa();
    addTaxa(2000);
    close();
    const QByteArray whole = bytesOf(path);
    for (const qsizetype length : {99, 100, 512, 4095, 4096, 8192, 20'000, int(whole.size()) - 1}) {
        write(path, whole.left(length));
        EXPECT_EQ(errorOfOpening(), 3049) << length;
        EXPECT_EQ(bytesOf(path).size(), length);
    }
}

TEST_F(FileTest, FlippedBytesOfTheFirstPageNeverCrash)
{
    createTaxa();
    close();
    const QByteArray whole = bytesOf(path);
    for (int place = 0; place < 512; ++place) {
        QByteArray damaged = whole;
        damaged[place] = char(damaged[place] ^ 0x55);
        write(path, damaged);
        const Error failure = failureOf([&] { Database::Open(path, checkFirst()); });
        // Some bytes mean nothing (counters, reserved space): the file then opens.
        const QList<int> expected{0, 3041, 3043, 3049, 3343};
        EXPECT_TRUE(expected.contains(failure.number())) << place << ": " << failure.what();
    }
}

// --- Who has it ----------------------------------------------------------------------------------

TEST_F(FileTest, ASecondOpeningIsRefusedWithTheNameOfTheFirst)
{
    create();
    const Error failure = failureOf([&] { Database::Open(path); });
    EXPECT_EQ(failure.number(), 3045);
    const QString process = u"processus %1 sur %2"_s.arg(QString::number(QCoreApplication::applicationPid()),
                                                         QSysInfo::machineHostName());
    EXPECT_TRUE(failure.description().contains(process)) << failure.description().toStdString();
    // The first one still has it.
    EXPECT_TRUE(shell(u"SELECT count(*) FROM sqlite_schema"_s).refusal.contains(u"locked"_s));
    db->SetProperty(u"a"_s, 1);
    EXPECT_EQ(db->Property(u"a"_s), 1);
}

TEST_F(FileTest, AnotherProgramThatHoldsTheFileIsRespected)
{
    create();
    close();
    QProcess other;
    other.start(u"sqlite3"_s, {u"-batch"_s, path});
    other.write("BEGIN EXCLUSIVE; SELECT 'held';\n");
    ASSERT_TRUE(other.waitForReadyRead(10'000));
    EXPECT_EQ(errorOfOpening(), 3045);
    EXPECT_EQ(errorOfOpening(readOnly()), 3045);
    other.closeWriteChannel();
    ASSERT_TRUE(other.waitForFinished(10'000));
    EXPECT_EQ(errorOfOpening(), 0);
}

TEST_F(FileTest, AStaleLockIsPutAsideAndTheFileChecked)
{
    createTaxa();
    addTaxa(2000);
    close();
    QProcess gone;
    gone.start(u"sqlite3"_s, {u"-version"_s});
    const qint64 process = gone.processId();
    ASSERT_TRUE(gone.waitForFinished());
    leaveLock(process, QSysInfo::machineHostName());
    open();
    close();
    EXPECT_EQ(filesBeside(), QStringList{u"essai.hbx"_s});

    // A page of zeros in the middle is not seen by opening alone.
    QByteArray damaged = bytesOf(path);
    const qsizetype page = damaged.size() / 4096 / 2 * 4096;
    damaged.replace(page, 4096, QByteArray(4096, '\0'));
    write(path, damaged);
    EXPECT_EQ(errorOfOpening(), 0);
    leaveLock(process, QSysInfo::machineHostName());
    EXPECT_EQ(errorOfOpening(), 3049);
    EXPECT_EQ(errorOfOpening(checkFirst()), 3049);
}

TEST_F(FileTest, ALockWithTheNumberOfARunningProcessIsStaleWhenNobodyHoldsIt)
{
    create();
    close();
    leaveLock(QCoreApplication::applicationPid(), QSysInfo::machineHostName());
    EXPECT_EQ(errorOfOpening(), 0);
    leaveLock(1, u"unautrehote"_s);
    EXPECT_EQ(errorOfOpening(), 0);
}

TEST_F(FileTest, AnUnfinishedTransactionIsPlayedBack)
{
    createTaxa();
    db->SetProperty(u"a"_s, u"avant"_s);
    close();
    QProcess killed;
    killed.start(u"sqlite3"_s, {u"-batch"_s, path});
    // With so small a cache the pages are written long before the transaction ends.
    killed.write("PRAGMA cache_size=2; BEGIN; UPDATE MSysProperties SET Value='pendant';"
                 "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<5000)"
                 " INSERT INTO MSysProperties SELECT i, i, 4, randomblob(50) FROM n; SELECT 'done';\n");
    ASSERT_TRUE(killed.waitForReadyRead(20'000));
    killed.kill();
    ASSERT_TRUE(killed.waitForFinished());
    ASSERT_GT(QFileInfo(path + u"-journal"_s).size(), 0);
    EXPECT_EQ(errorOfOpening(readOnly()), 3051) << "what is half written cannot be read";
    open();
    EXPECT_EQ(db->Property(u"a"_s), u"avant"_s);
    EXPECT_EQ(single(u"SELECT count(*) FROM MSysProperties"_s), 1);
    close();
    EXPECT_EQ(filesBeside(), QStringList{u"essai.hbx"_s});

    // One that was never flushed holds nothing, but would hinder a renaming.
    write(path + u"-journal"_s, QByteArray(512, '\0'));
    open();
    EXPECT_EQ(db->Property(u"a"_s), u"avant"_s);
    close();
    EXPECT_EQ(filesBeside(), QStringList{u"essai.hbx"_s});
}

TEST_F(FileTest, AWalFileIsTurnedBack)
{
    createTaxa();
    close();
    ASSERT_EQ(shell(u"PRAGMA journal_mode=WAL; INSERT INTO MSysProperties VALUES('a','a',4,7)"_s).output, u"wal"_s);
    open();
    EXPECT_EQ(db->Property(u"a"_s), 7);
    close();
    EXPECT_EQ(shell(u"PRAGMA journal_mode"_s).output, u"delete"_s);
    EXPECT_EQ(filesBeside(), QStringList{u"essai.hbx"_s});
}

TEST_F(FileTest, AReadOnlyOpeningWritesNothing)
{
    createTaxa();
    addTaxa(3);
    close();
    open(readOnly());
    EXPECT_TRUE(db->readOnly());
    EXPECT_EQ(db->OpenRecordset(u"SELECT Count(*) FROM Taxons"_s)->Value(0), 3);
    EXPECT_EQ(failureOf([&] { db->SetProperty(u"a"_s, 1); }).number(), 3027);
    EXPECT_EQ(failureOf([&] { db->DeleteTable(u"Taxons"_s); }).number(), 3027);
    EXPECT_NE(db->schema().table(u"Taxons"), nullptr);
    const auto failures = db->ReplaceIndexes(u"Taxons"_s, {primary(u"ID Taxons"_s), unique(u"Autre"_s, {u"Nom"_s})});
    ASSERT_EQ(failures.size(), 1);
    EXPECT_EQ(failures[0].number, 3027);
    EXPECT_EQ(filesBeside(), QStringList{u"essai.hbx"_s});
}

TEST_F(FileTest, AFileThatCannotBeWrittenOpensReadOnly)
{
    createTaxa();
    close();
    // The superuser may write whatever the permissions say, but not what is immutable.
    if (::geteuid() != 0)
        ASSERT_EQ(::chmod(QFile::encodeName(path).constData(), 0400), 0);
    else if (QProcess::execute(u"chattr"_s, {u"+i"_s, path}) != 0)
        GTEST_SKIP() << "nothing can be made read-only here";
    const int number = failureOf([&] { open(); }).number();
    const bool readOnly = db && db->readOnly();
    const QStringList files = filesBeside();
    close();
    if (::geteuid() == 0)
        QProcess::execute(u"chattr"_s, {u"-i"_s, path});
    EXPECT_EQ(number, 0);
    EXPECT_TRUE(readOnly);
    EXPECT_EQ(files, QStringList{u"essai.hbx"_s});
}

// --- Creation, password --------------------------------------------------------------------------

TEST_F(FileTest, CreationRefusesWhatStandsAndLeavesNothingBehindAFailure)
{
    create();
    const QByteArray before = bytesOf(path);
    EXPECT_EQ(failureOf([&] { create(); }).number(), 3204);
    close();
    EXPECT_TRUE(bytesOf(path) == before);
    const QString other = folder.filePath(u"autre.hbx"_s);
    for (const QString& locale : {u""_s, u"general"_s, u";LANGID=0x0409"_s, u";LANGID=x;CP=1252;COUNTRY=0"_s,
                                  general + u";ODD=1"_s})
        EXPECT_EQ(failureOf([&] { Database::Create(other, locale); }).number(), 3424) << locale.toStdString();
    EXPECT_EQ(failureOf([&] { Database::Create(folder.filePath(u"non/essai.hbx"_s), general); }).number(), 3044);
    // The journal of a file that went would be played back into the new one.
    write(other + u"-journal"_s, "journal");
    EXPECT_EQ(failureOf([&] { Database::Create(other, general); }).number(), 3204);
    EXPECT_EQ(filesBeside(), (QStringList{u"autre.hbx-journal"_s, u"essai.hbx"_s}));
}

TEST_F(FileTest, TheShellFindsASoundFileOfOurs)
{
    createTaxa();
    addTaxa(5);
    close();
    EXPECT_EQ(shell(u"PRAGMA application_id; PRAGMA user_version; PRAGMA page_size; PRAGMA quick_check;"
                    "SELECT count(*) FROM Taxons"_s).output,
              u"%1\n1\n4096\nok\n5"_s.arg(0x48425241));
}

TEST_F(FileTest, ThePasswordIsAsked)
{
    create(general + u";pwd=Sésame; ouvre=toi"_s);
    close();
    EXPECT_EQ(errorOfOpening(), 3031);
    EXPECT_EQ(errorOfOpening({.password = u"sésame; ouvre=toi"_s}), 3031);
    EXPECT_EQ(errorOfOpening({.password = u"Sésame; ouvre=toi"_s}), 0);
    EXPECT_FALSE(bytesOf(path).contains("same; ouvre"));
    EXPECT_EQ(failureOf([&] { Database::Compact(path, path + u".c"_s); }).number(), 3031);
    Database::Compact(path, path + u".c"_s, {.password = u"Sésame; ouvre=toi"_s});
    path += u".c"_s;
    EXPECT_EQ(errorOfOpening(), 3031);
}

// --- Order of texts ------------------------------------------------------------------------------

TEST_F(FileTest, AnotherOrderOfTextsRebuildsTheIndexes)
{
    createTaxa();
    addTaxa(3);
    // As an older order would have left it: "Élan" and "élan" were two names.
    run(u"DROP INDEX \"Taxons.Unique\"; CREATE UNIQUE INDEX \"Taxons.Unique\" ON Taxons(Nom);"
        "UPDATE MSysSettings SET Value=0 WHERE Name='TextOrder'"_s);
    reopen();
    EXPECT_TRUE(indexSql().contains(u"jet_key"_s)) << indexSql().toStdString();
    EXPECT_EQ(single(u"SELECT Value FROM MSysSettings WHERE Name='TextOrder'"_s), text::orderVersion);

    run(u"DROP INDEX \"Taxons.Unique\"; CREATE UNIQUE INDEX \"Taxons.Unique\" ON Taxons(Nom);"
        "INSERT INTO Taxons(Nom) VALUES('Élan'),('élan');"
        "UPDATE MSysSettings SET Value=0 WHERE Name='TextOrder'"_s);
    reopen();
    EXPECT_EQ(db->schema().table(u"Taxons")->index(u"Unique"), nullptr) << "an index that cannot be made is given up";
    EXPECT_EQ(single(u"SELECT count(*) FROM Taxons"_s), 5);
    EXPECT_TRUE(db->Check().isEmpty());
}

// --- Taken away while it is open -----------------------------------------------------------------

TEST_F(FileTest, NothingIsWrittenToAFileThatIsNotAtItsPlaceAndACopySavesIt)
{
    const QString elsewhere = folder.filePath(u"ailleurs.hbx"_s);
    const QString copy = folder.filePath(u"copie.hbx"_s);
    for (const bool replaced : {false, true}) {
        createTaxa();
        addTaxa(5); // with a journal that stays open
        {
            jet::Operation begun(*db, u"Saisie"_s);
            db->Execute(u"INSERT INTO Taxons (Nom) VALUES (\"perdu\")"_s);
            ASSERT_TRUE(QFile::rename(path, elsewhere));
            EXPECT_TRUE(!replaced || QFile::copy(elsewhere, path));
            EXPECT_EQ(failureOf([&] { begun.commit(); }).number(), 3043);
        }
        const Error failure = failureOf([&] { db->Execute(u"INSERT INTO Taxons (Nom) VALUES (\"perdu\")"_s); });
        EXPECT_EQ(failure.number(), 3043);
        EXPECT_TRUE(failure.description().contains(path)) << failure.description().toStdString();
        EXPECT_EQ(failureOf([&] { db->SetProperty(u"a"_s, 1); }).number(), 3043);
        EXPECT_EQ(single(u"SELECT count(*) FROM Taxons"_s), 5);
        db->SaveCopy(copy);
        EXPECT_TRUE(QFile::permissions(copy) & QFile::ReadOwner);
        close();
        db = jet::Database::Open(copy);
        EXPECT_EQ(single(u"SELECT count(*) FROM Taxons"_s), 5);
        close();
        for (const QString& name : filesBeside())
            QFile::remove(folder.filePath(name));
    }
}

// --- Compaction ----------------------------------------------------------------------------------

TEST_F(FileTest, CompactingKeepsAllAndResetsTheCounters)
{
    createTaxa();
    addTaxa(2000);
    db->AppendTable({.Name = u"Vide"_s, .Fields = {counter(u"ID"_s), field(u"A"_s, DataType::Long)}});
    db->SetProperty(u"HerboraVersion"_s, u"1.2"_s);
    run(u"DELETE FROM Taxons WHERE [ID Taxons]>10; INSERT INTO Vide(A) VALUES(1); DELETE FROM Vide"_s);
    close();
    const QByteArray before = bytesOf(path);
    const QString target = folder.filePath(u"petit.hbx"_s);
    Database::Compact(path, target);
    EXPECT_TRUE(bytesOf(path) == before);
    EXPECT_LT(QFileInfo(target).size(), before.size());
    EXPECT_EQ(filesBeside(), (QStringList{u"essai.hbx"_s, u"petit.hbx"_s}));
    path = target;
    open();
    EXPECT_EQ(db->Property(u"herboraVERSION"_s), u"1.2"_s);
    EXPECT_TRUE(db->Check().isEmpty());
    run(u"INSERT INTO Taxons(Nom) VALUES('suivant'); INSERT INTO Vide(A) VALUES(1)"_s);
    EXPECT_EQ(single(u"SELECT max([ID Taxons]) FROM Taxons"_s), 11);
    EXPECT_EQ(single(u"SELECT max(ID) FROM Vide"_s), 1);
}

TEST_F(FileTest, CompactingRefusesAndLeavesEverythingAsItWas)
{
    createTaxa();
    addTaxa(2000);
    const QString target = folder.filePath(u"petit.hbx"_s);
    EXPECT_EQ(failureOf([&] { Database::Compact(path, target); }).number(), 3045);
    close();
    EXPECT_EQ(failureOf([&] { Database::Compact(path, path); }).number(), 3204);
    write(target + u"-journal"_s, "x");
    EXPECT_EQ(failureOf([&] { Database::Compact(path, target); }).number(), 3204);
    QFile::remove(target + u"-journal"_s);
    QByteArray damaged = bytesOf(path);
    damaged.replace(damaged.size() / 4096 / 2 * 4096, 4096, QByteArray(4096, '\0'));
    write(path, damaged);
    EXPECT_EQ(failureOf([&] { Database::Compact(path, target); }).number(), 3049);
    EXPECT_EQ(filesBeside(), QStringList{u"essai.hbx"_s});
}

TEST_F(FileTest, CompactingStopsWhenItIsToldToAndLeavesNothing)
{
    createTaxa();
    addTaxa(20'000);
    close();
    const QString target = folder.filePath(u"petit.hbx"_s);
    int asked = 0;
    const Error failure = failureOf([&] { jet::compactSound(path, target, [&] { return ++asked < 3; }); });
    EXPECT_EQ(failure.number(), 3059);
    EXPECT_EQ(filesBeside(), QStringList{u"essai.hbx"_s});
    jet::compactSound(path, target, [] { return true; });
    path = target;
    open();
    EXPECT_EQ(single(u"SELECT count(*) FROM Taxons"_s), 20'000);
}

// --- Findings ------------------------------------------------------------------------------------

TEST_F(FileTest, WhatAnotherProgramTookAwayIsReportedAndTheRestOpens)
{
    createTaxa();
    db->AppendTable({.Name = u"Notes"_s, .Fields = {field(u"A"_s, DataType::Memo)}});
    close();
    ASSERT_EQ(shell(u"DROP TABLE Notes; DROP INDEX \"Taxons.Unique\"; DROP TRIGGER \"Taxons.rules.insert\""_s).refusal,
              QString());
    open();
    EXPECT_EQ(db->schema().table(u"Notes"), nullptr);
    ASSERT_NE(db->schema().table(u"Taxons"), nullptr);
    EXPECT_EQ(db->schema().table(u"Taxons")->index(u"Unique"), nullptr);
    const QStringList findings = db->Check();
    ASSERT_EQ(findings.size(), 3);
    EXPECT_TRUE(findings[0].contains(u"index « Unique »"_s)) << findings[0].toStdString();
    EXPECT_TRUE(findings[1].contains(u"table « Notes »"_s)) << findings[1].toStdString();
    EXPECT_TRUE(findings[2].contains(u"règle de « Taxons »"_s)) << findings[2].toStdString();
}

TEST_F(FileTest, ARelationOnAColumnThatIsNotThereIsReportedAndLeftOut)
{
    createTaxa();
    db->AppendTable({.Name = u"Notes"_s, .Fields = {field(u"ID Taxons"_s, DataType::Long)}});
    db->AppendRelation({.Name = u"Notes"_s, .Table = u"Taxons"_s, .ForeignTable = u"Notes"_s,
                        .Fields = {{u"ID Taxons"_s, u"ID Taxons"_s}}});
    for (const QString& fields : {u"[[\"ID Taxon\",\"ID Taxons\"]]"_s, u"[[\"ID Taxons\",\"X\"]]"_s, u"[]"_s, u"{"_s}) {
        run(u"UPDATE MSysRelationships SET Fields='%1'"_s.arg(fields));
        reopen();
        EXPECT_EQ(db->schema().relation(u"Notes"), nullptr) << fields.toStdString();
        EXPECT_EQ(db->Check(false).size(), 1) << db->Check(false).join(u'\n').toStdString();
    }
}

TEST_F(FileTest, RowsThatBreakTheRulesAreReported)
{
    create();
    Field required = field(u"Nom"_s, DataType::Text, 5);
    required.Required = true;
    db->AppendTable({.Name = u"Taxons"_s, .Fields = {required}, .Indexes = {unique(u"Unique"_s, {u"Nom"_s})}});
    run(u"DROP TRIGGER \"Taxons.rules.insert\"; DROP INDEX \"Taxons.Unique\";"
        "CREATE INDEX \"Taxons.Unique\" ON Taxons(Nom);"
        "INSERT INTO Taxons(Nom) VALUES(NULL),(''),('trop long'),('a'),('A')"_s);
    EXPECT_EQ(db->Check(false).size(), 5) << db->Check(false).join(u'\n').toStdString();
}

} // namespace
