// The keyer group's main panel, in both generations, on the host's panel
// built from the real panel description.
#include "keyerPanelScene.h"
#include "support/testTemp.h"
#include "tsMgUi.h"

#include <gfx/wsFontUtils.h>
#include <tesseraCore/tsDgTool.h>
#include <tesseraCore/tsInterface.h>
#include <tesseraCore/tsInterface3.h>
#include <tesseraCore/tsMgTool.h>
#include <tesseraCore/tsNodeSelectChangedEvent.h>
#include <tesseraCore/tsSpillBlendTool.h>
#include <ui/uiPanelDescription.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace {

class MainPanel : public ::testing::TestWithParam<int>, public KeyerPanelScene {
protected:
    void SetUp() override { build(GetParam()); }
    void TearDown() override { tearDown(); }

    bool firstGeneration() const { return GetParam() == 1; }

    // The node every area shows; empty when the areas disagree or show none.
    RCShdPtr<PiNode> shown() const {
        RCShdPtr<PiNode> node = area("tsMatteGen")->getNode();
        for (const char* name : {"tsDegrain", "tsSpillBlend", "tsOtherUi"}) {
            if (!PiGraphObject::areEqual(area(name)->getNode(), node)) {
                return RCShdPtr<PiNode>();
            }
        }
        return node;
    }
    std::string shownName() const {
        const RCShdPtr<PiNode> node = shown();
        return node ? node->getName() : std::string("-");
    }
    RCShdPtr<PiNode> selected() const {
        const auto first = SnSelection::getCurrent()->first();
        const auto* item = dynamic_cast<const PiSnItem<PiNode>*>(first.get());
        return item ? item->get() : RCShdPtr<PiNode>();
    }
};

INSTANTIATE_TEST_SUITE_P(BothGenerations, MainPanel, ::testing::Values(1, 2), generationName);

TEST_P(MainPanel, ShowsTheSelectedKeyerNodeAndLightsItsSlot) {
    ASSERT_TRUE(panel->getController());
    EXPECT_EQ(shownName(), "-");
    EXPECT_EQ(slotOn(), -1);
    EXPECT_TRUE(showsName(0, "keyer1"));
    EXPECT_TRUE(showsName(1, "keyer2"));
    EXPECT_TRUE(showsName(2, ""));

    select(keyers[1]);
    EXPECT_EQ(shownName(), "keyer2");
    EXPECT_EQ(slotOn(), 1);
    // The matte-generation area holds the module's panel for that node.
    EXPECT_TRUE(dynamic_cast<TsMgUi*>(area("tsMatteGen")->getContent().controller.get()));

    select(keyers[2]);
    EXPECT_EQ(shownName(), "keyer3");
    EXPECT_EQ(slotOn(), -1);

    select(keyers[0]);
    EXPECT_EQ(shownName(), "keyer1");
    EXPECT_EQ(slotOn(), 0);
}

TEST_P(MainPanel, LeavesSelectionsOutsideTheGroupAlone) {
    select(keyers[1]);
    const auto* controller = area("tsMatteGen")->getContent().controller.get();
    select(stranger);
    SnSelection::getCurrent()->clear();
    settle();
    EXPECT_EQ(shownName(), "keyer2");
    EXPECT_EQ(slotOn(), 1);
    EXPECT_EQ(area("tsMatteGen")->getContent().controller.get(), controller);

    // The group itself is one of the panel's nodes: in no slot, and with no
    // stage panels of its own.
    select(group);
    EXPECT_EQ(slotOn(), -1);
    EXPECT_FALSE(area("tsMatteGen")->hasContent());
}

TEST_P(MainPanel, ASlotToggleSelectsItsNode) {
    select(keyers[2]);
    toggle(1)->click();
    settle();
    EXPECT_TRUE(PiGraphObject::areEqual(selected(), keyers[1]));
    EXPECT_EQ(shownName(), "keyer2");
    EXPECT_EQ(slotOn(), 1);

    // An empty slot selects nothing.
    toggle(4)->click();
    settle();
    EXPECT_TRUE(PiGraphObject::areEqual(selected(), keyers[1]));
    EXPECT_EQ(shownName(), "keyer2");

    // While the workspace is suspended (a setup loading) toggles are not the
    // user's: they select nothing.
    {
        const UiWorkspaceSuspension suspended;
        toggle(0)->setState(true, true);
        settle();
    }
    EXPECT_TRUE(PiGraphObject::areEqual(selected(), keyers[1]));
    EXPECT_EQ(shownName(), "keyer2");
}

