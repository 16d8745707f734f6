#include "PictureFiles.h"
#include "images/ImagePaths.h"
#include "images/Imagettes.h"
#include "images/PictureRows.h"
#include "images/Pictures.h"
#include "images/ThumbnailLoader.h"
#include "jet/Recordset.h"
#include "support/Project.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>

namespace {

using namespace Qt::StringLiterals;
using images::ThumbnailCache;
using images::ThumbnailLoader;
using support::drawing;
using support::photograph;
using support::put;
using support::withThumbnail;

const QString password = u"pWaKmm37hQ5x8"_s;

void touch(const QString& path, const QDateTime& time)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(time, QFileDevice::FileModificationTime));
}

std::unique_ptr<jet::Database> opened(const QString& file)
{
    jet::OpenOptions options;
    options.password = password;
    return jet::Database::Open(file, options);
}

TEST(ThumbnailCache, StoresOneRowForEachName)
{
    support::TestProject project;
    const QString cacheFile = project.path(u"projet.hbi"_s);
    const QString picture = drawing(project.path(u"dessin.jpg"_s));
    touch(picture, QDateTime(QDate(2024, 5, 6), QTime(7, 8, 9)));
    {
        ThumbnailCache cache(project.path(), project.clock);
        EXPECT_EQ(ThumbnailCache::fileOf(project.path()), cacheFile);
        EXPECT_TRUE(cache.read(u"a.jpg"_s).isNull());
        EXPECT_TRUE(cache.make(u"a.jpg"_s, photograph(withThumbnail)));
        EXPECT_TRUE(cache.make(u"b.jpg"_s, picture)); // has none embedded: scaled
        EXPECT_FALSE(cache.make(u"c.jpg"_s, u"/absent.jpg"_s));
        EXPECT_FALSE(cache.read(u"A.JPG"_s).isNull());
        EXPECT_EQ(cache.read(u"b.jpg"_s).size(), QSize(160, 120));
        EXPECT_TRUE(cache.make(u"a.jpg"_s, picture));
        EXPECT_TRUE(cache.holds(u"a.jpg"_s, picture));
        touch(picture, QDateTime(QDate(2024, 5, 6), QTime(7, 9, 0)));
        EXPECT_FALSE(cache.holds(u"a.jpg"_s, picture)); // the picture is newer
        EXPECT_TRUE(cache.read(u"a.jpg"_s, picture).isNull());
        EXPECT_FALSE(cache.read(u"a.jpg"_s).isNull());
    }
    EXPECT_THROW(jet::Database::Open(cacheFile), jet::Error); // the password
    const auto database = opened(cacheFile);
    const auto rows = database->OpenRecordset(u"SELECT [Fichier],[DateCreate],[DateModify] FROM PGThumbnails ORDER BY [Fichier]"_s);
    EXPECT_EQ(rows->Value(1).toString(), u"2024/05/06 07:08:09"_s); // of the picture
    EXPECT_EQ(rows->Value(2).toString(), u"2026/03/07 14:05:09"_s); // of the caching
    rows->MoveLast();
    EXPECT_EQ(rows->RecordCount(), 2);
}

/// More bytes than Qt allows an image of its own accord.
TEST(Pictures, OfManyMegapixelsAreReadWhole)
{
    QTemporaryDir folder;
    const QString path = drawing(folder.filePath(u"grande.jpg"_s), {7000, 5200});
    EXPECT_TRUE(images::viewPicture(path, 0).isWhole());
    EXPECT_EQ(images::viewPicture(path, 1000).image.width(), 1000);
}

/// Upright, whichever way it was made.
TEST(ThumbnailCache, HonoursTheOrientation)
{
    QTemporaryDir folder;
    const QString turned = folder.filePath(u"debout.jpg"_s), plain = folder.filePath(u"dessin.jpg"_s);
    ASSERT_TRUE(QFile::copy(photograph(withThumbnail), turned));
    drawing(plain);
    if (!support::exiftool({u"-overwrite_original"_s, u"-n"_s, u"-Orientation=6"_s, turned})
        || !support::exiftool({u"-overwrite_original"_s, u"-n"_s, u"-Orientation=8"_s, plain}))
        GTEST_SKIP() << "exiftool is not installed";
    const QImage embedded = QImage::fromData(images::makeThumbnail(u"x"_s, turned).jpeg);
    EXPECT_LT(embedded.width(), embedded.height());
    EXPECT_EQ(QImage::fromData(images::makeThumbnail(u"x"_s, plain).jpeg).size(), QSize(120, 160));
    EXPECT_EQ(images::viewPicture(plain, 100).size, QSize(300, 400));
    EXPECT_EQ(images::viewPicture(plain, 100).image.size(), QSize(75, 100));
    EXPECT_TRUE(images::viewPicture(plain, 0).isWhole());
}

