#include <pluginAPI/piGraph.h>
#include <pluginAPI/piPath.h>
#include <pluginAPI/piSocketUtil.h>

#include <base/cbMethod.h>
#include <base/exBase.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// An event type of another library: the registry takes any event class.
class CustomEvent : public PiNodeEvent {
public:
    using PiNodeEvent::PiNodeEvent;
};

// A graph with a group (with boundary nodes) holding two nodes, and a log of
// the events fired on the group's and the first node's controllers.
class GroupScene : public ::testing::Test {
protected:
    void SetUp() override {
        graph = PiGraph::create();
        group = rcMake<PiGroupNode>("keyer", true);
        graph->getRoot()->addNode(group);
        a = rcMake<PiNode>("a");
        b = rcMake<PiNode>("a"); // renamed on entry
        group->addNode(a);
        group->addNode(b);
        amount = rcMake<PiInput>("spill.amount", PiValue(0.0));
        a->addInput(amount);
        auto gc = group->getController();
        gc->addCallback<PiNodeEvent::NodeRemovedFromGroup>(&onGroup);
        gc->addCallback<PiNodeEvent::NodeMovedFromGroup>(&onGroup);
        gc->addCallback<PiNodeEvent::NameChanged>(&onGroup);
        a->getController()->addCallback<PiNodeEvent::NameChanged>(&onNode);
        a->getController()->addCallback(typeid(CustomEvent), &onNode);
    }

public:
    void groupEvent(const PiNodeEvent& e) { log.push_back("group " + describe(e)); }
    void nodeEvent(const PiNodeEvent& e) { log.push_back("node " + describe(e)); }
    static std::string describe(const PiNodeEvent& e) {
        std::string kind = "custom";
        if (dynamic_cast<const PiNodeEvent::NameChanged*>(&e)) {
            kind = "renamed";
        } else if (dynamic_cast<const PiNodeEvent::NodeRemovedFromGroup*>(&e)) {
            kind = "removed";
        } else if (dynamic_cast<const PiNodeEvent::NodeMovedFromGroup*>(&e)) {
            kind = "moved";
        }
        return kind + " " + e.getNode()->getName();
    }

protected:
    RCShdPtr<PiGraph> graph;
    RCShdPtr<PiGroupNode> group;
    RCShdPtr<PiNode> a, b;
    RCShdPtr<PiInput> amount;
    std::vector<std::string> log;
    CbMethod<GroupScene, const PiNodeEvent> onGroup{this, &GroupScene::groupEvent};
    CbMethod<GroupScene, const PiNodeEvent> onNode{this, &GroupScene::nodeEvent};
};

TEST_F(GroupScene, AGroupWithBoundaryNodesHoldsThemFirstAndNamesChildrenUniquely) {
    ASSERT_EQ(group->getNodeCount(), 4);
    EXPECT_EQ(group->getInputNode()->getName(), "input");
    EXPECT_EQ(group->getOutputNode()->getName(), "output");
    EXPECT_EQ(b->getName(), "a2");
    EXPECT_TRUE(PiGraphObject::areEqual(group->findNode("a2"), b));
    EXPECT_FALSE(PiGraphObject::areEqual(a, b));
    EXPECT_TRUE(PiGraphObject::areEqual(graph->findNodeById(a->getId()), a));
    EXPECT_FALSE(group->removeNode(group->getInputNode()));
}

TEST_F(GroupScene, EventsReachTheHandlersOfTheirExactType) {
    a->setName("matte");
    EXPECT_EQ(log, (std::vector<std::string>{"node renamed matte", "group renamed matte"}));
    log.clear();
    a->getController()->fireEvent(CustomEvent(a));
    EXPECT_EQ(log, (std::vector<std::string>{"node custom matte"}));
    log.clear();
    ASSERT_TRUE(group->removeNode(b));
    EXPECT_EQ(log, (std::vector<std::string>{"group removed a2"}));
    EXPECT_EQ(b->getParent(), nullptr);
    EXPECT_FALSE(b->getGraph());
}

TEST_F(GroupScene, MovingANodeTakesItsEditsToTheNewGraphPlace) {
    auto other = rcMake<PiGroupNode>("other");
    graph->getRoot()->addNode(other);
    ASSERT_TRUE(group->moveNode(a, other));
    EXPECT_EQ(log, (std::vector<std::string>{"group moved a"}));
    EXPECT_EQ(a->getParent(), other.get());
    EXPECT_FALSE(group->moveNode(b, group)) << "into the group it is in";
    EXPECT_FALSE(other->moveNode(group, other)) << "not a child";
    amount->setValue(0, PiValue(1.0));
    EXPECT_EQ(graph->getCommandStack().getStepNames(),
              (std::vector<LiString>{"Move Node", "spill.amount"}));
}

TEST_F(GroupScene, AnInputOutsideAnyGraphChangesWithoutHistory) {
    group->removeNode(a);
    EXPECT_EQ(amount->getCommandStack(), nullptr);
    EXPECT_TRUE(amount->setValue(0, PiValue(1.0)));
    EXPECT_EQ(graph->getCommandStack().getStepNames(), (std::vector<LiString>{"Remove Node"}));
    EXPECT_THROW(a->getGraph()->getCommandStack(), ExNullPtr);
}

TEST_F(GroupScene, HandlersLeaveWhenDestroyed) {
    {
        CbMethod<GroupScene, const PiNodeEvent> temporary{this, &GroupScene::nodeEvent};
        a->getController()->addCallback<PiNodeEvent::ValueChanged>(&temporary);
        EXPECT_TRUE(a->getController()->hasCallbacks(typeid(PiNodeEvent::ValueChanged)));
    }
    EXPECT_FALSE(a->getController()->hasCallbacks(typeid(PiNodeEvent::ValueChanged)));
    amount->setValue(0, PiValue(1.0));
    EXPECT_TRUE(log.empty());
}

TEST_F(GroupScene, SocketNamesAndPaths) {
    EXPECT_EQ(PiSocketUtil::getName(amount, 1), "spill.amount");
    EXPECT_EQ(PiSocketUtil::getName(amount, 2, nullptr, "/"), "a/spill.amount");
    EXPECT_EQ(PiSocketUtil::getName(amount, 0), "keyer.a.spill.amount");
    EXPECT_EQ(PiSocketUtil::getName(amount, 0, group.get()), "a.spill.amount");
    EXPECT_EQ(PiPath(a).toString(), "/keyer/a");
}

} // namespace
