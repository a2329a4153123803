#include "gfxScene.h"

#include <gfx/mfEventPredicates.h>
#include <gfx/mfManipObject.h>
#include <gfx/mfRangeManipulator.h>
#include <gfx/mfToolset.h>
#include <gfx/wsCursorRegistry.h>
#include <pluginAPI/piCommandStack.h>
#include <pluginAPI/piInputValue.h>

#include <base/exBase.h>
#include <base/exReporter.h>

#include <stdexcept>

namespace {

// A slider tool: one bar of 200 window pixels (scaling behaviour 1) placed at
// world (4, 3), mapping x in [-100, 100] onto the amount's [0, 1]. It logs
// the protocol and can be told to throw in one of its steps.
class SliderTool : public MfTool {
public:
    SliderTool(const RCShdPtr<PiInput>& input, const RCShdPtr<const PiTimePath>& timePath)
        : bar(new MfRangeManipulator(GeRectangle<float>(-100, 100, -5, 5), "Amount"))
        , value(PiInputValue<double>::createTyped(input, timePath)) {
        bar->setScalingBehaviour(1);
        bar->setBaseTransform(GeAffineMatrix3<float>::translation(4.0f, 3.0f));
        bar->setValue(toBar(value->getValue()));
        addManipulator(bar);
        setUndoString("Set Amount");
    }

    static float toBar(double v) { return static_cast<float>(v * 200.0 - 100.0); }

    void prepareManipulation(const PiEventContext&) override { log.push_back("prepare"); }
    void initiateManipulation(const PiEventContext&) override {
        log.push_back(bar->isManipulating() ? "initiate grasped" : "initiate");
        maybeThrow("initiate");
    }
    void monitorManipulation(const PiEventContext&) override {
        log.push_back("monitor");
        value->setValue((bar->getValue() + 100.0) / 200.0);
        maybeThrow("monitor");
        if (interruptInMonitor) {
            interruptManipulation();
        }
    }
    void finalizeManipulation(const PiEventContext&) override {
        log.push_back("finalize");
        maybeThrow("finalize");
    }

    void maybeThrow(const std::string& step) {
        if (throwIn == step) {
            throw std::runtime_error("slider broke in " + step);
        }
    }

    RCShdPtr<MfRangeManipulator> bar;
    RCShdPtr<PiInputValue<double>> value;
    std::vector<std::string> log;
    std::string throwIn;
    bool interruptInMonitor = false; // as a value change that closes a viewer does
};

class ToolScene : public GfxScene {
protected:
    void SetUp() override {
        GfxScene::SetUp();
        ExReporter::getInstance().clear();
        timePath = RCShdPtr<const PiTimePath>(new PiTimePath(&viewer.time, viewer.path));
        tool = rcMake<SliderTool>(amount, timePath);
        toolset = rcMake<MfToolset>(viewer);
        toolset->appendTool("Slider", tool);
        viewer.handler = rcMake<MfCurrentToolEventHandler>(toolset);
    }
    void TearDown() override { ExReporter::getInstance().clear(); }

    // Window point of bar position x (the bar's origin is at world (4, 3):
    // window (90, 220)).
    GePoint2<float> onBar(float x) const { return {90.0f + x, 220.0f}; }
    double amountValue() const { return amount->getTypedValue<double>(0.0); }

