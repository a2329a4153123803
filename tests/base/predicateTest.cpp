#include <base/evEvent.h>
#include <base/prdPredicate.h>

#include <gtest/gtest.h>

namespace {

// Leaf tests as the gfx library builds them: a counted functor on an event.
struct IsKeyDown : UnaryFunctor<EvEvent, bool> {
    explicit IsKeyDown(EvKeyCode::KeyCode key)
        : key(key) {}
    bool operator()(const EvEvent& e) const override {
        auto* d = dynamic_cast<const EvDeviceEvent*>(&e);
        return d && d->getKeyboardState().isKeyDown(key);
    }
    EvKeyCode::KeyCode key;
};
struct Counting : UnaryFunctor<EvEvent, bool> {
    Counting(bool answer, int& calls)
        : answer(answer)
        , calls(calls) {}
    bool operator()(const EvEvent&) const override {
        ++calls;
        return answer;
    }
    bool answer;
    int& calls;
};

PrdPredicate<EvEvent> keyDown(EvKeyCode::KeyCode k) {
    return PrdPredicate<EvEvent>(RCShdPtr<UnaryFunctor<EvEvent, bool>>(new IsKeyDown(k)));
}

TEST(PrdPredicate, CombinatorsFollowBooleanLogic) {
    EvKeyboardState shift(EvKeyboardState::ShiftMask);
    const EvPointerMoveEvent withShift({1, 2}, shift);
    const EvPointerMoveEvent plain({1, 2}, EvKeyboardState());
    const EvFocusOutEvent focus;

    auto shiftHeld = keyDown(EvKeyCode::KeyShift);
    auto escape = keyDown(EvKeyCode::KeyEscape);
    EXPECT_TRUE(shiftHeld(withShift));
    EXPECT_FALSE(shiftHeld(plain));
    EXPECT_TRUE((!shiftHeld)(plain));
    EXPECT_FALSE((shiftHeld && escape)(withShift));
    EXPECT_TRUE((shiftHeld || escape)(withShift));
    EXPECT_FALSE((shiftHeld || escape)(focus));

    const auto never = !PrdPredicate<EvEvent>::all();
    for (const EvEvent* e : std::initializer_list<const EvEvent*>{&withShift, &plain, &focus}) {
        EXPECT_TRUE(PrdPredicate<EvEvent>::all()(*e));
        EXPECT_FALSE(never(*e));
    }
}

TEST(PrdPredicate, OperandsKeepTheirOrderAndShortCircuit) {
    int first = 0, second = 0;
    auto f =
        PrdPredicate<EvEvent>(RCShdPtr<UnaryFunctor<EvEvent, bool>>(new Counting(false, first)));
    auto t =
        PrdPredicate<EvEvent>(RCShdPtr<UnaryFunctor<EvEvent, bool>>(new Counting(true, second)));
    const EvFocusOutEvent e;
    auto both = f && t;
    EXPECT_FALSE(both(e));
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 0);

    auto* node = dynamic_cast<PrdAndPredicateImp<EvEvent>*>(both.getImp().get());
    ASSERT_NE(node, nullptr);
    ASSERT_EQ(node->getOperands().size(), 2u);
    EXPECT_EQ(node->getOperands()[0].getImp().get(), f.getImp().get());
    EXPECT_EQ(node->getOperands()[1].getImp().get(), t.getImp().get());

    auto either = t || f;
    EXPECT_TRUE(either(e));
    EXPECT_EQ(first, 1);
}

TEST(PrdPredicate, CopiesShareTheirNode) {
    auto p = keyDown(EvKeyCode::KeyA);
    PrdPredicate<EvEvent> copy = p;
    EXPECT_EQ(copy.getImp().get(), p.getImp().get());
}

} // namespace
