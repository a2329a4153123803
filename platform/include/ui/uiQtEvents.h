#pragma once

// Conversions between the window system's (Qt's) input events and the host's
// events. Qt headers: for the toolkit's implementation, not for plug-ins.

#include <base/evEvent.h>
#include <base/evKeyCode.h>
#include <ui/uiExport.h>

#include <QMouseEvent>
#include <Qt>

#include <memory>

class TS_UI_API UiQtEvents {
public:
    // KeyNone for a key the host does not name.
    static EvKeyCode::KeyCode toKeyCode(int qtKey);
    // An EvKeyboardState mask, and back.
    static unsigned toModifierMask(Qt::KeyboardModifiers modifiers);
    static Qt::KeyboardModifiers toQtModifiers(unsigned mask);
    // The button of a press or release, or for a move the button held (left
    // first, then middle, then right).
    static EvButton toButton(const QMouseEvent& event);

    // The host's event for a mouse press, release or move (a double click is
    // a press), at `coord`, with the application's keyboard state and the
    // screen position; null for other kinds.
    static std::unique_ptr<EvPointerEvent> toPointerEvent(const QMouseEvent& event,
                                                          const GePoint2<float>& coord);
    // The host's key press or release at `coord`; null for other kinds or a
    // key the host does not name.
    static std::unique_ptr<EvKeyEvent> toKeyEvent(const QKeyEvent& event,
                                                  const GePoint2<float>& coord);
};
