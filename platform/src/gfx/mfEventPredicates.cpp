#include <gfx/mfEventPredicates.h>

#include <memory>

namespace {

using Test = UnaryFunctor<EvEvent, bool>;

PrdPredicate<EvEvent> leaf(Test* test) {
    return PrdPredicate<EvEvent>(RCShdPtr<Test>(test));
}

class PointerDownLeft : public Test {
public:
    bool operator()(const EvEvent& e) const override {
        auto* p = dynamic_cast<const EvPointerButtonDownEvent*>(&e);
        return p && p->getButton() == EvButton::Left;
    }
};

class PointerMove : public Test {
public:
    bool operator()(const EvEvent& e) const override { return e.isA<EvPointerMoveEvent>(); }
};

class PointerEvent : public Test {
public:
    bool operator()(const EvEvent& e) const override { return e.isA<EvPointerEvent>(); }
};

class ModifierOn : public Test {
public:
    explicit ModifierOn(unsigned mask)
        : _mask(mask) {}
    bool operator()(const EvEvent& e) const override {
        auto* d = dynamic_cast<const EvDeviceEvent*>(&e);
        return d && (d->getKeyboardState().getModifierMask() & _mask) == _mask;
    }

private:
    unsigned _mask;
};

class KeyDown : public Test {
public:
    explicit KeyDown(EvKeyCode::KeyCode key)
        : _key(key) {}
    bool operator()(const EvEvent& e) const override {
        auto* d = dynamic_cast<const EvDeviceEvent*>(&e);
        return d && d->getKeyboardState().isKeyDown(_key);
    }

private:
    EvKeyCode::KeyCode _key;
};

class Hotkey : public Test {
public:
    bool operator()(const EvEvent& e) const override { return e.isA<EvHotkeyEvent>(); }
};

class EventType : public Test {
public:
    explicit EventType(std::unique_ptr<EvEvent> prototype)
        : _prototype(std::move(prototype)) {}
    bool operator()(const EvEvent& e) const override {
        return _prototype && e.isSameType(*_prototype);
    }

private:
    std::unique_ptr<EvEvent> _prototype;
};

} // namespace

PrdPredicate<EvEvent> MfEventPredicates::isPointerDownButtonLeft() {
    return leaf(new PointerDownLeft);
}

PrdPredicate<EvEvent> MfEventPredicates::isPointerMove() {
    return leaf(new PointerMove);
}

PrdPredicate<EvEvent> MfEventPredicates::isPointerEvent() {
    return leaf(new PointerEvent);
}

PrdPredicate<EvEvent> MfEventPredicates::isKeyModifierOn(unsigned modifierMask) {
    return leaf(new ModifierOn(modifierMask));
}

PrdPredicate<EvEvent> MfEventPredicates::isKeyDown(EvKeyCode::KeyCode key) {
    return leaf(new KeyDown(key));
}

PrdPredicate<EvEvent> MfEventPredicates::isHotkey() {
    return leaf(new Hotkey);
}

PrdPredicate<EvEvent> MfEventPredicates::isEventType(const EvEvent& prototype) {
    return leaf(new EventType(prototype.clone()));
}
