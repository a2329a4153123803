#include "tsSpillBlendUi.h"
#include "stageScene.h"

#include <gfx/wsCursorRegistry.h>
#include <tesseraCore/tsMgTool.h>
#include <tesseraCore/tsSpillBlendTool.h>
#include <ui/uiDualState.h>
#include <ui/uiMenu.h>
#include <ui/uiPushButton.h>
#include <ui/uiTrackball.h>

namespace stages {
namespace {

// The spill-and-blend stage in the viewer and the node's spill-and-blend
// panel.
class SpillBlendPanel : public StageScene {
protected:
    std::string stage() const override { return "spill"; }
    void SetUp() override {
        StageScene::SetUp();
        openPanel("tsSpillBlend");
    }

    TsSpillBlendUi& controller() { return refCast<TsSpillBlendUi>(*panel->getController()); }
    RCShdPtr<UiDualState> toggle(int i) {
        return panel->find<UiDualState>(i == 0 ? "keyColor1Toggle" : "keyColor2Toggle");
    }
    std::vector<bool> toggleStates() { return {toggle(0)->getState(), toggle(1)->getState()}; }
    RCShdPtr<UiMenu> menu() { return panel->find<UiMenu>("sampleMenu"); }
    RCShdPtr<UiTrackball> trackball() { return panel->find<UiTrackball>("spillEdgeBalance"); }
    RCShdPtr<PiInput> balance(int axis) { return node->getEdgeBalanceInput(axis); }
    int pushedCursors() {
        return UiApplication::getInstance().getOverrideCursorDepth() - cursorDepth;
    }
    void setBalance(double x, double y) {
        setValue(balance(0), x);
        setValue(balance(1), y);
        stack().clear();
    }
};

TEST_F(SpillBlendPanel, TheMenuAndTheTogglesFollowTheCurrentTool) {
    EXPECT_EQ(toggleStates(), (std::vector<bool>{false, false}));
    const int first = menu()->getSelection();

    EXPECT_TRUE(hotkey("Adjust Blend"));
    EXPECT_EQ(menu()->getSelection(), 1);
    EXPECT_EQ(toggleStates(), (std::vector<bool>{false, false}));
    EXPECT_TRUE(hotkey("Adjust Spill"));
    EXPECT_EQ(menu()->getSelection(), 0);

    // A pick tool made current keeps the menu's entry and lights its toggle.
    EXPECT_TRUE(hotkey("Adjust Blend"));
    useTool(TsSpillBlendTool::getManipToolName(1));
    EXPECT_EQ(menu()->getSelection(), 1);
    EXPECT_EQ(toggleStates(), (std::vector<bool>{false, true}));
    EXPECT_GE(first, 0);
}

TEST_F(SpillBlendPanel, TheMenuMakesItsToolCurrent) {
    menu()->choose(1);
    EXPECT_EQ(currentTool(), TsSpillBlendTool::getManipToolName(3));
    menu()->choose(0);
    EXPECT_EQ(currentTool(), TsSpillBlendTool::getManipToolName(2));
}

TEST_F(SpillBlendPanel, TheMenuBringsTheViewerToTheSpillStageFromAnother) {
    ASSERT_TRUE(viewer->setStage("matte"));
    ASSERT_EQ(currentTool(), TsMgTool::getManipToolName(2));
    menu()->choose(1);
    EXPECT_EQ(viewer->getStage(), "spill");
    EXPECT_EQ(currentTool(), TsSpillBlendTool::getManipToolName(3));
    EXPECT_EQ(menu()->getSelection(), 1);
    // The panel follows the new handler.
    EXPECT_TRUE(hotkey("Adjust Spill"));
    EXPECT_EQ(menu()->getSelection(), 0);
}

TEST_F(SpillBlendPanel, AToggleMakesItsToolCurrentThenPushesItsCursorUntilTheNextChange) {
    menu()->choose(0);
    toggle(1)->click();
    EXPECT_EQ(currentTool(), TsSpillBlendTool::getManipToolName(1));
    EXPECT_EQ(toggleStates(), (std::vector<bool>{false, true}));
    ASSERT_EQ(pushedCursors(), 1);
    EXPECT_EQ(UiApplication::getInstance().getOverrideCursor()->getName(), WsCursorRegistry::Pick);
    EXPECT_TRUE(controller().isCursorPushed());

    // The pick ends it: the spill tool is back and the cursor gone.
    click(onA);
    EXPECT_EQ(currentTool(), TsSpillBlendTool::getManipToolName(2));
    EXPECT_EQ(pushedCursors(), 0);
    EXPECT_FALSE(controller().isCursorPushed());
    EXPECT_EQ(toggleStates(), (std::vector<bool>{false, false}));
}

TEST_F(SpillBlendPanel, PressingTheToggleOfTheCurrentToolAgainLeavesOneCursorPushed) {
    menu()->choose(0);
    toggle(0)->click();
    toggle(0)->click();
    EXPECT_EQ(pushedCursors(), 1);
    click(onA);
    EXPECT_EQ(pushedCursors(), 0);
}

TEST_F(SpillBlendPanel, APanelDestroyedWithItsCursorPushedPopsIt) {
    menu()->choose(1);
    toggle(0)->click();
    ASSERT_EQ(pushedCursors(), 1);
    panel.reset();
    EXPECT_EQ(pushedCursors(), 0);
}

TEST_F(SpillBlendPanel, ResetIsOneUndoStep) {
    setValue(node->getSpillInput(0), 0.9);
    setValue(node->getBlendInput(1), 0.1);
    setBalance(0.2, 0.8);
    panel->find<UiPushButton>("reset")->click();
    EXPECT_EQ(value(node->getSpillInput(0)), 0.5);
    EXPECT_EQ(value(node->getBlendInput(1)), 0.5);
    EXPECT_EQ(value(balance(0)), 0.5);
    EXPECT_EQ(stack().getStepCount(), 1);
    EXPECT_EQ(stack().getUndoName(), "Reset Spill & Blend");
    stack().undo();
    EXPECT_EQ(value(node->getSpillInput(0)), 0.9);
    EXPECT_EQ(value(node->getBlendInput(1)), 0.1);
    EXPECT_EQ(value(balance(1)), 0.8);
}

TEST_F(SpillBlendPanel, ATrackballDragMovesTheBalanceFromWhereItBeganAsOneStep) {
    setBalance(0.2, 0.5);
    trackball()->drag(500.0f, 0.0f, 10);
    EXPECT_NEAR(value(balance(0)), 0.7, 1e-6);
    EXPECT_EQ(value(balance(1)), static_cast<double>(0.5f));
    EXPECT_EQ(stack().getStepCount(), 1);
    EXPECT_EQ(stack().getUndoName(), "Set Spill Edge Balance");
    stack().undo();
    EXPECT_EQ(value(balance(0)), 0.2);
    EXPECT_EQ(value(balance(1)), 0.5);

    // Both axes, the delta taken whole from the press (not summed per move).
    trackball()->drag(-100.0f, 250.0f, 7);
    EXPECT_NEAR(value(balance(0)), 0.1, 1e-6);
    EXPECT_NEAR(value(balance(1)), 0.75, 1e-6);
    EXPECT_EQ(stack().getStepCount(), 1);
}

TEST_F(SpillBlendPanel, ARefusedXLeavesYAlone) {
    setBalance(0.2, 0.5);
    balance(0)->setLocked(true);
    stack().clear();
    trackball()->drag(100.0f, 100.0f, 3);
    EXPECT_EQ(value(balance(0)), 0.2);
    EXPECT_EQ(value(balance(1)), 0.5);
    EXPECT_EQ(stack().getStepCount(), 0);
}

TEST_F(SpillBlendPanel, TheBalanceFollowsChangesMadeElsewhere) {
    setBalance(0.3, 0.4);
    const TsSpillBlendUi::InputPoint2Float& b = controller().getEdgeBalance();
    EXPECT_FALSE(b.getValue(0).needsUpdate());
    EXPECT_EQ(b.getValue(0).getValue(), 0.3);
    trackball()->drag(100.0f, 0.0f, 2);
    EXPECT_NEAR(value(balance(0)), 0.4, 1e-6);
    stack().undo();
    // The next drag starts from the value the undo put back.
    trackball()->drag(0.0f, 100.0f, 2);
    EXPECT_NEAR(value(balance(0)), 0.3, 1e-6);
    EXPECT_NEAR(value(balance(1)), 0.5, 1e-6);
}

// Both key colours locked: the node says its panels have no key-colour toggles.
class LockedKeyColoursSpillBlendPanel : public SpillBlendPanel {
protected:
    void SetUp() override {
        StageScene::SetUp();
        node->getKeyColorInput(TsTypes::KeyColor1)->setLocked(true);
        node->getKeyColorInput(TsTypes::KeyColor2)->setLocked(true);
        openPanel("tsSpillBlend");
    }
};

TEST_F(LockedKeyColoursSpillBlendPanel, HasNoTogglesButItsMenuStillWorks) {
    EXPECT_EQ(controller().getToggleCount(), 0);
    menu()->choose(1);
    toggle(0)->click();
    EXPECT_EQ(currentTool(), TsSpillBlendTool::getManipToolName(3));
    EXPECT_EQ(pushedCursors(), 0);
}

} // namespace
} // namespace stages
