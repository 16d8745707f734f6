// The time of day, injected so that tests can stop it.
#pragma once

#include <QDateTime>
#include <QString>

namespace platform {

class Clock {
public:
    virtual ~Clock() = default;
    virtual QDateTime now() const = 0; ///< Local time.
};

class SystemClock : public Clock {
public:
    QDateTime now() const override { return QDateTime::currentDateTime(); }
};

/// A time stamp as records keep it: "yyyy/mm/dd", a blank, "hh:mm:ss", so that text order
/// is time order.
QString stamp(const QDateTime& time);
inline QString stamp(const Clock& clock) { return stamp(clock.now()); }

} // namespace platform
