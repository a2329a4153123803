#pragma once

#include <base/evKeyboardState.h>

#include <QCoreApplication>
#include <QMouseEvent>
#include <QWidget>

// Window-system input as the user makes it, sent to a widget.

// The Qt modifiers of an EvKeyboardState modifier mask.
inline Qt::KeyboardModifiers qtModifiers(unsigned mask) {
    Qt::KeyboardModifiers qt;
    if (mask & EvKeyboardState::ShiftMask) {
        qt |= Qt::ShiftModifier;
    }
    if (mask & EvKeyboardState::CtrlMask) {
        qt |= Qt::ControlModifier;
    }
    if (mask & EvKeyboardState::AltMask) {
        qt |= Qt::AltModifier;
    }
    if (mask & EvKeyboardState::MetaMask) {
        qt |= Qt::MetaModifier;
    }
    return qt;
}

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
