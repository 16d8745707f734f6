// Programs of this user that are already running.
#pragma once

#include <QLocalServer>
#include <QObject>
#include <functional>

namespace platform {

/// A second start with a file that is already open should bring that window to the front, not fail on its lock. Each
/// running program listens on a socket of its own in a folder; a start asks them all before it shows a window.
///
/// The question is one line of UTF-8: the path of the file, empty for none. The answer is "oui" or "non".
class RunningInstances : public QObject {
    Q_OBJECT
public:
    /// `folder` holds the sockets; it is made when it is not there, for this user alone.
    explicit RunningInstances(const QString& folder, QObject* parent = nullptr);
    ~RunningInstances() override;

    /// "herbora" in the user's folder for what lives as long as the session (XDG_RUNTIME_DIR).
    static QString defaultFolder();

    /// True when a running program took the file over. Sockets whose program is gone are cleared away.
    bool hand(const QString& file) const;
    /// From now on questions are answered by `take`: true when this program shows the file.
    void listen(std::function<bool(const QString& file)> take);

private:
    void answer();
    static QString asked(const QString& socket, const QString& file);

    QString m_folder;
    QLocalServer m_server;
    std::function<bool(const QString&)> m_take;
};

} // namespace platform
