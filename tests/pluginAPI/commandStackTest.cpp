#include <pluginAPI/piCommandStack.h>
#include <pluginAPI/piGraph.h>
#include <pluginAPI/piInputValue.h>
#include <pluginAPI/piTypedAnimInput.h>

#include <base/cbMethod.h>
#include <base/exBase.h>
#include <base/exReporter.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace {

// A graph with one node of three inputs, and a log of everything the inputs
// and the node tell their listeners.
class UndoScene : public ::testing::Test {
protected:
    void SetUp() override {
        graph = PiGraph::create();
        node = rcMake<PiNode>("keyer");
        gain = rcMake<PiInput>("gain", PiValue(1.0));
        offset = rcMake<PiInput>("offset", PiValue(0.0));
        mode = rcMake<PiInput>("mode", PiValue(0));
        node->addInput(gain);
        node->addInput(offset);
        node->addInput(mode);
        graph->getRoot()->addNode(node);
        gain->addValueChangedCb(&gainChanged);
        node->getController()->addCallback<PiNodeEvent::ValueChanged>(&valueChanged);
    }

    PiCommandStack& stack() { return node->getGraph()->getCommandStack(); }
    void onGainChanged() {
        log.push_back("gain " + std::to_string(gain->getTypedValue<double>(0)));
    }
    void onValueChanged(const PiNodeEvent& e) {
        log.push_back("event " +
                      static_cast<const PiNodeEvent::ValueChanged&>(e).getValue()->getName());
    }

    RCShdPtr<PiGraph> graph;
    RCShdPtr<PiNode> node;
    RCShdPtr<PiInput> gain, offset, mode;
    std::vector<std::string> log;
    CbMethod<UndoScene, CbEmptyType> gainChanged{this, &UndoScene::onGainChanged};
    CbMethod<UndoScene, const PiNodeEvent> valueChanged{this, &UndoScene::onValueChanged};
};

TEST_F(UndoScene, UndoAndRedoRestoreValuesAndKeysExactly) {
    PiTypedAnimInput<double> g(gain), o(offset);
    g.setKey(0.0, 0.25);
    g.setKey(10.0, 0.75);
    const PiInputState keyed = gain->getState();
    const PiInputState flat = offset->getState();
    {
        PiUndoGuard guard(stack(), "Retime");
        g.setKey(5.0, 0.1);
        g.removeKey(0.0);
        g.setValue(10.0, 2.0);
        o.setValue(3.0, -1.5);
        o.setKey(7.0, 4.0);
    }
    const PiInputState gainAfter = gain->getState();
    const PiInputState offsetAfter = offset->getState();
    ASSERT_EQ(stack().getUndoName(), "Retime");
    ASSERT_TRUE(stack().undo());
    EXPECT_TRUE(gain->getState() == keyed);
    EXPECT_TRUE(offset->getState() == flat);
    ASSERT_TRUE(stack().redo());
    EXPECT_TRUE(gain->getState() == gainAfter);
    EXPECT_TRUE(offset->getState() == offsetAfter);
    EXPECT_EQ(g.getValue(5.0), 0.1);
    EXPECT_EQ(o.getValue(7.0), 4.0);
    EXPECT_EQ(stack().getStepCount(), 3); // two implicit key steps, then "Retime"
}

TEST_F(UndoScene, AStepWithoutANameIsNamedAfterItsInput) {
    PiTypedAnimInput<int>(mode).setValue(0.0, 2);
    {
        const PiUndoGuard unnamed(stack(), "");
        PiTypedAnimInput<double>(gain).setValue(0.0, 2.0);
    }
    ASSERT_EQ(stack().getStepNames(), (std::vector<LiString>{"mode", "gain"}));
    stack().undo();
    stack().undo();
    EXPECT_EQ(mode->getTypedValue<int>(0.0), 0);
}

TEST_F(UndoScene, TenThousandWritesOfADragMakeOneStepWithTheMemoryOfOne) {
    auto value = PiInputValue<double>::createTyped(gain, nullptr);
    auto drag = [&](int writes) {
        { PiUndoGuard begin(stack(), "Drag Gain", PiExecParam(1)); }
        for (int i = 1; i <= writes; ++i) {
            PiUndoGuard step(stack(), "", PiExecParam(2));
            value->setValue(1.0 + i * 1e-4);
        }
        { PiUndoGuard end(stack(), "", PiExecParam(3)); }
    };
    drag(1);
    ASSERT_EQ(stack().getStepCount(), 1);
    const std::size_t one = stack().getMemoryUse();
    stack().undo();
    stack().clear();
    drag(10000);
    ASSERT_EQ(stack().getStepNames(), (std::vector<LiString>{"Drag Gain"}));
    EXPECT_EQ(stack().getRecordCount(0), 1);
    EXPECT_EQ(stack().getMemoryUse(), one);
    stack().undo();
    EXPECT_EQ(value->getValue(), 1.0);
    stack().redo();
    EXPECT_DOUBLE_EQ(value->getValue(), 2.0);
}

