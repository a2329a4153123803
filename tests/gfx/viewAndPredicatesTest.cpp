#include <base/vwUtils.h>
#include <base/vwView.h>
#include <gfx/mfEventPredicates.h>
#include <gfx/wsCursorRegistry.h>
#include <gfx/wsFontUtils.h>

#include <base/exBase.h>
#include <base/exReporter.h>

#include <gtest/gtest.h>

namespace {

TEST(VwView, WorldIsYUpAndWindowYDown) {
    const VwView view(200, 100, 4.0f, {20.0f, 90.0f});
    const auto w = VwUtils::worldToWindowOrtho(view, {10.0f, 5.0f});
    EXPECT_FLOAT_EQ(w.x, 60.0f);
    EXPECT_FLOAT_EQ(w.y, 70.0f);
    const auto back = VwUtils::windowToWorldOrtho(view, w);
    EXPECT_FLOAT_EQ(back.x, 10.0f);
    EXPECT_FLOAT_EQ(back.y, 5.0f);
    const auto r = VwUtils::worldToWindowOrtho(view, GeRectangle<float>(0, 10, 0, 5));
    EXPECT_EQ(r, GeRectangle<float>(20, 60, 70, 90));
    EXPECT_EQ(view.getWorldToWindow().transformPoint({10.0f, 5.0f}), w);
}

TEST(VwView, ZoomingAboutAPointKeepsItAndFitCentres) {
    VwView view(200, 100, 1.0f, {0.0f, 100.0f});
    const GePoint2<float> pointer(50.0f, 30.0f);
    const auto before = VwUtils::windowToWorldOrtho(view, pointer);
    view.zoomAbout(pointer, 2.5f);
    const auto after = VwUtils::windowToWorldOrtho(view, pointer);
    EXPECT_FLOAT_EQ(after.x, before.x);
    EXPECT_FLOAT_EQ(after.y, before.y);
    EXPECT_FLOAT_EQ(view.getZoom(), 2.5f);

    view.fit(GeRectangle<float>(0, 40, 0, 10), 10.0f);
    EXPECT_FLOAT_EQ(view.getZoom(), 4.5f); // min(180 / 40, 80 / 10)
    const auto centre = VwUtils::worldToWindowOrtho(view, {20.0f, 5.0f});
    EXPECT_FLOAT_EQ(centre.x, 100.0f);
    EXPECT_FLOAT_EQ(centre.y, 50.0f);

    view.setZoom(0.0f);
    view.setZoom(-2.0f);
    EXPECT_FLOAT_EQ(view.getZoom(), 4.5f);
    view.setZoom(1e9f);
    EXPECT_FLOAT_EQ(view.getZoom(), 1024.0f);
}

TEST(MfEventPredicates, KeyDownIsAStateTestAndModifiersAMaskTest) {
    EvKeyboardState shiftCtrl(EvKeyboardState::ShiftMask | EvKeyboardState::CtrlMask);
    const EvPointerMoveEvent moveHeld({0, 0}, shiftCtrl);
    const EvPointerMoveEvent movePlain({0, 0}, EvKeyboardState());
    const EvKeyDownEvent escape({0, 0}, EvKeyboardState(), EvKeyCode::KeyEscape);
    const EvKeyUpEvent escapeUp({0, 0}, EvKeyboardState(), EvKeyCode::KeyEscape);

    EXPECT_TRUE(MfEventPredicates::isKeyDown(EvKeyCode::KeyShift)(moveHeld));
    EXPECT_TRUE(MfEventPredicates::isKeyDown(EvKeyCode::KeyCode(142))(moveHeld));
    EXPECT_FALSE(MfEventPredicates::isKeyDown(EvKeyCode::KeyShift)(movePlain));
    EXPECT_TRUE(MfEventPredicates::isKeyDown(EvKeyCode::KeyEscape)(escape));
    EXPECT_FALSE(MfEventPredicates::isKeyDown(EvKeyCode::KeyEscape)(escapeUp));

    EXPECT_TRUE(MfEventPredicates::isKeyModifierOn(4)(moveHeld));
    EXPECT_TRUE(MfEventPredicates::isKeyModifierOn(5)(moveHeld));
    EXPECT_FALSE(MfEventPredicates::isKeyModifierOn(6)(moveHeld)); // Alt is not held
    EXPECT_FALSE(MfEventPredicates::isKeyModifierOn(4)(movePlain));
    EXPECT_FALSE(MfEventPredicates::isKeyModifierOn(4)(EvFocusOutEvent()));
}

TEST(MfEventPredicates, EventKindsAndButtons) {
    const EvPointerButtonDownEvent left({0, 0}, EvKeyboardState(), EvButton::Left);
    const EvPointerButtonDownEvent middle({0, 0}, EvKeyboardState(), EvButton::Middle);
    const EvPointerMoveEvent dragging({0, 0}, EvKeyboardState(), EvButton::Left);
    const EvHotkeyEvent hotkey({0, 0}, EvKeyboardState(), 3);
    const EvFocusOutEvent focus;

    EXPECT_TRUE(MfEventPredicates::isPointerDownButtonLeft()(left));
    EXPECT_FALSE(MfEventPredicates::isPointerDownButtonLeft()(middle));
    EXPECT_FALSE(MfEventPredicates::isPointerDownButtonLeft()(dragging));
    EXPECT_TRUE(MfEventPredicates::isPointerMove()(dragging));
    EXPECT_FALSE(MfEventPredicates::isPointerMove()(left));
    EXPECT_TRUE(MfEventPredicates::isHotkey()(hotkey));
    EXPECT_FALSE(MfEventPredicates::isHotkey()(left));

    const auto focusOut = MfEventPredicates::isEventType(EvFocusOutEvent());
    EXPECT_TRUE(focusOut(focus));
    EXPECT_FALSE(focusOut(EvGrabLostEvent()));
    // The dismiss combination the sample tools build.
    const auto dismiss = (MfEventPredicates::isPointerDownButtonLeft() ||
                          MfEventPredicates::isKeyDown(EvKeyCode::KeyEscape)) ||
                         focusOut;
    EXPECT_TRUE(dismiss(focus));
    EXPECT_TRUE(dismiss(left));
    EXPECT_FALSE(dismiss(dragging));
}

TEST(WsCursorRegistry, NamedCursorsAreSharedAndUnknownNamesFallBackOnce) {
    auto& registry = WsCursorRegistry::getInstance();
    EXPECT_EQ(registry.getCursor(WsCursorRegistry::Pick), registry.getCursor("Pick"));
    EXPECT_NE(registry.getCursor(WsCursorRegistry::Pick),
              registry.getCursor(WsCursorRegistry::PickPlus));
    ExReporter::getInstance().clear();
    EXPECT_EQ(registry.getCursor("Lasso"), registry.getCursor(WsCursorRegistry::Default));
    registry.getCursor("Lasso");
    EXPECT_EQ(ExReporter::getInstance().getReportCount(), 1u);
    ExReporter::getInstance().clear();
}

// Every character four pixels wide, except 'W' (ten) and each byte of a
// multi-byte character (three, so an accented letter is six).
class BlockFont : public WsFont {
public:
    int getTextWidth(const LiString& text) const override {
        int w = 0;
        for (unsigned char c : text) {
            w += c == 'W' ? 10 : c >= 0x80 ? 3 : 4;
        }
        return w;
    }
    int getHeight() const override { return 12; }
};

TEST(WsFontUtils, TruncatesAtTheEndWithAnEllipsis) {
    const RCShdPtr<WsFont> font(new BlockFont);
    EXPECT_EQ(WsFontUtils::truncateAtTheEnd(font, "Keyer 12", 32), "Keyer 12");
    EXPECT_EQ(WsFontUtils::truncateAtTheEnd(font, "Keyer 12", 31), "Keye...");
    // A blank before the cut is dropped.
    EXPECT_EQ(WsFontUtils::truncateAtTheEnd(font, "Key 12345", 28), "Key...");
    EXPECT_EQ(WsFontUtils::truncateAtTheEnd(font, "WWW", 22), "W...");
    EXPECT_EQ(WsFontUtils::truncateAtTheEnd(font, "Keyer", 12), "...");
    EXPECT_EQ(WsFontUtils::truncateAtTheEnd(font, "Keyer", 11), "");
    // Never inside a UTF-8 character: "é" is two bytes, and "e" with the
    // first byte of "é" would fit in 19.
    EXPECT_EQ(WsFontUtils::truncateAtTheEnd(font, "e\xC3\xA9\xC3\xA9\xC3\xA9", 19), "e...");
    EXPECT_THROW(WsFontUtils::truncateAtTheEnd(RCShdPtr<WsFont>(), "x", 10), ExNullPtr);
}

} // namespace
