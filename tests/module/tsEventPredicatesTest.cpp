#include "tsEventPredicates.h"

#include <gtest/gtest.h>

namespace {

const GePoint2<float> P{10.0f, 20.0f};

EvKeyboardState held(unsigned modifiers) {
    return EvKeyboardState(modifiers);
}

TEST(SharedPredicates, SampleOnMoveNeedsCtrlAndAMove) {
    const PrdPredicate<EvEvent> onMove = TsEventPredicates::makeSampleOnMove();
    EXPECT_TRUE(onMove(EvPointerMoveEvent(P, held(EvKeyboardState::CtrlMask))));
    EXPECT_TRUE(onMove(EvPointerMoveEvent(
        P, held(EvKeyboardState::CtrlMask | EvKeyboardState::ShiftMask), EvButton::Left)));
    EXPECT_FALSE(onMove(EvPointerMoveEvent(P, held(0))));
    EXPECT_FALSE(onMove(EvPointerMoveEvent(P, held(EvKeyboardState::ShiftMask))));
    EXPECT_FALSE(
        onMove(EvPointerButtonDownEvent(P, held(EvKeyboardState::CtrlMask), EvButton::Left)));
}

TEST(SharedPredicates, SampleOnClickIsALeftPress) {
    const PrdPredicate<EvEvent> onClick = TsEventPredicates::makeSampleOnClick();
    EXPECT_TRUE(onClick(EvPointerButtonDownEvent(P, held(0), EvButton::Left)));
    EXPECT_TRUE(
        onClick(EvPointerButtonDownEvent(P, held(EvKeyboardState::AltMask), EvButton::Left)));
    EXPECT_FALSE(onClick(EvPointerButtonDownEvent(P, held(0), EvButton::Right)));
    EXPECT_FALSE(onClick(EvPointerButtonUpEvent(P, held(0), EvButton::Left)));
}

TEST(SharedPredicates, DismissOnALeftPressEscapeOrFocusLoss) {
    const PrdPredicate<EvEvent> dismiss = TsEventPredicates::makeDismiss();
    EXPECT_TRUE(dismiss(EvPointerButtonDownEvent(P, held(0), EvButton::Left)));
    EXPECT_TRUE(dismiss(EvKeyDownEvent(P, held(0), EvKeyCode::KeyEscape)));
    EXPECT_TRUE(dismiss(EvFocusOutEvent()));
    // Escape held during another event counts too: a state test.
    EvPointerMoveEvent moveWithEscape(P, held(0));
    moveWithEscape.getKeyboardState().setKeyDown(EvKeyCode::KeyEscape, true);
    EXPECT_TRUE(dismiss(moveWithEscape));

    EXPECT_FALSE(dismiss(EvPointerButtonDownEvent(P, held(0), EvButton::Middle)));
    EXPECT_FALSE(dismiss(EvPointerMoveEvent(P, held(EvKeyboardState::CtrlMask))));
    EXPECT_FALSE(dismiss(EvKeyDownEvent(P, held(0), EvKeyCode::KeyM)));
    EXPECT_FALSE(dismiss(EvGrabLostEvent()));
}

} // namespace
