// The matte-generation panel, as the main panel shows it for the selected
// keyer node, with a viewer showing that node in the same main window.
#include "tsMgUi.h"
#include "keyerPanelScene.h"

#include <gfx/wsCursorRegistry.h>
#include <resmgt/msgFileGuard.h>
#include <resmgt/msgServer.h>
#include <tesseraCore/tsMgTool.h>
#include <ui/uiGrabHandler.h>
#include <ui/uiPushButton.h>
#include <ui/uiValueEditor.h>

namespace {

std::string catalogueText(const char* id) {
    const MsgFileGuard guard("tessera.msg");
    return MsgServer::getInstance().lookup(id);
}

const std::string& toolName(int index) {
    return TsMgTool::getManipToolName(index);
}

bool isBlack(const CoRgbColorTyped<float>& c) {
    return c.r == 0.0f && c.g == 0.0f && c.b == 0.0f;
}

class MatteGenPanel : public ::testing::Test, public KeyerPanelScene {
protected:
    void SetUp() override {
        build(1);
        select(keyers[0]);
        ASSERT_TRUE(handler());
        handler()->setCurrentTool(toolName(2));
        settle();
        history().clear();
        cursors = UiApplication::getInstance().getOverrideCursorDepth();
    }
    void TearDown() override {
        tearDown();
        EXPECT_EQ(UiApplication::getInstance().getOverrideCursorDepth(), cursors);
    }

    RCShdPtr<UiDualState> keyToggle(int index) const {
        return matteWidget<UiDualState>(index == 0 ? "keyColor1Toggle" : "keyColor2Toggle");
    }
    const TsMgUi& controller() const {
        return dynamic_cast<const TsMgUi&>(*area("tsMatteGen")->getContent().controller);
    }
    int cursorDepth() const { return UiApplication::getInstance().getOverrideCursorDepth(); }

    int cursors = 0;
};

TEST_F(MatteGenPanel, ThePressOnAKeyColourToggleStartsAPickThatOneClickInAViewerMakes) {
    const auto toggle = keyToggle(0);
    toggle->click();
    settle();
    // The press took the grabs: the toggle lights with the tool, not the
    // click.
    EXPECT_FALSE(toggle->getState());
    EXPECT_EQ(UiGrab::pointer().getHolder(), &controller().getKeyColorPick());
    EXPECT_EQ(UiGrab::keyboard().getHolder(), &controller().getKeyColorPick());
    EXPECT_EQ(cursorDepth(), cursors + 1);
    EXPECT_EQ(UiApplication::getInstance().getOverrideCursor(),
              WsCursorRegistry::getInstance().getCursor(WsCursorRegistry::Pick));
    EXPECT_EQ(currentTool(), toolName(2));

    // The press that ends the pick is the pick tool's first event.
    const QPointF at = viewerPoint(5.5f, 10.5f);
    sendMouse(viewer, QEvent::MouseButtonPress, at);
    EXPECT_EQ(currentTool(), toolName(0));
    EXPECT_TRUE(toggle->getState());
    EXPECT_FALSE(UiGrab::pointer().isGrabbed());
    EXPECT_FALSE(UiGrab::keyboard().isGrabbed());
    EXPECT_EQ(cursorDepth(), cursors);
    sendMouse(viewer, QEvent::MouseButtonRelease, at);
    settle();

    const CoRgbColorTyped<float> picked = keyColour(0, TsTypes::KeyColor1);
    EXPECT_FLOAT_EQ(picked.r, Left.r);
    EXPECT_FLOAT_EQ(picked.g, Left.g);
    EXPECT_FLOAT_EQ(picked.b, Left.b);
    // The pick tool is transient: the tool before it is back, and the toggle
    // is off again.
    EXPECT_EQ(currentTool(), toolName(2));
    EXPECT_FALSE(toggle->getState());
    EXPECT_EQ(history().getUndoName(), catalogueText("MSG_TS_SET_KEY_COLOR"));
    history().undo();
    EXPECT_TRUE(isBlack(keyColour(0, TsTypes::KeyColor1)));
}

} // namespace
