// Small files written whole or not at all.
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

namespace platform {

/// Puts the bytes in the place of the file (or of none): complete and flushed to the disk, or not at all. A symbolic
/// link stays one. Gives an empty text, or why it failed.
///
/// QSaveFile is not used: it does not see that the disk refused what its buffer held (it reports success over an empty
/// file), and a killed process leaves files of any name behind.
[[nodiscard]] QString replaceFile(const QString& path, const QByteArray& bytes);

/// The same for what is too long to be held at once: pieces are written beside the file, which is replaced at the end. Without
/// commit() the file stays as it was.
class FileReplacement {
public:
    explicit FileReplacement(const QString& path);
    ~FileReplacement();
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    // Each gives an empty text, or why it failed; after a failure nothing more is written.
    [[nodiscard]] QString open();
    [[nodiscard]] QString write(const QByteArray& piece);
    [[nodiscard]] QString commit();

private:
    QString m_target;
    QFile m_out;
};

/// Removes what processes that are no more left half written beside the file.
void removeUnfinished(const QString& path);

} // namespace platform
