#include "mgScene.h"

#include <gfx/mfToolset.h>

namespace {

using P = TsMgTypes;

const CoRgbColorTyped<float> Black(0.0f, 0.0f, 0.0f);

// The scene with the sample-matte tool current, and a reading of its column
// of bars.
class SampleMatte : public MgScene {
protected:
    void SetUp() override {
        MgScene::SetUp();
        useTool(2);
    }

    MfTool& tool() { return *handler().getToolset()->getTool(TsMgTool::getManipToolName(2)); }
    MfManipulator& column() { return **tool().begin(); }
    MfRangeManipulator& bar(TsMgTypes::MatteParam p) {
        return refCast<MfRangeManipulator>(*column().getChild(p));
    }
    // The names of the bars shown, top first.
    std::vector<std::string> shownBars() {
        std::vector<MfRangeManipulator*> bars;
        for (auto p = P::Overall; p < P::KeyBlend; p = P::next(p)) {
            if (bar(p).getState() != MfManipulator::Hidden) {
                bars.push_back(&bar(p));
            }
        }
        std::sort(bars.begin(), bars.end(), [](auto* a, auto* b) {
            return a->getAppearanceTransform().getTranslationY() >
                   b->getAppearanceTransform().getTranslationY();
        });
        std::vector<std::string> names;
        for (auto* b : bars) {
            names.push_back(b->getName());
        }
        return names;
    }
    // Whether the viewer shows the bar's name (the column is drawn).
    bool drawn(TsMgTypes::MatteParam p) {
        return paint().findText(TsMgTool::getMatteParamName(p)) != nullptr;
    }
    bool columnDrawn() { return !paint().isEmpty(); }

