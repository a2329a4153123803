#include <tesseraCore/img/tsBlendStage.h>
#include <tesseraCore/img/tsKeyerPass.h>
#include <tesseraCore/img/tsMatteStage.h>

#include <tesseraUtil/tsMgAnimToAlgo.h>
#include <tesseraUtil/tsMgUtils.h>
#include <tesseraUtil/tsUtils.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

using Rgb = CoRgbColorTyped<float>;
using Box = CoAffineMatrixTyped<float>;

// A green screen keyed with default parameters, and colours placed exactly in
// its softness space: along axis 1 towards the grey of the key's brightness,
// and along the hue and brightness axes. The plate is a row of flat swatches,
// one per colour, so that the matte of every swatch can be read back.
class FlatColourKey : public ::testing::Test {
protected:
    const Rgb key{0.1f, 0.5f, 0.1f};
    const Rgb grey{0.7f / 3.0f, 0.7f / 3.0f, 0.7f / 3.0f}; // the key's brightness
    const Rgb skin{0.6f, 0.4f, 0.3f};
    TsKeyerSettings settings;
    TsMgUtils::KeyAxes axes = TsMgUtils::getKeyAxes(key);

    void SetUp() override { settings.keyColors = {key, key}; }

    // The key colour moved t along axis 1 (towards neutral), so that its raw
    // d1 is t, then by `hue` and `bright` softness units along axes 2 and 3.
    Rgb at(float t, float hue = 0.0f, float bright = 0.0f) const {
        Rgb c = key + (grey - key) * t;
        for (int k = 0; k < 3; ++k) {
            c[k] += (axes.axis[1][k] * hue + axes.axis[2][k] * bright) * axes.chroma;
        }
        return c;
    }

    float alpha(const Rgb& c) const { return TsMatteStage(settings).alphaOf(c.r, c.g, c.b); }

    // The mattes of the swatches, through the whole pass.
    std::vector<float> passMatte(const std::vector<Rgb>& colours, int swatch = 3) const {
        PiImage plate(swatch * static_cast<int>(colours.size()), 2);
        for (int s = 0; s < static_cast<int>(colours.size()); ++s) {
            for (int i = 0; i < swatch; ++i) {
                for (int j = 0; j < 2; ++j) {
                    plate.setPixel(s * swatch + i, j,
                                   {colours[s].r, colours[s].g, colours[s].b, 1.0f});
                }
            }
        }
        PiImage out;
        TsKeyerPass::run(plate, nullptr, settings, TsViewMode::Matte, out);
        std::vector<float> mattes;
        for (int s = 0; s < static_cast<int>(colours.size()); ++s) {
            mattes.push_back(out.getPixel(s * swatch + swatch / 2, 1).r);
        }
        return mattes;
    }
};

TEST_F(FlatColourKey, KeyColourIsTransparentAndFarColoursOpaque) {
    const std::vector<float> m =
        passMatte({key, grey, skin, {0.9f, 0.9f, 0.9f}, {0, 0, 0}, at(0.5f)});
    EXPECT_EQ(m[0], 0.0f);
    EXPECT_EQ(m[1], 1.0f);
    EXPECT_EQ(m[2], 1.0f);
    EXPECT_EQ(m[3], 1.0f);
    EXPECT_EQ(m[4], 1.0f); // black lies at d1 = 1 like every neutral
    // Half way to grey: (0.5 - 0.0375) / (0.75 - 0.0375).
    EXPECT_NEAR(m[5], 0.6491f, 1e-3f);
    // The scalar formula and the pass agree; the colour's place is given.
    EXPECT_NEAR(alpha(at(0.5f)), m[5], 1e-6f);
    const Rgb half = at(0.5f, 0.2f);
    const TsMatteStage::ColourMatte place = TsMatteStage(settings).matteOf(half.r, half.g, half.b);
    EXPECT_NEAR(place.d1, 0.5f - 0.15f, 1e-5f);
    EXPECT_NEAR(place.d2, 0.2f, 1e-5f);
    EXPECT_EQ(place.alpha, alpha(half));
    // A broken pixel keys as transparent rather than spreading NaN.
    EXPECT_EQ(alpha({std::nanf(""), 0.5f, 0.1f}), 0.0f);
}

