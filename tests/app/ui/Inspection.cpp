#include "Inspection.h"

#include "platform/ui/Readable.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QButtonGroup>
#include <QComboBox>
#include <QDialog>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QMainWindow>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QShortcut>
#include <QTabBar>
#include <QTableView>
#include <QTest>
#include <QTextBrowser>
#include <QTextEdit>
#include <QToolBar>
#include <QToolButton>
#include <algorithm>

namespace support {

using namespace Qt::StringLiterals;

namespace {

constexpr int mostTabs = 600;
constexpr int rowsLookedAt = 30;
constexpr int columnsLookedAt = 12;

/// Enough to find a widget in the sources.
QString nameOf(const QWidget& widget)
{
    QStringList names;
    for (const QWidget* at = &widget; at && !at->isWindow() && names.size() < 3; at = at->parentWidget()) {
        if (at == &widget || !at->objectName().isEmpty())
            names.prepend(QString::fromLatin1(at->metaObject()->className()) + u'#' + at->objectName());
    }
    return names.join(u'/');
}

/// The widgets that a user sees in the window itself.
template <typename Widget> QList<Widget*> shownIn(const QWidget& window)
{
    QList<Widget*> found;
    const QList<Widget*> all = window.findChildren<Widget*>();
    for (Widget* widget : all) {
        if (widget->isVisibleTo(&window) && widget->window() == &window)
            found << widget;
    }
    return found;
}

/// Parts of Qt's own controls: the control has the name.
bool isPart(const QWidget& widget)
{
    const QWidget* parent = widget.parentWidget();
    return widget.objectName().startsWith(u"qt_"_s) || qobject_cast<const QScrollBar*>(&widget)
           || qobject_cast<const QAbstractSpinBox*>(parent) || qobject_cast<const QComboBox*>(parent)
           || qobject_cast<const QTabBar*>(parent) || qobject_cast<const QLineEdit*>(parent);
}

QString accessibleText(const QWidget& widget, QAccessible::Text kind)
{
    QAccessibleInterface* face = QAccessible::queryAccessibleInterface(const_cast<QWidget*>(&widget));
    return face ? face->text(kind).trimmed() : QString();
}

/// Its own, or the text of the label before it.
QString nameOfBox(const QWidget& box)
{
    if (!box.accessibleName().isEmpty())
        return box.accessibleName();
    const QList<QLabel*> labels = box.window()->findChildren<QLabel*>();
    for (const QLabel* label : labels) {
        if (label->buddy() == &box)
            return label->text();
    }
    return {};
}

QChar letterOf(const QString& text)
{
    const QKeySequence keys = QKeySequence::mnemonic(text);
    return keys.isEmpty() ? QChar() : QChar(keys[0].key()).toUpper();
}

/// The widgets whose shortcuts an action is among: those that it was added to, and those of the menus above it.
void collectHomes(const QAction& action, QSet<const QWidget*>& homes)
{
    for (const QObject* object : action.associatedObjects()) {
        if (auto* menu = qobject_cast<const QMenu*>(object)) {
            if (const QAction* entry = menu->menuAction(); entry != &action)
                collectHomes(*entry, homes);
        } else if (auto* widget = qobject_cast<const QWidget*>(object)) {
            homes.insert(widget);
        }
    }
}

/// Where keys reach a command: nullptr as the whole window.
struct Reach {
    QString name;
    const QWidget* within;
    bool withChildren;
};

/// True for what keeps a key from the menus.
bool takesItself(const QWidget* widget, const QKeySequence& keys)
{
    if (!widget)
        return false;
    QKeyEvent event(QEvent::ShortcutOverride, keys[0].key(), keys[0].keyboardModifiers());
    event.ignore();
    QCoreApplication::sendEvent(const_cast<QWidget*>(widget), &event);
    return event.isAccepted();
}

/// The next field stands left of one in the same line, or above it.
bool goesBack(const QWidget& from, const QWidget& to, const QWidget& window)
{
    const QRect a(from.mapTo(&window, QPoint()), from.size());
    const QRect b(to.mapTo(&window, QPoint()), to.size());
    const int common = std::min(a.bottom(), b.bottom()) - std::max(a.top(), b.top());
    const bool sameLine = common * 2 > std::min(a.height(), b.height());
    const bool sameColumn = std::min(a.right(), b.right()) > std::max(a.left(), b.left());
    return sameLine ? b.right() <= a.left() : sameColumn && b.bottom() <= a.top();
}

bool meet(const Reach& a, const Reach& b)
{
    if (!a.within || !b.within || a.within == b.within)
        return true;
    return (a.withChildren && a.within->isAncestorOf(b.within)) || (b.withChildren && b.within->isAncestorOf(a.within));
}

std::optional<Reach> reachOf(const QAction& action, const QWidget& window)
{
    QSet<const QWidget*> homes;
    collectHomes(action, homes);
    for (const QWidget* home : homes) {
        if (home->window() != &window || !(home == &window || home->isVisibleTo(&window)))
            continue;
        if (action.shortcutContext() == Qt::WidgetShortcut && home->focusPolicy() == Qt::NoFocus)
            continue; // a bar never has the focus itself
        if (action.shortcutContext() == Qt::WindowShortcut || action.shortcutContext() == Qt::ApplicationShortcut)
            return Reach{action.objectName() + u':' + action.text(), nullptr, true};
        return Reach{action.objectName() + u':' + action.text(), home,
                     action.shortcutContext() == Qt::WidgetWithChildrenShortcut};
    }
    return {};
}

} // namespace

void Inspection::inspect(QWidget& window)
{
    ++m_windows;
    m_where = QString::fromLatin1(window.metaObject()->className()) + u' ' + window.windowTitle();
    checkNames(window);
    checkMnemonics(window);
    checkShortcuts(window);
    checkToolButtons(window);
    checkCutTexts(window);
    checkContrast(window);
    checkTraps(window);
    checkDialog(window);
}

void Inspection::fault(const QString& check, const QString& what)
{
    m_faults.insert(check + u" | "_s + m_where + u" | "_s + what);
}

QString Inspection::faults() const
{
    QStringList lines(m_faults.begin(), m_faults.end());
    lines.sort();
    return lines.join(u'\n');
}

void Inspection::checkNames(const QWidget& window)
{
    if (window.windowTitle().isEmpty())
        fault(u"titre"_s, nameOf(window));
    QHash<QString, const QWidget*> known;
    const QList<QWidget*> all = shownIn<QWidget>(window);
    for (const QWidget* widget : all) {
        const bool button = qobject_cast<const QToolButton*>(widget);
        if ((widget->focusPolicy() == Qt::NoFocus && !button) || widget->focusProxy() || isPart(*widget))
            continue;
        const bool box = qobject_cast<const QComboBox*>(widget); // whose name would be what it shows
        const QString name = box ? nameOfBox(*widget) : accessibleText(*widget, QAccessible::Name);
        if (name.isEmpty())
            fault(u"nom"_s, nameOf(*widget));
        const bool field = qobject_cast<const QLineEdit*>(widget) || qobject_cast<const QComboBox*>(widget);
        if (field && !name.isEmpty() && known.contains(name) && known.value(name)->parent() == widget->parent())
            fault(u"nom double"_s, name + u' ' + nameOf(*widget));
        known.insert(name, widget);
    }
}

void Inspection::inspectMenu(const QMenu& menu, const QString& where)
{
    m_where = where;
    QHash<QChar, QString> letters;
    const QList<QAction*> all = menu.actions();
    for (const QAction* action : all) {
        const QChar letter = letterOf(action->text());
        if (!action->isVisible())
            continue;
        if (letter.isNull() && !action->isSeparator() && menu.objectName() != u"menuRecents" && !menu.title().isEmpty())
            fault(u"sans lettre"_s, menu.objectName() + menu.title() + u" : "_s + action->text());
        if (letter.isNull())
            continue;
        if (letters.contains(letter))
            fault(u"lettre"_s, menu.title() + u" : "_s + letters.value(letter) + u" = "_s + action->text());
        letters.insert(letter, action->text());
    }
}

void Inspection::checkMnemonics(const QWidget& window)
{
    const QList<QMenu*> menus = window.findChildren<QMenu*>();
    for (const QMenu* menu : menus)
        inspectMenu(*menu, m_where);
    QHash<QChar, QString> letters;
    const auto note = [&](const QString& text) {
        const QChar letter = letterOf(text);
        if (letter.isNull())
            return;
        if (letters.contains(letter) && letters.value(letter) != text)
            fault(u"lettre"_s, letters.value(letter) + u" = "_s + text);
        letters.insert(letter, text);
    };
    for (const QMenuBar* bar : shownIn<QMenuBar>(window)) {
        for (const QAction* action : bar->actions())
            note(action->text());
    }
    for (const QAbstractButton* button : shownIn<QAbstractButton>(window)) {
        if (button->isEnabled() && !(qobject_cast<const QToolButton*>(button) && button->toolTip().isNull()))
            note(QKeySequence::mnemonic(button->text()) == button->shortcut() ? button->text() : QString());
    }
    for (const QLabel* label : shownIn<QLabel>(window)) {
        if (label->buddy())
            note(label->text());
    }
    for (const QTabBar* bar : shownIn<QTabBar>(window)) {
        for (int tab = 0; tab < bar->count(); ++tab)
            note(bar->tabText(tab));
    }
}

void Inspection::checkShortcuts(const QWidget& window)
{
    QHash<QKeySequence, QList<Reach>> taken;
    const auto take = [&](const QKeySequence& keys, const Reach& reach) {
        for (const Reach& other : std::as_const(taken[keys])) {
            if (meet(other, reach))
                fault(u"raccourci"_s, keys.toString() + u" : "_s + other.name + u" = "_s + reach.name);
        }
        taken[keys] << reach;
    };
    const QList<QAction*> actions = window.findChildren<QAction*>();
    for (const QAction* action : actions) {
        const std::optional<Reach> reach = action->isEnabled() && action->isVisible() ? reachOf(*action, window)
                                                                                     : std::nullopt;
        for (const QKeySequence& keys : action->shortcuts()) {
            if (reach && !keys.isEmpty() && !takesItself(reach->within, keys))
                take(keys, *reach);
        }
    }
    const QList<QShortcut*> shortcuts = window.findChildren<QShortcut*>();
    for (const QShortcut* shortcut : shortcuts) {
        const auto* home = qobject_cast<const QWidget*>(shortcut->parent());
        if (!home || !shortcut->isEnabled() || !home->isVisibleTo(&window))
            continue;
        const bool whole = shortcut->context() == Qt::WindowShortcut || shortcut->context() == Qt::ApplicationShortcut;
        take(shortcut->key(), {nameOf(*home), whole ? nullptr : home,
                               shortcut->context() == Qt::WidgetWithChildrenShortcut});
    }
}

void Inspection::checkToolButtons(const QWidget& window)
{
    for (const QToolButton* button : shownIn<QToolButton>(window)) {
        const bool saysItsKey = button->toolTip().endsWith(u')');
        if (button->focusPolicy() & Qt::TabFocus || saysItsKey || isPart(*button)
            || button->parentWidget()->inherits("QDockWidget"))
            continue;
        const QAction* action = button->defaultAction();
        const auto inMenu = [](const QAction* wanted) {
            const QList<QObject*> homes = wanted->associatedObjects();
            return std::any_of(homes.begin(), homes.end(), [](QObject* home) {
                auto* widget = qobject_cast<QWidget*>(home);
                return qobject_cast<QMenu*>(home) || (widget && widget->contextMenuPolicy() == Qt::ActionsContextMenu);
            });
        };
        if (!action || (!action->menu() && action->shortcut().isEmpty() && !inMenu(action)))
            fault(u"souris seule"_s, nameOf(*button) + u' ' + button->text() + button->toolTip());
    }
}

void Inspection::checkCutTexts(const QWidget& window)
{
    constexpr int slack = 2;
    for (const QLabel* label : shownIn<QLabel>(window)) {
        if (label->text().isEmpty() || label->sizePolicy().horizontalPolicy() == QSizePolicy::Ignored)
            continue;
        const bool tooNarrow = !label->wordWrap() && label->width() + slack < label->sizeHint().width();
        const int height = label->wordWrap() ? label->heightForWidth(label->width()) : label->sizeHint().height();
        if (tooNarrow || label->height() + slack < height)
            fault(u"coupé"_s, nameOf(*label) + u' ' + label->text().left(50));
    }
    for (const QAbstractButton* button : shownIn<QAbstractButton>(window)) {
        const int needed = button->sizeHint().width();
        auto* tool = qobject_cast<const QToolButton*>(button);
        if (!button->text().isEmpty() && !isPart(*button) && !(tool && tool->toolButtonStyle() == Qt::ToolButtonIconOnly)
            && (button->width() + slack < needed || button->height() + slack < button->fontMetrics().height()))
            fault(u"coupé"_s, nameOf(*button) + u' ' + button->text());
    }
    for (const QLineEdit* line : shownIn<QLineEdit>(window)) {
        if (line->height() < line->fontMetrics().height() && !qobject_cast<QAbstractItemView*>(line->parentWidget()->parentWidget()))
            fault(u"coupé"_s, nameOf(*line));
    }
}

void Inspection::checkContrast(const QWidget& window)
{
    const auto check = [this](const QColor& text, const QColor& ground, const QString& what) {
        const double found = platform::contrast(text, ground);
        if (found < platform::leastContrast)
            fault(u"contraste"_s, u"%1 %2 sur %3, %4"_s.arg(what, text.name(), ground.name(),
                                                            QString::number(found, 'f', 1)));
    };
    for (const QLabel* label : shownIn<QLabel>(window)) {
        if (label->text().isEmpty())
            continue;
        const QPalette& palette = label->palette();
        check(palette.color(label->foregroundRole()), palette.color(label->backgroundRole()), nameOf(*label));
        if (label->text().contains(u"<a "_s))
            check(palette.color(QPalette::Link), palette.color(label->backgroundRole()), nameOf(*label) + u" lien"_s);
    }
    for (const QLineEdit* line : shownIn<QLineEdit>(window)) {
        if (line->isEnabled() && !line->placeholderText().isEmpty())
            check(line->palette().color(QPalette::PlaceholderText), line->palette().color(QPalette::Base), nameOf(*line));
        check(line->palette().color(QPalette::Text), line->palette().color(QPalette::Base), nameOf(*line));
    }
    for (const QAbstractButton* button : shownIn<QAbstractButton>(window)) {
        if (!button->text().isEmpty())
            check(button->palette().color(QPalette::ButtonText), button->palette().color(QPalette::Button), nameOf(*button));
    }
    for (const QAbstractItemView* view : shownIn<QAbstractItemView>(window)) {
        const QAbstractItemModel* model = view->model();
        if (!model || !view->isEnabled() || qobject_cast<const QHeaderView*>(view))
            continue;
        QModelIndex root = view->rootIndex();
        for (int row = 0; row < std::min(rowsLookedAt, model->rowCount(root)); ++row) {
            for (int column = 0; column < std::min(columnsLookedAt, model->columnCount(root)); ++column) {
                const QModelIndex index = model->index(row, column, root);
                const QVariant text = index.data(Qt::ForegroundRole);
                const QVariant ground = index.data(Qt::BackgroundRole);
                const QPalette& palette = view->palette();
                check(text.isValid() ? qvariant_cast<QBrush>(text).color() : palette.color(QPalette::Text),
                      ground.isValid() ? qvariant_cast<QBrush>(ground).color() : palette.color(QPalette::Base),
                      nameOf(*view) + u' ' + index.data().toString().left(20));
            }
        }
    }
}

/// Where Tab goes in and does not come out.
void Inspection::checkTraps(const QWidget& window)
{
    for (const QAbstractItemView* view : shownIn<QAbstractItemView>(window)) {
        if (view->tabKeyNavigation() && view->focusPolicy() != Qt::NoFocus)
            fault(u"piège"_s, nameOf(*view));
    }
    for (const QTextEdit* text : shownIn<QTextEdit>(window)) {
        if (!text->isReadOnly() && !text->tabChangesFocus())
            fault(u"piège"_s, nameOf(*text));
    }
    for (const QPlainTextEdit* text : shownIn<QPlainTextEdit>(window)) {
        if (!text->isReadOnly() && !text->tabChangesFocus())
            fault(u"piège"_s, nameOf(*text));
    }
}

void Inspection::checkDialog(const QWidget& window)
{
    if (!qobject_cast<const QDialog*>(&window))
        return;
    const QList<QPushButton*> buttons = shownIn<QPushButton>(window);
    const bool hasDefault = std::any_of(buttons.begin(), buttons.end(), [](const QPushButton* button) {
        return button->isDefault() || button->autoDefault();
    });
    const bool entersList = !shownIn<QAbstractItemView>(window).isEmpty(); // Return opens what is current there
    if (!hasDefault && !buttons.isEmpty() && !entersList)
        fault(u"Entrée"_s, u"pas de bouton par défaut"_s);
}

void Inspection::walkByTab(QWidget& window)
{
    m_where = QString::fromLatin1(window.metaObject()->className()) + u' ' + window.windowTitle();
    QApplication::setActiveWindow(&window);
    if (!QTest::qWaitFor([&window] { return QApplication::activeWindow() == &window; }))
        return fault(u"Tab"_s, u"la fenêtre ne prend pas le clavier"_s);
    QPointer<QWidget> before = window.focusWidget();
    QSet<const QWidget*> reached;
    QSet<const QWidget*> enabled;
    for (const QWidget* widget : shownIn<QWidget>(window)) {
        if (widget->isEnabled())
            enabled.insert(widget); // others become so while the focus passes
    }
    const QWidget* last = nullptr;
    QStringList back;
    for (int turn = 0; turn < mostTabs; ++turn) {
        QWidget* at = QApplication::focusWidget();
        if (at && at->window() != &window)
            break; // a list or a box that the walk opened
        const bool goesThroughLinks = qobject_cast<QTextBrowser*>(at);
        if (at && at == last && !goesThroughLinks)
            fault(u"piège"_s, nameOf(*at));
        if (at && reached.contains(at) && !(goesThroughLinks && at == last))
            break;
        if (at && last && goesBack(*last, *at, window))
            back << nameOf(*last) + u" -> "_s + nameOf(*at);
        last = at;
        reached.insert(at);
        QTest::keyClick(at ? at : &window, Qt::Key_Tab);
    }
    for (const QWidget* widget : shownIn<QWidget>(window)) {
        if (!(widget->focusPolicy() & Qt::TabFocus) || !enabled.contains(widget) || !widget->isEnabled() || widget->focusProxy()
            || isPart(*widget))
            continue;
        auto* button = qobject_cast<const QAbstractButton*>(widget);
        const bool oneOfSeveral = button && (button->autoExclusive() || (button->group() && button->group()->exclusive()));
        if (!reached.contains(widget) && !(oneOfSeveral && !button->isChecked()))
            fault(u"Tab"_s, nameOf(*widget));
    }
    if (back.size() > 1) // once it comes round
        fault(u"ordre"_s, back.join(u" ; "_s));
    if (before)
        before->setFocus();
}

} // namespace support