TEST_P(MainPanel, APressWithCtrlPutsTheSelectedNodeInTheSlot) {
    select(keyers[2]);
    const int steps = history().getStepCount();
    toggle(3)->click(); // without Ctrl: an empty slot, nothing assigned
    settle();
    EXPECT_FALSE(group->getSlotNode(3));

    toggle(3)->click(EvKeyboardState(EvKeyboardState::CtrlMask));
    settle();
    EXPECT_TRUE(PiGraphObject::areEqual(group->getSlotNode(3), keyers[2]));
    EXPECT_TRUE(showsName(3, "keyer3"));
    EXPECT_EQ(slotOn(), 3);
    EXPECT_EQ(history().getStepCount(), steps + 1);
    EXPECT_EQ(history().getUndoName(), "Assign Slot");

    // A node already in a slot moves: both labels follow.
    select(keyers[1]);
    toggle(5)->click(EvKeyboardState(EvKeyboardState::CtrlMask));
    settle();
    EXPECT_TRUE(PiGraphObject::areEqual(group->getSlotNode(5), keyers[1]));
    EXPECT_TRUE(showsName(5, "keyer2"));
    EXPECT_TRUE(showsName(1, ""));
    EXPECT_EQ(slotOn(), 5);

    // A selection outside the group assigns nothing.
    select(stranger);
    toggle(2)->click(EvKeyboardState(EvKeyboardState::CtrlMask));
    settle();
    EXPECT_FALSE(group->getSlotNode(2));
    EXPECT_TRUE(showsName(2, ""));
}

TEST_P(MainPanel, LabelsFollowTheirNodesNames) {
    keyers[0]->setName("foreground");
    EXPECT_TRUE(showsName(0, "foreground"));

    // Once keyer1 has left its slot, its renames are none of the slot's
    // business.
    select(keyers[2]);
    toggle(0)->click(EvKeyboardState(EvKeyboardState::CtrlMask));
    settle();
    EXPECT_TRUE(showsName(0, "keyer3"));
    keyers[0]->setName("background");
    EXPECT_TRUE(showsName(0, "keyer3"));
    keyers[2]->setName("hair");
    EXPECT_TRUE(showsName(0, "hair"));
}

TEST_P(MainPanel, ANameWiderThanItsLabelIsCutAtItsEnd) {
    const std::string name = "keyer for the hair and the fine detail of the left edge";
    keyers[0]->setName(name);
    label(0)->setWidth(70);
    EXPECT_TRUE(showsName(0, name));
    EXPECT_EQ(labelText(0).substr(labelText(0).size() - 3), "...");

    // Resizing the label fits the name again.
    label(0)->setWidth(2000);
    EXPECT_EQ(labelText(0), name);
}

// The menu's entries are the viewer's tools of every stage: the viewer
// switches to the stage that owns the tool chosen.
TEST_P(MainPanel, TheToolMenuMakesItsToolCurrentAndFollowsTheViewers) {
    select(keyers[0]);
    const std::vector<std::pair<std::string, std::string>> tools{
        {TsMgTool::getManipToolName(2), "matte"},
        {TsMgTool::getManipToolName(3), "matte"},
        {TsDgTool::getManipToolName(2), "degrain"},
        {TsSpillBlendTool::getManipToolName(2), "spill"},
        {TsSpillBlendTool::getManipToolName(3), "spill"}};
    for (int item : {1, 2, 3, 4, 0}) {
        mainMenu()->choose(item);
        settle();
        EXPECT_EQ(currentTool(), tools[item].first) << item;
        EXPECT_EQ(viewer->getStage(), tools[item].second) << item;
    }

    // Tool changes made elsewhere show, in whichever stage.
    handler()->setCurrentTool(TsMgTool::getManipToolName(3));
    EXPECT_EQ(mainMenu()->getSelection(), 1);
    handler()->setCurrentTool(TsDgTool::getManipToolName(2));
    settle();
    EXPECT_EQ(viewer->getStage(), "degrain");
    EXPECT_EQ(mainMenu()->getSelection(), 2);
    // A tool that is not one of the menu's leaves it as it is.
    handler()->setCurrentTool(TsDgTool::getManipToolName(1));
    EXPECT_EQ(mainMenu()->getSelection(), 2);
}

