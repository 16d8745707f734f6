// A large button of the start page: a picture, a title, a line of explanation.
#pragma once

#include <QAbstractButton>

namespace app {

/// Follows the font and the palette of the program. Its accessible texts are the title and the explanation.
class ChoiceButton : public QAbstractButton {
    Q_OBJECT
public:
    ChoiceButton(const QIcon& icon, const QString& title, const QString& description, QWidget* parent = nullptr);

    /// The line under the title.
    void setDescription(const QString& description);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    QFont titleFont() const;
    int textLeft() const;

    QString m_description;
};

} // namespace app
