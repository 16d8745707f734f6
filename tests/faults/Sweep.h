// Plays operations with a fault at a given call, and judges what is left.
#pragma once

#include "Operation.h"
#include "Process.h"

#include <QString>
#include <QStringList>
#include <vector>

namespace faults {

/// The ways in which a call can fail, by the names that libherbora_faults.so knows.
QStringList modes();

/// One call of the operation, as the library noted it.
struct Call {
    QString name;
    QString path;

    /// Whether it writes bytes, so that it can be done by half.
    bool writes() const;
};

struct Point {
    QString mode;
    int call = 0; ///< From 1.
};

struct Fault {
    Point point;
    QString text; ///< In French: what is wrong.
};

/// What a driver process can be asked to do with one operation and one folder; its first argument.
namespace role {
inline const QString prepare = QStringLiteral("--preparer"); ///< Makes the folder ready.
inline const QString play =
    QStringLiteral("--jouer"); ///< Exit status 0 when it reported success, 1 failure.
inline const QString state = QStringLiteral("--etat"); ///< Prints the state.
/// Prints the state, makes the next start, prints the state again.
inline const QString resume = QStringLiteral("--reprendre");
} // namespace role

/// The trial of one operation. Each step runs in a process of its own, so that what one leaves in
/// memory (or a crash) reaches no other. Not thread-safe: a worker has its own.
class Sweep {
public:
    /// `folder` is a scratch folder of this sweep alone, canonical.
    Sweep(const Operation& operation, QString folder, QString driver, QString library);
    /// A sweep that shares what `rehearse` found, with a scratch folder of its own.
    Sweep worker(const QString& folder) const;

    /// Prepares the folder, plays the operation once without faults and notes its calls. Gives what
    /// is wrong already then.
    QStringList rehearse();
    const std::vector<Call>& calls() const { return m_calls; }
    /// All points, by modes and then by calls; short and torn writes at writing calls only.
    std::vector<Point> points() const;

    /// Plays the operation with one fault; empty when everything is as it should be.
    QString trial(const Point& point);

private:
    struct Outcome {
        bool killed = false;  ///< By the library, as asked.
        bool success = false; ///< The operation reported success.
        QString wrong;        ///< It ended in a way that it never should.
    };

    QString arena() const { return m_folder + QStringLiteral("/arene"); }
    void reset() const;
    Ended run(const QString& role, const QString& folder,
              const QByteArrayList& variables = {}) const;
    QString stateOf(const QString& folder) const;
    Outcome play(const Point& point) const;
    QString judge(const Outcome& outcome) const;
    QString judgeState(const QString& state, const Outcome& outcome) const;
    QString strayFiles() const;
    std::vector<Call> readJournal() const;

    const Operation* m_operation;
    QString m_folder;
    QString m_driver;
    QString m_library;
    QString m_prepared; ///< The folder as it is before each trial.
    QString m_before;
    QString m_after;
    std::vector<Call> m_calls;
};

/// `wanted` of the points, evenly spread, first and last among them.
std::vector<Point> sample(const std::vector<Point>& points, int wanted);

} // namespace faults
