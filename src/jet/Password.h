// The password of a file. It is a gate, not encryption: whoever reads the bytes of the file reads its data.
#pragma once

#include <QString>

namespace jet {

/// What the file keeps: rounds, salt and hash, in a text. A new salt each time.
QString hashedPassword(const QString& password);
/// Whether the password is the one that was hashed.
bool passwordMatches(const QString& password, const QString& hashed);

/// The parts of a locale string ";LANGID=0x0409;CP=1252;COUNTRY=0[;pwd=…]".
struct LocaleString {
    QString locale;   ///< Without the password.
    QString password; ///< Empty when there is none. It is the last part and may hold ";".
};

/// Takes it apart; 3424 (with the file's name) when it is not one.
LocaleString parseLocale(const QString& text, const QString& path);

} // namespace jet
