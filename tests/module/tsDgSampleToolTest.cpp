#include "stageScene.h"

#include <tesseraCore/tsDgTool.h>
#include <tesseraCore/tsMgTool.h>
#include <tesseraUtil/tsUtils.h>

namespace stages {
namespace {

// The keyer node in the viewer's degrain stage.
class DegrainStage : public StageScene {
protected:
    std::string stage() const override { return "degrain"; }

    RCShdPtr<PiInput> box(int r, int c) { return node->getDegrainBoxInput(r, c); }
    RCShdPtr<PiInput> flag() { return node->getDegrainInput(); }
    bool degrainOn() { return flag()->getTypedValue<bool>(time()); }

    // The box the node holds, as the tools read it.
    CoAffineMatrixTyped<float> storedBox() {
        CoAffineMatrixTyped<float> m;
        for (int r = 0; r < 3; ++r) {
            for (int c = 0; c < 4; ++c) {
                m[4 * c + r] = static_cast<float>(value(box(r, c)));
            }
        }
        return m;
    }
    // The box a sample of exactly these colours stores.
    static CoAffineMatrixTyped<float> sampledBox(const List<CoRgbaColorTyped<float>>& colours) {
        return TsUtils::arrangeMatrixForPatchEdge(
            K, TsUtils::computeMinimalBoxMatrix(TsUtils::makeUnique(colours)));
    }
    void expectStored(const CoAffineMatrixTyped<float>& expected) {
        for (int r = 0; r < 3; ++r) {
            for (int c = 0; c < 4; ++c) {
                EXPECT_EQ(value(box(r, c)), static_cast<double>(expected[4 * c + r]))
                    << "element (" << r << ", " << c << ")";
            }
        }
    }
    bool inStoredBox(const CoRgbaColorTyped<float>& c) {
        return TsUtils::boxDistance(storedBox(), c.r, c.g, c.b) <= 1.0f;
    }
};

TEST_F(DegrainStage, ASampleOfOneColourStoresTheArrangedBoxOfThatColourAndSwitchesDegrainOn) {
    useTool(TsDgTool::getManipToolName(2));
    ASSERT_FALSE(degrainOn());
    click(onA, Shift);

    expectStored(sampledBox({A}));
    EXPECT_TRUE(inStoredBox(A));
    EXPECT_FALSE(inStoredBox(B));
    EXPECT_TRUE(degrainOn());
    // One step under the catalogue's name; undone, the node is as it was.
    ASSERT_EQ(stack().getStepCount(), 1);
    EXPECT_EQ(stack().getUndoName(), catalogueText("MSG_TS_SET_DEGRAIN_SAMPLE"));
    stack().undo();
    expectStored(CoAffineMatrixTyped<float>::IDENTITY);
    EXPECT_FALSE(degrainOn());
}

TEST_F(DegrainStage, ASampleOfTheGrainHoldsEveryGrainColourAndIsCentredOnTheKeyColour) {
    useTool(TsDgTool::getManipToolName(2));
    // A Ctrl-drag picks the swept rectangle: the whole grain region.
    drag({0.0f, 0.0f}, {20.0f, 20.0f}, Ctrl | Shift);

    expectStored(sampledBox({grain[0], grain[1], grain[2], grain[3]}));
    for (const auto& c : grain) {
        EXPECT_TRUE(inStoredBox(c));
    }
    const CoAffineMatrixTyped<float> m = storedBox();
    for (int r = 0; r < 3; ++r) {
        EXPECT_NEAR(m[r] * K.r + m[4 + r] * K.g + m[8 + r] * K.b + m[12 + r], 0.0f, 1e-4f);
    }
    EXPECT_FALSE(inStoredBox(A));
    EXPECT_TRUE(degrainOn());
}

TEST_F(DegrainStage, TheBoxIsArrangedAgainstTheBlendOfTheKeyColours) {
    const CoRgbColorTyped<float> k2{0.3f, 0.5f, 0.4f};
    node->getKeyColorInput(TsTypes::KeyColor2)->setValue(0.0, PiValue(k2));
    setValue(node->getMatteParamInput(TsMgTypes::KeyBlend), 0.25);
    useTool(TsDgTool::getManipToolName(2));
    click(onB, Shift);
    const CoRgbColorTyped<float> blended{K.r * 0.75f + k2.r * 0.25f, K.g * 0.75f + k2.g * 0.25f,
                                         K.b * 0.75f + k2.b * 0.25f};
    const CoAffineMatrixTyped<float> expected = TsUtils::arrangeMatrixForPatchEdge(
        blended, TsUtils::computeMinimalBoxMatrix(TsUtils::makeUnique({B})));
    const CoAffineMatrixTyped<float> stored = storedBox();
    for (int i = 0; i < 16; ++i) {
        EXPECT_NEAR(stored[i], expected[i], 1e-5f * std::max(1.0f, std::abs(expected[i])))
            << "element " << i;
    }
}

TEST_F(DegrainStage, DegrainAlreadyOnIsLeftAsItIsAndTheSampleWritesTheBoxAlone) {
    flag()->setValue(0.0, PiValue(true));
    stack().clear();
    useTool(TsDgTool::getManipToolName(2));
    click(onA, Shift);
    EXPECT_TRUE(degrainOn());
    stack().undo();
    // The sample's step did not hold the flag: undoing it leaves it on.
    EXPECT_TRUE(degrainOn());
    expectStored(CoAffineMatrixTyped<float>::IDENTITY);
}

TEST_F(DegrainStage, ThePickToolsAreTransientAndPickIntoTheKeyColour) {
    useTool(TsDgTool::getManipToolName(2));
    useTool(TsDgTool::getManipToolName(1));
    click(onB);
    const auto k2 =
        node->getKeyColorInput(TsTypes::KeyColor2)->getTypedValue<CoRgbColorTyped<float>>(time());
    EXPECT_EQ(k2.r, B.r);
    EXPECT_EQ(k2.g, B.g);
    EXPECT_EQ(k2.b, B.b);
    EXPECT_EQ(currentTool(), TsDgTool::getManipToolName(2));
    EXPECT_EQ(stack().getUndoName(), catalogueText("MSG_TS_SET_KEY_COLOR"));
}

} // namespace
} // namespace stages
