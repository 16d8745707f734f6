// Which program opens the project files of the desktop.
#pragma once

#include <QString>
#include <memory>

namespace platform {

/// The association of ".hbx" with this program.
class FileAssociation {
public:
    virtual ~FileAssociation() = default;
    /// The program that opens project files now, without arguments and quotes; empty for none.
    virtual QString openCommand() const = 0;
    /// Makes `executable` that program, with document type, description and icon. False when refused.
    virtual bool write(const QString& executable) = 0;
};

/// The user's XDG folders: a desktop entry, a MIME type and the default application. `home` stands for the
/// data and configuration folders; empty for the user's own.
std::unique_ptr<FileAssociation> desktopFileAssociation(const QString& dataHome = {},
                                                        const QString& configHome = {});

} // namespace platform
