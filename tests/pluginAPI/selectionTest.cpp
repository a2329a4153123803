#include <internalAPI/snSelection.h>
#include <pluginAPI/piGraph.h>
#include <pluginAPI/piNodePredicates.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// A keyer-like group (boundary nodes, two inner nodes, one nested group with a
// node), a node outside it, and an observer of a selection.
class SelectionScene : public ::testing::Test, public ObObserver<Sn> {
protected:
    void SetUp() override {
        graph = PiGraph::create();
        group = rcMake<PiGroupNode>("keyer", true);
        outside = rcMake<PiNode>("grade");
        graph->getRoot()->addNode(group);
        graph->getRoot()->addNode(outside);
        for (const char* name : {"keyer1", "keyer2"}) {
            inner.push_back(rcMake<PiNode>(name));
            group->addNode(inner.back());
        }
        nested = rcMake<PiGroupNode>("nested");
        group->addNode(nested);
        deep = rcMake<PiNode>("deep");
        nested->addNode(deep);

        const RCShdPtr<const PiGroupNode> g = group;
        groupOrChild = PiGraphObjectPredicateSnItemAdapter<PiNode>::create(
            PiIsNode::create(g) || PiIsNodeInGroupNode::create(g));
        childNotBoundary = PiGraphObjectPredicateSnItemAdapter<PiNode>::create(
            PiIsNodeInGroupNode::create(g) && !PiIsBoundaryNode::getPredicate());
    }

    void update(const Sn& subject) override {
        std::string names;
        for (const auto& item : subject.getItems()) {
            names += item->describe() + " ";
        }
        notes.push_back(names);
    }

    static std::vector<std::string> names(const Sn& s) {
        std::vector<std::string> out;
        for (const auto& item : s.getItems()) {
            out.push_back(item->describe());
        }
        return out;
    }
    RCShdPtr<const SnItem> item(const RCShdPtr<PiNode>& n) { return PiSnItemUtil::create(n); }

    RCShdPtr<PiGraph> graph;
    RCShdPtr<PiGroupNode> group, nested;
    RCShdPtr<PiNode> outside, deep;
    std::vector<RCShdPtr<PiNode>> inner;
    SnItemPredicate groupOrChild, childNotBoundary;
    std::vector<std::string> notes;
};

TEST_F(SelectionScene, ThePanelPredicatesAcceptTheGroupAndItsDirectChildren) {
    auto all = SnSelection::create({item(group), item(group->getInputNode()), item(inner[1]),
                                    item(deep), item(outside), item(nested)});
    EXPECT_EQ(names(*all->filter(groupOrChild)),
              (std::vector<std::string>{"keyer", "input", "keyer2", "nested"}));
    EXPECT_EQ(names(*all->filter(childNotBoundary)),
              (std::vector<std::string>{"keyer2", "nested"}));
}

TEST_F(SelectionScene, RecursionReachesNodesOfNestedGroups) {
    const RCShdPtr<const PiNode> d = deep;
    const RCShdPtr<const PiGroupNode> g = group;
    EXPECT_FALSE(PiIsNodeInGroupNode(g)(d));
    EXPECT_TRUE(PiIsNodeInGroupNode(g, true)(d));
    EXPECT_FALSE(PiIsNodeInGroupNode(g, true)(RCShdPtr<const PiNode>(group)));
}

TEST_F(SelectionScene, ObserversHearOfChangesOnlyAndInOrder) {
    auto current = SnSelection::create();
    current->attachObserver(this);
    current->assign(*SnSelection::create(item(inner[0])));
    current->assign(*SnSelection::create(item(inner[0]))); // the same item: no news
    current->add(item(inner[1]));
    current->add(item(inner[1])); // already there
    current->remove(*item(inner[0]));
    current->clear();
    EXPECT_EQ(notes, (std::vector<std::string>{"keyer1 ", "keyer1 keyer2 ", "keyer2 ", ""}));
    current->detachObserver(this);
    current->add(item(outside));
    EXPECT_EQ(notes.size(), 4u);
}

TEST_F(SelectionScene, TheCurrentSelectionIsOneObjectAndItemsCompareByIdentity) {
    EXPECT_EQ(SnSelection::getCurrent().get(), SnSelection::getCurrent().get());
    EXPECT_TRUE(item(inner[0])->isSame(*item(inner[0])));
    EXPECT_FALSE(item(inner[0])->isSame(*item(inner[1])));
    auto renamed = item(inner[0]);
    inner[0]->setName("matte");
    EXPECT_TRUE(renamed->isSame(*item(inner[0])));
    EXPECT_EQ(renamed->describe(), "matte");
}

} // namespace
