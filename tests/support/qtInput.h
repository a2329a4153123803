#pragma once

#include <base/evKeyboardState.h>

#include <QCoreApplication>
#include <QMouseEvent>
#include <QWidget>

// Window-system input as the user makes it, sent to a widget.

// A press, move or release of `button` at a point of the widget. A move
// holds the button unless `held` says otherwise; a release holds nothing.
inline void sendMouse(QWidget* widget, QEvent::Type type, const QPointF& local,
                      Qt::MouseButton button = Qt::LeftButton,
                      Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    const Qt::MouseButtons held =
        type == QEvent::MouseButtonRelease ? Qt::MouseButtons() : Qt::MouseButtons(button);
    QMouseEvent event(type, local, widget->mapToGlobal(local),
                      type == QEvent::MouseMove ? Qt::NoButton : button, held, modifiers);
    QCoreApplication::sendEvent(widget, &event);
}

inline void sendClick(QWidget* widget, const QPointF& local,
                      Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    sendMouse(widget, QEvent::MouseButtonPress, local, Qt::LeftButton, modifiers);
    sendMouse(widget, QEvent::MouseButtonRelease, local, Qt::LeftButton, modifiers);
}
