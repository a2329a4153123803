#include <tesseraCore/img/tsScreenEstimate.h>

#include <tesseraUtil/tsMgUtils.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

using Rgb = CoRgbColorTyped<float>;

// A green screen lit from 100 % on the left down to 60 % on the right, with
// grain, and a grey square of subject in the middle with strands of dark hair
// across the screen above it.
class UnevenScreen : public ::testing::Test {
protected:
    static constexpr int W = 480;
    static constexpr int H = 240;
    static constexpr float Grain = 0.006f;
    const Rgb key{0.1f, 0.5f, 0.12f};
    PiImage plate{W, H};
    TsKeyerSettings settings;

    static float light(double x) { return static_cast<float>(1.0 - 0.4 * x / W); }
    static bool subject(int i, int j) { return i >= 180 && i < 300 && j >= 40 && j < 160; }

    void SetUp() override {
        settings.keyColors = {key, key};
        std::mt19937 rng(3);
        std::normal_distribution<float> grain(0.0f, Grain);
        for (int j = 0; j < H; ++j) {
            for (int i = 0; i < W; ++i) {
                Rgb c = key * light(i + 0.5);
                if (subject(i, j)) {
                    c = {0.5f, 0.5f, 0.5f};
                } else if (j > 180 && i % 9 == 0) {
                    c = c * 0.4f; // a strand of hair over the screen, 60 % cover
                }
                plate.setPixel(i, j, {c.r + grain(rng), c.g + grain(rng), c.b + grain(rng), 1});
            }
        }
    }
};

TEST_F(UnevenScreen, FollowsTheScreensLightAndContinuesItBehindTheSubject) {
    const TsScreenEstimate estimate(plate, settings);
    ASSERT_FALSE(estimate.isEmpty());
    EXPECT_EQ(estimate.getCellSize(), 10);
    for (const double x : {20.0, 120.0, 240.0, 360.0, 460.0}) {
        for (const double y : {20.0, 100.0, 210.0}) {
            const Rgb s = estimate.screenAt(x, y);
            // Within a hundredth of the light there, hair and subject aside.
            EXPECT_NEAR(s.g / key.g, light(x), 0.01) << x << ", " << y;
            EXPECT_NEAR(s.r / s.g, key.r / key.g, 0.02) << x << ", " << y;
        }
    }
    // The grain in units of d1: the grain of the key's chroma.
    const float expected = Grain / TsMgUtils::getKeyAxes(key).chroma;
    EXPECT_NEAR(estimate.getGrain(), expected, 0.3f * expected);
    EXPECT_GT(estimate.shareAt(20, 20), 0.9f);
    EXPECT_EQ(estimate.shareAt(240, 100), 0.0f);

    // The lines of a row follow the same screen.
    std::vector<TsScreenEstimate::Line> lines((W + 63) / 64);
    estimate.rowLines(20, lines.data());
    const TsScreenEstimate::Line& l = lines[5];
    const float gainG = l.start[TsScreenEstimate::GainG] + 10.0f * l.step[TsScreenEstimate::GainG];
    EXPECT_NEAR(gainG, key.g / estimate.screenAt(330.5, 20.5).g, 0.005f);
}

TEST_F(UnevenScreen, ShadowsReachHowDarkTheScreenMayBe) {
    // Reaching 20 % darker only, the right of the screen is not screen: the
    // estimate continues the part lit at 80 % into it.
    settings.matte[1] = 0.25;
    const TsScreenEstimate estimate(plate, settings);
    EXPECT_NEAR(estimate.screenAt(460, 20).g / key.g, 0.8f, 0.02f);
    EXPECT_GT(estimate.screenAt(100, 20).g, estimate.screenAt(460, 20).g * 1.1f);
}

TEST(ScreenEstimate, NoScreenOrNoKeyGivesNoEstimate) {
    TsKeyerSettings settings;
    const PiImage grey(64, 64, {0.5f, 0.5f, 0.5f, 1});
    EXPECT_TRUE(TsScreenEstimate(grey, settings).isEmpty()); // black keys
    settings.keyColors = {Rgb{0.1f, 0.5f, 0.1f}, Rgb{0.1f, 0.5f, 0.1f}};
    const TsScreenEstimate none(grey, settings);
    EXPECT_TRUE(none.isEmpty());
    EXPECT_EQ(none.screenAt(3, 3), (Rgb{0.1f, 0.5f, 0.1f}));

    // What the estimate depends on.
    TsKeyerSettings other = settings;
    other.matte[7] = 0.9;
    other.spill = {1.0, 1.0};
    EXPECT_TRUE(TsScreenEstimate::sameInputs(settings, other));
    other.matte[1] = 0.2;
    EXPECT_FALSE(TsScreenEstimate::sameInputs(settings, other));
}

} // namespace