TEST_F(UndoScene, TransitionsSpanGuardsAndAnUnendedBeginIsClosedByTheNext) {
    PiTypedAnimInput<double> g(gain);
    { PiUndoGuard begin(stack(), "Balance", PiExecParam(1)); }
    EXPECT_TRUE(stack().isStepOpen());
    {
        PiUndoGuard cont(stack(), "", PiExecParam(2));
        g.setValue(0, 3.0);
    }
    {
        PiUndoGuard inner(stack(), "ignored inside"); // joins the open step
        PiTypedAnimInput<double>(offset).setValue(0, 1.0);
    }
    EXPECT_TRUE(stack().isStepOpen());
    EXPECT_EQ(stack().getStepCount(), 0);
    { PiUndoGuard end(stack(), "", PiExecParam(3)); }
    EXPECT_FALSE(stack().isStepOpen());
    ASSERT_EQ(stack().getStepNames(), (std::vector<LiString>{"Balance"}));
    EXPECT_EQ(stack().getRecordCount(0), 2);

    { PiUndoGuard begin(stack(), "First", PiExecParam(1)); }
    g.setValue(0, 4.0);
    { PiUndoGuard begin(stack(), "Second", PiExecParam(1)); }
    g.setValue(0, 5.0);
    { PiUndoGuard end(stack(), "", PiExecParam(3)); }
    EXPECT_EQ(stack().getStepNames(), (std::vector<LiString>{"Balance", "First", "Second"}));
}

TEST_F(UndoScene, NestedGuardsJoinTheOutermostStep) {
    {
        PiUndoGuard outer(stack(), "Reset");
        {
            PiUndoGuard inner(stack(), "Inner");
            gain->setValue(0, PiValue(2.0));
        }
        EXPECT_TRUE(stack().isStepOpen());
        offset->setValue(0, PiValue(2.0));
    }
    EXPECT_EQ(stack().getStepNames(), (std::vector<LiString>{"Reset"}));
    EXPECT_EQ(stack().getRecordCount(0), 2);
}

TEST_F(UndoScene, StepsThatChangeNothingAreDropped) {
    { PiUndoGuard nothing(stack(), "Nothing"); }
    {
        PiUndoGuard roundTrip(stack(), "There and back");
        gain->setValue(0, PiValue(5.0));
        gain->setValue(0, PiValue(1.0));
    }
    gain->setValue(0, PiValue(1.0)); // the value it has: no change, no step
    EXPECT_EQ(stack().getStepCount(), 0);
    EXPECT_EQ(log.size(), 4u); // the round trip notified both of its writes
}

TEST_F(UndoScene, UndoAndRedoFireTheCallbacksOfAnEdit) {
    gain->setValue(0, PiValue(2.0));
    EXPECT_EQ(log, (std::vector<std::string>{"gain 2.000000", "event gain"}));
    log.clear();
    stack().undo();
    EXPECT_EQ(log, (std::vector<std::string>{"gain 1.000000", "event gain"}));
    log.clear();
    stack().redo();
    EXPECT_EQ(log, (std::vector<std::string>{"gain 2.000000", "event gain"}));
}

TEST_F(UndoScene, AWriteDuringUndoIsRefusedAndTheStepIsStillUndoneWhole) {
    {
        PiUndoGuard step(stack(), "Both");
        gain->setValue(0, PiValue(2.0));
        offset->setValue(0, PiValue(3.0));
    }
    struct Writer : CbHandler<CbEmptyType> {
        PiInput* target = nullptr;
        void callback(CbEmptyType&) override { target->setValue(0, PiValue(9)); }
    } writer;
    writer.target = mode.get();
    offset->addValueChangedCb(&writer); // undone first: the last input first
    EXPECT_THROW(stack().undo(), ExAssertionFailed);
    EXPECT_FALSE(stack().isReplaying());
    EXPECT_EQ(mode->getTypedValue<int>(0), 0);
    EXPECT_EQ(offset->getTypedValue<double>(0), 0.0);
    EXPECT_EQ(gain->getTypedValue<double>(0), 1.0);
    EXPECT_EQ(stack().getRedoCount(), 1);
    EXPECT_EQ(stack().getStepCount(), 1);
}

TEST_F(UndoScene, AContainedExceptionClosesTheOpenStep) {
    { PiUndoGuard begin(stack(), "Drag", PiExecParam(1)); }
    gain->setValue(0, PiValue(3.0));
    const bool ok = exContain("test", [&] {
        PiUndoGuard cont(stack(), "", PiExecParam(2));
        offset->setValue(0, PiValue(1.0));
        throw std::runtime_error("tool failed");
    });
    EXPECT_FALSE(ok);
    EXPECT_FALSE(stack().isStepOpen());
    ASSERT_EQ(stack().getStepNames(), (std::vector<LiString>{"Drag"}));
    EXPECT_EQ(stack().getRecordCount(0), 2);
    // The drag's late end is harmless.
    { PiUndoGuard end(stack(), "", PiExecParam(3)); }
    EXPECT_EQ(stack().getStepCount(), 1);
}

TEST_F(UndoScene, ANewStepDiscardsUndoneStepsAndTheCleanIndexFollows) {
    gain->setValue(0, PiValue(2.0));
    stack().setClean();
    gain->setValue(0, PiValue(3.0));
    EXPECT_FALSE(stack().isClean());
    stack().undo();
    EXPECT_TRUE(stack().isClean());
    stack().undo();
    offset->setValue(0, PiValue(1.0));
    EXPECT_EQ(stack().getStepNames(), (std::vector<LiString>{"offset"}));
    EXPECT_EQ(stack().getCleanIndex(), -1);
    // Clean where the new step begins: that state is still there.
    stack().undo();
    stack().setClean();
    mode->setValue(0, PiValue(1));
    EXPECT_EQ(stack().getCleanIndex(), 0);
}

TEST_F(UndoScene, LockingIsAnUndoableEdit) {
    gain->setLocked(true);
    EXPECT_FALSE(gain->setValue(0, PiValue(2.0)));
    stack().undo();
    EXPECT_FALSE(gain->isLocked());
    EXPECT_TRUE(gain->setValue(0, PiValue(2.0)));
}

} // namespace