// Along axis 1 the matte is the screen's share: 0 up to the core (a quarter
// of the intrusion), then a straight line to 1 at the intrusion plus the edge
// width.
TEST_F(FlatColourKey, OverallAndEdgeSoftnessSetTheRampAlongAxisOne) {
    auto ramp = [](float t, float i, float w) {
        const float c = TsMatteStage::CoreShare * i;
        return std::clamp((t - c) / (i + w - c), 0.0f, 1.0f);
    };
    const float i = TsMgAnimToAlgo::overallToIntrusion(0.5f);          // 0.15
    const float width = 1.0f / TsMgAnimToAlgo::rangeEToOpponent(0.5f); // 0.6
    EXPECT_EQ(alpha(at(0.03f)), 0.0f);
    for (const float t : {0.1f, 0.3f, 0.7f}) {
        EXPECT_NEAR(alpha(at(t)), ramp(t, i, width), 1e-4f) << t;
    }
    EXPECT_EQ(alpha(at(i + width + 0.01f)), 1.0f);

    settings.matte[0] = 1.0; // intrusion 0.6: the core reaches 0.15
    EXPECT_EQ(alpha(at(0.14f)), 0.0f);
    EXPECT_NEAR(alpha(at(0.5f)), ramp(0.5f, 0.6f, width), 1e-4f);

    settings.matte[0] = 0.5;
    settings.matte[7] = 0.0; // a hard edge 0.1 wide
    EXPECT_NEAR(alpha(at(0.15f)), ramp(0.15f, i, 0.1f), 1e-4f);
    EXPECT_EQ(alpha(at(i + 0.11f)), 1.0f);
}

// Within the screen's light (the reaches of Highlights and Shadows) a
// colour's brightness alone never makes it opaque: a veil of light fabric and
// a strand of dark hair are mixes with the screen like any other. Beyond it a
// colour is subject. The screen lit brighter or darker is keyed as screen
// within those reaches, measured on the plate (TsScreenEstimate).
TEST_F(FlatColourKey, ShadowsAndHighlightsReachTheScreenAsLit) {
    // Brightness as a share of the key's, along axis 3.
    const auto brightness = [&](float d3) { return 1.0f + d3 * axes.chroma * 1.7320508f / 0.7f; };
    EXPECT_EQ(alpha(at(0.0f, 0.0f, 0.8f)), 0.0f); // within twice the key's
    EXPECT_EQ(alpha(at(0.0f, 0.0f, -0.4f)), 0.0f);
    // Darker than 60 % of the key: opaque over 80 % further down.
    EXPECT_NEAR(alpha(at(0.0f, 0.0f, -0.8f)), (0.6f - brightness(-0.8f)) / 0.8f, 1e-5f);
    // Half the plate the key colour, half a part of the screen at 70 % of
    // its light: out of reach it keys as subject.
    const Rgb dark = key * 0.7f;
    auto darkMatte = [&](double shadows) {
        settings.matte[1] = shadows;
        return passMatte({key, dark}, 48)[1];
    };
    EXPECT_EQ(darkMatte(0.5), 0.0f); // reach 0.4
    const float outOfReach = darkMatte(0.2);
    EXPECT_NEAR(outOfReach, alpha(dark), 1e-5f);
    EXPECT_GT(outOfReach, 0.3f);
    settings.matte[1] = 0.5;
    // A part of the screen brighter by a fifth and a little washed out.
    const Rgb washed = (key + (grey - key) * 0.25f) * 1.2f;
    auto washedMatte = [&](double highlights) {
        settings.matte[2] = highlights;
        return passMatte({key, washed}, 48)[1];
    };
    EXPECT_EQ(washedMatte(0.5), 0.0f); // reach 1
    EXPECT_GT(washedMatte(0.0), 0.05f);
}

TEST_F(FlatColourKey, HueReachesDependOnDepth) {
    const float i = TsMgAnimToAlgo::overallToIntrusion(0.5f);
    const float c = TsMatteStage::CoreShare * i;
    const float slope = 1.0f / (0.6f + i - c);
    // Beside the screen colour (not deeper than it): parameters 5 and 6.
    settings.matte[5] = 0.4; // reach 0.096
    settings.matte[6] = 0.8; // reach 0.384
    EXPECT_EQ(alpha(at(0.03f, 0.09f)), 0.0f);
    EXPECT_NEAR(alpha(at(0.03f, 0.5f)), slope * (0.5f - 0.096f), 1e-3f);
    EXPECT_NEAR(alpha(at(0.03f, -0.7f)), slope * (0.7f - 0.384f), 1e-3f);
    // Deeper than the key colour: parameters 3 and 4 instead.
    settings.matte[3] = 0.0;
    settings.matte[4] = 1.0; // reach 0.6
    EXPECT_NEAR(alpha(at(-0.3f, 0.3f)), slope * 0.3f, 1e-3f);
    EXPECT_EQ(alpha(at(-0.3f, -0.55f)), 0.0f);
    EXPECT_NEAR(alpha(at(0.03f, -0.55f)), slope * (0.55f - 0.384f), 1e-3f); // beside
}