TEST(ThumbnailCache, IsMadeAnewWhenItIsNoCache)
{
    support::TestProject project;
    const QString file = project.path(u"projet.hbi"_s), picture = drawing(project.path(u"dessin.jpg"_s));
    const auto makeForeign = [&](int kind) {
        QFile::remove(file);
        if (kind == 0)
            put(file, QByteArray(5000, 'x'));
        else if (kind == 1)
            jet::Database::Create(file, u";LANGID=0x0409;CP=1252;COUNTRY=0;pwd=autre"_s);
        else
            jet::Database::Create(file, u";LANGID=0x0409;CP=1252;COUNTRY=0;pwd="_s + password)
                ->AppendTable({.Name = u"PGThumbnails"_s, .Fields = {{.Name = u"Autre"_s, .Type = jet::DataType::Long}}});
    };
    for (int kind = 0; kind < 3; ++kind) {
        makeForeign(kind);
        ThumbnailCache cache(project.path(), project.clock);
        EXPECT_TRUE(cache.notice().startsWith(u"Le cache d'imagettes a été refait : "_s)) << kind;
        EXPECT_TRUE(cache.make(u"a.jpg"_s, picture));
        EXPECT_TRUE(QFile::exists(file + u".ancien"_s));
    }
    // One that lacks the table gets it, and what somebody else has open is left alone.
    QFile::remove(file);
    jet::Database::Create(file, u";LANGID=0x0409;CP=1252;COUNTRY=0;pwd="_s + password);
    ThumbnailCache cache(project.path(), project.clock);
    EXPECT_TRUE(cache.notice().isEmpty());
    EXPECT_THROW(ThumbnailCache(project.path(), project.clock), jet::Error);
}

/// Damage that shows only when a row is read.
TEST(ThumbnailCache, IsMadeAnewWhenItTurnsOutToBeDamaged)
{
    support::TestProject project;
    const QString file = project.path(u"projet.hbi"_s), picture = drawing(project.path(u"dessin.jpg"_s));
    {
        ThumbnailCache cache(project.path(), project.clock);
        QList<images::Thumbnail> many;
        for (int i = 0; i < 200; ++i)
            many << images::Thumbnail{u"image %1.jpg"_s.arg(i), QByteArray(9000, 'j'), QDateTime::currentDateTime(), {}};
        cache.store(many);
    }
    QFile damaged(file);
    ASSERT_TRUE(damaged.open(QIODevice::ReadWrite));
    // Behind the pages that hold the definitions.
    damaged.seek(300 * 1024);
    damaged.write(QByteArray(int(damaged.size() - 300 * 1024), '\x5a'));
    damaged.close();
    ThumbnailCache cache(project.path(), project.clock);
    for (int i = 0; i < 200 && cache.notice().isEmpty(); ++i)
        cache.read(u"image %1.jpg"_s.arg(i));
    EXPECT_FALSE(cache.notice().isEmpty());
    EXPECT_TRUE(cache.make(u"a.jpg"_s, picture));
    EXPECT_FALSE(cache.read(u"a.jpg"_s, picture).isNull());
}

// --- Beside the windows --------------------------------------------------------------------------