    RCShdPtr<const PiTimePath> timePath;
    RCShdPtr<SliderTool> tool;
    RCShdPtr<MfToolset> toolset;
};

TEST_F(ToolScene, TheProtocolRunsInOrderAndAReleaseWhereTheLastMoveWasIsNotMonitoredTwice) {
    auto p = press(onBar(10));
    viewer.deliver(p);
    auto m = move(onBar(20));
    viewer.deliver(m);
    auto r = release(onBar(20));
    viewer.deliver(r);
    EXPECT_EQ(tool->log,
              (std::vector<std::string>{"prepare", "initiate grasped", "monitor", "finalize"}));

    tool->log.clear();
    auto p2 = press(onBar(10));
    viewer.deliver(p2);
    auto r2 = release(onBar(30));
    viewer.deliver(r2);
    EXPECT_EQ(tool->log,
              (std::vector<std::string>{"prepare", "initiate grasped", "monitor", "finalize"}));
    EXPECT_FLOAT_EQ(tool->bar->getValue(), 30.0f);
}

TEST_F(ToolScene, AClickWithoutMovingChangesNothingAndLeavesNoStep) {
    const float before = tool->bar->getValue();
    auto p = press(onBar(-70));
    viewer.deliver(p);
    auto r = release(onBar(-70));
    viewer.deliver(r);
    EXPECT_EQ(tool->bar->getValue(), before);
    EXPECT_EQ(stack().getStepCount(), 0);
    EXPECT_FALSE(stack().isStepOpen());
}

TEST_F(ToolScene, ARangeManipulatorDraggedPastItsEndsStopsAtThem) {
    auto p = press(onBar(0));
    viewer.deliver(p);
    auto far = move(onBar(500));
    viewer.deliver(far);
    EXPECT_FLOAT_EQ(tool->bar->getValue(), 100.0f);
    EXPECT_DOUBLE_EQ(amountValue(), 1.0);
    // Off the bar vertically as well: only x counts.
    auto below = move({90.0f - 800.0f, 400.0f});
    viewer.deliver(below);
    EXPECT_FLOAT_EQ(tool->bar->getValue(), -100.0f);
    EXPECT_DOUBLE_EQ(amountValue(), 0.0);
    auto r = release({90.0f - 800.0f, 400.0f});
    viewer.deliver(r);
    EXPECT_EQ(stack().getStepCount(), 1);
}

TEST_F(ToolScene, AThrowingToolIsAbandonedAndLeavesNoOpenStep) {
    tool->throwIn = "monitor";
    auto p = press(onBar(0));
    viewer.deliver(p);
    auto m = move(onBar(50));
    const bool contained = exContain("viewer event", [&] { viewer.deliver(m); });
    EXPECT_FALSE(contained);
    EXPECT_FALSE(tool->isManipulating());
    EXPECT_FALSE(tool->bar->isManipulating());
    EXPECT_FALSE(stack().isStepOpen());
    ASSERT_EQ(ExReporter::getInstance().getReportCount(), 1u);
    EXPECT_NE(ExReporter::getInstance().getReports()[0].message.find("slider broke in monitor"),
              std::string::npos);
    // What was written before the throw is one step, and undoes.
    EXPECT_DOUBLE_EQ(amountValue(), 0.75);
    EXPECT_EQ(stack().getStepNames(), std::vector<LiString>{"Set Amount"});

    // The tool works again afterwards.
    tool->throwIn.clear();
    auto p2 = press(onBar(0));
    viewer.deliver(p2);
    auto m2 = move(onBar(-100));
    viewer.deliver(m2);
    auto r2 = release(onBar(-100));
    viewer.deliver(r2);
    EXPECT_DOUBLE_EQ(amountValue(), 0.0);
    EXPECT_EQ(stack().getStepCount(), 2);
    EXPECT_FALSE(stack().isStepOpen());
}

TEST_F(ToolScene, ABarKeepsItsSizeOnScreenWhenZoomingWhateverItsScalingBehaviour) {
    // A slider bar is a control: its tree is laid out in window pixels, so
    // that a drag moves it by as much at any zoom.
    for (int behaviour : {1, 0}) {
        tool->bar->setScalingBehaviour(behaviour);
        viewer.view.setZoom(2.5f);
        const GePoint2<float> origin = at(4.0f, 3.0f);
        viewer.paint();
        const auto bars = viewer.painter.getItems(WsRecordingPainter::Item::Rect);
        ASSERT_FALSE(bars.empty());
        EXPECT_FLOAT_EQ(bars[0].x1 - bars[0].x0, 200.0f) << behaviour;
        EXPECT_FLOAT_EQ(0.5f * (bars[0].x0 + bars[0].x1), origin.x) << behaviour;
    }
}

// A release away from the last move monitors first; when that ends the drag
// (a value change that closes a viewer interrupts it), the release has
// nothing left to end.
TEST_F(ToolScene, AReleaseWhoseLastMoveEndsTheDragEndsNothingMore) {
    tool->interruptInMonitor = true;
    auto p = press(onBar(0));
    viewer.deliver(p);
    auto r = release(onBar(50));
    viewer.deliver(r);
    EXPECT_EQ(tool->log,
              (std::vector<std::string>{"prepare", "initiate grasped", "monitor", "finalize"}));
    EXPECT_FALSE(tool->isManipulating());
    EXPECT_FALSE(tool->bar->isManipulating());
    EXPECT_FALSE(stack().isStepOpen());
    EXPECT_DOUBLE_EQ(amountValue(), 0.75);
    EXPECT_EQ(stack().getStepCount(), 1);
}

} // namespace
