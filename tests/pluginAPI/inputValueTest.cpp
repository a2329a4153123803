#include <pluginAPI/piGraph.h>
#include <pluginAPI/piInputRgbColor.h>
#include <pluginAPI/piInputValue.h>

#include <base/cbMethod.h>
#include <base/exBase.h>

#include <gtest/gtest.h>

#include <limits>
#include <memory>

namespace {

// A keyed input seen through views at the time of a time client.
class InputViews : public ::testing::Test {
protected:
    void SetUp() override {
        graph = PiGraph::create();
        node = rcMake<PiNode>("node");
        softness = rcMake<PiInput>("softness", PiValue(0.0));
        key = rcMake<PiStructuredInput>("keyColor1", CoRgbColorTyped<float>());
        node->addInput(softness);
        node->addInput(key);
        graph->getRoot()->addNode(node);
        softness->setKey(0.0, PiValue(0.0));
        softness->setKey(10.0, PiValue(1.0));
        softness->setInterpolation(PiInterpolation::Linear);
        client = std::make_unique<TmTimeClient>(5.0);
        timePath = RCShdPtr<const PiTimePath>(
            new PiTimePath(client.get(), RCShdPtr<const PiPath>(new PiPath(node))));
    }

    void onChanged() { ++changed; }
    void onUpdate() { ++updates; }

    RCShdPtr<PiGraph> graph;
    RCShdPtr<PiNode> node;
    RCShdPtr<PiInput> softness;
    RCShdPtr<PiStructuredInput> key;
    std::unique_ptr<TmTimeClient> client;
    RCShdPtr<const PiTimePath> timePath;
    int changed = 0;
    int updates = 0;
    CbMethod<InputViews, CbEmptyType> changedCb{this, &InputViews::onChanged};
    CbMethod<InputViews, CbEmptyType> updateCb{this, &InputViews::onUpdate};
};

TEST_F(InputViews, AViewReadsAndWritesAtItsTimePathsTime) {
    auto view = PiInputValue<double>::createTyped(softness, timePath);
    EXPECT_DOUBLE_EQ(view->getValue(), 0.5);
    EXPECT_TRUE(view->setValue(0.9)); // a key at frame 5
    EXPECT_TRUE(softness->hasKeyAt(5.0));
    softness->setInterpolation(PiInterpolation::Linear);
    client->setTime(7.5);
    EXPECT_DOUBLE_EQ(view->getValue(), 0.95);
    EXPECT_EQ(timePath->getPath()->toString(), "/node");
}

TEST_F(InputViews, NeedsUpdateTellsAStaleCacheFromEditsAndTimeChanges) {
    auto view = PiInputValue<double>::createTyped(softness, timePath);
    EXPECT_FALSE(view->needsUpdate());
    softness->setKey(10.0, PiValue(0.5));
    softness->setInterpolation(PiInterpolation::Linear);
    EXPECT_TRUE(view->needsUpdate());
    EXPECT_DOUBLE_EQ(view->getValue(), 0.25); // live even before the update
    view->update();
    EXPECT_FALSE(view->needsUpdate());
    client->setTime(6.0);
    EXPECT_TRUE(view->needsUpdate());
    view->update();
    EXPECT_DOUBLE_EQ(view->getValue(), 0.3);
}

TEST_F(InputViews, ChangedHandlersFollowTheInputUpdateHandlersTheTime) {
    auto view = PiInputValue<double>::createTyped(softness, timePath);
    view->addValueChangedCb(&changedCb);
    view->addUpdateCb(&updateCb);
    softness->setKey(0.0, PiValue(0.2));
    EXPECT_EQ(changed, 1);
    EXPECT_EQ(updates, 0);
    client->setTime(8.0);
    client->setTime(8.0);
    EXPECT_EQ(updates, 1);
    view->removeValueChangedCb(&changedCb);
    softness->setKey(0.0, PiValue(0.3));
    EXPECT_EQ(changed, 1);
}

// A refused write changes nothing; what shows the value hears of the value
// kept, once the step under way closes (a drag's, here).
TEST_F(InputViews, RefusedWritesChangeNothingAndAnnounceTheValueKept) {
    auto view = PiInputValue<double>::createTyped(softness, timePath);
    view->addValueChangedCb(&changedCb);
    const PiInputState before = softness->getState();
    changed = 0;
    EXPECT_FALSE(view->setValue(std::numeric_limits<double>::quiet_NaN()));
    EXPECT_EQ(changed, 1);
    softness->setLocked(true);
    changed = 0;
    EXPECT_TRUE(view->isLocked());
    PiCommandStack& stack = node->getGraph()->getCommandStack();
    {
        const PiUndoGuard drag(stack, "drag");
        EXPECT_FALSE(view->setValue(0.1));
        EXPECT_FALSE(view->setValue(0.2));
        EXPECT_EQ(changed, 0);
    }
    EXPECT_EQ(changed, 1);
    EXPECT_FALSE(stack.isStepOpen());
    EXPECT_TRUE(softness->getState().keys.size() == before.keys.size());
    EXPECT_EQ(view->getValue(), softness->getTypedValue<double>(view->getTime()));
}

} // namespace
