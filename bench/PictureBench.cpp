// Pictures on scale: thumbnails of 12-megapixel JPEGs, with and without one embedded, beside vipsthumbnail and ImageMagick; a
// page of 60 that are cached; a picture of 50 megapixels in the viewer; 5,000 pictures scrolled through.
#include "images/Cl_Exif.h"
#include "images/Imagettes.h"
#include "images/ThumbnailLoader.h"
#include "images/ui/Thumbnails.h"
#include "images/ui/Viewer.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QScrollBar>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>
#include <benchmark/benchmark.h>
#include <sys/resource.h>

namespace {

using namespace Qt::StringLiterals;

constexpr int pictures = 24;
constexpr QSize twelveMegapixels(4000, 3000);
constexpr QSize fiftyMegapixels(8660, 5774);
constexpr int manyPictures = 5'000;

/// Noise and shapes: about as many bytes as a camera writes.
QImage scene(const QSize& size)
{
    QImage image(size, QImage::Format_RGB32);
    quint32 seed = 1;
    for (int y = 0; y < size.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            seed = seed * 1664525u + 1013904223u;
            line[x] = qRgb((x / 16 + int(seed >> 28)) & 255, (y / 16 + int(seed >> 29)) & 255, ((x + y) / 32) & 255);
        }
    }
    return image;
}

struct Photographs {
    Photographs()
    {
        const QString plain = folder.filePath(u"sans.jpg"_s);
        scene(twelveMegapixels).save(plain, "JPEG", 88);
        const QString small = folder.filePath(u"petite.jpg"_s), with = folder.filePath(u"avec.jpg"_s);
        scene({160, 120}).save(small, "JPEG", 80);
        QFile::copy(plain, with);
        QProcess::execute(u"exiftool"_s, {u"-q"_s, u"-overwrite_original"_s, u"-ThumbnailImage<="_s + small, with});
        for (int i = 0; i < pictures; ++i) {
            QFile::copy(plain, path(false, i));
            QFile::copy(with, path(true, i));
        }
        scene(fiftyMegapixels).save(folder.filePath(u"grande.jpg"_s), "JPEG", 88);
    }
    QString path(bool embedded, int i) const { return folder.filePath((embedded ? u"a%1.jpg"_s : u"s%1.jpg"_s).arg(i)); }
    QStringList names(bool embedded) const
    {
        QStringList all;
        for (int i = 0; i < pictures; ++i)
            all << path(embedded, i);
        return all;
    }
    QTemporaryDir folder;
    platform::SystemClock clock;
};

Photographs& photographs()
{
    static Photographs only;
    return only;
}

void makeThumbnails(benchmark::State& state)
{
    Photographs& all = photographs();
    const QStringList names = all.names(state.range(0) != 0);
    platform::NoProgression progression;
    for (auto _ : state) {
        state.PauseTiming();
        const QString project = all.folder.filePath(u"projet.hbx"_s);
        QFile::remove(images::ThumbnailCache::fileOf(project));
        state.ResumeTiming();
        images::ThumbnailCache cache(project, all.clock);
        if (images::fillThumbnails(cache, names, {}, progression).made != pictures)
            state.SkipWithError("not every thumbnail was made");
    }
    state.SetItemsProcessed(state.iterations() * pictures);
}
BENCHMARK(makeThumbnails)->ArgName("embedded")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();

void run(benchmark::State& state, const QString& program, const QStringList& arguments)
{
    if (QStandardPaths::findExecutable(program).isEmpty())
        return state.SkipWithError("not installed");
    for (auto _ : state) {
        if (QProcess::execute(program, arguments) != 0)
            return state.SkipWithError("failed");
    }
    state.SetItemsProcessed(state.iterations() * pictures);
}

void vipsthumbnail(benchmark::State& state)
{
    run(state, u"vipsthumbnail"_s,
        photographs().names(false) << u"--size"_s << u"160"_s << u"-o"_s << photographs().folder.filePath(u"vips-%s.jpg[Q=85]"_s));
}
BENCHMARK(vipsthumbnail)->Unit(benchmark::kMillisecond)->UseRealTime();

void imageMagick(benchmark::State& state)
{
    run(state, u"convert"_s, QStringList{u"-define"_s, u"jpeg:size=320x320"_s} + photographs().names(false)
                                 + QStringList{u"-auto-orient"_s, u"-thumbnail"_s, u"160x160"_s, u"-quality"_s, u"85"_s,
                                               photographs().folder.filePath(u"magick-%d.jpg"_s)});
}
BENCHMARK(imageMagick)->Unit(benchmark::kMillisecond)->UseRealTime();

