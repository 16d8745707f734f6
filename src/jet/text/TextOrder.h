// Comparison, order and uniqueness of text: case-blind, accents count, trailing blanks do not.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

namespace jet::text {

/// Version of the weights; stored in a file, whose text indexes are rebuilt when it differs.
inline constexpr int orderVersion = 1;

/// Sort key: bytes that compare (as memcmp) like the texts in the general sort order. Primary
/// weights, 01, accents, positions of hyphens and apostrophes; no level for case.
/// Equal texts ("abc", "ABC ", "abc ") have equal keys.
QByteArray key(QStringView text);

/// The primary weights alone, trailing blanks kept: every text that LIKE would match
/// with this prefix has a key in [prefixKey, prefixKeyEnd).
QByteArray prefixKey(QStringView prefix);
QByteArray prefixKeyEnd(QStringView prefix);

bool equal(QStringView a, QStringView b);
int compare(QStringView a, QStringView b); ///< <0, 0, >0

} // namespace jet::text
