// Takes pictures of the windows, for the documents and for who has no screen.
#pragma once

#include <QPalette>
#include <QString>
#include <functional>

class QWidget;

namespace app {

class Program;

/// Every part of the program shows what it has by Desk::photograph.
class Photographer {
public:
    Photographer(Program& program, const QString& folder) : m_program(program), m_folder(folder) {}
    virtual ~Photographer() = default;

    Program& program() const { return m_program; }
    /// Lets the windows work until nothing runs, every row is known and `ready` (may be empty) agrees.
    void settle(const std::function<bool()>& ready = {});
    /// Writes a picture of the main window, or of another, as NAME.png (NAME-sombre.png in dark colours).
    void take(const QString& name);
    virtual void take(const QString& name, QWidget& window);
    /// Opens what a node of the module tree stands for, as by Return.
    void open(const QString& key);
    void setPalette(const QPalette& palette, const QString& suffix);
    bool allWritten() const { return m_written; }

private:
    Program& m_program;
    QString m_folder;
    QString m_suffix;
    bool m_written = true;
};

} // namespace app
