// What a list without rows says.
#pragma once

#include <QAbstractItemView>
#include <QLabel>

namespace platform {

/// Stands in the middle of a view as long as its model, which must be set, has no row; goes with the view.
class EmptyHint : public QLabel {
    Q_OBJECT
public:
    EmptyHint(const QString& text, QAbstractItemView& view);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void refresh();

    QAbstractItemView& m_view;
};

} // namespace platform
