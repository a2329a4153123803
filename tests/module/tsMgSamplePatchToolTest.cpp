#include "tsMgSamplePatchTool.h"
#include "mgScene.h"

#include <gfx/mfToolset.h>
#include <tesseraUtil/tsUtils.h>

#include <limits>

namespace {

using Box = CoAffineMatrixTyped<float>;

Vector<CoRgbaColorTyped<float>> colours(std::initializer_list<CoRgbaColorTyped<float>> list) {
    Vector<CoRgbaColorTyped<float>> v;
    for (const auto& c : list) {
        v.append(c);
    }
    return v;
}

// The scene with two patches, the second current, and the sample-patch tool
// current.
class SamplePatch : public MgScene {
protected:
    void SetUp() override {
        MgScene::SetUp();
        mg->createPatch();
        mg->createPatch();
        stack().clear();
        useTool(3);
    }

    TsMgSamplePatchTool& tool() {
        return refCast<TsMgSamplePatchTool>(
            *handler().getToolset()->getTool(TsMgTool::getManipToolName(3)));
    }
    Box box(int patch) {
        Box b;
        for (int r = 0; r < 3; ++r) {
            for (int c = 0; c < 4; ++c) {
                b.set(r, c,
                      static_cast<float>(
                          mg->getPatchBoxInput(patch, r, c)->getTypedValue<double>(now())));
            }
        }
        return b;
    }
    int mode(int patch) { return mg->getPatchModeInput(patch)->getTypedValue<int>(now()); }
    static Box fitted(std::initializer_list<CoRgbaColorTyped<float>> list) {
        return TsUtils::computeMinimalBoxMatrix(colours(list));
    }
};

TEST_F(SamplePatch, AShiftPickReplacesTheBoxAndDecidesTheModeInOneNamedStep) {
    ASSERT_EQ(mg->getCurrentPatch(), 1);
    click(blockCentre(Foreground), Shift);
    EXPECT_EQ(box(1), fitted({blockColour(Foreground)}));
    EXPECT_EQ(mode(1), 2); // every score at 1: far beyond the core
    EXPECT_EQ(box(0), Box::IDENTITY);
    ASSERT_EQ(stack().getUndoCount(), 1);
    EXPECT_EQ(stack().getUndoName(), catalogueText("MSG_TS_SET_PATCH_SAMPLE"));
    EXPECT_NE(stack().getUndoName(), "MSG_TS_SET_PATCH_SAMPLE");

    stack().undo();
    EXPECT_EQ(box(1), Box::IDENTITY);
    EXPECT_EQ(mode(1), 0);
}

TEST_F(SamplePatch, APlainPickGrowsTheBoxByItsEightCornersAfterThePickedColours) {
    click(blockCentre(Key), Shift);
    const Box old = box(1);
    ASSERT_NE(old, Box::IDENTITY);

    click(blockCentre(Foreground));
    // The corners of the old box, in the order of the cube's corners.
    const Box inverse = old.computeInverse();
    const List<CoRgbaColorTyped<float>>& corners = tool().getPreviousBoxCorners();
    ASSERT_EQ(corners.size(), 8u);
    const float sign[2] = {-1.0f, 1.0f};
    for (int n = 0; n < 8; ++n) {
        const CoRgbColorTyped<float> expected =
            inverse.transform(sign[n / 4], sign[(n / 2) % 2], sign[n % 2]);
        EXPECT_EQ(corners[n], CoRgbaColorTyped<float>(expected.r, expected.g, expected.b, 1.0f))
            << "corner " << n;
    }
    List<CoRgbaColorTyped<float>> merged{blockColour(Foreground)};
    merged.insert(merged.end(), corners.begin(), corners.end());
    EXPECT_EQ(box(1), TsUtils::computeMinimalBoxMatrix(TsUtils::makeUnique(merged)));
    EXPECT_LE(TsUtils::boxDistance(box(1), K.r, K.g, K.b), 1.0f);
    const auto f = blockColour(Foreground);
    EXPECT_LE(TsUtils::boxDistance(box(1), f.r, f.g, f.b), 1.0f);
    // The mode was decided by the first sample.
    EXPECT_EQ(mode(1), 3);
    EXPECT_EQ(stack().getUndoCount(), 2);

    // A replacing pick ignores the corners an adding pick left.
    click(blockCentre(Highlight), Shift);
    EXPECT_EQ(box(1), fitted({blockColour(Highlight)}));
}

TEST_F(SamplePatch, ACtrlDragAddsTheSweptRectangle) {
    click(blockCentre(Key), Shift);
    // From the key block into the foreground block: two columns of each.
    drag({8.0f, 2.0f}, {12.0f, 6.0f}, Ctrl);
    const auto f = blockColour(Foreground);
    EXPECT_LE(TsUtils::boxDistance(box(1), f.r, f.g, f.b), 1.0f);
    EXPECT_LE(TsUtils::boxDistance(box(1), K.r, K.g, K.b), 1.0f);
    EXPECT_GT(TsUtils::boxDistance(box(1), K.r, K.g, K.b + 0.5f), 1.0f);

    // With Shift as well it replaces.
    drag({42.0f, 2.0f}, {48.0f, 8.0f}, Ctrl | Shift);
    EXPECT_EQ(box(1), fitted({blockColour(Edge)}));
}

TEST_F(SamplePatch, TheModeComesFromTheScoresOfTheSample) {
    // Over the screen (score 0) into the foreground (1).
    drag({8.0f, 5.0f}, {12.0f, 5.0f}, Shift);
    EXPECT_EQ(mode(1), 1);

    mg->makePatchCurrent(0);
    click(blockCentre(Key), Shift);
    EXPECT_EQ(mode(0), 3);
}

TEST_F(SamplePatch, AChangeOfTheCurrentPatchRedirectsTheNextSample) {
    click(blockCentre(Key), Shift);
    const Box first = box(1);
    mg->makePatchCurrent(0);
    EXPECT_EQ(tool().getPatch(), 0);
    click(blockCentre(Foreground), Shift);
    EXPECT_EQ(box(0), fitted({blockColour(Foreground)}));
    EXPECT_EQ(box(1), first);

    // Undoing the sample and then the change of patch brings the tool back
    // to the second patch.
    stack().undo();
    stack().undo();
    EXPECT_EQ(mg->getCurrentPatch(), 1);
    EXPECT_EQ(tool().getPatch(), 1);
    click(blockCentre(Highlight), Shift);
    EXPECT_EQ(box(1), fitted({blockColour(Highlight)}));
    EXPECT_EQ(box(0), Box::IDENTITY);
}

// The mode thresholds, on colours whose first softness coordinate the tool
// computes exactly.
class PatchMode : public MgScene {
protected:
    // A black key colour: colours near it on the first axis keep every term
    // of the coordinate small, so that any float value can be reached.
    const CoRgbColorTyped<float> key{0.0f, 0.0f, 0.0f};

