#include <tesseraUtil/tsMgAnimToAlgo.h>
#include <tesseraUtil/tsMgUtils.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using Rgb = CoRgbColorTyped<float>;
using Matrix = CoAffineMatrixTyped<float>;

// A green screen and a blue screen with the colours that meet them: a skin
// tone, greys, and mixes of the screen with the subject.
class SoftnessSpace : public ::testing::Test {
protected:
    const Rgb green{0.1f, 0.5f, 0.1f};
    const Rgb blue{0.1f, 0.2f, 0.6f};
    const Rgb skin{0.6f, 0.4f, 0.3f};

    static Rgb mix(const Rgb& a, const Rgb& b, float t) { return a * (1.0f - t) + b * t; }
};

TEST_F(SoftnessSpace, KeyColourSitsAtTheOriginAndNeutralsAtOne) {
    for (const Rgb& key : {green, blue}) {
        const Matrix s = TsMgUtils::getSoftnessMatrix(key, 0.0f);
        const Rgb k = s.transform(key);
        EXPECT_NEAR(k.r, 0.0f, 1e-5f);
        EXPECT_NEAR(k.g, 0.0f, 1e-5f);
        EXPECT_NEAR(k.b, 0.0f, 1e-5f);
        for (float grey : {0.0f, 0.18f, 1.0f, 4.0f}) {
            EXPECT_NEAR(s.transform(grey, grey, grey).r, 1.0f, 1e-4f) << grey;
            EXPECT_NEAR(s.transform(grey, grey, grey).g, 0.0f, 1e-4f) << grey;
        }
    }
}

TEST_F(SoftnessSpace, AxisOnePointsFromTheKeyColourToTheForeground) {
    const Matrix s = TsMgUtils::getSoftnessMatrix(green, 0.0f);
    EXPECT_NEAR(s.transform(skin).r, 1.126f, 0.01f);
    EXPECT_NEAR(TsMgUtils::getSoftnessMatrix(blue, 0.0f).transform(skin).r, 1.5f, 0.01f);
    // Linear mixes of screen and subject, as on the subject's soft edges: d1
    // grows in proportion to the subject's share.
    for (float t : {0.25f, 0.5f, 0.75f}) {
        EXPECT_NEAR(s.transform(mix(green, skin, t)).r, 1.126f * t, 0.01f) << t;
    }
    // Deeper than the key colour is negative.
    EXPECT_LT(s.transform({0.05f, 0.6f, 0.05f}).r, -0.2f);
}

TEST_F(SoftnessSpace, AxesThreeAndTwoAreBrightnessAndHue) {
    const Matrix s = TsMgUtils::getSoftnessMatrix(green, 0.0f);
    const Rgb brighter = s.transform(green.r + 0.1f, green.g + 0.1f, green.b + 0.1f);
    EXPECT_NEAR(brighter.r, 0.0f, 1e-5f);
    EXPECT_NEAR(brighter.g, 0.0f, 1e-5f);
    EXPECT_GT(brighter.b, 0.5f);
    // A yellower green: hue moves (towards red is positive), brightness too.
    const Rgb yellower = s.transform(0.2f, 0.5f, 0.0f);
    EXPECT_GT(yellower.g, 0.4f);
    EXPECT_NEAR(yellower.b, 0.0f, 1e-5f);
    // The space is colour space turned and scaled by 1 / |chroma|: distances
    // are kept up to that scale.
    const TsMgUtils::KeyAxes axes = TsMgUtils::getKeyAxes(green);
    const float chroma = std::sqrt(2.0f / 3.0f) * 0.4f;
    EXPECT_NEAR(axes.chroma, chroma, 1e-5f);
    const Rgb d = s.transform(green.r + 0.03f, green.g - 0.02f, green.b + 0.01f);
    EXPECT_NEAR(std::sqrt(d.r * d.r + d.g * d.g + d.b * d.b), std::sqrt(0.0014f) / chroma, 1e-3f);
}

TEST_F(SoftnessSpace, IntrusionMovesTheOriginAlongAxisOne) {
    const Matrix s0 = TsMgUtils::getSoftnessMatrix(green, 0.0f);
    const Matrix s = TsMgUtils::getSoftnessMatrix(green, 0.15f);
    EXPECT_NEAR(s.transform(green).r, -0.15f, 1e-5f);
    EXPECT_NEAR(s.transform(skin).r, s0.transform(skin).r - 0.15f, 1e-5f);
    EXPECT_EQ(s.transform(skin).g, s0.transform(skin).g);
}

