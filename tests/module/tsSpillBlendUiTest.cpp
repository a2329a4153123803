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
};

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
