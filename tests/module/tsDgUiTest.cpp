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