TEST(SoftnessSpaceDegenerate, GreyBlackAndBrokenKeysGiveARegularMatrix) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (const Rgb& key :
         {Rgb{0, 0, 0}, Rgb{0.5f, 0.5f, 0.5f}, Rgb{nan, 0.5f, 0.1f}, Rgb{0.5f, 0.5f, 0.5002f}}) {
        const Matrix s = TsMgUtils::getSoftnessMatrix(key, 0.1f);
        for (int i = 0; i < 16; ++i) {
            EXPECT_TRUE(std::isfinite(s[i]));
        }
        Matrix inverse;
        EXPECT_TRUE(s.computeInverse(inverse));
        EXPECT_GE(TsMgUtils::getKeyAxes(key).chroma, TsMgUtils::MinChroma);
    }
    // A key with no chroma at all measures along green: a green colour is
    // deeper than it.
    EXPECT_LT(TsMgUtils::getSoftnessMatrix({0.3f, 0.3f, 0.3f}, 0).transform(0.2f, 0.4f, 0.2f).r,
              -1.0f);
}

TEST(AnimToAlgo, IntrusionAndOpponentAtTheirLandmarks) {
    EXPECT_EQ(TsMgAnimToAlgo::overallToIntrusion(0.0f), 0.0f);
    EXPECT_FLOAT_EQ(TsMgAnimToAlgo::overallToIntrusion(0.5f), 0.15f);
    EXPECT_FLOAT_EQ(TsMgAnimToAlgo::overallToIntrusion(1.0f), TsMgAnimToAlgo::MaxIntrusion);
    EXPECT_FLOAT_EQ(TsMgAnimToAlgo::overallToIntrusion(3.0f), TsMgAnimToAlgo::MaxIntrusion);
    EXPECT_EQ(TsMgAnimToAlgo::overallToIntrusion(-1.0f), 0.0f);
    EXPECT_EQ(TsMgAnimToAlgo::overallToIntrusion(std::numeric_limits<float>::quiet_NaN()), 0.0f);

    EXPECT_FLOAT_EQ(TsMgAnimToAlgo::rangeEToOpponent(0.0f), 10.0f);
    EXPECT_FLOAT_EQ(TsMgAnimToAlgo::rangeEToOpponent(0.5f), 1.0f / 0.6f);
    EXPECT_FLOAT_EQ(TsMgAnimToAlgo::rangeEToOpponent(1.0f), 1.0f / 1.1f);
    float previous = TsMgAnimToAlgo::rangeEToOpponent(0.0f);
    for (int i = 1; i <= 10; ++i) {
        const float o = TsMgAnimToAlgo::rangeEToOpponent(i / 10.0f);
        EXPECT_LT(o, previous);
        previous = o;
    }

    // The reaches the keyer reads off the other bars: hue in softness units,
    // the screen's light as a share of the key colour's brightness.
    EXPECT_FLOAT_EQ(TsMgAnimToAlgo::hueToReach(0.5f), 0.15f);
    EXPECT_FLOAT_EQ(TsMgAnimToAlgo::hueToReach(2.0f), TsMgAnimToAlgo::MaxHueReach);
    EXPECT_EQ(TsMgAnimToAlgo::hueToReach(std::numeric_limits<float>::quiet_NaN()), 0.0f);
    EXPECT_FLOAT_EQ(TsMgAnimToAlgo::shadowsToScreenReach(0.5f), 0.4f);
    EXPECT_FLOAT_EQ(TsMgAnimToAlgo::highlightsToScreenReach(0.5f), 1.0f);
    EXPECT_EQ(TsMgAnimToAlgo::shadowsToScreenReach(-1.0f), 0.0f);
}

// The numbers that the viewer tools derive from these, on a green screen with
// default parameters: the sample-matte tool's levels (thresholds 0.04 .. 0.5)
// and the sample-patch tool's scores (above 0.5 counts as foreground).
TEST_F(SoftnessSpace, ToolMeasuresAreMeaningfulWithDefaults) {
    const float intrusion = TsMgAnimToAlgo::overallToIntrusion(0.5f);
    const float opponent = TsMgAnimToAlgo::rangeEToOpponent(0.5f);
    const Matrix s = TsMgUtils::getSoftnessMatrix(green, intrusion);
    auto score = [&](const Rgb& c) {
        const float x = s.transform(c).r;
        return std::clamp(x < 0.0f ? -x : opponent * x, 0.0f, 1.0f);
    };
    // The screen scores below 0.2 (a patch that holds it is background or an
    // edge), the subject above 0.5, a half-and-half edge pixel between.
    EXPECT_LT(score(green), 0.2f);
    EXPECT_GT(score(skin), 0.5f);
    EXPECT_GT(score({0.18f, 0.18f, 0.18f}), 0.5f);
    EXPECT_GT(score(mix(green, skin, 0.5f)), 0.2f);
    // Grain of 1 % on the screen stays within the 0.04 of "the key colour" on
    // the cross axes.
    const Rgb grainy = s.transform(green.r + 0.01f, green.g - 0.01f, green.b);
    EXPECT_LT(std::fabs(grainy.g), 0.04f);
    EXPECT_LT(std::fabs(grainy.b), 0.04f);
}

} // namespace