// The keyer's slots changed elsewhere (an edit, an undo): the first
// generation hears of it from the keyer, the second through its
// selected-nodes value, which holds the slots.
TEST_P(MainPanel, SlotChangesMadeElsewhereReachTheLabels) {
    select(keyers[2]);
    group->setSlotNode(4, keyers[2]);
    EXPECT_TRUE(showsName(4, "keyer3"));
    EXPECT_EQ(slotOn(), 4);
    history().undo();
    EXPECT_TRUE(showsName(4, ""));
    EXPECT_EQ(slotOn(), -1);
}

TEST_P(MainPanel, WithNoNodeOfTheGroupSelectedItShowsTheKeyersSelectedNode) {
    group->setSelectedNode(keyers[1]);
    settle();
    EXPECT_EQ(shownName(), "keyer2");
    EXPECT_EQ(slotOn(), 1);

    // The application's selection comes first.
    select(keyers[0]);
    group->setSelectedNode(keyers[2]);
    settle();
    EXPECT_EQ(shownName(), "keyer1");
    EXPECT_EQ(slotOn(), 0);

    // A boundary node is a node of generation 2's panel only.
    select(stranger);
    SnSelection::getCurrent()->clear();
    group->setSelectedNode(group->getInputNode());
    settle();
    if (firstGeneration()) {
        EXPECT_EQ(shownName(), "keyer1");
    } else {
        EXPECT_FALSE(area("tsMatteGen")->hasContent());
        EXPECT_EQ(slotOn(), -1);
    }
}

TEST_P(MainPanel, ANodeLeavingTheGroupLeavesTheAreasEmpty) {
    select(keyers[0]);
    ASSERT_EQ(shownName(), "keyer1");
    EXPECT_TRUE(group->removeNode(keyers[0]));
    settle();
    for (const char* name : {"tsMatteGen", "tsDegrain", "tsSpillBlend", "tsOtherUi"}) {
        EXPECT_FALSE(area(name)->hasContent()) << name;
    }
    EXPECT_TRUE(showsName(0, ""));

    select(keyers[1]);
    ASSERT_EQ(shownName(), "keyer2");
    EXPECT_TRUE(group->moveNode(keyers[1], graph->getRoot()));
    settle();
    EXPECT_FALSE(area("tsMatteGen")->hasContent());
    EXPECT_TRUE(showsName(1, ""));
    // Another node leaving leaves the areas alone.
    select(keyers[2]);
    const auto extra = group->addKeyerNode("extra");
    EXPECT_TRUE(group->removeNode(extra));
    settle();
    EXPECT_EQ(shownName(), "keyer3");
}

TEST_P(MainPanel, GoesWithoutLeavingAnythingBehind) {
    const RCShdPtr<SnSelection>& selection = SnSelection::getCurrent();
    const std::size_t observers = selection->observerCount();
    select(keyers[0]);
    // A refresh is still queued when the panel goes.
    SnSelection::getCurrent()->setItems({PiSnItemUtil::create(keyers[1])});
    ASSERT_GT(UiApplication::getInstance().getPendingRequestCount(), 0);
    ASSERT_TRUE(keyers[1]->getController()->hasCallbacks(typeid(PiNodeEvent::ValueChanged)));
    panel->setNode(RCShdPtr<PiNode>(), timePathOf(group));
    settle();

    EXPECT_LT(selection->observerCount(), observers);
    const RCShdPtr<PiNodeController>& controller = group->getController();
    EXPECT_FALSE(controller->hasCallbacks(typeid(TsNodeSelectChangedEvent)));
    EXPECT_FALSE(controller->hasCallbacks(typeid(PiNodeEvent::ValueChanged)));
    EXPECT_FALSE(controller->hasCallbacks(typeid(PiNodeEvent::NodeRemovedFromGroup)));
    for (const auto& keyer : keyers) {
        EXPECT_FALSE(keyer->getController()->hasCallbacks(typeid(PiNodeEvent::NameChanged)));
    }
    // The stage panels of the nodes shown went too (the viewer's tools still
    // follow the first node).
    for (int i : {1, 2}) {
        EXPECT_FALSE(keyers[i]->getController()->hasCallbacks(typeid(PiNodeEvent::ValueChanged)));
    }
    // Everything the panel listened to happens once more.
    select(keyers[2]);
    keyers[0]->setName("renamed");
    group->setSlotNode(3, keyers[2]);
    group->setSelectedNode(keyers[2]);
    group->removeNode(keyers[1]);
    if (handler()) {
        handler()->setCurrentTool(TsMgTool::getManipToolName(3));
    }
    settle();
}

