#include "tsDgUi.h"
#include "stageScene.h"

#include <gfx/wsCursorRegistry.h>
#include <pluginAPI/piEventHandler.h>
#include <tesseraCore/tsDgTool.h>
#include <ui/uiDualState.h>
#include <ui/uiPushButton.h>

namespace stages {
namespace {

// The degrain stage in the viewer and the node's degrain panel.
class DegrainPanel : public StageScene {
protected:
    std::string stage() const override { return "degrain"; }
    void SetUp() override {
        StageScene::SetUp();
        openPanel("tsDegrain");
    }

    TsDgUi& controller() { return refCast<TsDgUi>(*panel->getController()); }
    RCShdPtr<UiDualState> toggle(int i) {
        return panel->find<UiDualState>(i == 0 ? "keyColor1Toggle" : "keyColor2Toggle");
    }
    std::vector<bool> toggleStates() { return {toggle(0)->getState(), toggle(1)->getState()}; }
    int pushedCursors() {
        return UiApplication::getInstance().getOverrideCursorDepth() - cursorDepth;
    }
};

TEST_F(DegrainPanel, TheTogglesShowTheCurrentToolFromTheStart) {
    EXPECT_EQ(controller().getToggleCount(), 2);
    // The stage starts on its sample tool: no pick lit.
    EXPECT_EQ(toggleStates(), (std::vector<bool>{false, false}));
    useTool(TsDgTool::getManipToolName(0));
    EXPECT_EQ(toggleStates(), (std::vector<bool>{true, false}));
    EXPECT_TRUE(hotkey("Sample Degrain"));
    EXPECT_EQ(toggleStates(), (std::vector<bool>{false, false}));
    useTool(TsDgTool::getManipToolName(1));
    EXPECT_EQ(toggleStates(), (std::vector<bool>{false, true}));
}

TEST_F(DegrainPanel, AToggleMakesItsPickToolCurrentAndShowsItsCursorUntilThePickIsDone) {
    useTool(TsDgTool::getManipToolName(2));
    toggle(1)->click();
    EXPECT_EQ(currentTool(), TsDgTool::getManipToolName(1));
    EXPECT_EQ(toggleStates(), (std::vector<bool>{false, true}));
    ASSERT_EQ(pushedCursors(), 1);
    EXPECT_EQ(UiApplication::getInstance().getOverrideCursor()->getName(), WsCursorRegistry::Pick);
    EXPECT_TRUE(controller().isCursorPushed());

    // Pressed again while the pick is pending: nothing more.
    toggle(1)->click();
    toggle(0)->click();
    EXPECT_EQ(pushedCursors(), 1);
    EXPECT_EQ(currentTool(), TsDgTool::getManipToolName(1));

    // The pick in the viewer ends it: the sample tool is back, the cursor gone.
    click(onA);
    EXPECT_EQ(currentTool(), TsDgTool::getManipToolName(2));
    EXPECT_EQ(pushedCursors(), 0);
    EXPECT_FALSE(controller().isCursorPushed());
    EXPECT_EQ(toggleStates(), (std::vector<bool>{false, false}));
}

TEST_F(DegrainPanel, APanelDestroyedWithItsCursorPushedPopsIt) {
    toggle(1)->click();
    ASSERT_EQ(pushedCursors(), 1);
    panel.reset();
    EXPECT_EQ(pushedCursors(), 0);
}

TEST_F(DegrainPanel, AHandlerWithoutToolsOnlyPopsThePushedCursor) {
    toggle(1)->click();
    ASSERT_EQ(pushedCursors(), 1);
    viewer->setEventHandler(RCShdPtr<PiEventHandler>(new PiEventHandler));
    EXPECT_EQ(pushedCursors(), 0);
    EXPECT_EQ(toggleStates(), (std::vector<bool>{false, true})); // left as they were
    // Without a tool handler a toggle does nothing.
    toggle(0)->click();
    EXPECT_EQ(pushedCursors(), 0);
}

TEST_F(DegrainPanel, FollowsTheHandlerOfAnotherStageAndOfAViewerThatGoes) {
    ASSERT_TRUE(viewer->setStage("spill"));
    useTool(TsDgTool::getManipToolName(1)); // the pick tools have the same names
    EXPECT_EQ(toggleStates(), (std::vector<bool>{false, true}));
    toggle(0)->click();
    EXPECT_EQ(currentTool(), TsDgTool::getManipToolName(0));
    EXPECT_EQ(pushedCursors(), 1);
    viewer.reset(); // the panel hears of it and pops its cursor
    EXPECT_EQ(pushedCursors(), 0);
}

TEST_F(DegrainPanel, ResetIsOneUndoStep) {
    useTool(TsDgTool::getManipToolName(2));
    click(onA, Shift);
    ASSERT_TRUE(node->getDegrainInput()->getTypedValue<bool>(0.0));
    const auto sampled = node->getDegrainBoxInput(0, 0)->getTypedValue<double>(0.0);
    ASSERT_NE(sampled, 1.0);

    panel->find<UiPushButton>("reset")->click();
    EXPECT_FALSE(node->getDegrainInput()->getTypedValue<bool>(0.0));
    EXPECT_EQ(node->getDegrainBoxInput(0, 0)->getTypedValue<double>(0.0), 1.0);
    EXPECT_EQ(stack().getUndoName(), "Reset Screen Degrain");
    EXPECT_EQ(stack().getStepCount(), 2);
    stack().undo();
    EXPECT_TRUE(node->getDegrainInput()->getTypedValue<bool>(0.0));
    EXPECT_EQ(node->getDegrainBoxInput(0, 0)->getTypedValue<double>(0.0), sampled);
}

// Both key colours locked: the node says its panels have no key-colour toggles.
class LockedKeyColoursDegrainPanel : public DegrainPanel {
protected:
    void SetUp() override {
        StageScene::SetUp();
        node->getKeyColorInput(TsTypes::KeyColor1)->setLocked(true);
        node->getKeyColorInput(TsTypes::KeyColor2)->setLocked(true);
        openPanel("tsDegrain");
    }
};

TEST_F(LockedKeyColoursDegrainPanel, HasNoTogglesAndOnlyTheResetActs) {
    EXPECT_EQ(controller().getToggleCount(), 0);
    useTool(TsDgTool::getManipToolName(2));
    toggle(0)->click();
    EXPECT_EQ(currentTool(), TsDgTool::getManipToolName(2));
    EXPECT_EQ(pushedCursors(), 0);
    node->getDegrainInput()->setValue(0.0, PiValue(true));
    panel->find<UiPushButton>("reset")->click();
    EXPECT_FALSE(node->getDegrainInput()->getTypedValue<bool>(0.0));
    EXPECT_EQ(stack().getUndoName(), "Reset Screen Degrain");
}

} // namespace
} // namespace stages
