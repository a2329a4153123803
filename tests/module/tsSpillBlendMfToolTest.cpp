#include "tsSpillBlendMfTool.h"
#include "stageScene.h"

#include <gfx/mfRangeManipulator.h>
#include <tesseraCore/tsSpillBlendTool.h>

namespace stages {
namespace {

const std::string& spillTool() {
    return TsSpillBlendTool::getManipToolName(2);
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

} // namespace
} // namespace stages
