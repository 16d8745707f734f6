// Looks a window over for what keeps somebody from working without a mouse, with large letters or with a reader.
#pragma once

#include <QMenu>
#include <QSet>
#include <QString>
#include <QWidget>

namespace support {

/// Collects what is wrong, one line a fault: check, window, widget.
class Inspection {
public:
    /// Names, mnemonics, shortcuts, tool buttons, contrast and texts that are cut.
    void inspect(QWidget& window);
    /// Presses Tab until the focus comes round: every widget that takes it must have had it. Puts the focus back.
    void walkByTab(QWidget& window);
    /// No two entries of a menu that is open have one letter.
    void inspectMenu(const QMenu& menu, const QString& where);

    QString faults() const;
    int windows() const { return m_windows; }

private:
    void checkNames(const QWidget& window);
    void checkMnemonics(const QWidget& window);
    void checkShortcuts(const QWidget& window);
    void checkToolButtons(const QWidget& window);
    void checkCutTexts(const QWidget& window);
    void checkContrast(const QWidget& window);
    void checkTraps(const QWidget& window);
    void checkDialog(const QWidget& window);
    void fault(const QString& check, const QString& what);

    QString m_where;
    QSet<QString> m_faults;
    int m_windows = 0;
};

} // namespace support
