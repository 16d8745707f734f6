#include "platform/ui/RunningInstances.h"

#include <QCoreApplication>
#include <QDir>
#include <QLocalSocket>
#include <QLoggingCategory>
#include <QStandardPaths>

namespace platform {

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(instancesLog, "herbora.instances")

/// A program that works hard answers late; a start cannot wait for it long.
constexpr int patienceMilliseconds = 1500;
const QString yes = u"oui"_s;
const QString suffix = u".socket"_s;

} // namespace

RunningInstances::RunningInstances(const QString& folder, QObject* parent)
    : QObject(parent), m_folder(folder), m_server(this)
{
    connect(&m_server, &QLocalServer::newConnection, this, &RunningInstances::answer);
}

RunningInstances::~RunningInstances() = default;

QString RunningInstances::defaultFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + u"/herbora"_s;
}

QString RunningInstances::asked(const QString& socket, const QString& file)
{
    QLocalSocket connection;
    connection.connectToServer(socket);
    if (!connection.waitForConnected(patienceMilliseconds))
        return {};
    connection.write(file.toUtf8() + '\n');
    while (!connection.canReadLine()) {
        if (!connection.waitForReadyRead(patienceMilliseconds))
            return u"?"_s; // alive, and busy
    }
    return QString::fromUtf8(connection.readLine()).trimmed();
}

bool RunningInstances::hand(const QString& file) const
{
    // Sockets are no plain files for a listing.
    const QFileInfoList sockets = QDir(m_folder).entryInfoList({u"*"_s + suffix}, QDir::System | QDir::Files);
    for (const QFileInfo& socket : sockets) {
        const QString reply = asked(socket.absoluteFilePath(), file);
        if (reply == yes)
            return true;
        if (reply.isEmpty())
            QLocalServer::removeServer(socket.absoluteFilePath());
    }
    return false;
}

void RunningInstances::listen(std::function<bool(const QString&)> take)
{
    m_take = std::move(take);
    QDir().mkpath(m_folder);
    QFile::setPermissions(m_folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    const QString name = m_folder + u'/' + QString::number(QCoreApplication::applicationPid()) + suffix;
    QLocalServer::removeServer(name);
    if (!m_server.listen(name))
        qCWarning(instancesLog).noquote() << name << m_server.errorString();
}

void RunningInstances::answer()
{
    while (QLocalSocket* connection = m_server.nextPendingConnection()) {
        connect(connection, &QLocalSocket::disconnected, connection, &QObject::deleteLater);
        connect(connection, &QLocalSocket::readyRead, this, [this, connection] {
            if (!connection->canReadLine())
                return;
            const QString file = QString::fromUtf8(connection->readLine()).chopped(1);
            const bool taken = m_take && m_take(file);
            connection->write(taken ? "oui\n" : "non\n");
            connection->disconnectFromServer();
        });
    }
}

} // namespace platform
