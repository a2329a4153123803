#include "gfxScene.h"

#include <gfx/mfAppearance.h>
#include <gfx/mfEventPredicates.h>
#include <gfx/mfManipObject.h>
#include <gfx/mfRangeManipulator.h>

#include <base/exBase.h>

namespace {

// A column like the sample tools build: a container placed at a world point,
// constant size on screen, never grasped itself; bars 30 pixels apart below
// its origin; and an invisible rectangle over the column that only gives
// feedback.
class ColumnScene : public GfxScene {
protected:
    void SetUp() override {
        GfxScene::SetUp();
        column = rcMake<MfManipulator>();
        column->setScalingBehaviour(1);
        column->setGraspEventPredicate(!PrdPredicate<EvEvent>::all());
        column->setBaseTransform(GeAffineMatrix3<float>::translation(2.0f, 4.0f));
        for (int i = 0; i < 3; ++i) {
            bars.push_back(RCShdPtr<MfRangeManipulator>(new MfRangeManipulator(
                GeRectangle<float>(-200, 200, -10, 10), "bar" + std::to_string(i))));
            bars[i]->setAppearanceTransform(
                GeAffineMatrix3<float>::translation(0.0f, -30.0f * static_cast<float>(i)));
            column->addManipulator(bars[i]);
        }
        area = rcMake<MfManipObject>(4);
        auto rect = rcMake<MfRectAppearance>(true, true);
        rect->setDrawable(false);
        rect->setRectangle(GeRectangle<float>(-200, 200, -70, 10));
        area->addAppearance(rect);
        area->setGraspEventPredicate(!PrdPredicate<EvEvent>::all());
        area->setFeedbackEventPredicate(MfEventPredicates::isPointerMove());
        column->addManipulator(area);
        origin = at(2.0f, 4.0f); // window (70, 210)
    }

    MfManipulator* graspAt(const GePoint2<float>& p, unsigned modifiers = 0) {
        auto e = press(p, modifiers);
        return column->findGraspable(viewer.view, e);
    }

