#include <base/evEvent.h>
#include <base/obObserver.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace {

TEST(EvKeyboardState, ModifierIdentifiersAndMasksAgreeWithHeldKeys) {
    EvKeyboardState ctrl(4u);
    EXPECT_TRUE(ctrl.isEnabled(EvKeyboardState::Ctrl));
    EXPECT_TRUE(ctrl.isKeyDown(EvKeyCode::KeyControl));
    EXPECT_FALSE(ctrl.isEnabled(EvKeyboardState::Shift));

    EvKeyboardState keys;
    keys.setKeyDown(static_cast<EvKeyCode::KeyCode>(142), true);
    EXPECT_EQ(keys.getModifierMask(), 1u);
    keys.setKeyDown(EvKeyCode::KeyShift, false);
    EXPECT_EQ(keys.getModifierMask(), 0u);
    EXPECT_EQ(EvKeyCode::KeyEscape, 15);
}

TEST(EvEvent, KeyDownHoldsItsKeyAndTypesAreExact) {
    const EvKeyDownEvent esc({0, 0}, EvKeyboardState(), EvKeyCode::KeyEscape);
    EXPECT_TRUE(esc.getKeyboardState().isKeyDown(EvKeyCode::KeyEscape));
    EXPECT_TRUE(esc.isSameType(EvKeyDownEvent()));
    EXPECT_FALSE(esc.isSameType(EvKeyUpEvent()));
    EXPECT_TRUE(esc.isA<EvDeviceEvent>());
    auto copy = esc.clone();
    EXPECT_TRUE(copy->isSameType(esc));
    EXPECT_EQ(EvKeyCode::fromName("escape"), EvKeyCode::KeyEscape);
    EXPECT_EQ(EvKeyCode::fromName("F12"), EvKeyCode::KeyF12);
    EXPECT_EQ(EvKeyCode::fromName("m"), EvKeyCode::KeyM);
    EXPECT_EQ(EvKeyCode::fromName("F13"), EvKeyCode::KeyNone);
    EXPECT_STREQ(EvKeyCode::toName(EvKeyCode::Key7), "7");
}

struct Counter {};
struct Subject : ObSubject<Counter>, Counter {
    void fire() { notifyObservers(*this); }
};
struct Watcher : ObObserver<Counter> {
    void update(const Counter&) override {
        ++calls;
        if (onUpdate) {
            onUpdate();
        }
    }
    int calls = 0;
    std::function<void()> onUpdate;
};

TEST(ObSubject, EitherSideMayDieFirst) {
    auto subject = std::make_unique<Subject>();
    Watcher a;
    {
        Watcher b;
        subject->attachObserver(&a);
        subject->attachObserver(&b);
        subject->attachObserver(&a);
        subject->fire();
        EXPECT_EQ(a.calls, 1);
        EXPECT_EQ(b.calls, 1);
    }
    EXPECT_EQ(subject->observerCount(), 1u);
    Watcher c;
    subject->attachObserver(&c);
    a.onUpdate = [&] { subject->detachObserver(&c); };
    subject->fire();
    EXPECT_EQ(c.calls, 0); // detached during the notification
    subject.reset();       // a and c survive the subject
    EXPECT_EQ(a.calls, 2);
}

} // namespace
