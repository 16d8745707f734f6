#include "Sweep.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <csignal>
#include <stdexcept>

namespace faults {

using namespace Qt::StringLiterals;

namespace {

constexpr QDir::Filters everything =
    QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;

void copyFile(const QFileInfo& source, const QString& target)
{
    QFile copy(target);
    if (!QFile::copy(source.filePath(), target) || !copy.open(QIODevice::ReadWrite) ||
        !copy.setFileTime(source.lastModified(), QFileDevice::FileModificationTime)) {
        throw std::runtime_error((u"copie impossible : "_s + target).toStdString());
    }
}

/// Files only, with their dates: projects have no folders of their own.
void copyFolder(const QString& source, const QString& target)
{
    QDir().mkpath(target);
    for (const QFileInfo& entry : QDir(source).entryInfoList(everything)) {
        copyFile(entry, target + u'/' + entry.fileName());
    }
}

} // namespace

QStringList modes()
{
    return {u"kill"_s, u"torn"_s, u"eio-once"_s, u"eio"_s, u"enospc"_s, u"short"_s};
}

bool Call::writes() const
{
    static const QStringList names{u"write"_s,   u"pwrite"_s,   u"writev"_s,
                                   u"pwritev"_s, u"sendfile"_s, u"copy_file_range"_s};
    return names.contains(name);
}

Sweep::Sweep(const Operation& operation, QString folder, QString driver, QString library)
    : m_operation(&operation), m_folder(std::move(folder)), m_driver(std::move(driver)),
      m_library(std::move(library)), m_prepared(m_folder + u"/avant"_s)
{
    QDir().mkpath(m_folder);
}

Sweep Sweep::worker(const QString& folder) const
{
    Sweep copy = *this;
    copy.m_folder = folder;
    QDir().mkpath(folder);
    return copy;
}

QStringList Sweep::rehearse()
{
    QDir().mkpath(m_prepared);
    const Ended prepared = run(role::prepare, m_prepared);
    if (prepared.signal != 0 || prepared.status != 0) {
        return {u"préparation impossible : "_s + prepared.messages};
    }
    reset();
    m_before = stateOf(arena());

    reset();
    const Outcome outcome = play({u"count"_s, 0});
    m_calls = readJournal();
    if (!outcome.success) {
        return {u"sans aucune panne, l'opération échoue : "_s + outcome.wrong};
    }
    m_after = stateOf(arena());
    QStringList wrong{judge(outcome)};
    for (const Call& call : m_calls) {
        if (m_operation->untouched.contains(QFileInfo(call.path).fileName())) {
            wrong << u"sans aucune panne, %1 touche %2"_s.arg(call.name, call.path);
        }
    }
    wrong.removeAll(QString());
    return wrong;
}

std::vector<Point> Sweep::points() const
{
    std::vector<Point> all;
    for (const QString& mode : modes()) {
        const bool writesOnly = mode == u"short"_s || mode == u"torn"_s;
        for (int call = 1; call <= static_cast<int>(m_calls.size()); ++call) {
            if (!writesOnly || m_calls[static_cast<size_t>(call - 1)].writes()) {
                all.push_back({mode, call});
            }
        }
    }
    return all;
}

QString Sweep::trial(const Point& point)
{
    reset();
    return judge(play(point));
}

void Sweep::reset() const
{
    QDir(arena()).removeRecursively();
    copyFolder(m_prepared, arena());
    QFile::remove(m_folder + u"/journal"_s);
}

Ended Sweep::run(const QString& role, const QString& folder, const QByteArrayList& variables) const
{
    return runToEnd({m_driver.toUtf8(), role.toUtf8(), m_operation->name.toUtf8(), folder.toUtf8()},
                    variables + QByteArrayList{"QT_HASH_SEED=0"}, m_folder + u"/essai"_s);
}

QString Sweep::stateOf(const QString& folder) const
{
    const Ended ended = run(role::state, folder);
    if (ended.signal != 0 || ended.status != 0) {
        throw std::runtime_error((u"état illisible : "_s + ended.messages).toStdString());
    }
    return ended.output;
}

Sweep::Outcome Sweep::play(const Point& point) const
{
    const Ended ended =
        run(role::play, arena(),
            {"LD_PRELOAD=" + m_library.toUtf8(), "HERBORA_FAULTS_FOLDER=" + arena().toUtf8(),
             "HERBORA_FAULTS_AT=" + QByteArray::number(point.call),
             "HERBORA_FAULTS_MODE=" + point.mode.toUtf8(),
             "HERBORA_FAULTS_JOURNAL=" + (m_folder + u"/journal"_s).toUtf8()});
    const bool killing = point.mode == u"kill"_s || point.mode == u"torn"_s;
    Outcome outcome;
    outcome.killed = killing && ended.signal == SIGKILL;
    outcome.success = ended.signal == 0 && ended.status == 0;
    if (ended.signal != 0 && !outcome.killed) {
        outcome.wrong =
            u"arrêt par le signal %1 : %2"_s.arg(QString::number(ended.signal), ended.messages);
    } else if (ended.status > 1) {
        outcome.wrong =
            u"fin avec le code %1 : %2"_s.arg(QString::number(ended.status), ended.messages);
    } else if (ended.status == 1 && ended.messages.isEmpty()) {
        outcome.wrong = u"échec sans message"_s;
    } else if (ended.status == 1 && point.call == 0) {
        outcome.wrong = ended.messages;
    }
    return outcome;
}

QString Sweep::judge(const Outcome& outcome) const
{
    if (!outcome.wrong.isEmpty()) {
        return outcome.wrong;
    }
    const Ended resumed = run(role::resume, arena());
    if (resumed.signal != 0) {
        return u"la reprise s'arrête par le signal %1 : %2"_s.arg(QString::number(resumed.signal),
                                                                  resumed.messages);
    }
    if (resumed.status != 0) {
        return u"la reprise échoue : "_s + resumed.messages;
    }
    for (const QString& state : resumed.output.split(u'\n')) {
        const QString wrong = judgeState(state, outcome);
        if (!wrong.isEmpty()) {
            return wrong;
        }
    }
    return strayFiles();
}

QString Sweep::judgeState(const QString& state, const Outcome& outcome) const
{
    if (state == m_after) {
        return {};
    }
    if (state != m_before) {
        return u"ni comme avant, ni comme après"_s;
    }
    return outcome.success ? u"succès annoncé, mais rien n'est fait"_s : QString();
}

QString Sweep::strayFiles() const
{
    QStringList left;
    for (const QString& name : QDir(arena()).entryList(everything)) {
        if (!m_operation->filesAfterwards.contains(name)) {
            left << name;
        }
    }
    return left.isEmpty() ? QString() : u"fichiers oubliés : "_s + left.join(u", "_s);
}

std::vector<Call> Sweep::readJournal() const
{
    std::vector<Call> calls;
    for (const QByteArray& line : contents(m_folder + u"/journal"_s).split('\n')) {
        const QString text = QString::fromUtf8(line);
        if (!text.isEmpty()) {
            calls.push_back({text.section(u' ', 1, 1), text.section(u' ', 2)});
        }
    }
    return calls;
}

std::vector<Point> sample(const std::vector<Point>& points, int wanted)
{
    const auto size = static_cast<int>(points.size());
    if (wanted >= size || wanted < 2) {
        return points;
    }
    std::vector<Point> chosen;
    chosen.reserve(static_cast<size_t>(wanted));
    for (int i = 0; i < wanted; ++i) {
        chosen.push_back(
            points[static_cast<size_t>(static_cast<qint64>(i) * (size - 1) / (wanted - 1))]);
    }
    return chosen;
}

} // namespace faults
