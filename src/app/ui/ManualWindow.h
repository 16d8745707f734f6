// The manual, read inside the program.
#pragma once

#include <QMainWindow>
#include <QTextBrowser>

class QLineEdit;
class QListWidget;

namespace app {

class WindowState;

/// Shows the pages of a folder: Markdown files, in the order of their titles in "index.md". A window of its own, so that
/// one can read and work at the same time.
class ManualWindow : public QMainWindow {
    Q_OBJECT
public:
    /// The property by which a widget names the page that F1 opens ("requetes"); the nearest above the focus counts.
    static constexpr const char* pageProperty = "manuel";

    ManualWindow(const QString& folder, WindowState& state, QWidget* parent = nullptr);

    /// Comes to the front with a page (its file name without ".md"); the contents when there is no such page.
    void showPage(const QString& page);
    QString page() const;
    QTextBrowser& browser() { return *m_browser; }
    /// The page for the widget that has the focus: "index" when none above it names one.
    static QString pageFor(const QWidget* widget);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void makeToolBar();
    void fillContents();
    void openLink(const QUrl& link);
    void find(bool backward);

    QString m_folder;
    WindowState& m_state;
    QListWidget* m_contents;
    QTextBrowser* m_browser;
    QLineEdit* m_find;
};

} // namespace app
