#include "platform/ui/EmptyHint.h"

#include <QEvent>

namespace platform {

using namespace Qt::StringLiterals;

EmptyHint::EmptyHint(const QString& text, QAbstractItemView& view) : QLabel(text, view.viewport()), m_view(view)
{
    setObjectName(u"listeVide"_s);
    setTextFormat(Qt::PlainText);
    setAlignment(Qt::AlignCenter);
    setWordWrap(true);
    setMargin(16);
    setForegroundRole(QPalette::PlaceholderText);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    view.viewport()->installEventFilter(this);
    const QAbstractItemModel* model = view.model();
    connect(model, &QAbstractItemModel::modelReset, this, &EmptyHint::refresh);
    connect(model, &QAbstractItemModel::rowsInserted, this, &EmptyHint::refresh);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &EmptyHint::refresh);
    refresh();
}

void EmptyHint::refresh()
{
    setGeometry(m_view.viewport()->rect());
    setVisible(m_view.model()->rowCount() == 0);
}

bool EmptyHint::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        setGeometry(m_view.viewport()->rect());
    return QLabel::eventFilter(watched, event);
}

} // namespace platform
