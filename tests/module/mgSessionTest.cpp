// A whole session of the matte-generation tools on one keyer node, undone
// step by step by name.
#include "mgScene.h"

#include <gfx/mfToolset.h>

namespace {

class MatteSession : public MgScene {
protected:
    void SetUp() override {
        MgScene::SetUp();
        setKeyColours({0.0f, 0.0f, 0.0f}, {0.0f, 0.0f, 0.0f});
        setParam(TsMgTypes::Overall, 0.5);
        mg->createPatch();
        mg->createPatch();
        stack().clear();
    }

    std::vector<std::string> shownBars() {
        MfTool& tool = *handler().getToolset()->getTool(TsMgTool::getManipToolName(2));
        MfManipulator& column = **tool.begin();
        std::vector<std::pair<float, std::string>> shown;
        for (int p = 0; p < 8; ++p) {
            const auto& bar = refCast<MfRangeManipulator>(*column.getChild(p));
            if (bar.getState() != MfManipulator::Hidden) {
                shown.emplace_back(-bar.getAppearanceTransform().getTranslationY(), bar.getName());
            }
        }
        std::sort(shown.begin(), shown.end());
        std::vector<std::string> names;
        for (const auto& s : shown) {
            names.push_back(s.second);
        }
        return names;
    }
};

TEST_F(MatteSession, EveryStepIsNamedAndUndoingThemAllRestoresTheNode) {
    const std::vector<PiInputState> start = nodeState();

    // Key colour 1 from the screen: key colour 2 follows.
    useTool(0);
    click(blockCentre(Key));
    EXPECT_EQ(keyColour(TsTypes::KeyColor2), K);

    // The matte: the screen lies inside the core, the foreground beyond the
    // edge.
    pressKey(Qt::Key_M);
    ASSERT_EQ(currentTool(), TsMgTool::getManipToolName(2));
    click(blockCentre(Key));
    EXPECT_EQ(shownBars(), std::vector<std::string>{"Overall"});
    click(blockCentre(Highlight)); // dismisses
    click(blockCentre(Foreground));
    EXPECT_EQ(shownBars(), std::vector<std::string>{"Edge Softness"});
    const GePoint2<float> point = at(blockCentre(Foreground));
    drag({blockCentre(Foreground)},
         VwUtils::windowToWorldOrtho(viewer->getView(), {point.x + 120.0f, point.y}));
    EXPECT_NEAR(param(TsMgTypes::EdgeSoftness), 0.8, 1e-6);

    // Two patches: the first replaced then grown, the second likewise.
    pressKey(Qt::Key_1);
    ASSERT_EQ(currentTool(), TsMgTool::getManipToolName(3));
    click(blockCentre(Key), Shift);
    click(blockCentre(Foreground));
    pressKey(Qt::Key_2);
    click(blockCentre(Highlight), Shift);
    click(blockCentre(Shadow));
    EXPECT_EQ(mg->getPatchModeInput(0)->getTypedValue<int>(0.0), 3);
    EXPECT_NE(mg->getPatchModeInput(1)->getTypedValue<int>(0.0), 0);

    const std::string pick = catalogueText("MSG_TS_SET_KEY_COLOR");
    const std::string matte = catalogueText("MSG_TS_SET_MATTE_SAMPLE");
    const std::string patch = catalogueText("MSG_TS_SET_PATCH_SAMPLE");
    const std::vector<std::string> steps = stack().getStepNames();
    EXPECT_EQ(steps, (std::vector<std::string>{pick, matte, "Select Patch", patch, patch,
                                               "Select Patch", patch, patch}));

    std::vector<std::string> undone;
    while (stack().canUndo()) {
        undone.push_back(stack().getUndoName());
        stack().undo();
    }
    EXPECT_EQ(undone, std::vector<std::string>(steps.rbegin(), steps.rend()));
    EXPECT_TRUE(nodeState() == start);
    EXPECT_EQ(mg->getCurrentPatch(), 1);
}

} // namespace
