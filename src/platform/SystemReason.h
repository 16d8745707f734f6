// Why the system refused something, in French.
#pragma once

#include <QString>

class QFileDevice;

namespace platform {

/// The reason behind a number of errno, to stand at the end of a sentence: without capital and full stop.
QString systemReason(int code);
/// Why a file could not be opened, read or written; `code` is errno right after that.
QString fileReason(const QFileDevice& file, int code);

} // namespace platform
