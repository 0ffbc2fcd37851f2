#pragma once

#include "TestWaiting.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QMenu>
#include <QtTest/QTest>

#include <functional>

namespace orvane {

/// What a screen reader calls a control.
inline QString spokenName(QWidget& widget)
{
    QAccessibleInterface* const spoken = QAccessible::queryAccessibleInterface(&widget);
    return spoken ? spoken->text(QAccessible::Name) : QString();
}

/// The button that a screen reader would call so, within a widget; null without one in sight.
inline QAbstractButton* buttonNamed(const QWidget& within, const QString& name)
{
    for (QAbstractButton* button : within.findChildren<QAbstractButton*>()) {
        if (spokenName(*button) == name && button->isVisible())
            return button;
    }
    return nullptr;
}

/// Lets the views show what the model has become.
inline void settle()
{
    bool isSettled = false;
    QTimer::singleShot(0, [&] { isSettled = true; });
    waitFor([&] { return isSettled; });
}

inline void click(QWidget* widget)
{
    ASSERT_NE(widget, nullptr);
    QTest::mouseClick(widget, Qt::LeftButton);
}

/// Opens a menu by `open`, which may return only when it has closed, and looks at it.
inline void withMenu(const std::function<void()>& open, const std::function<void(QMenu&)>& look)
{
    bool wasSeen = false;
    QTimer::singleShot(0, [&] {
        waitFor([] { return QApplication::activePopupWidget() != nullptr; });
        wasSeen = true;
        const QPointer<QMenu> menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        look(*menu);
        if (menu)
            menu->close();
    });
    open();
    waitFor([&] { return wasSeen; });
}

/// Chooses an action of an open menu by the keyboard.
inline void choose(QMenu& menu, const QString& text)
{
    for (QAction* action : menu.actions()) {
        if (action->text() != text || !action->isEnabled())
            continue;
        menu.setActiveAction(action);
        QTest::keyClick(&menu, Qt::Key_Return);
        return;
    }
    ADD_FAILURE() << "The menu does not offer " << text.toStdString();
}

/// The accessible names of all that Tab comes to, once round, from where the focus is. A control
/// without one fails the test.
inline QStringList namesOnTheWayOfTab(QWidget& window)
{
    window.activateWindow();
    waitFor([&] { return window.isActiveWindow(); });
    if (!QApplication::focusWidget())
        QTest::keyClick(&window, Qt::Key_Tab);
    QStringList names;
    QWidget* const start = QApplication::focusWidget();
    QWidget* reached = start;
    while (reached && names.size() < 200) {
        names += spokenName(*reached);
        EXPECT_FALSE(names.back().isEmpty()) << reached->metaObject()->className();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        reached = QApplication::focusWidget();
        if (reached == start)
            break;
    }
    return names;
}

} // namespace orvane
