// A hundred thousand points: projected, drawn, found, and written beside what ogr2ogr takes for the same KML.
#include "map/Drawing.h"
#include "map/Exports.h"
#include "map/Maps.h"
#include "map/PointGrid.h"

#include <QCoreApplication>
#include <QFile>
#include <QGuiApplication>
#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

using namespace Qt::StringLiterals;

constexpr int pointCount = 100000;
const QSize window(1400, 800);

const map::Points& points()
{
    static const map::Points all = [] {
        map::Points made;
        made.reserve(pointCount);
        QRandomGenerator random(3);
        for (int i = 1; i <= pointCount; ++i)
            made.add({.locality = i,
                      .name = u"Nouvelle-Calédonie - Forêt sèche, parcelle %1"_s.arg(i),
                      .at = {random.bounded(360.0) - 180, random.bounded(170.0) - 85},
                      .altitude = random.bounded(2000.0),
                      .gpsRef = u"WP%1"_s.arg(i),
                      .modified = u"2024/03/05 14:30:00"_s,
                      .count = 1 + int(random.bounded(40.0) * random.bounded(1.0))});
        return made;
    }();
    return all;
}

const map::ScaledPicture& globe()
{
    static const map::ScaledPicture picture(
        map::readPicture(QCoreApplication::applicationDirPath() + u"/Globe.gif"_s));
    return picture;
}

map::ViewTransform viewAt(double zoom)
{
    return map::ViewTransform::whole(map::Frame::world(), globe().size(), window).scaled(zoom, {700, 300});
}

map::ExportContext context()
{
    map::ExportContext made;
    made.name = u"Mesure"_s;
    made.region = u"Monde"_s;
    made.time = u"2026/03/07 14:05:09"_s;
    made.frame = map::Frame::world();
    made.pictureFile = QCoreApplication::applicationDirPath() + u"/Globe.gif"_s;
    return made;
}

void project(benchmark::State& state)
{
    const map::ViewTransform view = viewAt(1);
    for (auto _ : state) {
        qint64 sum = 0;
        for (const map::MapPoint& point : points())
            sum += view.LongDtoPicture(point.at.longitude) + view.LatDtoPicture(point.at.latitude);
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * pointCount);
}

/// A whole picture of the map, as after each move or zoom; the argument is the zoom.
void draw(benchmark::State& state)
{
    const std::vector<int> order = map::drawingOrder(points());
    const std::vector<bool> selected(pointCount, false);
    const map::ViewTransform view = viewAt(double(state.range(0)));
    QImage picture(window, QImage::Format_RGB32);
    for (auto _ : state) {
        QPainter painter(&picture);
        globe().draw(painter, view.area(map::Frame::world()), picture.rect());
        painter.end();
        benchmark::DoNotOptimize(map::drawPoints(picture, {points(), order, selected, -1}, view, {}));
    }
}

void drawMapAlone(benchmark::State& state)
{
    const map::ViewTransform view = viewAt(double(state.range(0)));
    QImage picture(window, QImage::Format_RGB32);
    for (auto _ : state) {
        QPainter painter(&picture);
        globe().draw(painter, view.area(map::Frame::world()), picture.rect());
    }
}

void prepare(benchmark::State& state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(map::drawingOrder(points()));
        benchmark::DoNotOptimize(map::PointGrid(points()));
    }
}

void find(benchmark::State& state)
{
    const map::PointGrid grid(points());
    QRandomGenerator random(5);
    for (auto _ : state)
        benchmark::DoNotOptimize(grid.within(QRectF(random.bounded(350.0) - 180, random.bounded(160.0) - 85, 3, 3)));
}

template<QByteArray (*write)(const map::Points&, const map::ExportContext&)>
void exportFile(benchmark::State& state)
{
    qsizetype size = 0;
    for (auto _ : state)
        size = write(points(), context()).size();
    state.SetBytesProcessed(state.iterations() * size);
    state.SetItemsProcessed(state.iterations() * pointCount);
}

void exportCsv(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(map::csvFile(points()));
    state.SetItemsProcessed(state.iterations() * pointCount);
}

/// The same points as the same kind of file, by the usual tool; its start is part of what a user waits for.
void ogr2ogrKml(benchmark::State& state)
{
    QTemporaryDir folder;
    QFile csv(folder.filePath(u"points.csv"_s));
    if (QStandardPaths::findExecutable(u"ogr2ogr"_s).isEmpty() || !csv.open(QIODevice::WriteOnly)) {
        state.SkipWithError("ogr2ogr is not installed");
        return;
    }
    csv.write(map::csvFile(points()));
    csv.close();
    for (auto _ : state) {
        QFile::remove(folder.filePath(u"points.kml"_s));
        const int status = QProcess::execute(
            u"ogr2ogr"_s, {u"-f"_s, u"KML"_s, folder.filePath(u"points.kml"_s), csv.fileName(), u"-oo"_s,
                           u"X_POSSIBLE_NAMES=Longitude"_s, u"-oo"_s, u"Y_POSSIBLE_NAMES=Latitude"_s});
        if (status != 0)
            state.SkipWithError("ogr2ogr failed");
    }
    state.SetItemsProcessed(state.iterations() * pointCount);
}

} // namespace

BENCHMARK(project)->Unit(benchmark::kMillisecond);
BENCHMARK(draw)->Arg(1)->Arg(4)->Arg(32)->Unit(benchmark::kMillisecond);
BENCHMARK(drawMapAlone)->Arg(1)->Arg(4)->Arg(32)->Unit(benchmark::kMillisecond);
BENCHMARK(prepare)->Unit(benchmark::kMillisecond);
BENCHMARK(find)->Unit(benchmark::kMicrosecond);
BENCHMARK(exportCsv)->Unit(benchmark::kMillisecond);
BENCHMARK(exportFile<map::kmlFile>)->Name("exportKml")->Unit(benchmark::kMillisecond);
BENCHMARK(exportFile<map::gtmFile>)->Name("exportGtm")->Unit(benchmark::kMillisecond);
BENCHMARK(exportFile<map::acadScript>)->Name("exportScr")->Unit(benchmark::kMillisecond);
BENCHMARK(ogr2ogrKml)->Unit(benchmark::kMillisecond)->UseRealTime();

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
