#include <tesseraCore/img/tsDespillStage.h>
#include <tesseraCore/img/tsKeyerPass.h>

#include <tesseraUtil/tsMgUtils.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

using Rgb = CoRgbColorTyped<float>;

// A green screen whose light has spilled onto a skin tone: the spilled colour
// is the skin plus a share of the screen's chroma.
class Despill : public ::testing::Test {
protected:
    const Rgb key{0.1f, 0.5f, 0.1f};
    const Rgb skin{0.6f, 0.4f, 0.3f};
    TsKeyerSettings settings;
    TsMgUtils::KeyAxes axes = TsMgUtils::getKeyAxes(key);
    Rgb chroma; // the key's chroma: key minus its grey

    void SetUp() override {
        settings.keyColors = {key, key};
        settings.spill = {1.0, 1.0};
        const float m = (key.r + key.g + key.b) / 3.0f;
        chroma = key - Rgb{m, m, m};
    }

    // The key's chroma in a colour, as a share of the key's own (sigma).
    float keyShare(const Rgb& c) const {
        return -(axes.axis[0].r * c.r + axes.axis[0].g * c.g + axes.axis[0].b * c.b) / axes.chroma;
    }
    static float brightness(const Rgb& c) { return (c.r + c.g + c.b) / 3.0f; }
    Rgb despill(const Rgb& c) const { return TsDespillStage(settings).apply(c); }
};

TEST_F(Despill, RemovesTheKeysExcessAndKeepsBrightnessAndHue) {
    const Rgb spilled = skin + chroma * 0.3f;
    ASSERT_GT(keyShare(spilled), 0.15f);
    const Rgb out = despill(spilled);
    EXPECT_NEAR(keyShare(out), 0.0f, 1e-5f);
    EXPECT_NEAR(brightness(out), brightness(spilled), 1e-5f);
    // Only the key's axis moved: the hue axis reads the same.
    const auto& e2 = axes.axis[1];
    EXPECT_NEAR(e2.r * out.r + e2.g * out.g + e2.b * out.b,
                e2.r * spilled.r + e2.g * spilled.g + e2.b * spilled.b, 1e-5f);
    EXPECT_LT(out.g, spilled.g);

    // The key colour itself becomes the grey of its brightness.
    const Rgb grey = despill(key);
    EXPECT_NEAR(grey.r, brightness(key), 1e-5f);
    EXPECT_NEAR(grey.g, brightness(key), 1e-5f);
    EXPECT_NEAR(grey.b, brightness(key), 1e-5f);
}

TEST_F(Despill, LeavesNeutralsAndColoursWithoutTheKeysChromaAlone) {
    settings.edgeBalanceX = 1.0f; // even with a shifted balance
    settings.edgeBalanceY = 0.0f;
    for (const Rgb& c : {Rgb{0, 0, 0}, Rgb{0.18f, 0.18f, 0.18f}, Rgb{1, 1, 1}, Rgb{4, 4, 4},
                         Rgb{0.6f, 0.2f, 0.6f}, skin}) {
        EXPECT_EQ(despill(c), c) << c.r << " " << c.g << " " << c.b;
    }
}

TEST_F(Despill, AmountAndRangeScaleTheRemoval) {
    const Rgb spilled = skin + chroma * 0.3f;
    const float before = keyShare(spilled);
    settings.spill = {0.5, 1.0};
    EXPECT_NEAR(keyShare(despill(spilled)), 0.5f * before, 1e-5f);
    settings.spill = {0.0, 1.0};
    EXPECT_EQ(despill(spilled), spilled);
    EXPECT_TRUE(TsDespillStage(settings).isIdentity());
    // A short range recognises spill only near the key colour: the spilled
    // skin is far from it (about 1.5), a screen-coloured edge is not.
    settings.spill = {1.0, 0.0};
    EXPECT_EQ(despill(spilled), spilled);
    const Rgb edge = key * 0.97f + skin * 0.03f;
    EXPECT_LT(keyShare(despill(edge)), 0.5f * keyShare(edge));
}

TEST_F(Despill, EdgeBalanceReplacesTheRemovedChromaWarmerOrBrighter) {
    const Rgb spilled = skin + chroma * 0.3f;
    const Rgb centred = despill(spilled);
    const float removed = keyShare(spilled) * axes.chroma; // m
    settings.edgeBalanceX = 1.0f;
    const Rgb warm = despill(spilled);
    EXPECT_GT(warm.r - warm.b, centred.r - centred.b);
    EXPECT_NEAR(std::hypot(warm.r - centred.r, warm.g - centred.g, warm.b - centred.b), removed,
                1e-5f);
    EXPECT_NEAR(brightness(warm), brightness(centred), 1e-5f);
    settings.edgeBalanceX = 0.5f;
    settings.edgeBalanceY = 0.0f;
    const Rgb dark = despill(spilled);
    EXPECT_NEAR(brightness(centred) - brightness(dark), removed / std::sqrt(3.0f), 1e-5f);
}

TEST_F(Despill, PassForegroundIsDespilledAndCompositeUsesIt) {
    const Rgb spilled = skin + chroma * 0.3f;
    PiImage plate(70, 1, {spilled.r, spilled.g, spilled.b, 1.0f});
    PiImage out;
    TsKeyerPass::run(plate, nullptr, settings, TsViewMode::Foreground, out);
    const Rgb expected = despill(spilled);
    for (int i : {0, 63, 64, 69}) {
        const auto p = out.getPixel(i, 0);
        EXPECT_NEAR(p.r, expected.r, 1e-6f);
        EXPECT_NEAR(p.g, expected.g, 1e-6f);
        EXPECT_EQ(p.a, 1.0f);
    }
}

} // namespace