    // The window point of a bar's value: the bar's x extent [-200, 200]
    // window pixels around the sample point spans the parameter's [0, 1].
    GePoint2<float> barPoint(TsMgTypes::MatteParam p, float value) {
        const GeAffineMatrix3<float> toWindow = bar(p).getLocalToWindow(viewer->getView());
        return toWindow.transformPoint({value * 400.0f - 200.0f, 0.0f});
    }
};

TEST_F(SampleMatte, TheScreenInsideTheCoreRaisesOverallOnly) {
    // "Overall" 0.5 puts the end of the core 0.15 beyond the key colour: the
    // screen lies 0.15 inside it.
    setParam(P::Overall, 0.5);
    EXPECT_TRUE(clickEvents(blockCentre(Key)));
    EXPECT_EQ(shownBars(), std::vector<std::string>{"Overall"});
    EXPECT_TRUE(drawn(P::Overall));
    EXPECT_FALSE(drawn(P::EdgeSoftness));
}

TEST_F(SampleMatte, ColoursWithinTheFirstThresholdShowNoBar) {
    click(blockCentre(Key));
    EXPECT_TRUE(shownBars().empty());
    EXPECT_FALSE(columnDrawn());
    // The column still sits at the sample point.
    EXPECT_FLOAT_EQ(column().getBaseTransform().getTranslationX(), blockCentre(Key).x);
    EXPECT_FLOAT_EQ(column().getBaseTransform().getTranslationY(), blockCentre(Key).y);
}

TEST_F(SampleMatte, TheForegroundShowsTheEdgeSoftnessAtThePoint) {
    click(blockCentre(Foreground));
    EXPECT_EQ(shownBars(), std::vector<std::string>{"Edge Softness"});
    // The top bar hangs at the point; the hidden ones below it, 30 apart.
    const GePoint2<float> point = at(blockCentre(Foreground));
    const GeAffineMatrix3<float> toWindow =
        bar(P::EdgeSoftness).getLocalToWindow(viewer->getView());
    EXPECT_FLOAT_EQ(toWindow.transformPoint({0.0f, 0.0f}).x, point.x);
    EXPECT_FLOAT_EQ(toWindow.transformPoint({0.0f, 0.0f}).y, point.y);
    std::vector<float> offsets;
    for (auto p = P::Overall; p < P::KeyBlend; p = P::next(p)) {
        offsets.push_back(bar(p).getAppearanceTransform().getTranslationY());
    }
    std::sort(offsets.begin(), offsets.end());
    EXPECT_EQ(offsets, (std::vector<float>{-210, -180, -150, -120, -90, -60, -30, 0}));
}

TEST_F(SampleMatte, BarsAreOrderedByHowFarTheSampleReaches) {
    // Three pixels of the edge block (d1 0.3: level 4) and two of the
    // highlight block (d3 0.55: level 5).
    click(boundaryAfter(Edge));
    EXPECT_EQ(shownBars(), (std::vector<std::string>{"Highlights", "Edge Softness"}));

    // Shadow (d3 -0.13: level 3) beside a colour at d1 0.2 (level 3) and d2
    // -0.07 (level 2).
    click(blockCentre(Key)); // a click away from the bars dismisses the column
    click(boundaryAfter(Shadow));
    EXPECT_EQ(shownBars(), (std::vector<std::string>{"Shadows", "Edge Softness", "Hue Minus"}));
}

TEST_F(SampleMatte, ADeepHueThatAlreadyReachedItsLevelRaisesThePlainHue) {
    // One deep pixel (d1 -0.9, d2 0.3) amid the screen raises the deep hue
    // to 4, and "Overall" to 5.
    paintPlate(5, 6, 5, 6, blockColour(DeepB));
    click(blockCentre(Key));
    EXPECT_EQ(shownBars(), (std::vector<std::string>{"Overall", "Deep Hue Plus"}));

    // A second one finds each level of the deep hue taken and raises the
    // plain hue instead: a patch of deep colour touches both.
    paintPlate(6, 7, 5, 6, blockColour(DeepB));
    click(blockCentre(Highlight)); // dismisses
    click(blockCentre(Key));
    EXPECT_EQ(shownBars(), (std::vector<std::string>{"Overall", "Deep Hue Plus", "Hue Plus"}));
}

TEST_F(SampleMatte, AColourExactlyOnAThresholdDoesNotRaiseTheLevel) {
    // With black key colours (a fresh node's), a colour whose d1, as the
    // tool computes it, is exactly 0.04.
    setKeyColours(Black, Black);
    const CoAffineMatrixTyped<float> m = TsMgUtils::getSoftnessMatrix(Black, 0.0f);
    const auto d1 = [&](const CoRgbaColorTyped<float>& c) { return softness(m, 0, c); };
    CoRgbaColorTyped<float> onThreshold;
    ASSERT_TRUE(findColourOn(m, 0, 0.04f, colourAt({0.04f, 0.0f, 0.0f}, Black), onThreshold));
    paintPlate(70, 80, 0, 10, onThreshold);
    click(blockCentre(HueMinus));
    EXPECT_TRUE(shownBars().empty());

    // The next colour out along the first axis is beyond it.
    CoRgbaColorTyped<float> beyond = onThreshold;
    while (!(d1(beyond) > 0.04f)) {
        beyond.g = std::nextafter(beyond.g, m[4] > 0.0f ? 2.0f : -2.0f);
    }
    ASSERT_LT(d1(beyond), 0.0401f);
    paintPlate(70, 80, 0, 10, beyond);
    click(blockCentre(Key));
    click(blockCentre(HueMinus));
    EXPECT_EQ(shownBars(), std::vector<std::string>{"Edge Softness"});

    // So on the third axis: exactly 0.04 of brightness raises no highlight.
    CoRgbaColorTyped<float> bright;
    ASSERT_TRUE(findColourOn(m, 2, 0.04f, colourAt({0.0f, 0.0f, 0.04f}, Black), bright));
    paintPlate(70, 80, 0, 10, bright);
    click(blockCentre(Key));
    click(blockCentre(HueMinus));
    EXPECT_TRUE(shownBars().empty());
}

TEST_F(SampleMatte, ABarShowsItsParameterAndFollowsChangesMadeElsewhere) {
    setParam(P::EdgeSoftness, 0.25);
    click(blockCentre(Foreground));
    EXPECT_FLOAT_EQ(bar(P::EdgeSoftness).getValue(), -100.0f);
    EXPECT_FLOAT_EQ(bar(P::Overall).getValue(), -200.0f);

    const int redraws = viewer->getRedrawCount();
    setParam(P::EdgeSoftness, 1.0);
    EXPECT_FLOAT_EQ(bar(P::EdgeSoftness).getValue(), 200.0f);
    EXPECT_GT(viewer->getRedrawCount(), redraws);
    // The key blend has no bar; a change of it moves nothing.
    setParam(P::KeyBlend, 0.5);
    EXPECT_FLOAT_EQ(bar(P::EdgeSoftness).getValue(), 200.0f);
}

TEST_F(SampleMatte, ADraggedBarFollowsThePointerNotItsOwnWrites) {
    click(blockCentre(Foreground));
    // A pointer position whose value, written and read back, would put the
    // bar elsewhere than under the pointer.
    const GeAffineMatrix3<float> toWindow =
        bar(P::EdgeSoftness).getLocalToWindow(viewer->getView());
    GePoint2<float> target;
    float local = 0.0f;
    bool found = false;
    for (float x = 0.01f; x < 150.0f && !found; x += 0.37f) {
        target = toWindow.transformPoint({x, 0.0f});
        local = bar(P::EdgeSoftness).windowToLocal(viewer->getView(), target).x;
        const float written = local * 0.0025f + 0.5f;
        found = written * 400.0f - 200.0f != local;
    }
    ASSERT_TRUE(found);

    auto down = press(barPoint(P::EdgeSoftness, 0.5f));
    deliver(down);
    auto m = move(target);
    deliver(m);
    EXPECT_EQ(bar(P::EdgeSoftness).getValue(), local);
    auto up = release(target);
    deliver(up);
    EXPECT_EQ(bar(P::EdgeSoftness).getValue(), local);
    // Listening again once the drag is over.
    setParam(P::EdgeSoftness, 0.0);
    EXPECT_FLOAT_EQ(bar(P::EdgeSoftness).getValue(), -200.0f);
}

TEST_F(SampleMatte, ACtrlMoveSamplesAgainWhereThePointerIs) {
    click(blockCentre(Foreground));
    auto plain = move(at(blockCentre(Highlight)), 0, EvButton::None);
    deliver(plain);
    EXPECT_EQ(shownBars(), std::vector<std::string>{"Edge Softness"});

    auto withCtrl = move(at(blockCentre(Highlight)), Ctrl, EvButton::None);
    EXPECT_TRUE(deliver(withCtrl));
    EXPECT_EQ(shownBars(), std::vector<std::string>{"Highlights"});
    EXPECT_FLOAT_EQ(column().getBaseTransform().getTranslationX(), blockCentre(Highlight).x);

    // Off the image there is nothing to sample: the column stays.
    auto off = move(at({120.0f, 5.0f}), Ctrl, EvButton::None);
    deliver(off);
    EXPECT_EQ(shownBars(), std::vector<std::string>{"Highlights"});
    EXPECT_TRUE(columnDrawn());
}

} // namespace
