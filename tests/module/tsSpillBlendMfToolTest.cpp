#include "tsSpillBlendMfTool.h"
#include "stageScene.h"

#include <gfx/mfRangeManipulator.h>
#include <tesseraCore/tsSpillBlendTool.h>

namespace stages {
namespace {

const std::string& spillTool() {
    return TsSpillBlendTool::getManipToolName(2);
}
const std::string& blendTool() {
    return TsSpillBlendTool::getManipToolName(3);
}

// The keyer node in the viewer's spill-and-blend stage. Bar stacks are shown
// around world (200, 200), off the plate: the bars do not need it.
class SpillStage : public StageScene {
protected:
    std::string stage() const override { return "spill"; }

    static inline const GePoint2<float> P{200.0f, 200.0f};
    static GePoint2<float> offset(const GePoint2<float>& p, float dx, float dy) {
        return {p.x + dx, p.y + dy};
    }

    RCShdPtr<PiInput> spill(int i) { return node->getSpillInput(i); }
    RCShdPtr<PiInput> blend(int i) { return node->getBlendInput(i); }

    MfTool& tool(const std::string& name) { return *handler().getToolset()->getTool(name); }
    // The stack of a bar tool and its bars.
    MfManipulator& stackOf(const std::string& name) { return **tool(name).begin(); }
    MfRangeManipulator& bar(const std::string& name, int i) {
        return refCast<MfRangeManipulator>(*stackOf(name).getChild(i));
    }
    GePoint2<float> stackOrigin(const std::string& name) {
        const GeAffineMatrix3<float>& m = stackOf(name).getBaseTransform();
        return {m.getTranslationX(), m.getTranslationY()};
    }
    // Whether the viewer draws the stack: the bars' labels are drawn.
    bool shown(const std::string& barName) { return paint().findText(barName) != nullptr; }
};

TEST_F(SpillStage, HoldsThePickToolsThenTheBlendToolThenTheSpillTool) {
    EXPECT_EQ(toolNames(), (std::vector<std::string>{TsSpillBlendTool::getManipToolName(0),
                                                     TsSpillBlendTool::getManipToolName(1),
                                                     blendTool(), spillTool()}));
    // The stage starts on its own tool, appended last.
    EXPECT_EQ(currentTool(), spillTool());
    EXPECT_NE(dynamic_cast<Zn::TsSpillBlendMfTool*>(&tool(spillTool())), nullptr);
    EXPECT_EQ(tool(spillTool()).getUndoString(), catalogueText("MSG_TS_SET_SPILL"));
    EXPECT_EQ(tool(blendTool()).getUndoString(), catalogueText("MSG_TS_SET_BLEND"));
}

TEST_F(SpillStage, TheHotkeysSwitchBetweenSpillAndBlendAndOthersFallThrough) {
    EXPECT_TRUE(hotkey("Adjust Blend"));
    EXPECT_EQ(currentTool(), blendTool());
    EXPECT_TRUE(hotkey("Adjust Spill"));
    EXPECT_EQ(currentTool(), spillTool());
    for (const char* name : {"Sample Degrain", "Sample Matte"}) {
        EXPECT_FALSE(hotkey(name)) << name;
        EXPECT_EQ(currentTool(), spillTool());
    }
    pressKey(Qt::Key_B);
    EXPECT_EQ(currentTool(), blendTool());
    pressKey(Qt::Key_S);
    EXPECT_EQ(currentTool(), spillTool());
}

TEST_F(SpillStage, TheBarsAreNamedAfterTheirInputsTheSecondThirtyUnitsLower) {
    EXPECT_EQ(bar(spillTool(), 0).getName(), "spill amount");
    EXPECT_EQ(bar(spillTool(), 1).getName(), "spill range");
    EXPECT_EQ(bar(blendTool(), 0).getName(), "blend amount");
    EXPECT_EQ(bar(blendTool(), 1).getName(), "blend width");
    for (const std::string& name : {spillTool(), blendTool()}) {
        EXPECT_EQ(bar(name, 0).getAppearanceTransform().getTranslationY(), 0.0f);
        EXPECT_EQ(bar(name, 1).getAppearanceTransform().getTranslationY(), -30.0f);
        EXPECT_EQ(bar(name, 1).getAppearanceTransform().getTranslationX(), 0.0f);
        EXPECT_EQ(bar(name, 0).getRectangle(), GeRectangle<float>(-200.0f, 200.0f, -10.0f, 10.0f));
    }
}

TEST_F(SpillStage, TheInputsRangeMapsOntoTheBarLinearly) {
    useTool(spillTool());
    // An input change places the handle: min at -200, the middle at 0, max
    // at 200.
    for (const auto& [v, x] : std::vector<std::pair<double, float>>{
             {0.0, -200.0f}, {0.5, 0.0f}, {1.0, 200.0f}, {0.25, -100.0f}}) {
        setValue(spill(1), v);
        EXPECT_FLOAT_EQ(bar(spillTool(), 1).getValue(), x) << v;
    }
    // A drag to x = 100 on the amount bar gives 0.75, as one step.
    stack().clear();
    drag(P, offset(P, 100.0f, 0.0f));
    EXPECT_NEAR(value(spill(0)), 0.75, 1e-6);
    EXPECT_EQ(value(spill(1)), 0.25);
    EXPECT_EQ(stack().getStepCount(), 1);
    EXPECT_EQ(stack().getUndoName(), catalogueText("MSG_TS_SET_SPILL"));
    stack().undo();
    EXPECT_EQ(value(spill(0)), 0.5);
}

TEST_F(SpillStage, TheSecondBarDragsTheSecondInput) {
    useTool(blendTool());
    click(P); // shows the stack
    drag(offset(P, 0.0f, -30.0f), offset(P, -200.0f, -30.0f));
    EXPECT_NEAR(value(blend(1)), 0.0, 1e-6);
    EXPECT_EQ(value(blend(0)), 0.0); // the default, untouched
    EXPECT_EQ(stack().getUndoName(), catalogueText("MSG_TS_SET_BLEND"));
}

TEST_F(SpillStage, AClickShowsTheStackThereAndAFreeClickHidesItWithoutMovingIt) {
    useTool(spillTool());
    paint();
    EXPECT_FALSE(shown("Spill Amount"));
    click(P);
    EXPECT_TRUE(shown("Spill Amount"));
    EXPECT_TRUE(shown("Spill Range"));
    EXPECT_EQ(stackOrigin(spillTool()), P);
    EXPECT_EQ(stack().getStepCount(), 0); // a grasp alone changes nothing

    const GePoint2<float> away{600.0f, 400.0f};
    click(away);
    EXPECT_FALSE(shown("Spill Amount"));
    EXPECT_EQ(stackOrigin(spillTool()), P);
    click(away);
    EXPECT_TRUE(shown("Spill Amount"));
    EXPECT_EQ(stackOrigin(spillTool()), away);
}

TEST_F(SpillStage, ACtrlMoveMovesTheShownStackAndEscapeOrFocusLossHideIt) {
    useTool(spillTool());
    click(P);
    moveTo(offset(P, 50.0f, 20.0f), Ctrl);
    EXPECT_EQ(stackOrigin(spillTool()), offset(P, 50.0f, 20.0f));
    EXPECT_TRUE(shown("Spill Amount"));
    moveTo(offset(P, 80.0f, 20.0f)); // a plain move leaves it
    EXPECT_EQ(stackOrigin(spillTool()), offset(P, 50.0f, 20.0f));

    // Escape with the pointer off the bars (over a bar, the bar's feedback
    // takes the key first).
    moveTo(offset(P, 50.0f, 300.0f));
    EXPECT_TRUE(shown("Spill Amount"));
    pressKey(Qt::Key_Escape);
    EXPECT_FALSE(shown("Spill Amount"));
    moveTo(offset(P, 10.0f, 10.0f), Ctrl); // shows it again, there
    EXPECT_TRUE(shown("Spill Amount"));
    EXPECT_EQ(stackOrigin(spillTool()), offset(P, 10.0f, 10.0f));
    loseFocus();
    EXPECT_FALSE(shown("Spill Amount"));
}

TEST_F(SpillStage, ADragDoesNotEchoIntoItsOwnBar) {
    useTool(spillTool());
    press(P);
    moveTo(offset(P, 50.0f, 0.0f));
    EXPECT_NEAR(value(spill(0)), 0.625, 1e-6);
    setValue(spill(0), 0.1); // changed elsewhere during the drag
    EXPECT_FLOAT_EQ(bar(spillTool(), 0).getValue(), 50.0f);
    setValue(spill(1), 0.0); // the other bar still follows its input
    EXPECT_FLOAT_EQ(bar(spillTool(), 1).getValue(), -200.0f);
    release(offset(P, 50.0f, 0.0f));
    setValue(spill(0), 0.2);
    EXPECT_FLOAT_EQ(bar(spillTool(), 0).getValue(), -120.0f);
}

TEST_F(SpillStage, ABarToolMadeCurrentStartsHidden) {
    useTool(blendTool());
    click(P);
    EXPECT_TRUE(shown("Blend Amount"));
    EXPECT_TRUE(hotkey("Adjust Spill"));
    EXPECT_FALSE(shown("Spill Amount"));
    EXPECT_FALSE(shown("Blend Amount"));
    click(offset(P, 30.0f, 0.0f));
    EXPECT_TRUE(shown("Spill Amount"));
    // Back to the blend tool: hidden again, until clicked.
    EXPECT_TRUE(hotkey("Adjust Blend"));
    EXPECT_FALSE(shown("Blend Amount"));
}

TEST_F(SpillStage, ALockedInputKeepsItsValueAndTheStepIsDropped) {
    spill(0)->setLocked(true);
    stack().clear();
    useTool(spillTool());
    drag(P, offset(P, 150.0f, 0.0f));
    EXPECT_EQ(value(spill(0)), 0.5);
    EXPECT_EQ(stack().getStepCount(), 0);
}

TEST_F(SpillStage, AHandlerHeldAfterItsViewerWentLetsGoOfItsHotkeysSafely) {
    RCShdPtr<PiEventHandler> held = viewer->getCurrentEventHandler();
    viewer.reset();
    ASSERT_EQ(held->rcCount(), 1); // the last reference: it goes now
    held.reset();
    viewer = std::make_unique<UiViewer>(nullptr, "second viewer");
    viewer->setNode(node);
    ASSERT_TRUE(viewer->setStage("spill"));
    pressKey(Qt::Key_B);
    EXPECT_EQ(currentTool(), blendTool());
}

} // namespace
} // namespace stages
