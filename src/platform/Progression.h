// Progress of a long operation, and the wish to stop it.
#pragma once

#include <QString>

namespace platform {

/// Told by the operation; shown by a progress bar, printed, or recorded by a test.
class Progression {
public:
    virtual ~Progression() = default;
    /// A step begins: its text, and how much of the whole is done (0 to 100).
    virtual void step(const QString& text, int percent) = 0;
    /// The operation ended, well or not: the bar goes away.
    virtual void finish() {}
    /// The user wants to stop. Asked where stopping is safe.
    virtual bool cancelled() const { return false; }
};

/// Shows nothing.
class NoProgression : public Progression {
public:
    void step(const QString&, int) override {}
};

} // namespace platform