    RCShdPtr<MfManipulator> column;
    std::vector<RCShdPtr<MfRangeManipulator>> bars;
    RCShdPtr<MfManipObject> area;
    GePoint2<float> origin;
};

TEST_F(ColumnScene, BarsHangBelowTheOriginInWindowPixelsAtAnyZoom) {
    for (float zoom : {10.0f, 0.5f, 3.0f}) {
        viewer.view.setZoom(zoom);
        origin = at(2.0f, 4.0f);
        EXPECT_EQ(graspAt({origin.x - 199, origin.y}), bars[0].get());
        EXPECT_EQ(graspAt({origin.x + 150, origin.y + 30}), bars[1].get());
        EXPECT_EQ(graspAt({origin.x, origin.y + 60 + 9}), bars[2].get());
        EXPECT_EQ(graspAt({origin.x, origin.y + 45}), nullptr); // between bars
        EXPECT_EQ(graspAt({origin.x + 201, origin.y}), nullptr);
    }
}

TEST_F(ColumnScene, TheFirstManipulatorDepthFirstWhosePredicatesAllHoldIsGrasped) {
    // Two bars on top of each other: the one added first wins...
    bars[1]->setAppearanceTransform(GeAffineMatrix3<float>());
    EXPECT_EQ(graspAt(origin), bars[0].get());
    // ... unless one of its predicates fails.
    bars[0]->addGraspEventPredicate(MfEventPredicates::isKeyDown(EvKeyCode::KeyShift));
    EXPECT_EQ(graspAt(origin), bars[1].get());
    EXPECT_EQ(graspAt(origin, EvKeyboardState::ShiftMask), bars[0].get());
    // setGraspEventPredicate replaces the whole list, the left press included.
    bars[1]->setGraspEventPredicate(MfEventPredicates::isKeyDown(EvKeyCode::KeyA));
    EXPECT_EQ(graspAt(origin), nullptr);
    EvKeyDownEvent a(origin, EvKeyboardState(), EvKeyCode::KeyA);
    EXPECT_EQ(column->findGraspable(viewer.view, a), bars[1].get());
}

TEST_F(ColumnScene, HiddenAndInactiveManipulatorsAreNotGraspedAndHiddenOnesNotDrawn) {
    bars[0]->setState(MfManipulator::Hidden);
    EXPECT_EQ(graspAt(origin), nullptr);
    bars[0]->setState(MfManipulator::Inactive);
    EXPECT_EQ(graspAt(origin), nullptr);
    bars[0]->setState(MfManipulator::Highlighted);
    EXPECT_EQ(graspAt(origin), bars[0].get());
    EXPECT_TRUE(bars[0]->isHighlighted());

    auto countBars = [&] {
        WsRecordingPainter painter;
        viewer.view.setPainter(&painter);
        column->draw(viewer.view);
        viewer.view.setPainter(nullptr);
        return painter.getItems(WsRecordingPainter::Item::Rect).size();
    };
    // The invisible area draws nothing; the bars one outline each.
    EXPECT_EQ(countBars(), 3u);
    bars[2]->setState(MfManipulator::Hidden);
    EXPECT_EQ(countBars(), 2u);
    column->setState(MfManipulator::Hidden);
    EXPECT_EQ(countBars(), 0u);
    EXPECT_FALSE(bars[0]->isShown());
    EXPECT_EQ(graspAt(origin), nullptr);
}

TEST_F(ColumnScene, TheInvisibleAreaGivesFeedbackOnPointerMovesOnly) {
    auto between = move({origin.x, origin.y + 45}, 0, EvButton::None);
    EXPECT_EQ(column->findFeedback(viewer.view, between), area.get());
    auto outside = move({origin.x, origin.y + 90}, 0, EvButton::None);
    EXPECT_EQ(column->findFeedback(viewer.view, outside), nullptr);
    // Within the pick tolerance of 4 pixels.
    auto edge = move({origin.x + 203, origin.y + 45}, 0, EvButton::None);
    EXPECT_EQ(column->findFeedback(viewer.view, edge), area.get());
    EvKeyDownEvent key({origin.x, origin.y + 45}, EvKeyboardState(), EvKeyCode::KeyA);
    EXPECT_EQ(column->findFeedback(viewer.view, key), nullptr);
}

TEST_F(ColumnScene, BadStatesAndDoubleParentsAreAssertions) {
    EXPECT_THROW(bars[0]->setState(4), ExAssertionFailed);
    EXPECT_THROW(bars[0]->setScalingBehaviour(2), ExAssertionFailed);
    EXPECT_THROW(column->addManipulator(bars[0]), ExAssertionFailed);
    EXPECT_THROW(column->addManipulator(RCShdPtr<MfManipulator>()), ExNullPtr);
}

TEST(MfManipulatorFrame, BaseThenAppearanceInWorldUnits) {
    VwView view(100, 100, 2.0f, {10.0f, 90.0f});
    MfManipulator parent;
    parent.setBaseTransform(GeAffineMatrix3<float>::translation(5.0f, 5.0f));
    auto child = rcMake<MfManipulator>();
    child->setBaseTransform(GeAffineMatrix3<float>::scaling(2.0f, 2.0f));
    child->setAppearanceTransform(GeAffineMatrix3<float>::translation(1.0f, 0.0f));
    parent.addManipulator(child);
    // Local (1, 1) -> appearance (2, 1) -> base (4, 2) -> parent (9, 7) ->
    // window (10 + 18, 90 - 14).
    const auto p = child->getLocalToWindow(view).transformPoint({1.0f, 1.0f});
    EXPECT_FLOAT_EQ(p.x, 28.0f);
    EXPECT_FLOAT_EQ(p.y, 76.0f);
    const auto back = child->windowToLocal(view, p);
    EXPECT_FLOAT_EQ(back.x, 1.0f);
    EXPECT_FLOAT_EQ(back.y, 1.0f);
}

} // namespace