/// So many thumbnails in a cache, of pictures that are there.
struct Season {
    explicit Season(int count) : project(folder.filePath(u"projet.hbx"_s))
    {
        const QString small = folder.filePath(u"petite.jpg"_s);
        scene({320, 240}).save(small, "JPEG", 80);
        images::ThumbnailCache cache(project, clock);
        QList<images::Thumbnail> all;
        QList<images::PictureRows::Row> rows;
        for (int i = 0; i < count; ++i) {
            const QString name = u"p%1.jpg"_s.arg(i);
            QFile::link(small, folder.filePath(name));
            images::Thumbnail made = images::makeThumbnail(name, folder.filePath(name));
            all << made;
            rows << images::PictureRows::Row{i + 1, name};
        }
        cache.store(all);
        pictures = std::make_shared<images::PictureRows>(rows);
    }
    std::shared_ptr<images::ThumbnailLoader> loader() const
    {
        auto made = std::make_shared<images::ThumbnailLoader>(project, clock);
        made->setFolders({folder.path()});
        return made;
    }
    QTemporaryDir folder;
    platform::SystemClock clock;
    QString project;
    std::shared_ptr<images::PictureRows> pictures;
};

bool isFilled(images::ThumbnailGrid& grid)
{
    const auto [begin, end] = grid.inSight();
    for (qsizetype i = begin; i < end; ++i) {
        if (!grid.isReady(i))
            return false;
    }
    return true;
}

/// From the moment the page is asked for until all of it is painted.
void pageOfSixty(benchmark::State& state)
{
    static const Season season(60);
    images::Thumbnails control;
    control.setColonnes(10);
    control.setLignes(6);
    control.resize(1200, 900);
    control.show();
    control.setLoader(season.loader());
    for (auto _ : state) {
        control.grid().forget();
        control.setPictures(season.pictures);
        while (!isFilled(control.grid()))
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        benchmark::DoNotOptimize(control.grab());
    }
}
BENCHMARK(pageOfSixty)->Unit(benchmark::kMillisecond)->UseRealTime();

/// From the name to the picture on the screen, at once reduced and then whole.
void fiftyMegapixelsInTheViewer(benchmark::State& state)
{
    class Silent : public platform::Dialogues {
        platform::Answer ask(const platform::Message&) override { return platform::Answer::Cancel; }
        std::optional<QString> input(const QString&, const QString&, const QString&) override { return {}; }
        std::optional<QList<int>> choose(const platform::Choice&) override { return {}; }
        QString openFile(const QString&, const QString&, const QString&) override { return {}; }
        QStringList openFiles(const QString&, const QString&, const QString&) override { return {}; }
        QString saveFile(const QString&, const QString&, const QString&) override { return {}; }
        QString chooseFolder(const QString&, const QString&) override { return {}; }
    } silent;
    images::Viewer viewer(silent);
    viewer.resize(1200, 900);
    viewer.show();
    const QString file = photographs().folder.filePath(u"grande.jpg"_s);
    for (auto _ : state) {
        viewer.Load_Picture(file);
        while (viewer.isLoading())
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (state.range(0) != 0) {
            viewer.Zoom(1);
            while (viewer.isLoading())
                QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        benchmark::DoNotOptimize(viewer.grab());
    }
}
BENCHMARK(fiftyMegapixelsInTheViewer)->ArgName("whole")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();

/// A wheel turned through 5,000 pictures while thumbnails come in: the longest that the window was not its user's.
void scrollingThroughASeason(benchmark::State& state)
{
    static const Season season(manyPictures);
    double worst = 0, opening = 0;
    for (auto _ : state) {
        images::Thumbnails control;
        control.setNbImages(manyPictures);
        control.resize(1200, 900);
        control.show();
        control.setLoader(season.loader());
        QElapsedTimer clock;
        clock.start();
        control.setPictures(season.pictures);
        control.grab();
        opening = std::max(opening, double(clock.nsecsElapsed()) / 1e6);
        QScrollBar& bar = *control.grid().verticalScrollBar();
        for (int at = 0; at < bar.maximum(); at += 3 * bar.singleStep() / 2) {
            clock.restart();
            bar.setValue(at);
            control.grid().viewport()->repaint();
            QApplication::processEvents();
            worst = std::max(worst, double(clock.nsecsElapsed()) / 1e6);
            QThread::msleep(4);
        }
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    state.counters["opens_ms"] = opening;
    state.counters["worst_frame_ms"] = worst;
    state.counters["most_memory_MB"] = double(usage.ru_maxrss) / 1024;
}
BENCHMARK(scrollingThroughASeason)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(2);

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