TEST_F(FlatColourKey, KeyBlendChoosesBetweenTheTwoKeyColours) {
    const Rgb blue{0.1f, 0.2f, 0.6f};
    settings.keyColors = {key, blue};
    settings.matte[8] = 0.0;
    EXPECT_EQ(alpha(key), 0.0f);
    EXPECT_EQ(alpha(blue), 1.0f);
    settings.matte[8] = 1.0;
    EXPECT_EQ(alpha(key), 1.0f);
    EXPECT_EQ(alpha(blue), 0.0f);
}

TEST_F(FlatColourKey, PatchesForceTheMatteInsideTheirBoxOnly) {
    const Box skinBox =
        TsUtils::computeMinimalBoxMatrix({{0.58f, 0.38f, 0.28f, 1}, {0.62f, 0.42f, 0.32f, 1}});
    settings.patches.push_back({skinBox, 3, 0.0, 0.0}); // background
    EXPECT_EQ(alpha(skin), 0.0f);
    EXPECT_EQ(alpha(grey), 1.0f);
    EXPECT_EQ(alpha({0.65f, 0.4f, 0.3f}), 1.0f); // q = 2.5: outside

    // Range 0.5 reaches q = 1.5; softness 1 fades out by q = 2.5.
    settings.patches[0].range = 0.5;
    EXPECT_EQ(alpha({0.628f, 0.4f, 0.3f}), 0.0f); // q = 1.4
    settings.patches[0].softness = 1.0;
    EXPECT_NEAR(alpha({0.65f, 0.4f, 0.3f}), 1.0f, 1e-3f); // q = 2.5: w = 0
    EXPECT_NEAR(alpha({0.64f, 0.4f, 0.3f}), 0.5f, 1e-3f); // q = 2.0: w = 0.5

    // Foreground on the screen colour; edge half way to 0.5.
    const Box screenBox =
        TsUtils::computeMinimalBoxMatrix({{0.09f, 0.49f, 0.09f, 1}, {0.11f, 0.51f, 0.11f, 1}});
    settings.patches = {{screenBox, 2, 0.0, 0.0}};
    EXPECT_EQ(alpha(key), 1.0f);
    settings.patches = {{screenBox, 1, 0.0, 0.0}};
    EXPECT_EQ(alpha(key), 0.25f);
    // Mode 0 (undecided) and the identity (no box) do nothing.
    settings.patches = {{screenBox, 0, 0.0, 0.0}, {Box::IDENTITY, 2, 1.0, 1.0}};
    EXPECT_EQ(alpha(key), 0.0f);
    EXPECT_EQ(alpha({0.2f, 0.2f, 0.2f}), 1.0f);
    // A later patch wins.
    settings.patches = {{screenBox, 2, 0.0, 0.0}, {screenBox, 3, 0.0, 0.0}};
    EXPECT_EQ(alpha(key), 0.0f);
}

TEST_F(FlatColourKey, DegrainClearsTheScreensGrainAndNothingElse) {
    // Grain on one row of screen: the matte averages it away where a pixel
    // stands out of flat neighbours, but grain this heavy still shows.
    std::mt19937 rng(5);
    std::normal_distribution<float> grain(0.0f, 0.02f);
    std::vector<Rgb> screen;
    List<CoRgbaColorTyped<float>> picked;
    for (int k = 0; k < 400; ++k) {
        const Rgb c{key.r + grain(rng), key.g + grain(rng), key.b + grain(rng)};
        screen.push_back(c);
        picked.append({c.r, c.g, c.b, 1.0f});
    }
    const std::vector<float> before = passMatte(screen, 1);
    int speckles = 0;
    for (float a : before) {
        speckles += a > 0.0f;
    }
    EXPECT_GT(speckles, 20);

    // The degrain box sampled on it holds all of it, in the key colour's
    // light.
    settings.degrainBox = TsUtils::arrangeMatrixForPatchEdge(
        key, TsUtils::computeMinimalBoxMatrix(TsUtils::makeUnique(picked)));
    EXPECT_EQ(passMatte(screen, 1), before); // still off
    settings.degrainOn = true;
    for (float a : passMatte(screen, 1)) {
        ASSERT_EQ(a, 0.0f);
    }
    EXPECT_EQ(alpha(skin), 1.0f);
    EXPECT_EQ(alpha(grey), 1.0f);
}

