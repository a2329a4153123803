// Failures of the sample-matte tool, each met through a viewer's event
// delivery: the host reports it once with its text (for a broken invariant
// the source, line and expression), no undo step stays open, and the viewer
// and its tools go on working.
//
// Some invariants cannot break through the host as it is (nothing but a bar
// is ever grasped, a bar lets go only when its tool releases it); there a
// public operation of the host stands in for the broken invariant, and the
// rest of the path is the host's own.
#include "mgScene.h"
#include "support/takeReports.h"

#include <base/exBase.h>
#include <gfx/mfToolset.h>
#include <pluginAPI/piEventHandler.h>

#include <string>
#include <vector>

namespace {

using P = TsMgTypes;

// The viewer in the matte stage with the sample-matte tool current.
class SampleMatteFailures : public MgScene {
protected:
    void SetUp() override {
        MgScene::SetUp();
        useTool(2);
    }

    MfTool& tool() { return *handler().getToolset()->getTool(TsMgTool::getManipToolName(2)); }
    MfRangeManipulator& bar(P::MatteParam p) {
        return refCast<MfRangeManipulator>(*(*tool().begin())->getChild(p));
    }
    // The window point of a value on a bar: its x extent spans [0, 1].
    GePoint2<float> barPoint(P::MatteParam p, float value) {
        return bar(p)
            .getLocalToWindow(viewer->getView())
            .transformPoint({value * 400.0f - 200.0f, 0.0f});
    }

    // The tool works as before: Escape hides a column left shown, a click
    // samples the foreground, a drag of its bar is one named step, and the
    // bar follows changes made elsewhere.
    void expectTheToolStillWorks() {
        deliver(
            EvKeyDownEvent(at(blockCentre(Highlight)), EvKeyboardState(), EvKeyCode::KeyEscape));
        const int steps = stack().getUndoCount();
        click(blockCentre(Foreground));
        ASSERT_NE(bar(P::EdgeSoftness).getState(), MfManipulator::Hidden);
        deliver(press(barPoint(P::EdgeSoftness, 0.5f)));
        deliver(move(barPoint(P::EdgeSoftness, 0.8f)));
        deliver(release(barPoint(P::EdgeSoftness, 0.8f)));
        EXPECT_NEAR(param(P::EdgeSoftness), 0.8, 1e-5);
        EXPECT_EQ(stack().getUndoCount(), steps + 1);
        EXPECT_EQ(stack().getUndoName(), catalogueText("MSG_TS_SET_MATTE_SAMPLE"));
        EXPECT_FALSE(stack().isStepOpen());
        setParam(P::EdgeSoftness, 0.25);
        EXPECT_FLOAT_EQ(bar(P::EdgeSoftness).getValue(), -100.0f);
        EXPECT_TRUE(takeReports().empty());
    }
};

TEST_F(SampleMatteFailures, APickThatFindsNoPixelWhereTheToolSamplesIsReported) {
    // A second viewer shows the first one's handler with its view 80 plate
    // pixels to the right: a point over the plate there lies past the
    // plate's right edge in the viewer the tool samples in. The tool accepts
    // the click (the event's own viewer) and its pick rectangle covers no
    // pixel.
    UiViewer second(nullptr, "second viewer");
    second.resize(1000, 400);
    second.getMutableView().setZoom(10.0f);
    second.getMutableView().setPan({850.0f, 250.0f});
    second.setEventHandler(viewer->getCurrentEventHandler());
    const GePoint2<float> p = VwUtils::worldToWindowOrtho(second.getView(), blockCentre(Key));
    ASSERT_GE(VwUtils::windowToWorldOrtho(viewer->getView(), p).x, 82.5f);

    auto down = press(p);
    second.deliver(down);
    auto up = release(p);
    second.deliver(up);
    EXPECT_EQ(takeReports(),
              std::vector<std::string>{R"(viewer second viewer: assertion failed: )"
                                       R"x("_imgPick.pickColors( rect, colors )" at )x"
                                       R"(tools\tessera\src\tsMgSampleMatteTool, line 563)"});
    EXPECT_EQ(stack().getStepCount(), 0);
    EXPECT_FALSE(stack().isStepOpen());
    EXPECT_FALSE(tool().isManipulating());
    // The sample was marked as shown before its pick: the column shows as
    // it stood, until Escape hides it.
    EXPECT_FALSE(paint().isEmpty());
    expectTheToolStillWorks();
}

TEST_F(SampleMatteFailures, ABarThatLetsGoDuringItsDragIsReportedAndTheStepKeepsWhatWasDone) {
    click(blockCentre(Foreground));
    ASSERT_NE(bar(P::EdgeSoftness).getState(), MfManipulator::Hidden);
    deliver(press(barPoint(P::EdgeSoftness, 0.5f)));
    deliver(move(barPoint(P::EdgeSoftness, 0.6f)));
    ASSERT_NEAR(param(P::EdgeSoftness), 0.6, 1e-5);
    // The bar lets go behind its tool's back; the next move finds it idle.
    bar(P::EdgeSoftness).abortManipulation();
    deliver(move(barPoint(P::EdgeSoftness, 0.7f)));
    deliver(release(barPoint(P::EdgeSoftness, 0.7f)));
    EXPECT_EQ(takeReports(),
              std::vector<std::string>{R"(viewer matte viewer: assertion failed: )"
                                       R"x("_manip->getManipulator( _manipP )->isManipulating()" )x"
                                       R"(at tools\tessera\src\tsMgSampleMatteTool, line 635)"});
    EXPECT_FALSE(tool().isManipulating());
    EXPECT_FALSE(stack().isStepOpen());
    ASSERT_EQ(stack().getStepCount(), 1);
    EXPECT_EQ(stack().getUndoName(), catalogueText("MSG_TS_SET_MATTE_SAMPLE"));
    EXPECT_NEAR(param(P::EdgeSoftness), 0.6, 1e-5); // the failed move wrote nothing

    // Undone, the parameter and its bar are back where the drag began.
    ASSERT_TRUE(stack().undo());
    EXPECT_DOUBLE_EQ(param(P::EdgeSoftness), 0.5);
    EXPECT_FLOAT_EQ(bar(P::EdgeSoftness).getValue(), 0.0f);
    expectTheToolStillWorks();
}

} // namespace
