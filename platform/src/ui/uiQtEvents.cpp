#include <ui/uiApplication.h>
#include <ui/uiQtEvents.h>

#include <QKeyEvent>

EvKeyCode::KeyCode UiQtEvents::toKeyCode(int qtKey) {
    if (qtKey >= Qt::Key_A && qtKey <= Qt::Key_Z) {
        return static_cast<EvKeyCode::KeyCode>(EvKeyCode::KeyA + (qtKey - Qt::Key_A));
    }
    if (qtKey >= Qt::Key_0 && qtKey <= Qt::Key_9) {
        return static_cast<EvKeyCode::KeyCode>(EvKeyCode::Key0 + (qtKey - Qt::Key_0));
    }
    if (qtKey >= Qt::Key_F1 && qtKey <= Qt::Key_F12) {
        return static_cast<EvKeyCode::KeyCode>(EvKeyCode::KeyF1 + (qtKey - Qt::Key_F1));
    }
    switch (qtKey) {
    case Qt::Key_Escape:
        return EvKeyCode::KeyEscape;
    case Qt::Key_Backspace:
        return EvKeyCode::KeyBackspace;
    case Qt::Key_Tab:
        return EvKeyCode::KeyTab;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return EvKeyCode::KeyReturn;
    case Qt::Key_Space:
        return EvKeyCode::KeySpace;
    case Qt::Key_Delete:
        return EvKeyCode::KeyDelete;
    case Qt::Key_Left:
        return EvKeyCode::KeyLeft;
    case Qt::Key_Up:
        return EvKeyCode::KeyUp;
    case Qt::Key_Right:
        return EvKeyCode::KeyRight;
    case Qt::Key_Down:
        return EvKeyCode::KeyDown;
    case Qt::Key_PageUp:
        return EvKeyCode::KeyPageUp;
    case Qt::Key_PageDown:
        return EvKeyCode::KeyPageDown;
    case Qt::Key_Home:
        return EvKeyCode::KeyHome;
    case Qt::Key_End:
        return EvKeyCode::KeyEnd;
    case Qt::Key_Insert:
        return EvKeyCode::KeyInsert;
    case Qt::Key_Shift:
        return EvKeyCode::KeyShift;
    case Qt::Key_Control:
        return EvKeyCode::KeyControl;
    case Qt::Key_Alt:
        return EvKeyCode::KeyAlt;
    case Qt::Key_Meta:
        return EvKeyCode::KeyMeta;
    default:
        return EvKeyCode::KeyNone;
    }
}

unsigned UiQtEvents::toModifierMask(Qt::KeyboardModifiers modifiers) {
    unsigned mask = 0;
    if (modifiers & Qt::ShiftModifier) {
        mask |= EvKeyboardState::ShiftMask;
    }
    if (modifiers & Qt::AltModifier) {
        mask |= EvKeyboardState::AltMask;
    }
    if (modifiers & Qt::ControlModifier) {
        mask |= EvKeyboardState::CtrlMask;
    }
    if (modifiers & Qt::MetaModifier) {
        mask |= EvKeyboardState::MetaMask;
    }
    return mask;
}

Qt::KeyboardModifiers UiQtEvents::toQtModifiers(unsigned mask) {
    Qt::KeyboardModifiers modifiers;
    if (mask & EvKeyboardState::ShiftMask) {
        modifiers |= Qt::ShiftModifier;
    }
    if (mask & EvKeyboardState::AltMask) {
        modifiers |= Qt::AltModifier;
    }
    if (mask & EvKeyboardState::CtrlMask) {
        modifiers |= Qt::ControlModifier;
    }
    if (mask & EvKeyboardState::MetaMask) {
        modifiers |= Qt::MetaModifier;
    }
    return modifiers;
}

EvButton UiQtEvents::toButton(const QMouseEvent& event) {
    const Qt::MouseButtons held =
        event.type() == QEvent::MouseMove ? event.buttons() : Qt::MouseButtons(event.button());
    if (held & Qt::LeftButton) {
        return EvButton::Left;
    }
    if (held & Qt::MiddleButton) {
        return EvButton::Middle;
    }
    if (held & Qt::RightButton) {
        return EvButton::Right;
    }
    return EvButton::None;
}

std::unique_ptr<EvPointerEvent> UiQtEvents::toPointerEvent(const QMouseEvent& event,
                                                           const GePoint2<float>& coord) {
    const EvKeyboardState keys =
        UiApplication::getInstance().getKeyboardState(toModifierMask(event.modifiers()));
    const EvButton button = toButton(event);
    std::unique_ptr<EvPointerEvent> out;
    switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        out = std::make_unique<EvPointerButtonDownEvent>(coord, keys, button);
        break;
    case QEvent::MouseButtonRelease:
        out = std::make_unique<EvPointerButtonUpEvent>(coord, keys, button);
        break;
    case QEvent::MouseMove:
        out = std::make_unique<EvPointerMoveEvent>(coord, keys, button);
        break;
    default:
        return nullptr;
    }
    const QPointF global = event.globalPosition();
    out->setGlobalCoord({static_cast<float>(global.x()), static_cast<float>(global.y())});
    return out;
}

std::unique_ptr<EvKeyEvent> UiQtEvents::toKeyEvent(const QKeyEvent& event,
                                                   const GePoint2<float>& coord) {
    const EvKeyCode::KeyCode key = toKeyCode(event.key());
    if (key == EvKeyCode::KeyNone) {
        return nullptr;
    }
    EvKeyboardState keys =
        UiApplication::getInstance().getKeyboardState(toModifierMask(event.modifiers()));
    if (event.type() == QEvent::KeyPress) {
        return std::make_unique<EvKeyDownEvent>(coord, keys, key);
    }
    if (event.type() == QEvent::KeyRelease) {
        keys.setKeyDown(key, false);
        return std::make_unique<EvKeyUpEvent>(coord, keys, key);
    }
    return nullptr;
}