TEST_F(FlatColourKey, ShortRowsAndBlockTailsKeyLikeWholeBlocks) {
    // 67 pixels: one block of 64 and a tail of 3; swatches of seven pixels
    // (none of them screen) key as their colour does.
    PiImage plate(67, 3);
    auto colour = [this](int i) { return at(0.4f + 0.1f * static_cast<float>((i / 7) % 7)); };
    for (int j = 0; j < 3; ++j) {
        for (int i = 0; i < 67; ++i) {
            const Rgb c = colour(i);
            plate.setPixel(i, j, {c.r, c.g, c.b, 1.0f});
        }
    }
    PiImage out;
    TsKeyerPass::run(plate, nullptr, settings, TsViewMode::Matte, out);
    for (int i = 3; i < 67; i += 7) {
        const Rgb c = colour(i);
        ASSERT_NEAR(out.getPixel(i, 1).r, alpha(c), 1e-5f) << i;
    }
}

// The views of one small scene: a green screen with a skin-toned square, a
// half-transparent strip and a spilled strip, against a striped background.
class KeyerViews : public FlatColourKey {
protected:
    static constexpr int W = 96;
    static constexpr int H = 40;
    PiImagePtr plate;
    PiImagePtr background;
    TsKeyerPass pass;

    void SetUp() override {
        FlatColourKey::SetUp();
        auto p = rcMake<PiImage>(W, H, CoRgbaColorTyped<float>{key.r, key.g, key.b, 1.0f});
        auto b = rcMake<PiImage>(W, H);
        for (int j = 0; j < H; ++j) {
            for (int i = 0; i < W; ++i) {
                if (i >= 32 && i < 64) {
                    p->setPixel(i, j, {skin.r, skin.g, skin.b, 1});
                }
                if (i >= 64 && i < 80) {
                    const Rgb half = at(0.5f);
                    p->setPixel(i, j, {half.r, half.g, half.b, 1});
                }
                const float v = (i / 8) % 2 ? 0.8f : 0.2f;
                b->setPixel(i, j, {v, 0.5f * v, 0.25f * v, 1});
            }
        }
        plate = p;
        background = b;
        pass.setPlate(plate);
        pass.setSettings(settings);
    }

    CoRgbaColorTyped<float> view(TsViewMode mode, int i, int j) const {
        return pass.render(mode)->getPixel(i, j);
    }
};

TEST_F(KeyerViews, SourceMatteAndStatus) {
    EXPECT_EQ(view(TsViewMode::Source, 40, 5), plate->getPixel(40, 5));
    const auto screen = view(TsViewMode::Matte, 5, 5);
    EXPECT_EQ(screen, (CoRgbaColorTyped<float>{0, 0, 0, 1}));
    EXPECT_EQ(view(TsViewMode::Matte, 40, 5), (CoRgbaColorTyped<float>{1, 1, 1, 1}));
    EXPECT_NEAR(view(TsViewMode::Matte, 70, 5).r, 0.6491f, 1e-3f);
    EXPECT_EQ(view(TsViewMode::Status, 5, 5).r, 0.0f);
    EXPECT_EQ(view(TsViewMode::Status, 40, 5).r, 1.0f);
    EXPECT_EQ(view(TsViewMode::Status, 70, 5).r, 0.5f);
    EXPECT_EQ(view(TsViewMode::Status, 70, 5).a, 1.0f);
}

TEST_F(KeyerViews, ForegroundCarriesTheMatteAndCompositeUsesTheBackground) {
    const auto fg = view(TsViewMode::Foreground, 70, 5);
    EXPECT_NEAR(fg.a, 0.6491f, 1e-3f);
    // The screen's share taken out: the half-way strip is grey and the
    // key colour mixed, and with the screen out its colour is much nearer the
    // grey than the plate's (despill takes the rest).
    const Rgb half = at(0.5f);
    const Rgb unmixed = (half - key * (1.0f - fg.a)) * (1.0f / fg.a);
    EXPECT_LT(std::fabs(fg.g - grey.g), std::fabs(half.g - grey.g) / 2);
    EXPECT_LT(fg.g, unmixed.g + 1e-5f);
    // Without a background: the checkerboard (dark square at the corner).
    EXPECT_EQ(view(TsViewMode::Composite, 5, 5).r, TsBlendStage::CheckerDark);
    EXPECT_EQ(view(TsViewMode::Composite, 20, 5).r, TsBlendStage::CheckerLight);
    pass.setBackground(background);
    const auto bg = background->getPixel(70, 5);
    const auto comp = view(TsViewMode::Composite, 70, 5);
    EXPECT_NEAR(comp.r, fg.a * fg.r + (1 - fg.a) * bg.r, 1e-5f);
    EXPECT_NEAR(comp.g, fg.a * fg.g + (1 - fg.a) * bg.g, 1e-5f);
    EXPECT_EQ(comp.a, 1.0f);
    EXPECT_EQ(view(TsViewMode::Composite, 5, 5), background->getPixel(5, 5));
    EXPECT_EQ(view(TsViewMode::Composite, 40, 5).r, view(TsViewMode::Foreground, 40, 5).r);
}

