// herbora_faults_driver: plays each operation of the table with a fault at one call after the
// other.
#include "Sweep.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QLocale>
#include <QTemporaryDir>
#include <QTextStream>
#include <atomic>
#include <mutex>
#include <thread>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace faults;

namespace {

struct Wishes {
    QStringList operations; ///< Empty: all.
    QString mode;           ///< Empty: all.
    int call = 0;           ///< 0: all.
    int sampleSize = 0;     ///< Over all operations; 0: every point.
    int jobs = 1;
    QString folder;
    QString library;
};

const Operation* find(const QString& name)
{
    for (const Operation& operation : operations()) {
        if (operation.name == name) {
            return &operation;
        }
    }
    return nullptr;
}

/// The part of a child process. Exit status 0 when all went well, 1 when the operation reported a
/// failure, 3 when something is not as it should be.
int takePart(const QString& part, const Operation& operation, const QString& folder)
{
    // A hang must end the trial, not the whole sweep.
    alarm(60);
    QTextStream out(stdout);
    try {
        if (part == role::prepare) {
            operation.prepare(folder);
        } else if (part == role::play) {
            return operation.run(folder) ? 0 : 1;
        } else if (part == role::state) {
            out << operation.state(folder) << Qt::endl;
        } else {
            out << operation.state(folder) << Qt::endl;
            operation.nextStart(folder);
            out << operation.state(folder) << Qt::endl;
        }
    } catch (const std::exception& error) {
        QTextStream(stderr) << QString::fromUtf8(error.what()) << Qt::endl;
        return 3;
    }
    return 0;
}

bool isPart(const QString& argument)
{
    return QStringList{role::prepare, role::play, role::state, role::resume}.contains(argument);
}

/// Memory-backed where there is one: flushing costs nothing there and the calls are the same.
QString scratchTemplate()
{
    const QFileInfo memory(u"/dev/shm"_s);
    const QString parent =
        memory.isDir() && memory.isWritable() ? memory.filePath() : QDir::tempPath();
    return parent + u"/herbora-pannes-XXXXXX"_s;
}

std::vector<Point> chosenPoints(const Sweep& sweep, const Wishes& wishes)
{
    std::vector<Point> points;
    for (const Point& point : sweep.points()) {
        if ((wishes.mode.isEmpty() || point.mode == wishes.mode) &&
            (wishes.call == 0 || point.call == wishes.call)) {
            points.push_back(point);
        }
    }
    return points;
}

/// Trials of one operation, shared out among workers that each have their own folder.
std::vector<Fault> trials(const Sweep& rehearsed, const std::vector<Point>& points,
                          const Wishes& wishes)
{
    std::vector<Fault> found;
    std::mutex guard;
    std::atomic<size_t> next{0};
    const auto work = [&](int number) {
        Sweep sweep = rehearsed.worker(u"%1/%2"_s.arg(wishes.folder, QString::number(number)));
        for (size_t i = next++; i < points.size(); i = next++) {
            const QString wrong = sweep.trial(points[i]);
            if (!wrong.isEmpty()) {
                const std::lock_guard lock(guard);
                found.push_back({points[i], wrong});
            }
        }
    };
    std::vector<std::thread> workers;
    for (int number = 1; number <= wishes.jobs; ++number) {
        workers.emplace_back(work, number);
    }
    for (std::thread& worker : workers) {
        worker.join();
    }
    return found;
}

void report(QTextStream& out, const Sweep& sweep, const std::vector<Fault>& found)
{
    constexpr size_t shown = 10;
    for (size_t i = 0; i < found.size() && i < shown; ++i) {
        const Fault& fault = found[i];
        const Call& call = sweep.calls()[static_cast<size_t>(fault.point.call - 1)];
        out << u"    %1, appel %2 (%3 %4) : %5\n"_s.arg(
            fault.point.mode, QString::number(fault.point.call), call.name,
            QFileInfo(call.path).fileName(), fault.text);
    }
    if (found.size() > shown) {
        out << u"    … et %1 autres\n"_s.arg(found.size() - shown);
    }
}

/// One operation of this run: what its rehearsal found, and the points to try.
struct Task {
    const Operation* operation;
    Sweep sweep;
    QStringList wrong; ///< Already without a fault.
    std::vector<Point> points;
};

Task rehearsed(const Operation& operation, const Wishes& wishes)
{
    Task task{&operation,
              Sweep(operation, wishes.folder + u'/' + operation.name,
                    QCoreApplication::applicationFilePath(), wishes.library),
              {},
              {}};
    try {
        task.wrong = task.sweep.rehearse();
    } catch (const std::exception& error) {
        task.wrong << QString::fromUtf8(error.what());
    }
    task.points = chosenPoints(task.sweep, wishes);
    return task;
}

/// Cuts the points down to `wanted` in all: short operations are tried whole, the others get even
/// shares.
void share(std::vector<Task>& tasks, int wanted)
{
    std::vector<Task*> bySize;
    for (Task& task : tasks) {
        bySize.push_back(&task);
    }
    std::sort(bySize.begin(), bySize.end(),
              [](const Task* a, const Task* b) { return a->points.size() < b->points.size(); });
    auto left = static_cast<int>(bySize.size());
    for (Task* task : bySize) {
        task->points = sample(task->points, qMax(2, wanted / left));
        wanted -= static_cast<int>(task->points.size());
        --left;
    }
}

/// Tries one operation. True when it stood the test.
bool stands(const Task& task, const Wishes& wishes, QTextStream& out)
{
    const QString name = task.operation->name;
    if (!task.wrong.isEmpty()) {
        out << name << u" : "_s << task.wrong.join(u"\n    "_s) << Qt::endl;
        return false;
    }
    QElapsedTimer clock;
    clock.start();
    const auto found = trials(task.sweep, task.points, wishes);
    out << u"%1 %2 appels, %3 points, %4 défauts, %5 s\n"_s.arg(
        name.leftJustified(16), QString::number(task.sweep.calls().size()).rightJustified(5),
        QString::number(task.points.size()).rightJustified(5),
        QString::number(found.size()).rightJustified(3),
        QString::number(static_cast<double>(clock.elapsed()) / 1000, 'f', 1));
    if (!task.operation->knownBad) {
        report(out, task.sweep, found);
    } else if (found.empty()) {
        out << u"    cette manière de faire est mauvaise, et rien ne l'a montré\n"_s;
    }
    out.flush();
    return found.empty() != task.operation->knownBad;
}

int sweepAll(const Wishes& wishes)
{
    QTextStream out(stdout);
    std::vector<Task> tasks;
    for (const Operation& operation : operations()) {
        if (wishes.operations.isEmpty() || wishes.operations.contains(operation.name)) {
            tasks.push_back(rehearsed(operation, wishes));
        }
    }
    if (tasks.empty()) {
        out << u"Aucune opération de ce nom"_s << Qt::endl;
        return 2;
    }
    if (wishes.sampleSize > 0) {
        share(tasks, wishes.sampleSize);
    }
    bool good = true;
    for (const Task& task : tasks) {
        good = stands(task, wishes, out) && good;
    }
    return good ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(u"Herbora"_s);
    QLocale::setDefault(QLocale(QLocale::French, QLocale::France));
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 4 && isPart(arguments.at(1))) {
        const Operation* operation = find(arguments.at(2));
        return operation ? takePart(arguments.at(1), *operation, arguments.at(3)) : 2;
    }

    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOptions({
        {u"complet"_s, u"tous les points (sinon un échantillon)"_s},
        {u"echantillon"_s, u"nombre de points, toutes opérations ensemble"_s, u"N"_s, u"500"_s},
        {u"operation"_s, u"cette opération seule (plusieurs fois possible)"_s, u"NOM"_s},
        {u"mode"_s, u"cette panne seule : "_s + modes().join(u", "_s), u"MODE"_s},
        {u"appel"_s, u"cet appel seul"_s, u"N"_s, u"0"_s},
        {u"travaux"_s, u"essais menés de front"_s, u"N"_s,
         QString::number(qMax(1U, std::thread::hardware_concurrency()))},
    });
    parser.process(application);

    QTemporaryDir scratch(scratchTemplate());
    if (!scratch.isValid()) {
        QTextStream(stderr) << scratch.errorString() << Qt::endl;
        return 2;
    }
    Wishes wishes;
    wishes.operations = parser.values(u"operation"_s);
    wishes.mode = parser.value(u"mode"_s);
    wishes.call = parser.value(u"appel"_s).toInt();
    const bool every = parser.isSet(u"complet"_s) || wishes.call > 0;
    wishes.sampleSize = every ? 0 : parser.value(u"echantillon"_s).toInt();
    wishes.jobs = qBound(1, parser.value(u"travaux"_s).toInt(), 16);
    wishes.folder = QFileInfo(scratch.path()).canonicalFilePath();
    wishes.library = QCoreApplication::applicationDirPath() + u"/libherbora_faults.so"_s;
    return sweepAll(wishes);
}
