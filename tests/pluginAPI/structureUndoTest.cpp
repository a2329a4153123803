// The graph's structure in the undo history: removing, renaming and moving
// nodes are steps that undo puts back exactly, and nodes added within a step
// leave again when it is undone.
#include <pluginAPI/piCommandStack.h>
#include <pluginAPI/piGraph.h>

#include <base/cbMethod.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// A graph whose group holds three nodes a, b, c (after its boundary nodes),
// each with one input; a handler of the group's events that, when asked,
// answers a removal by writing the group's own input, as a keyer emptying
// the slot of a removed node does.
class StructureScene : public ::testing::Test {
protected:
    void SetUp() override {
        graph = PiGraph::create();
        group = rcMake<PiGroupNode>("keyer", true);
        group->addInput(rcMake<PiInput>("slot", PiValue(1.0)));
        graph->getRoot()->addNode(group);
        for (const char* name : {"a", "b", "c"}) {
            auto node = rcMake<PiNode>(name);
            node->addInput(rcMake<PiInput>("amount", PiValue(0.0)));
            group->addNode(node);
        }
        auto controller = group->getController();
        controller->addCallback<PiNodeEvent::NodeRemovedFromGroup>(&onRemoved);
        controller->addCallback<PiNodeEvent::NameChanged>(&onRenamed);
        stack().clear();
    }

public:
    void removed(const PiNodeEvent& e) {
        log.push_back("removed " + e.getNode()->getName());
        if (emptySlotOnRemoval && !stack().isReplaying()) {
            group->getInput("slot")->setValue(0, PiValue(0.0));
        }
    }
    void renamed(const PiNodeEvent& e) { log.push_back("renamed " + e.getNode()->getName()); }

protected:
    PiCommandStack& stack() { return graph->getCommandStack(); }
    RCShdPtr<PiNode> node(const char* name) const { return group->findNode(name); }
    // The names of the group's children, boundary nodes left out.
    std::vector<std::string> children() const {
        std::vector<std::string> names;
        for (int i = 2; i < group->getNodeCount(); ++i) {
            names.push_back(group->getNode(i)->getName());
        }
        return names;
    }
    using Names = std::vector<std::string>;

    RCShdPtr<PiGraph> graph;
    RCShdPtr<PiGroupNode> group;
    std::vector<std::string> log;
    bool emptySlotOnRemoval = false;
    CbMethod<StructureScene, const PiNodeEvent> onRemoved{this, &StructureScene::removed};
    CbMethod<StructureScene, const PiNodeEvent> onRenamed{this, &StructureScene::renamed};
};

TEST_F(StructureScene, ARemovedNodeComesBackInItsPlaceWithItsValuesAndHistory) {
    const RCShdPtr<PiNode> b = node("b");
    b->getInput("amount")->setValue(0, PiValue(0.5));
    ASSERT_TRUE(group->removeNode(b));
    EXPECT_EQ(children(), (Names{"a", "c"}));
    EXPECT_EQ(stack().getStepNames(), (std::vector<LiString>{"amount", "Remove Node"}));

    ASSERT_TRUE(stack().undo());
    EXPECT_EQ(children(), (Names{"a", "b", "c"}));
    EXPECT_EQ(b->getParent(), group.get());
    EXPECT_EQ(b->getGraph().get(), graph.get());
    // Its inputs are the graph's again: their history goes on.
    ASSERT_TRUE(stack().undo());
    EXPECT_EQ(b->getInput("amount")->getTypedValue<double>(0), 0.0);
    ASSERT_TRUE(stack().redo());
    ASSERT_TRUE(stack().redo());
    EXPECT_EQ(children(), (Names{"a", "c"}));
    EXPECT_EQ(log, (Names{"removed b", "removed b"})) << "the redo tells the group's handlers";
}

TEST_F(StructureScene, WhatTheHandlersChangeInAnswerIsPartOfTheRemoval) {
    emptySlotOnRemoval = true;
    ASSERT_TRUE(group->removeNode(node("a")));
    EXPECT_EQ(group->getInput("slot")->getTypedValue<double>(0), 0.0);
    EXPECT_EQ(stack().getStepNames(), (std::vector<LiString>{"Remove Node"}));
    ASSERT_TRUE(stack().undo());
    EXPECT_EQ(children(), (Names{"a", "b", "c"}));
    EXPECT_EQ(group->getInput("slot")->getTypedValue<double>(0), 1.0);
}

TEST_F(StructureScene, ARenameIsAStepAndANameTakenGetsANumber) {
    node("c")->setName("a");
    EXPECT_EQ(children(), (Names{"a", "b", "a2"}));
    node("b")->setName("hair");
    EXPECT_EQ(stack().getStepNames(), (std::vector<LiString>{"Rename Node", "Rename Node"}));
    EXPECT_EQ(log, (Names{"renamed a2", "renamed hair"}));

    log.clear();
    ASSERT_TRUE(stack().undo());
    ASSERT_TRUE(stack().undo());
    EXPECT_EQ(children(), (Names{"a", "b", "c"}));
    EXPECT_EQ(log, (Names{"renamed b", "renamed c"}));
    ASSERT_TRUE(stack().redo());
    EXPECT_EQ(children(), (Names{"a", "b", "a2"}));
}

TEST_F(StructureScene, NodesAddedWithinAStepLeaveWhenItIsUndone) {
    {
        PiUndoGuard step(stack(), "Load Setup");
        node("a")->getInput("amount")->setValue(0, PiValue(0.25));
        auto added = rcMake<PiNode>("b");
        added->addInput(rcMake<PiInput>("amount", PiValue(0.0)));
        group->addNode(added);
        added->getInput("amount")->setValue(0, PiValue(0.75));
    }
    EXPECT_EQ(children(), (Names{"a", "b", "c", "b2"}));
    ASSERT_EQ(stack().getStepNames(), (std::vector<LiString>{"Load Setup"}));

    ASSERT_TRUE(stack().undo());
    EXPECT_EQ(children(), (Names{"a", "b", "c"}));
    EXPECT_EQ(node("a")->getInput("amount")->getTypedValue<double>(0), 0.0);
    EXPECT_EQ(log, (Names{"removed b2"}));
    ASSERT_TRUE(stack().redo());
    EXPECT_EQ(children(), (Names{"a", "b", "c", "b2"}));
    EXPECT_EQ(node("b2")->getInput("amount")->getTypedValue<double>(0), 0.75);
}

TEST_F(StructureScene, NodesAddedOutsideAStepBuildTheGraphWithoutHistory) {
    group->addNode(rcMake<PiNode>("d"));
    EXPECT_EQ(stack().getStepCount(), 0);
}

TEST_F(StructureScene, AMovedNodeGoesBackToItsGroupAndName) {
    auto other = rcMake<PiGroupNode>("other");
    graph->getRoot()->addNode(other);
    other->addNode(rcMake<PiNode>("b"));
    stack().clear();
    ASSERT_TRUE(group->moveNode(node("b"), other));
    ASSERT_TRUE(other->findNode("b2"));
    ASSERT_TRUE(stack().undo());
    EXPECT_EQ(children(), (Names{"a", "b", "c"}));
    EXPECT_EQ(other->getNodeCount(), 1);
    ASSERT_TRUE(stack().redo());
    EXPECT_EQ(children(), (Names{"a", "c"}));
    EXPECT_TRUE(other->findNode("b2"));
}

} // namespace
