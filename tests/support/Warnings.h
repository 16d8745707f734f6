// Warnings of a test: those that nobody announced fail it.
#pragma once

#include <QString>

namespace support {

/// One warning (or worse) that holds `piece` is to come before the test ends; it fails the test neither by
/// coming nor by its place.
void expectWarning(const QString& piece);

} // namespace support
