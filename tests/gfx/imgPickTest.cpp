#include "gfxScene.h"

#include <gfx/mfImgPickColorTool.h>
#include <gfx/mfPiImgPickDragManip.h>
#include <gfx/mfPiImgPickListManip.h>
#include <gfx/wsCursorRegistry.h>
#include <pluginAPI/piCommandStack.h>
#include <pluginAPI/piImgPick.h>
#include <pluginAPI/piTimePath.h>

#include <base/exBase.h>

namespace {

using Colours = List<CoRgbaColorTyped<float>>;

class PickScene : public GfxScene {
protected:
    void SetUp() override {
        GfxScene::SetUp();
        timePath = RCShdPtr<const PiTimePath>(new PiTimePath(&viewer.time, viewer.path));
        pick = PiImgPick::create(plate, timePath, 0);
    }

    Colours pickRect(float x0, float x1, float y0, float y1, bool* covered = nullptr) {
        Colours colours;
        const bool ok = pick->pickColors(GeRectangle<float>(x0, x1, y0, y1), colours);
        if (covered) {
            *covered = ok;
        }
        return colours;
    }

    RCShdPtr<const PiTimePath> timePath;
    RCStrongPtr<PiImgPick> pick;
};

TEST_F(PickScene, AFiveByFiveSquareAroundAPixelCentrePicksTwentyFivePixelsInRowOrder) {
    // Around the centre of pixel (3, 2).
    const Colours c = pickRect(3.5f - 2.5f, 3.5f + 2.5f, 2.5f - 2.5f, 2.5f + 2.5f);
    ASSERT_EQ(c.size(), 25u);
    EXPECT_EQ(c.front(), plateColour(1, 0));
    EXPECT_EQ(c[1], plateColour(2, 0));
    EXPECT_EQ(c[5], plateColour(1, 1));
    EXPECT_EQ(c.back(), plateColour(5, 4));
    // Around a pixel corner the square still takes five by five centres.
    EXPECT_EQ(pickRect(4.0f - 2.5f, 4.0f + 2.5f, 3.0f - 2.5f, 3.0f + 2.5f).size(), 25u);
}

TEST_F(PickScene, RectanglesAtTheEdgesTakeWhatLiesOverThePlate) {
    // Around the centre of the lower-left pixel: centres 0.5 to 2.5 on each
    // axis.
    const Colours corner = pickRect(0.5f - 2.5f, 0.5f + 2.5f, 0.5f - 2.5f, 0.5f + 2.5f);
    ASSERT_EQ(corner.size(), 9u);
    EXPECT_EQ(corner.front(), plateColour(0, 0));
    EXPECT_EQ(corner.back(), plateColour(2, 2));
    // Upper-right corner of the 8 x 6 plate.
    const Colours top = pickRect(7.5f - 2.5f, 7.5f + 2.5f, 5.5f - 2.5f, 5.5f + 2.5f);
    ASSERT_EQ(top.size(), 9u);
    EXPECT_EQ(top.back(), plateColour(7, 5));
    // Larger than the plate: all of it.
    EXPECT_EQ(pickRect(-100, 100, -100, 100).size(), 48u);
}

TEST_F(PickScene, RectanglesOffThePlateOrWithoutExtentPickNothing) {
    bool covered = true;
    Colours outside = pickRect(10, 15, 0, 5, &covered);
    EXPECT_FALSE(covered);
    EXPECT_TRUE(outside.empty());
    pickRect(-5, -0.6f, 0, 5, &covered);
    EXPECT_FALSE(covered);
    pickRect(3.5f, 3.5f, 2.5f, 2.5f, &covered);
    EXPECT_FALSE(covered);
    // Half-open: a rectangle ending exactly at a centre does not take it.
    EXPECT_EQ(pickRect(2.5f, 3.5f, 2.0f, 3.0f).size(), 1u);
    // Appends, and leaves what was there when nothing is covered.
    Colours kept{plateColour(0, 0)};
    EXPECT_FALSE(pick->pickColors(GeRectangle<float>(20, 30, 20, 30), kept));
    EXPECT_EQ(kept.size(), 1u);
}

TEST_F(PickScene, TheAcceptanceTestWantsAPointerOverThePlate) {
    auto over = press(at(7.9f, 5.9f));
    EXPECT_TRUE(pick->accepts(PiEventContext(viewer, over)));
    auto beside = press(at(8.1f, 3.0f));
    EXPECT_FALSE(pick->accepts(PiEventContext(viewer, beside)));
    auto below = press(at(3.0f, -0.1f));
    EXPECT_FALSE(pick->accepts(PiEventContext(viewer, below)));
    EvFocusOutEvent focus;
    EXPECT_FALSE(pick->accepts(PiEventContext(viewer, focus)));
}

TEST_F(PickScene, TheImageFollowsTheInputAndTheTime) {
    auto other = rcMake<PiImage>(2, 2, CoRgbaColorTyped<float>(1, 0, 0, 1));
    plate->setValue(0.0, PiValue(PiImagePtr(other)));
    EXPECT_EQ(pick->getImage().get(), other.get());
    EXPECT_EQ(pickRect(-10, 10, -10, 10).size(), 4u);
}

TEST_F(PickScene, OnlyImageInputsArePicked) {
    EXPECT_THROW(PiImgPick::create(amount, timePath, 0), ExCastFailed);
    EXPECT_THROW(PiImgPick::create(RCShdPtr<const PiInput>(), timePath, 0), ExNullPtr);
}

// The colour pick tool on the scene's colour input.
class ColourToolScene : public PickScene {
protected:
    void SetUp() override {
        PickScene::SetUp();
        tool = rcMake<MfImgPickColorTool>(*pick, viewer, node, viewer.path, colour);
        tool->setUndoString("Pick Colour");
        toolset = rcMake<MfToolset>(viewer);
        toolset->appendTool("pick", tool);
        viewer.handler = rcMake<MfCurrentToolEventHandler>(toolset);
    }
    CoRgbColorTyped<float> colourValue() const {
        return colour->getTypedValue<CoRgbColorTyped<float>>(0.0);
    }

