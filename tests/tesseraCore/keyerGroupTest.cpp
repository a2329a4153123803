#include <pluginAPI/piGraph.h>
#include <tesseraCore/tsInterface.h>
#include <tesseraCore/tsInterface3.h>
#include <tesseraCore/tsKeyerGroup.h>
#include <tesseraCore/tsNodeSelectChangedEvent.h>
#include <tesseraCore/tsTool3.h>

#include <base/cbMethod.h>
#include <base/exBase.h>
#include <base/exReporter.h>
#include <base/rcCast.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// A first-generation keyer group with three keyer nodes in a graph, a node
// outside it, and a log of the group's selection events.
class KeyerGroupScene : public ::testing::Test {
protected:
    void SetUp() override {
        graph = PiGraph::create();
        group = TsKeyerGroup::create("keyer", 1, 3);
        stranger = rcMake<PiNode>("grade");
        graph->getRoot()->addNode(group);
        graph->getRoot()->addNode(stranger);
        keyer = rcCast<TsInterface>(group->getInterface());
        keyer->addCallback<TsNodeSelectChangedEvent>(&selectChanged);
        ExReporter::getInstance().clear();
    }

public:
    void onSelectChanged(const PiNodeEvent& e) {
        const auto& s = static_cast<const TsNodeSelectChangedEvent&>(e);
        events.push_back(e.getNode()->getName() + ":" +
                         (s.getSelectedNode() ? s.getSelectedNode()->getName() : "-"));
    }

protected:
    RCShdPtr<PiNode> keyerNode(int i) { return keyer->getKeyerNode(i); }

    RCShdPtr<PiGraph> graph;
    RCShdPtr<TsKeyerGroup> group;
    RCShdPtr<PiNode> stranger;
    RCShdPtr<TsInterface> keyer;
    std::vector<std::string> events;
    CbMethod<KeyerGroupScene, const PiNodeEvent> selectChanged{this,
                                                               &KeyerGroupScene::onSelectChanged};
};

TEST_F(KeyerGroupScene, SlotAndSelectionChangesAnnounceTheSelectedNodeAlsoOnUndo) {
    keyer->setSlotNode(0, keyerNode(0));
    keyer->setSelectedNode(keyerNode(2));
    EXPECT_EQ(events, (std::vector<std::string>{"keyer:-", "keyer:keyer3"}));
    graph->getCommandStack().undo();
    graph->getCommandStack().undo();
    EXPECT_EQ(events, (std::vector<std::string>{"keyer:-", "keyer:keyer3", "keyer:-", "keyer:-"}));
    EXPECT_FALSE(keyer->getSlotNode(0));
}

TEST(KeyerGroupGenerations, TheSecondGenerationAnswersTsInterface3WithItsSelectedNodesValue) {
    auto graph = PiGraph::create();
    auto group = TsKeyerGroup::create("keyer", 2);
    graph->getRoot()->addNode(group);
    EXPECT_THROW(rcCast<TsInterface>(group->getInterface()), ExCastFailed);
    auto keyer = rcCast<TsInterface3>(group->getInterface());
    ASSERT_TRUE(keyer);
    auto selected = group->getInput(TsTool3::getSelectedNodesName());
    ASSERT_TRUE(selected);
    EXPECT_TRUE(PiGraphObject::areEqual(selected, keyer->getSelectedNodesInput()));
    keyer->setSelectedNode(keyer->getKeyerNode(0));
    // The value holds the selected node, then the slots: a slot assigned
    // changes it.
    keyer->setSlotNode(2, group);
    EXPECT_EQ(
        selected->getTypedValue<PiNodeRefList>(0),
        (PiNodeRefList{{keyer->getKeyerNode(0)->getId()}, {}, {}, {group->getId()}, {}, {}, {}}));
    EXPECT_EQ(keyer->getSlotNode(2), group);
    EXPECT_TRUE(PiGraphObject::areEqual(keyer->getSlotInput(2), selected));
}

} // namespace
