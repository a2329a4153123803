#pragma once

#include <base/baseExport.h>
#include <base/evKeyboardState.h>
#include <base/gePoint2.h>

#include <memory>

// The root of the host's events. An event travels from handler to handler
// until one marks it processed.
class TS_BASE_API EvEvent {
public:
    EvEvent() = default;
    EvEvent(const EvEvent&) = default;
    EvEvent& operator=(const EvEvent&) = default;
    virtual ~EvEvent();

    bool isProcessed() const { return _processed; }
    void setProcessed(bool processed) { _processed = processed; }

    // True when this event is of exactly the dynamic type of the prototype.
    bool isSameType(const EvEvent& prototype) const;
    template <class E>
    bool isA() const {
        return dynamic_cast<const E*>(this) != nullptr;
    }

    virtual std::unique_ptr<EvEvent> clone() const = 0;

private:
    bool _processed = false;
};

// Implements clone() for a concrete event class.
template <class Derived, class Base>
class EvEventImpl : public Base {
public:
    using Base::Base;
    std::unique_ptr<EvEvent> clone() const override {
        return std::make_unique<Derived>(static_cast<const Derived&>(*this));
    }
};

// An event that comes from a device in a window: where (window pixels, origin
// top-left, y down) and with which keyboard state.
class EvDeviceEvent : public EvEvent {
public:
    EvDeviceEvent() = default;
    EvDeviceEvent(const GePoint2<float>& coord, const EvKeyboardState& keys)
        : _coord(coord)
        , _keys(keys) {}

    const GePoint2<float>& getCoord() const { return _coord; }
    void setCoord(const GePoint2<float>& coord) { _coord = coord; }
    const EvKeyboardState& getKeyboardState() const { return _keys; }
    EvKeyboardState& getKeyboardState() { return _keys; }

    // Where the event happened on the screen, when the host knows it (events
    // that come from a window do). Events that a grab delivers from any
    // window carry screen coordinates in getCoord; a PiEventContext made for a
    // viewer brings them back to that viewer's window through this position.
    bool hasGlobalCoord() const { return _hasGlobal; }
    const GePoint2<float>& getGlobalCoord() const { return _global; }
    void setGlobalCoord(const GePoint2<float>& global) {
        _global = global;
        _hasGlobal = true;
    }

private:
    GePoint2<float> _coord;
    EvKeyboardState _keys;
    GePoint2<float> _global;
    bool _hasGlobal = false;
};

// Pointer buttons.
enum class EvButton : int { None = 0, Left = 1, Middle = 2, Right = 3 };

class EvPointerEvent : public EvDeviceEvent {
public:
    EvPointerEvent() = default;
    EvPointerEvent(const GePoint2<float>& coord, const EvKeyboardState& keys,
                   EvButton button = EvButton::None)
        : EvDeviceEvent(coord, keys)
        , _button(button) {}
    EvButton getButton() const { return _button; }

private:
    EvButton _button = EvButton::None;
};

class EvPointerButtonDownEvent : public EvEventImpl<EvPointerButtonDownEvent, EvPointerEvent> {
public:
    using EvEventImpl::EvEventImpl;
};

class EvPointerButtonUpEvent : public EvEventImpl<EvPointerButtonUpEvent, EvPointerEvent> {
public:
    using EvEventImpl::EvEventImpl;
};

// A pointer move; getButton() is the button held during the move, if any.
class EvPointerMoveEvent : public EvEventImpl<EvPointerMoveEvent, EvPointerEvent> {
public:
    using EvEventImpl::EvEventImpl;
};

class EvKeyEvent : public EvDeviceEvent {
public:
    EvKeyEvent() = default;
    EvKeyEvent(const GePoint2<float>& coord, const EvKeyboardState& keys, EvKeyCode::KeyCode key)
        : EvDeviceEvent(coord, keys)
        , _key(key) {}
    EvKeyCode::KeyCode getKeyCode() const { return _key; }

private:
    EvKeyCode::KeyCode _key = EvKeyCode::KeyNone;
};

// A key pressed; its keyboard state shows the key as held.
class EvKeyDownEvent : public EvEventImpl<EvKeyDownEvent, EvKeyEvent> {
public:
    EvKeyDownEvent() = default;
    TS_BASE_API EvKeyDownEvent(const GePoint2<float>& coord, const EvKeyboardState& keys,
                               EvKeyCode::KeyCode key);
};

class EvKeyUpEvent : public EvEventImpl<EvKeyUpEvent, EvKeyEvent> {
public:
    using EvEventImpl::EvEventImpl;
};

// A key press that matched a hotkey entry of a handler registered for it
// (UiHotkeyRegistry); delivered instead of the key event.
class EvHotkeyEvent : public EvEventImpl<EvHotkeyEvent, EvDeviceEvent> {
public:
    EvHotkeyEvent() = default;
    EvHotkeyEvent(const GePoint2<float>& coord, const EvKeyboardState& keys, unsigned entry)
        : EvEventImpl(coord, keys)
        , _entry(entry) {}
    unsigned getEntry() const { return _entry; }

private:
    unsigned _entry = 0;
};

// The window lost the keyboard focus.
class EvFocusOutEvent : public EvEventImpl<EvFocusOutEvent, EvEvent> {};

// A grab held by a handler was taken over by another grab.
class EvGrabLostEvent : public EvEventImpl<EvGrabLostEvent, EvEvent> {};

// Deferred work posted to the application (UiApplication::postRequest): it
// runs after the event being handled, on the user-interface thread.
class EvRequestEvent : public EvEvent {
public:
    virtual void process() = 0;
    // Requests are queued once and never copied.
    std::unique_ptr<EvEvent> clone() const override { return nullptr; }
};