    RCShdPtr<MfImgPickColorTool> tool;
    RCShdPtr<MfToolset> toolset;
};

TEST_F(ColourToolScene, AClickPicksThePixelUnderThePointer) {
    auto p = press(at(3.2f, 2.7f));
    EXPECT_TRUE(viewer.deliver(p));
    auto r = release(at(3.2f, 2.7f));
    viewer.deliver(r);
    EXPECT_EQ(colourValue(), CoRgbColorTyped<float>(0.3f, 0.2f, 0.5f));
    EXPECT_EQ(tool->getImgPickManip(), *(tool->begin() + 1));
    ASSERT_EQ(stack().getStepCount(), 1);
    EXPECT_EQ(stack().getStepNames()[0], "Pick Colour");
}

TEST_F(ColourToolScene, APlainDragPicksThePixelUnderEachEventAndWritesTheirMeanOnce) {
    int writes = 0;
    struct Count {
        int* n;
        void hit() { ++*n; }
    } count{&writes};
    CbMethod<Count, CbEmptyType> onChange(&count, &Count::hit);
    tool->getInputRgbColor()->addValueChangedCb(&onChange);

    auto p = press(at(1.5f, 1.5f));
    viewer.deliver(p);
    auto m1 = move(at(2.5f, 1.5f));
    viewer.deliver(m1);
    auto m2 = move(at(20.0f, 1.5f)); // off the plate: nothing
    viewer.deliver(m2);
    auto r = release(at(5.5f, 1.5f));
    viewer.deliver(r);
    // Pixels (1, 1), (2, 1) and (5, 1).
    const CoRgbColorTyped<float> c = colourValue();
    EXPECT_FLOAT_EQ(c.r, (0.1f + 0.2f + 0.5f) / 3.0f);
    EXPECT_FLOAT_EQ(c.g, 0.1f);
    EXPECT_EQ(writes, 1);
    EXPECT_EQ(stack().getStepCount(), 1);
}

TEST_F(ColourToolScene, ACtrlDragSweepsARectangle) {
    auto p = press(at(1.0f, 1.0f), EvKeyboardState::CtrlMask);
    viewer.deliver(p);
    EXPECT_EQ(tool->getImgPickManip(), *tool->begin());
    auto m = move(at(3.0f, 2.0f), EvKeyboardState::CtrlMask);
    viewer.deliver(m);
    // The rubber band is drawn while sweeping, light over dark: window
    // corners of (1, 1)-(3, 2).
    const auto rects = viewer.paint().getItems(WsRecordingPainter::Item::Rect);
    ASSERT_EQ(rects.size(), 2u);
    EXPECT_FLOAT_EQ(rects[1].x0, at(1.0f, 1.0f).x);
    EXPECT_FLOAT_EQ(rects[1].y0, at(3.0f, 2.0f).y);
    EXPECT_FLOAT_EQ(rects[0].x0, rects[1].x0 - 1.0f);
    auto r = release(at(3.0f, 2.0f), EvKeyboardState::CtrlMask);
    viewer.deliver(r);
    // Pixels (1, 1) and (2, 1).
    EXPECT_EQ(colourValue(), CoRgbColorTyped<float>(0.15f, 0.1f, 0.5f));
    EXPECT_TRUE(viewer.paint().getItems(WsRecordingPainter::Item::Rect).empty());
}

TEST_F(ColourToolScene, ACtrlClickPicksOnePixel) {
    auto p = press(at(6.5f, 4.5f), EvKeyboardState::CtrlMask);
    viewer.deliver(p);
    auto r = release(at(6.5f, 4.5f), EvKeyboardState::CtrlMask);
    viewer.deliver(r);
    EXPECT_EQ(colourValue(), CoRgbColorTyped<float>(0.6f, 0.4f, 0.5f));
}

TEST_F(ColourToolScene, APressOffThePlateDoesNotPick) {
    auto p = press(at(-1.0f, 2.0f));
    EXPECT_FALSE(viewer.deliver(p));
    EXPECT_FALSE(tool->isManipulating());
    EXPECT_EQ(stack().getStepCount(), 0);
}

TEST_F(ColourToolScene, ALockedInputRefusesThePickAndLeavesNoStep) {
    colour->setLocked(true);
    const int before = stack().getStepCount();
    auto p = press(at(3.5f, 3.5f));
    viewer.deliver(p);
    auto r = release(at(3.5f, 3.5f));
    viewer.deliver(r);
    EXPECT_EQ(colourValue(), CoRgbColorTyped<float>(0, 0, 0));
    EXPECT_EQ(stack().getStepCount(), before);
}

TEST_F(ColourToolScene, TheToolShowsThePickCursor) {
    EXPECT_EQ(tool->getCursor()->getName(), WsCursorRegistry::Pick);
    auto over = move(at(3.0f, 3.0f), 0, EvButton::None);
    viewer.deliver(over);
    EXPECT_EQ(MfEventHandlerUtil::getCursor(*viewer.handler)->getName(), WsCursorRegistry::Pick);
}

} // namespace
