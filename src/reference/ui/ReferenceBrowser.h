// A reference list as a tab of the main window.
#pragma once

#include "platform/ui/DocumentTab.h"
#include "reference/ui/ReferenceControl.h"
#include "reference/ui/RowForm.h"

#include <QSplitter>
#include <QTimer>

namespace reference {

/// The tree or list at the left, the form of the selected row at the right. Another row is shown once the question about
/// what was typed is answered; the number of individuals is read a moment after the selection came to rest.
class ReferenceBrowser : public platform::DocumentTab {
    Q_OBJECT
public:
    /// The key of the tab of a list ("Taxons", "Localités", "Collecteurs").
    static QString keyOf(const QString& table);

    ~ReferenceBrowser() override;

    ReferenceControl& control() const { return *m_control; }
    RowForm& form() const { return *m_form; }
    bool showRow(qint32 id); ///< Selects a row (0: none) unless the user stays with what is typed.
    bool isSettled() const { return !m_counting.isActive(); } ///< Everything on the selected row is shown.

    QString key() const override;
    QString title() const override;
    QIcon icon() const override;
    QString statusText() const override;
    bool can(platform::TabCommand command) const override;
    void run(platform::TabCommand command) override;
    bool mayClose() override;
    void recordsWritten(const QStringList& modules) override;

protected:
    ReferenceBrowser(std::shared_ptr<ReferenceWorld> world, QWidget* parent);

    ReferenceWorld& world() const { return *m_world; }
    const std::shared_ptr<ReferenceWorld>& sharedWorld() const { return m_world; }
    /// Puts the parts together once the derived class has made its own.
    void arrange(ReferenceControl* control, QWidget* left, const QString& icon);
    /// Shows the form of a row that is there.
    virtual void showForm(qint32 id) = 0;
    virtual QString titleOf(qint32 id) const; ///< Above the form.
    /// The form of the row was written.
    virtual void noteSaved() {}
    qint32 shown() const { return m_shown; }
    QSplitter& splitter() const { return *m_splitter; }

private:
    void choose(qint32 id);
    void showCurrent();
    void refreshCount();
    void rowWritten(qint32 id);

    std::shared_ptr<ReferenceWorld> m_world;
    ReferenceControl* m_control = nullptr;
    RowForm* m_form;
    QSplitter* m_splitter;
    QIcon m_icon;
    QTimer m_counting;
    qint32 m_shown = 0;     ///< The row whose form is shown.
    bool m_staying = false; ///< The selection goes back to it.
};

} // namespace reference
