// A tool set that goes away while one of its tools is dragging: during an
// undo the drag is dropped without a write, and a tool that fails to end is
// reported, never passed out of the destructor.
#include "gfxScene.h"

#include <gfx/mfRangeManipulator.h>
#include <pluginAPI/piCommandStack.h>
#include <pluginAPI/piInputValue.h>

#include <base/cbMethod.h>
#include <base/exReporter.h>

#include <stdexcept>

namespace {

// A tool whose bar (at the origin, 80 window pixels wide: the world's 8 at
// the scene's zoom) writes the amount when the drag ends, or throws there
// when told to.
class EndWritingTool : public MfTool {
public:
    explicit EndWritingTool(const RCShdPtr<PiInput>& input)
        : bar(new MfRangeManipulator(GeRectangle<float>(0, 80, 0, 10), "bar"))
        , value(PiInputValue<double>::createTyped(input, nullptr)) {
        addManipulator(bar);
    }
    void finalizeManipulation(const PiEventContext&) override {
        if (failOnEnd) {
            throw std::runtime_error("the tool cannot end");
        }
        value->setValue(1.0);
    }

    RCShdPtr<MfRangeManipulator> bar;
    RCShdPtr<PiInputValue<double>> value;
    bool failOnEnd = false;
};

// The viewer's handler holds one such tool; a drag of it is under way.
class TeardownScene : public GfxScene {
protected:
    void SetUp() override {
        GfxScene::SetUp();
        ExReporter::getInstance().clear();
        tool = rcMake<EndWritingTool>(amount);
        handler = rcMake<MfCurrentToolEventHandler>(rcMake<MfToolset>(viewer));
        handler->appendTool("end writer", tool);
        viewer.handler = handler;
        auto p = press(at(2.0f, 0.5f));
        viewer.deliver(p);
        ASSERT_TRUE(tool->isManipulating());
    }

public:
    // What a host does when an undo takes its viewer elsewhere: the viewer's
    // handler goes, in the middle of the replay.
    void dropHandler() {
        viewer.handler.reset();
        handler.reset();
    }

protected:
    RCShdPtr<EndWritingTool> tool;
    RCShdPtr<MfCurrentToolEventHandler> handler;
};

TEST_F(TeardownScene, AHandlerDroppedDuringAnUndoDropsTheDragWithoutWriting) {
    // A step before the drag, whose undo drops the handler.
    {
        PiUndoGuard step(stack(), "colour");
        colour->setValue(0, PiValue(CoRgbColorTyped<float>(1, 0, 0)));
    }
    CbMethod<TeardownScene, CbEmptyType> onColour{this, &TeardownScene::dropHandler};
    colour->addValueChangedCb(&onColour);
    // The drag's own step closes empty and is dropped; the colour's is undone.
    ASSERT_NO_THROW(stack().undo());
    EXPECT_FALSE(handler);
    EXPECT_FALSE(tool->isManipulating());
    EXPECT_EQ(amount->getTypedValue<double>(0), 0.5) << "no write while replaying";
    EXPECT_EQ(stack().getUndoCount(), 0);
    EXPECT_FALSE(stack().isStepOpen());
    EXPECT_EQ(ExReporter::getInstance().getReportCount(), 0u);
    colour->removeValueChangedCb(&onColour);
}

TEST_F(TeardownScene, OutsideAnUndoTheDragEndsAsAReleaseWouldEndIt) {
    viewer.handler.reset();
    handler.reset();
    EXPECT_EQ(amount->getTypedValue<double>(0), 1.0);
    EXPECT_EQ(stack().getStepCount(), 1);
    EXPECT_FALSE(stack().isStepOpen());
}

TEST_F(TeardownScene, AToolThatFailsToEndIsReportedAndTheHandlerStillGoes) {
    tool->failOnEnd = true;
    viewer.handler.reset();
    ASSERT_NO_THROW(handler.reset());
    EXPECT_FALSE(stack().isStepOpen());
    const std::vector<ExReporter::Report> reports = ExReporter::getInstance().getReports();
    ASSERT_EQ(reports.size(), 1u);
    EXPECT_EQ(reports[0].source, "tool \"end writer\": ending its manipulation");
    EXPECT_EQ(reports[0].message, "the tool cannot end");
}

} // namespace
