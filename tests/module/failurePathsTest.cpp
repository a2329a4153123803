// Failures of the matte-generation tools, handlers and panel, each met
// through the host's own entry points (a viewer's event delivery, a pointer
// grab, a handler factory): the host reports it once with its text (for a
// broken invariant the source, line and expression), no undo step stays
// open, and the viewer, its tools and the panel go on working.
//
// Some invariants cannot break through the host as it is (nothing but a bar
// is ever grasped, a bar lets go only when its tool releases it); there a
// public operation of the host stands in for the broken invariant, and the
// rest of the path is the host's own.
#include "keyerPanelScene.h"
#include "mgScene.h"
#include "support/takeReports.h"

#include <base/exBase.h>
#include <gfx/mfToolset.h>
#include <pluginAPI/piEventHandler.h>
#include <tesseraCore/tsDgInterface.h>
#include <tesseraCore/tsSpillBlendInterface.h>
#include <ui/uiHotkeyRegistry.h>

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
    // A manipulator that is no bar, over the whole view, added to the tool
    // after its column: the first press the column does not take grasps it.
    // It gives no feedback, so that events go on to the tool as before.
    RCShdPtr<MfManipulator> addForeignManipulator() {
        const RCShdPtr<MfManipulator> foreign(new MfRangeManipulator(
            GeRectangle<float>(-1.0e4f, 1.0e4f, -1.0e4f, 1.0e4f), "foreign"));
        foreign->setFeedbackEventPredicate(!PrdPredicate<EvEvent>::all());
        tool().addManipulator(foreign);
        return foreign;
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

TEST_F(SampleMatteFailures, AGraspOfSomethingOtherThanABarIsReportedAndChangesNothing) {
    const RCShdPtr<MfManipulator> foreign = addForeignManipulator();
    const std::vector<PiInputState> before = nodeState();
    // Samples where no bar comes up, then grasps the foreign manipulator.
    deliver(press(at(blockCentre(Key))));
    deliver(release(at(blockCentre(Key))));
    EXPECT_EQ(takeReports(),
              std::vector<std::string>{R"(viewer matte viewer: assertion failed: "found" at )"
                                       R"(tools\tessera\src\tsMgSampleMatteTool, line 625)"});
    EXPECT_FALSE(tool().isManipulating());
    EXPECT_FALSE(foreign->isManipulating());
    EXPECT_FALSE(stack().isStepOpen());
    EXPECT_EQ(stack().getStepCount(), 0);
    EXPECT_TRUE(nodeState() == before);

    foreign->setState(MfManipulator::Hidden);
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

// The three stages' handler factories given a node that is not a keyer, or
// none: refused with the type expected, and nothing of the refused handler
// stays registered on the viewer.
class HandlerFactories : public MgScene {};

TEST_F(HandlerFactories, ANodeThatIsNoKeyerIsRefusedAndLeavesNoHotkeyBehind) {
    const RCShdPtr<PiNode> plain = rcMake<PiNode>("grade");
    graph->getRoot()->addNode(plain);
    const std::vector<std::pair<TsMgInterface::EhFactory, std::string>> factories{
        {TsMgInterface::getEhFactory(), "TsMgInterface"},
        {TsDgInterface::getEhFactory(), "PiImageModifier"},
        {TsSpillBlendInterface::getEhFactory(), "TsSpillBlendInterface"}};
    for (const auto& [factory, expected] : factories) {
        ASSERT_TRUE(factory) << expected;
        try {
            factory(*viewer, plain, rcMake<PiPath>(plain));
            ADD_FAILURE() << "a handler for a plain node";
        } catch (const ExCastFailed& e) {
            EXPECT_EQ(std::string(e.what()),
                      "cast failed: an object of type PiNodeController is not a " + expected);
        }
        try {
            factory(*viewer, RCShdPtr<PiNode>(), viewer->getPath());
            ADD_FAILURE() << "a handler for no node";
        } catch (const ExNullPtr& e) {
            EXPECT_EQ(e.getTypeName(), "PiNode");
        }
    }

    // The viewer's widget hands on the hotkeys of the stage it shows, and of
    // no other.
    UiHotkeyRegistry& registry = UiHotkeyRegistry::getInstance();
    const auto registered = [&registry, this](const char* name) {
        return registry.isRegistered(registry.findEntry(UiHotkeyRegistry::TesseraDomain, name),
                                     viewer->getEventHandler());
    };
    EXPECT_TRUE(registered("Sample Matte"));
    for (const char* name : {"Sample Degrain", "Adjust Spill", "Adjust Blend"}) {
        EXPECT_FALSE(registered(name)) << name;
    }
    // The handler in place still takes its hotkeys.
    useTool(0);
    pressKey(Qt::Key_M);
    EXPECT_EQ(currentTool(), TsMgTool::getManipToolName(2));
}

// The matte-generation panel of the main panel, with the viewer beside it.
class KeyColourPickFailure : public ::testing::Test, public KeyerPanelScene {
protected:
    void SetUp() override {
        build(1);
        select(keyers[0]);
        history().clear();
        cursors = UiApplication::getInstance().getOverrideCursorDepth();
    }
    void TearDown() override {
        tearDown();
        EXPECT_EQ(UiApplication::getInstance().getOverrideCursorDepth(), cursors);
    }
    int cursorDepth() const { return UiApplication::getInstance().getOverrideCursorDepth(); }

    int cursors = 0;
};

TEST_F(KeyColourPickFailure, APickLandingOnAViewerWithoutToolsIsReportedAndEndsThePick) {
    viewer->setEventHandler(RCShdPtr<PiEventHandler>(new PiEventHandler));
    const RCShdPtr<UiDualState> toggle = matteWidget<UiDualState>("keyColor1Toggle");
    ASSERT_TRUE(toggle);
    toggle->click();
    settle();
    ASSERT_TRUE(UiGrab::pointer().isGrabbed());
    const QPointF at = viewerPoint(5.5f, 10.5f);
    sendMouse(viewer, QEvent::MouseButtonPress, at);
    sendMouse(viewer, QEvent::MouseButtonRelease, at);
    settle();
    EXPECT_EQ(takeReports(),
              std::vector<std::string>{"grab handler key colour pick: null pointer where an "
                                       "object of type PiCurrentToolEventHandler is required"});
    // The pick is over: grabs released, its cursor gone, nothing changed.
    EXPECT_FALSE(UiGrab::pointer().isGrabbed());
    EXPECT_FALSE(UiGrab::keyboard().isGrabbed());
    EXPECT_EQ(cursorDepth(), cursors);
    EXPECT_EQ(history().getStepCount(), 0);
    EXPECT_FALSE(history().isStepOpen());

    // With its tools back, the viewer takes the next pick.
    viewer->setNode(keyers[0]);
    settle();
    toggle->click();
    settle();
    sendMouse(viewer, QEvent::MouseButtonPress, at);
    sendMouse(viewer, QEvent::MouseButtonRelease, at);
    settle();
    const CoRgbColorTyped<float> picked = keyColour(0, TsTypes::KeyColor1);
    EXPECT_FLOAT_EQ(picked.g, Left.g);
    EXPECT_EQ(history().getStepCount(), 1);
    EXPECT_EQ(cursorDepth(), cursors);
    EXPECT_TRUE(takeReports().empty());
}

} // namespace
