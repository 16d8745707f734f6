// The one exception type of the engine.
#pragma once

#include <QString>
#include <exception>

namespace jet {

/// A failure of the engine, with the number that callers test and the French
/// sentence that users read.
///
/// `number` is the DAO error number (3022 duplicate key, 3078 unknown table,
/// 3061 missing parameters …); it is the contract. `description` says in French
/// what happened, to what, and what to do. `source` names the operation or the
/// statement concerned; it may be empty.
class Error : public std::exception {
public:
    Error(int number, QString description, QString source = {});

    int number() const { return m_number; }
    const QString& description() const { return m_description; }
    const QString& source() const { return m_source; }
    const char* what() const noexcept override { return m_what.constData(); }

private:
    int m_number;
    QString m_description;
    QString m_source;
    QByteArray m_what;
};

/// The French description of an error number, "%1", "%2" replaced by the
/// arguments. An unknown number gives a general sentence that holds the number.
QString describe(int number, const QString& first = {}, const QString& second = {});

/// Throws Error(number, describe(number, first, second)).
[[noreturn]] void fail(int number, const QString& first = {}, const QString& second = {});

} // namespace jet
