#include "Process.h"

#include <QFile>
#include <cerrno>
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

QByteArrayList environment(const QByteArrayList& variables)
{
    QByteArrayList all = variables;
    for (char** entry = environ; *entry; ++entry) {
        if (std::strncmp(*entry, "LD_PRELOAD=", 11) != 0 &&
            std::strncmp(*entry, "HERBORA_FAULTS_", 15) != 0) {
            all << *entry;
        }
    }
    return all;
}

std::vector<char*> pointers(QByteArrayList& texts)
{
    std::vector<char*> result;
    result.reserve(static_cast<size_t>(texts.size()) + 1);
    for (QByteArray& text : texts) {
        result.push_back(text.data());
    }
    result.push_back(nullptr);
    return result;
}

pid_t start(QByteArrayList arguments, QByteArrayList variables, const QByteArray& output,
            const QByteArray& messages)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    constexpr int fresh = O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, output.constData(), fresh, 0600);
    posix_spawn_file_actions_addopen(&actions, 2, messages.constData(), fresh, 0600);
    const auto argv = pointers(arguments);
    const auto envp = pointers(variables);
    pid_t child = 0;
    const int error = posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), envp.data());
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        throw std::runtime_error(std::strerror(error));
    }
    return child;
}

} // namespace

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

Ended runToEnd(const QByteArrayList& arguments, const QByteArrayList& variables,
               const QString& scratch)
{
    const QString output = scratch + u".sortie"_s;
    const QString messages = scratch + u".messages"_s;
    const pid_t child =
        start(arguments, environment(variables), output.toUtf8(), messages.toUtf8());
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    Ended ended;
    ended.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    ended.status = WIFEXITED(status) ? WEXITSTATUS(status) : 0;
    ended.output = QString::fromUtf8(contents(output)).trimmed();
    ended.messages = QString::fromUtf8(contents(messages)).trimmed();
    return ended;
}

} // namespace faults