TEST_F(KeyerViews, BlendWrapsBackgroundLightOntoThinEdgesOnly) {
    pass.setBackground(background);
    settings.blend = {1.0, 1.0}; // full wrap fading out at alpha 1
    pass.setSettings(settings);
    const auto fg = view(TsViewMode::Foreground, 70, 5);
    const auto bg = background->getPixel(70, 5);
    const float wrap = 1.0f - fg.a;
    const float f = fg.a * (1.0f - wrap);
    EXPECT_NEAR(view(TsViewMode::Composite, 70, 5).r, f * fg.r + (1 - f) * bg.r, 1e-5f);
    // Solid foreground is never touched.
    EXPECT_EQ(view(TsViewMode::Composite, 40, 5).r, view(TsViewMode::Foreground, 40, 5).r);
    // A width below the edge's alpha: no wrap there either.
    settings.blend = {1.0, 0.5};
    pass.setSettings(settings);
    EXPECT_NEAR(view(TsViewMode::Composite, 70, 5).r, fg.a * fg.r + (1 - fg.a) * bg.r, 1e-5f);
}

TEST_F(KeyerViews, ViewerPathKeysAReducedPlate) {
    EXPECT_EQ(pass.getViewerFactor(96), 1);
    EXPECT_EQ(pass.getViewerFactor(48), 2);
    EXPECT_EQ(pass.getViewerFactor(40), 3);
    PiImage small;
    pass.renderViewer(TsViewMode::Matte, 40, small);
    ASSERT_EQ(small.getWidth(), 32);
    ASSERT_EQ(small.getHeight(), 14); // 40 / 3 rounded up
    // Flat regions key as at full resolution; the boundary block mixes.
    EXPECT_EQ(small.getPixel(1, 1).r, 0.0f);
    EXPECT_EQ(small.getPixel(15, 1).r, 1.0f);
    EXPECT_NEAR(small.getPixel(23, 1).r, 0.6491f, 1e-3f);
    // A settings change reaches the viewer image at once (the proxy is kept).
    settings.matte[7] = 0.0;
    pass.setSettings(settings);
    pass.renderViewer(TsViewMode::Matte, 40, small);
    EXPECT_EQ(small.getPixel(23, 1).r, 1.0f);
    // A new plate drops the proxy.
    pass.setPlate(rcMake<PiImage>(W, H, CoRgbaColorTyped<float>{key.r, key.g, key.b, 1}));
    pass.renderViewer(TsViewMode::Matte, 40, small);
    EXPECT_EQ(small.getPixel(1, 1).r, 0.0f);
    EXPECT_EQ(small.getPixel(23, 1).r, 0.0f);
}

TEST(KeyerPassReduce, BoxFilterAveragesWholeAndCutBlocks) {
    PiImage image(5, 3);
    for (int j = 0; j < 3; ++j) {
        for (int i = 0; i < 5; ++i) {
            image.setPixel(i, j, {static_cast<float>(i), static_cast<float>(j), 1, 1});
        }
    }
    const PiImagePtr reduced = TsKeyerPass::reduce(image, 2);
    ASSERT_EQ(reduced->getWidth(), 3);
    ASSERT_EQ(reduced->getHeight(), 2);
    EXPECT_EQ(reduced->getPixel(0, 0), (CoRgbaColorTyped<float>{0.5f, 0.5f, 1, 1}));
    EXPECT_EQ(reduced->getPixel(2, 0), (CoRgbaColorTyped<float>{4.0f, 0.5f, 1, 1}));
    EXPECT_EQ(reduced->getPixel(2, 1), (CoRgbaColorTyped<float>{4.0f, 2.0f, 1, 1}));
}

TEST(KeyerPassEmpty, NoPlateRendersNothing) {
    TsKeyerPass pass;
    PiImage out(4, 4);
    pass.render(TsViewMode::Matte, out);
    EXPECT_TRUE(out.isEmpty());
    pass.renderViewer(TsViewMode::Composite, 100, out);
    EXPECT_TRUE(out.isEmpty());
}

} // namespace