class Loader : public testing::Test {
protected:
    void SetUp() override
    {
        QDir(project.folder.path()).mkpath(u"photos"_s);
        for (int i = 0; i < pictures; ++i)
            drawing(file(i), {600, 400}, QColor::fromHsv(i * 5 % 360, 200, 200));
        loader = make();
    }
    std::unique_ptr<ThumbnailLoader> make()
    {
        auto made = std::make_unique<ThumbnailLoader>(project.path(), project.clock);
        made->setFolders({project.path(u"photos"_s)});
        QObject::connect(made.get(), &ThumbnailLoader::ready, &here, [this](const QString& name, const QImage& image) {
            EXPECT_FALSE(image.isNull());
            came << name;
        });
        QObject::connect(made.get(), &ThumbnailLoader::failed, &here, [this](const QString&, const QString& why) { failures << why; });
        QObject::connect(made.get(), &ThumbnailLoader::notice, &here, [this](const QString& text) { notices << text; });
        return made;
    }
    static QString name(int i) { return u"p%1.jpg"_s.arg(i); }
    QString file(int i) const { return project.path(u"photos/"_s + name(i)); }
    static QStringList names(int from, int to)
    {
        QStringList all;
        for (int i = from; i < to; ++i)
            all << name(i);
        return all;
    }
    void settle()
    {
        QDeadlineTimer patience(20'000);
        while (!loader->isIdle() && !patience.hasExpired())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        EXPECT_TRUE(loader->isIdle());
        QCoreApplication::sendPostedEvents();
    }

    static constexpr int pictures = 70;
    support::TestProject project;
    QObject here;
    std::unique_ptr<ThumbnailLoader> loader;
    QStringList came, failures, notices;
};

TEST_F(Loader, MakesKeepsAndReadsBackThumbnails)
{
    loader->want(this, names(0, 40));
    settle();
    EXPECT_EQ(QSet<QString>(came.begin(), came.end()).size(), 40);
    loader.reset();
    EXPECT_EQ(opened(project.path(u"projet.hbi"_s))->OpenRecordset(u"SELECT Count(*) FROM PGThumbnails"_s)->Value(0).toInt(), 40);
    // Made while the loader went: kept nevertheless.
    loader = make();
    came.clear();
    loader->want(this, names(0, 40));
    settle();
    EXPECT_EQ(came, names(0, 40)); // from the cache, in the order that was asked for
}

TEST_F(Loader, DropsWhatIsNoLongerInSight)
{
    loader->want(this, names(0, 70));
    loader->want(this, names(60, 70));
    settle();
    const QSet<QString> made(came.begin(), came.end());
    for (const QString& wanted : names(60, 70))
        EXPECT_TRUE(made.contains(wanted)) << wanted.toStdString();
    EXPECT_LT(made.size(), 40); // those underway were finished, the others given up
    loader->want(this, {});
    EXPECT_TRUE(loader->isIdle());
}

TEST_F(Loader, SaysWhatIsMissingOrBrokenAndGoesOn)
{
    put(file(1), "pas une image");
    put(file(2), QByteArray());
    loader->want(this, {u"absente.jpg"_s, name(1), name(2), name(3)});
    settle();
    EXPECT_EQ(came, QStringList{name(3)});
    failures.sort();
    ASSERT_EQ(failures.size(), 3);
    EXPECT_EQ(failures[0], u"Erreur de chargement de l'image "_s + file(1));
    EXPECT_EQ(failures[2], images::pictureMissing(u"absente.jpg"_s));
}

TEST_F(Loader, RefreshesTheThumbnailOfANewerPicture)
{
    touch(file(0), QDateTime::currentDateTime().addSecs(-100));
    loader->want(this, {name(0)});
    settle();
    drawing(file(0), {300, 600}, Qt::red);
    QImage last;
    QObject::connect(loader.get(), &ThumbnailLoader::ready, &here, [&last](const QString&, const QImage& image) { last = image; });
    loader->want(this, {name(0)});
    settle();
    EXPECT_EQ(last.size(), QSize(80, 160));
}

TEST_F(Loader, DoesWithoutACacheThatSomebodyElseHas)
{
    ThumbnailCache other(project.path(), project.clock);
    loader->want(this, {name(0)});
    settle();
    EXPECT_EQ(came, QStringList{name(0)});
    ASSERT_EQ(notices.size(), 1);
    EXPECT_TRUE(notices[0].startsWith(u"Les imagettes ne sont pas gardées : "_s));
}

// --- A whole project -----------------------------------------------------------------------------

TEST(Imagettes, AreMadeForEveryPictureOfAProject)
{
    support::TestProject project;
    project.create();
    QDir(project.folder.path()).mkpath(u"photos"_s);
    project.db().Execute(u"INSERT INTO Individus ([Numéro]) VALUES (\"1\")"_s);
    for (const QString& name : {u"a.jpg"_s, u"b.jpg"_s, u"b.jpg"_s, u"absente.jpg"_s}) {
        project.db().Execute(u"INSERT INTO Images ([ID Individus],[KeyParent],[Fichier]) VALUES (1,\"1-Individus\",\""_s + name + u"\")"_s);
        if (!name.startsWith(u"abs"))
            drawing(project.path(u"photos/"_s + name));
    }
    const QStringList names = images::projectPictures(project.db(), project.session.modules());
    EXPECT_EQ(names.size(), 3);
    ThumbnailCache cache(project.path(), project.clock);
    const QStringList folders{project.path(u"photos"_s)};
    support::RecordedProgression progression;
    const images::FillReport first = images::fillThumbnails(cache, names, folders, progression);
    EXPECT_EQ(first.made, 2);
    EXPECT_EQ(first.failures, QStringList{images::pictureMissing(u"absente.jpg"_s)});
    EXPECT_EQ(progression.steps.last(), u"100 Imagettes : 3 / 3"_s);
    const images::FillReport second = images::fillThumbnails(cache, names, folders, progression);
    EXPECT_EQ(second.made, 0);
    EXPECT_EQ(second.kept, 2);
}

TEST(PictureRows, AreThoseOfTheStatement)
{
    support::TestProject project;
    project.create();
    project.db().Execute(u"INSERT INTO Individus ([Numéro]) VALUES (\"1\")"_s);
    project.db().Execute(u"INSERT INTO Images ([ID Individus],[KeyParent],[Fichier]) VALUES (1,\"1-Individus\",\"a.jpg\")"_s);
    platform::NoProgression progression;
    const auto rows = images::readPictures(project.db(), u"SELECT [ID Images] AS ChpID,[Fichier] AS Chp1 FROM Images"_s, progression);
    ASSERT_EQ(rows->count(), 1);
    EXPECT_EQ(rows->name(0), u"a.jpg"_s);
    EXPECT_EQ(rows->id(0), 1);
    EXPECT_THROW(images::readPictures(project.db(), u"SELECT [Fichier] AS Chp1 FROM Images"_s, progression), jet::Error);
}

} // namespace