// Panel descriptions that lack widgets or give one the wrong kind.
class MainPanelDescriptions : public MainPanel {
protected:
    // Registers the main panel's description with `edit` applied as a stage
    // of its own, whose factory is the keyer group's.
    void registerEdited(const std::string& from, const std::string& to) {
        std::ifstream in(std::string(std::getenv("TESSERA_SOURCE_DIR")) +
                         "/tools/tessera/resources/tsMainPanel.ui");
        std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        const auto at = text.find(from);
        ASSERT_NE(at, std::string::npos) << from;
        text.replace(at, from.size(), to);
        path = testTempPath("tesseraEditedMainPanel.ui");
        std::ofstream(path) << text;
        UiNodeWidgetFactory::registerStage(
            "editedMain", path, nullptr,
            [](const RCShdPtr<PiNode>& node, const RCShdPtr<PiWidget>& widget,
               const RCShdPtr<const PiTimePath>& timePath) {
                const auto g = rcCast<PiGroupNode>(node);
                return dynamic_cast<TsInterface3*>(g->getController().get())
                           ? TsInterface3::createInstanceData(widget, g, timePath)
                           : TsInterface::createInstanceData(widget, g, timePath);
            });
        edited = std::make_unique<UiPanel>("edited");
        edited->setStage("editedMain", group, timePathOf(group));
    }
    void TearDown() override {
        edited.reset();
        UiNodeWidgetFactory::unregister("editedMain");
        MainPanel::TearDown();
    }
    static bool reported(const std::string& text) {
        for (const auto& r : ExReporter::getInstance().getReports()) {
            if (r.text().find(text) != std::string::npos) {
                return true;
            }
        }
        return false;
    }

    std::string path;
    std::unique_ptr<UiPanel> edited;
};

INSTANTIATE_TEST_SUITE_P(BothGenerations, MainPanelDescriptions, ::testing::Values(1, 2),
                         generationName);

TEST_P(MainPanelDescriptions, WithoutTheToolMenuAndAnAreaTheRestWorks) {
    registerEdited(R"(name="sampleMenu")", R"(name="toolMenu")");
    ASSERT_TRUE(edited->getController());
    SnSelection::getCurrent()->setItems({PiSnItemUtil::create(keyers[1])});
    settle();
    EXPECT_TRUE(edited->find<PiDualState>("nodeSelect1")->getState());
    EXPECT_TRUE(
        PiGraphObject::areEqual(edited->find<UiNodeWidget>("tsMatteGen")->getNode(), keyers[1]));
    EXPECT_TRUE(reports().empty());
}

TEST_P(MainPanelDescriptions, AMissingSlotLabelIsAnErrorNamingIt) {
    registerEdited(R"(name="nodeSelectLabel3")", R"(name="slotLabel3")");
    EXPECT_FALSE(edited->getController());
    EXPECT_TRUE(reported("PiLabel 'nodeSelectLabel3'")) << path;
    ExReporter::getInstance().clear();
}

TEST_P(MainPanelDescriptions, AnAreaOfTheWrongKindIsAnErrorNamingItAndBothTypes) {
    registerEdited(R"(<widget class="UiNodeWidgetArea" name="tsDegrain">)",
                   R"(<widget class="QLabel" name="tsDegrain">)");
    EXPECT_FALSE(edited->getController());
    EXPECT_TRUE(reported("UiLabel 'tsDegrain' is not a PiNodeWidget")) << path;
    ExReporter::getInstance().clear();
}

} // namespace
