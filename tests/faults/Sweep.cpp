#include "Sweep.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace faults {

using namespace Qt::StringLiterals;

namespace {

void copyFolder(const QString& source, const QString& target)
{
    QDir().mkpath(target);
    const QDir::Filters all = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    for (const QFileInfo& entry : QDir(source).entryInfoList(all)) {
        const QString destination = target + u'/' + entry.fileName();
        if (entry.isDir()) {
            copyFolder(entry.filePath(), destination);
        } else if (!QFile::copy(entry.filePath(), destination)) {
            throw std::runtime_error((u"copie impossible : "_s + destination).toUtf8().constData());
        }
    }
}

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The environment of this process with the orders for the library before it.
std::vector<QByteArray> environment(const QByteArrayList& orders)
{
    std::vector<QByteArray> all(orders.begin(), orders.end());
    for (char** entry = environ; *entry; ++entry) {
        if (std::strncmp(*entry, "LD_PRELOAD=", 11) != 0 &&
            std::strncmp(*entry, "HERBORA_FAULTS_", 15) != 0) {
            all.emplace_back(*entry);
        }
    }
    return all;
}

std::vector<char*> pointers(std::vector<QByteArray>& texts)
{
    std::vector<char*> result;
    result.reserve(texts.size() + 1);
    for (QByteArray& text : texts) {
        result.push_back(text.data());
    }
    result.push_back(nullptr);
    return result;
}

/// Runs a program to its end with nothing on its standard input and both outputs in one file.
/// Gives the status of waitpid.
int runToEnd(std::vector<QByteArray> arguments, std::vector<QByteArray> variables,
             const QByteArray& output)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, output.constData(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0600);
    posix_spawn_file_actions_adddup2(&actions, 1, 2);
    pid_t child = 0;
    const auto argv = pointers(arguments);
    const auto envp = pointers(variables);
    const int error = posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), envp.data());
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        throw std::runtime_error(std::strerror(error));
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
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
    : m_operation(operation), m_folder(std::move(folder)), m_driver(std::move(driver)),
      m_library(std::move(library))
{
    QDir().mkpath(m_folder);
}

QStringList Sweep::rehearse()
{
    const QString before = m_folder + u"/avant"_s;
    QDir().mkpath(before);
    m_operation.prepare(before);
    reset();
    m_before = m_operation.state(arena());

    reset();
    const Outcome outcome = play({u"count"_s, 0});
    m_calls = readJournal();
    QStringList wrong;
    if (!outcome.success) {
        wrong << u"sans aucune panne, l'opération échoue : "_s + outcome.crash + outcome.message;
        return wrong;
    }
    m_after = m_operation.state(arena());
    wrong << judge(outcome);
    for (const Call& call : m_calls) {
        if (m_operation.untouched.contains(QFileInfo(call.path).fileName())) {
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
    copyFolder(m_folder + u"/avant"_s, arena());
    QFile::remove(m_folder + u"/journal"_s);
}

Sweep::Outcome Sweep::play(const Point& point) const
{
    const QString output = m_folder + u"/sortie"_s;
    const QByteArrayList orders{
        "LD_PRELOAD=" + m_library.toUtf8(),
        "HERBORA_FAULTS_FOLDER=" + arena().toUtf8(),
        "HERBORA_FAULTS_AT=" + QByteArray::number(point.call),
        "HERBORA_FAULTS_MODE=" + point.mode.toUtf8(),
        "HERBORA_FAULTS_JOURNAL=" + (m_folder + u"/journal"_s).toUtf8(),
    };
    const int status =
        runToEnd({m_driver.toUtf8(), "--jouer", m_operation.name.toUtf8(), arena().toUtf8()},
                 environment(orders), output.toUtf8());
    Outcome outcome;
    outcome.message = QString::fromUtf8(contents(output)).trimmed();
    if (WIFSIGNALED(status)) {
        const bool asked = point.mode == u"kill"_s || point.mode == u"torn"_s;
        outcome.killed = asked && WTERMSIG(status) == SIGKILL;
        if (!outcome.killed) {
            outcome.crash = u"arrêt par le signal %1 ; "_s.arg(WTERMSIG(status));
        }
    } else if (WEXITSTATUS(status) == 0) {
        outcome.success = true;
    } else if (WEXITSTATUS(status) != 1) {
        outcome.crash = u"fin avec le code %1 ; "_s.arg(WEXITSTATUS(status));
    }
    return outcome;
}

QString Sweep::judge(const Outcome& outcome) const
{
    if (!outcome.crash.isEmpty()) {
        return outcome.crash + outcome.message;
    }
    if (!outcome.killed && !outcome.success && outcome.message.isEmpty()) {
        return u"échec sans message"_s;
    }
    try {
        QString wrong = judgeState(outcome);
        if (wrong.isEmpty()) {
            m_operation.nextStart(arena());
            wrong = judgeState(outcome);
        }
        return wrong.isEmpty() ? strayFiles() : wrong;
    } catch (const std::exception& error) {
        return QString::fromUtf8(error.what());
    }
}

QString Sweep::judgeState(const Outcome& outcome) const
{
    const QString now = m_operation.state(arena());
    if (now == m_after) {
        return {};
    }
    if (now != m_before) {
        return u"ni comme avant, ni comme après"_s;
    }
    return outcome.success ? u"succès annoncé, mais rien n'est fait"_s : QString();
}

QString Sweep::strayFiles() const
{
    const QDir::Filters all = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    QStringList left;
    for (const QString& name : QDir(arena()).entryList(all)) {
        if (!m_operation.filesAfterwards.contains(name)) {
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