    void SetUp() override {
        MgScene::SetUp();
        m = TsMgUtils::getSoftnessMatrix(key, 0.0f);
    }
    // A colour whose first coordinate is exactly x.
    CoRgbaColorTyped<float> on(float x) {
        CoRgbaColorTyped<float> c;
        EXPECT_TRUE(findColourOn(m, 0, x, colourAt({x, 0.0f, 0.0f}, key), c)) << x;
        return c;
    }
    CoRgbaColorTyped<float> justAbove(float x) {
        CoRgbaColorTyped<float> c = on(x);
        while (!(softness(m, 0, c) > x)) {
            c.g = std::nextafter(c.g, m[4] > 0.0f ? 2.0f : -2.0f);
        }
        return c;
    }
    int classify(std::initializer_list<CoRgbaColorTyped<float>> list) {
        return TsMgSamplePatchTool::classifyMode(key, colours(list), 0.0f, 1.0f);
    }

    Box m;
};

TEST_F(PatchMode, NoScoreAboveOneHalfIsModeThree) {
    EXPECT_EQ(classify({}), 3);
    EXPECT_EQ(classify({on(0.5f)}), 3);
    EXPECT_EQ(classify({on(-0.5f), on(0.5f), on(0.0f)}), 3);
    EXPECT_EQ(classify({justAbove(0.5f)}), 2);
}

TEST_F(PatchMode, ALowScoreBelowOneFifthIsModeOne) {
    EXPECT_EQ(classify({on(0.2f), on(0.9f)}), 2);
    EXPECT_EQ(classify({on(-0.2f), on(-0.9f)}), 2); // inside the core counts as well
    CoRgbaColorTyped<float> below = on(0.2f);
    while (!(softness(m, 0, below) < 0.2f)) {
        below.g = std::nextafter(below.g, m[4] > 0.0f ? -2.0f : 2.0f);
    }
    EXPECT_EQ(classify({below, on(0.9f)}), 1);
}

TEST_F(PatchMode, AColourThatIsNotANumberScoresZero) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(classify({{nan, 0.0f, 0.0f, 1.0f}}), 3);
    EXPECT_EQ(classify({on(0.9f), {nan, 0.0f, 0.0f, 1.0f}}), 1);
}

TEST_F(PatchMode, TheOpponentScalesScoresBeyondTheCoreOnly) {
    const auto v = colours({on(0.3f)});
    EXPECT_EQ(TsMgSamplePatchTool::classifyMode(key, v, 0.0f, 1.0f), 3);
    EXPECT_EQ(TsMgSamplePatchTool::classifyMode(key, v, 0.0f, 2.0f), 2);
    const auto inside = colours({on(-0.3f)});
    EXPECT_EQ(TsMgSamplePatchTool::classifyMode(key, inside, 0.0f, 2.0f), 3);
}

} // namespace
