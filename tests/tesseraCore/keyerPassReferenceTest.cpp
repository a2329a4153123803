#include <tesseraCore/img/tsBlendStage.h>
#include <tesseraCore/img/tsKeyerPass.h>
#include <tesseraCore/img/tsScreenEstimate.h>

#include <tesseraUtil/tsUtils.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <vector>

namespace {

using Rgb = CoRgbColorTyped<float>;
using Rgba = CoRgbaColorTyped<float>;
using Box = CoAffineMatrixTyped<float>;

float unit(double v) {
    return v > 0.0 ? static_cast<float>(std::min(v, 1.0)) : 0.0f;
}

float clamp01(float v) {
    return std::min(std::max(v, 0.0f), 1.0f);
}

// The key colour's frame, written out here rather than taken from the
// keyer's own helpers, so that a fault in those cannot pass on both sides:
// e0 points from the key colour's chroma towards grey, e2 along grey, e1 =
// e2 x e0; the chroma is the key's distance from grey (at least 1/1024, along
// green for a grey key).
struct KeyFrame {
    double key[3];
    double e[3][3];
    double chroma;

    explicit KeyFrame(const Rgb& colour) {
        key[0] = colour.r;
        key[1] = colour.g;
        key[2] = colour.b;
        const double mean = (key[0] + key[1] + key[2]) / 3.0;
        double c[3] = {key[0] - mean, key[1] - mean, key[2] - mean};
        const double length = std::sqrt(c[0] * c[0] + c[1] * c[1] + c[2] * c[2]);
        if (length > 1e-12) {
            for (double& v : c) {
                v /= length;
            }
        } else {
            const double s = 1.0 / std::sqrt(6.0);
            c[0] = -s;
            c[1] = 2.0 * s;
            c[2] = -s;
        }
        chroma = std::max(length, 1.0 / 1024.0);
        const double t = 1.0 / std::sqrt(3.0);
        for (int k = 0; k < 3; ++k) {
            e[0][k] = -c[k];
            e[2][k] = t;
        }
        e[1][0] = e[2][1] * e[0][2] - e[2][2] * e[0][1];
        e[1][1] = e[2][2] * e[0][0] - e[2][0] * e[0][2];
        e[1][2] = e[2][0] * e[0][1] - e[2][1] * e[0][0];
    }
    // The softness coordinates: (X - K) on each axis, in units of the chroma.
    Rgb coords(double r, double g, double b) const {
        double d[3];
        for (int k = 0; k < 3; ++k) {
            d[k] =
                (e[k][0] * (r - key[0]) + e[k][1] * (g - key[1]) + e[k][2] * (b - key[2])) / chroma;
        }
        return {static_cast<float>(d[0]), static_cast<float>(d[1]), static_cast<float>(d[2])};
    }
    Rgb axis(int k) const {
        return {static_cast<float>(e[k][0]), static_cast<float>(e[k][1]),
                static_cast<float>(e[k][2])};
    }
};

// The parameters' mappings, written out.
float intrusionOf(double overall) {
    return 0.6f * unit(overall) * unit(overall);
}
float edgeWidthOf(double edgeSoftness) {
    return 0.1f + unit(edgeSoftness);
}
float hueReachOf(double hue) {
    return 0.6f * unit(hue) * unit(hue);
}

// How far a colour lies outside a box: the largest of |row k . (r, g, b, 1)|.
float outsideBox(const Box& box, float r, float g, float b) {
    float q = 0.0f;
    for (int row = 0; row < 3; ++row) {
        const float v =
            box.get(row, 0) * r + box.get(row, 1) * g + box.get(row, 2) * b + box.get(row, 3);
        q = std::max(q, std::fabs(v));
    }
    return q;
}

// The keyer's formulas, written out as the headers state them, one step
// after another, with no regard for speed. The screen estimate is the
// library's (TsScreenEstimate, tested on its own); the rest is here.
//
// Where the matte jumps (the switch between the deep and the ordinary hue
// reaches, the degrain box's surface, a patch's hard edge, the test of a flat
// neighbourhood, the status view's thresholds) the last bit of a float decides
// the side, so a pixel that close to one is reported and not compared.
class ReferenceKeyer {
public:
    static constexpr float SwitchMargin = 1e-4f;

    ReferenceKeyer(const TsKeyerSettings& settings, const PiImage& plate)
        : _settings(settings)
        , _plate(plate)
        , _screen(plate, settings)
        , _key(settings.keyColors[0] * (1.0f - unit(settings.matte[8])) +
               settings.keyColors[1] * unit(settings.matte[8]))
        , _frame(_key) {
        _intrusion = intrusionOf(settings.matte[0]);
        _width = edgeWidthOf(settings.matte[7]);
    }

    // The screen's values at pixel (i, j): the gains along the pixel's block
    // of 64, the grain and share at the block's middle.
    struct Screen {
        Rgb gain;
        float grain, share;
    };
    Screen screenAt(int i, int j) const {
        std::vector<TsScreenEstimate::Line> lines((_plate.getWidth() + 63) / 64);
        _screen.rowLines(j, lines.data());
        const TsScreenEstimate::Line& l = lines[static_cast<std::size_t>(i / 64)];
        const float k = static_cast<float>(i % 64);
        return {
            {l.start[0] + l.step[0] * k, l.start[1] + l.step[1] * k, l.start[2] + l.step[2] * k},
            l.start[3] + l.step[3] * 32.0f,
            l.start[4] + l.step[4] * 32.0f};
    }

    // Softness coordinates of pixel (i, j) (clamped to the plate) in the key
    // colour's light.
    Rgb coords(int i, int j) const {
        i = std::clamp(i, 0, _plate.getWidth() - 1);
        j = std::clamp(j, 0, _plate.getHeight() - 1);
        const Rgba p = _plate.getPixel(i, j);
        const Rgb g = screenAt(i, j).gain;
        Rgb d = _frame.coords(p.r * g.r, p.g * g.g, p.b * g.b);
        d.r -= _intrusion;
        return d;
    }

    // The matte at pixel (i, j).
    float alpha(int i, int j, bool& nearSwitch, bool& nearEnd) const {
        const auto& p = _settings.matte;
        const Screen screen = screenAt(i, j);
        const Rgb d = coords(i, j);
        // Degrain before the key.
        float all[9], around[8];
        int n = 0, m = 0;
        for (int dy = -1; dy <= 1; ++dy) {
            for (int dx = -1; dx <= 1; ++dx) {
                const float v = coords(i + dx, j + dy).r;
                all[n++] = v;
                if (dx != 0 || dy != 0) {
                    around[m++] = v;
                }
            }
        }
        const float reach = TsKeyerPass::FlatSpread * screen.grain;
        const float spread = *std::max_element(all, all + 9) - *std::min_element(all, all + 9);
        const float aroundSpread =
            *std::max_element(around, around + 8) - *std::min_element(around, around + 8);
        nearSwitch = nearSwitch || std::fabs(spread - reach) < SwitchMargin ||
                     std::fabs(aroundSpread - reach) < SwitchMargin;
        float value = d.r;
        if (spread <= reach) {
            value = std::accumulate(all, all + 9, 0.0f) / 9.0f;
        } else if (aroundSpread <= reach) {
            value = std::accumulate(around, around + 8, 0.0f) / 8.0f;
        }
        const float clean =
            clamp01((screen.share - TsKeyerPass::CleanShare) / (1.0f - TsKeyerPass::CleanShare));
        value -= clean * screen.grain;

        // The matte: the screen's share along axis 1, hue beyond its reach.
        const bool deep = value < -_intrusion;
        nearSwitch = nearSwitch || std::fabs(value + _intrusion) < SwitchMargin;
        const float reachPlus = hueReachOf(deep ? p[3] : p[5]);
        const float reachMinus = hueReachOf(deep ? p[4] : p[6]);
        const float core = 0.25f * _intrusion;
        const float e2 = std::max(d.g - reachPlus, -d.g - reachMinus);
        // Brightness as a share of the key's, opaque beyond the screen's
        // light (Shadows up to 80 % darker, Highlights up to 3 times as
        // bright), over twice that width again (at least 0.01).
        const double keySum = _frame.key[0] + _frame.key[1] + _frame.key[2];
        float e3 = 0.0f;
        if (std::fabs(keySum) > 1e-6 * std::sqrt(3.0)) {
            const double sum = d.b * _frame.chroma * std::sqrt(3.0);
            const float brightness = static_cast<float>(1.0 + sum / std::fabs(keySum));
            const float shadows = 0.8f * unit(p[1]), highlights = 2.0f * unit(p[2]);
            e3 = std::max((brightness - 1.0f - highlights) / std::max(2.0f * highlights, 0.01f),
                          (1.0f - shadows - brightness) / std::max(2.0f * shadows, 0.01f));
        }
        // The distance from the screen's region of the (d1, d2) plane.
        const float share = std::max(value + _intrusion - core, 0.0f);
        const float hue = std::max(e2, 0.0f);
        const float raw =
            std::max(std::sqrt(share * share + hue * hue) / (_intrusion + _width - core), e3);
        float a = clamp01(raw);
        // Where either term or the brightness crosses 0, or the sum 1.
        const float slope = 1.0f / (_intrusion + _width - core);
        nearEnd = std::fabs(value + _intrusion - core) * slope < SwitchMargin ||
                  std::fabs(e2) * slope < SwitchMargin || std::fabs(e3) < SwitchMargin ||
                  std::fabs(raw - 1.0f) < SwitchMargin;

        const Rgba x = _plate.getPixel(i, j);
        if (_settings.degrainOn && _settings.degrainBox != Box::IDENTITY) {
            const Rgb g = screen.gain;
            const float q =
                std::min(outsideBox(_settings.degrainBox, x.r, x.g, x.b),
                         outsideBox(_settings.degrainBox, x.r * g.r, x.g * g.g, x.b * g.b));
            nearSwitch = nearSwitch || std::fabs(q - 1.0f) < SwitchMargin;
            if (q <= 1.0f) {
                a = 0.0f;
            }
        }
        for (const TsKeyerSettings::Patch& patch : _settings.patches) {
            if (patch.mode < 1 || patch.mode > 3 || patch.box == Box::IDENTITY) {
                continue;
            }
            const float q = outsideBox(patch.box, x.r, x.g, x.b);
            const float patchReach = 1.0f + unit(patch.range);
            const float softness = unit(patch.softness);
            float w = 1.0f;
            if (q > patchReach) {
                w = softness > 0.0f ? clamp01(1.0f - (q - patchReach) / softness) : 0.0f;
            }
            if (softness == 0.0f) {
                nearSwitch = nearSwitch || std::fabs(q - patchReach) < SwitchMargin;
            }
            if (patch.mode == 1) {
                a += w * (0.5f - a) / 2.0f;
            } else if (patch.mode == 2) {
                a += w * (1.0f - a);
            } else {
                a -= w * a;
            }
        }
        return a;
    }

    // The foreground: the screen's share taken out, then despilled.
    Rgb foreground(int i, int j, float a) const {
        const Rgba x = _plate.getPixel(i, j);
        const Rgb g = screenAt(i, j).gain;
        const Rgb screen{_key.r / g.r, _key.g / g.g, _key.b / g.b};
        const float inverse = a > TsKeyerPass::MinUnmixAlpha ? 1.0f / a : 0.0f;
        Rgb f{std::max((x.r - (1.0f - a) * screen.r) * inverse, 0.0f),
              std::max((x.g - (1.0f - a) * screen.g) * inverse, 0.0f),
              std::max((x.b - (1.0f - a) * screen.b) * inverse, 0.0f)};
        // Despill, the distance measured on the pixel in the key's light.
        const Rgb d = coords(i, j);
        const float amount = unit(_settings.spill[0]);
        const Rgb u = _frame.axis(0) * -1.0f;
        const float c = static_cast<float>(_frame.chroma);
        const float sigma = (u.r * f.r + u.g * f.g + u.b * f.b) / c;
        const float t = d.r + _intrusion;
        const float distance2 = t * t + d.g * d.g + d.b * d.b;
        const float spillReach = 0.1f + 2.0f * unit(_settings.spill[1]);
        const float w = clamp01(2.0f - distance2 / (spillReach * spillReach));
        const float m = amount * std::max(0.0f, sigma) * w * c;
        Rgb hue = _frame.axis(1);
        if (hue.r - hue.b < 0.0f) {
            hue = hue * -1.0f;
        }
        const Rgb n = _frame.axis(2);
        const float bx = 2.0f * unit(_settings.edgeBalanceX) - 1.0f;
        const float by = 2.0f * unit(_settings.edgeBalanceY) - 1.0f;
        return f - u * m + (hue * bx + n * by) * m;
    }

    // The pixel of a view; `back` is the background behind it.
    Rgba view(TsViewMode mode, int i, int j, const Rgba& back, bool& nearSwitch) const {
        bool nearEnd = false;
        const float a = alpha(i, j, nearSwitch, nearEnd);
        if (mode == TsViewMode::Matte) {
            return {a, a, a, 1.0f};
        }
        if (mode == TsViewMode::Status) {
            nearSwitch = nearSwitch || nearEnd || (a > 0.0f && a < SwitchMargin) ||
                         (a < 1.0f && a > 1.0f - SwitchMargin);
            const float s = a <= 0.0f ? 0.0f : (a >= 1.0f ? 1.0f : 0.5f);
            return {s, s, s, 1.0f};
        }
        // The unmixing divides by alpha: near its threshold the last bit
        // decides.
        nearSwitch = nearSwitch || std::fabs(a - TsKeyerPass::MinUnmixAlpha) < SwitchMargin;
        const Rgb f = foreground(i, j, a);
        if (mode == TsViewMode::Foreground) {
            return {f.r, f.g, f.b, a};
        }
        const float amount = unit(_settings.blend[0]);
        const float width = unit(_settings.blend[1]);
        const float wrap = width > 0.0f ? amount * clamp01(1.0f - a / width) : 0.0f;
        const Rgb b{back.r, back.g, back.b};
        const Rgb wrapped = f * (1.0f - wrap) + b * wrap;
        const Rgb out = wrapped * a + b * (1.0f - a);
        return {out.r, out.g, out.b, a + (1.0f - a) * back.a};
    }

private:
    TsKeyerSettings _settings;
    const PiImage& _plate;
    TsScreenEstimate _screen;
    Rgb _key;
    KeyFrame _frame;
    float _intrusion;
    float _width;
};

// Random scenes: a screen-like key (green or blue), random matte parameters,
// up to three patches of any mode, the degrain box, spill, edge balance and
// light wrap; a plate of colours spread over the cube, crowded around the
// key and the patches, wider than the pass's tiles with a short tail; a
// background that ends before the plate does. The parameters stay where
// float rounding is well below the tolerance (an edge softness and a spill
// range not at their steepest).
class RandomScenes : public ::testing::Test {
protected:
    static constexpr int W = 300;
    static constexpr int H = 5;
    // The pass's float maths, vectorised and contracted as each compiler
    // chooses, against the reference's plain order of operations: a few
    // parts in 100,000 on values near 1, far below any fault in a formula.
    static constexpr float Tolerance = 5e-5f;

    std::mt19937 rng{20261121};

    float uniform(float lo, float hi) { return std::uniform_real_distribution<float>(lo, hi)(rng); }

    Rgb screenColour(bool green) {
        const float lit = uniform(0.4f, 0.9f);
        const float a = uniform(0.0f, 0.25f), b = uniform(0.0f, 0.25f);
        return green ? Rgb{a, lit, b} : Rgb{a, b, lit};
    }

    Box boxAround(const Rgb& c, float extent) {
        return TsUtils::computeMinimalBoxMatrix(
            {{c.r - extent * uniform(0.2f, 1.0f), c.g - extent * uniform(0.2f, 1.0f),
              c.b - extent * uniform(0.2f, 1.0f), 1.0f},
             {c.r + extent * uniform(0.2f, 1.0f), c.g + extent * uniform(0.2f, 1.0f),
              c.b + extent * uniform(0.2f, 1.0f), 1.0f}});
    }

    TsKeyerSettings randomSettings(std::vector<Rgb>& centres) {
        TsKeyerSettings s;
        const bool green = rng() % 2 == 0;
        s.keyColors = {screenColour(green), screenColour(green)};
        for (int k = 0; k < 7; ++k) {
            s.matte[k] = uniform(0.0f, 1.0f);
        }
        s.matte[7] = uniform(0.4f, 1.0f);
        s.matte[8] = uniform(0.0f, 1.0f);
        const float blend = unit(s.matte[8]);
        const Rgb key = s.keyColors[0] * (1.0f - blend) + s.keyColors[1] * blend;
        centres = {key};
        const int patches = static_cast<int>(rng() % 4);
        for (int k = 0; k < patches; ++k) {
            const Rgb c{uniform(0.0f, 1.0f), uniform(0.0f, 1.0f), uniform(0.0f, 1.0f)};
            centres.push_back(c);
            const double softness = rng() % 3 == 0 ? 0.0 : uniform(0.1f, 1.0f);
            s.patches.push_back({boxAround(c, uniform(0.03f, 0.2f)), static_cast<int>(rng() % 4),
                                 rng() % 3 == 0 ? 0.0 : uniform(0.0f, 1.0f), softness});
        }
        const float grain = uniform(0.02f, 0.08f);
        s.degrainBox = TsUtils::arrangeMatrixForPatchEdge(
            key, TsUtils::computeMinimalBoxMatrix(
                     {{key.r - grain, key.g - grain, key.b - grain, 1}, {key.r, key.g, key.b, 1}}));
        s.degrainOn = rng() % 3 != 0;
        s.spill = {rng() % 5 == 0 ? 0.0 : uniform(0.0f, 1.0f), uniform(0.2f, 1.0f)};
        s.edgeBalanceX = uniform(0.0f, 1.0f);
        s.edgeBalanceY = uniform(0.0f, 1.0f);
        s.blend = {uniform(0.0f, 1.0f), rng() % 5 == 0 ? 0.0 : uniform(0.1f, 1.0f)};
        return s;
    }

    PiImage randomPlate(const std::vector<Rgb>& centres) {
        PiImage plate(W, H);
        std::normal_distribution<float> near(0.0f, 0.06f);
        for (int j = 0; j < H; ++j) {
            for (int i = 0; i < W; ++i) {
                Rgb c;
                const unsigned kind = rng() % 10;
                // Some stretches repeat the pixel below, so that flat
                // neighbourhoods occur (also across the pass's tiles).
                if (kind >= 7 && j > 0) {
                    const Rgba below = plate.getPixel(i, j - 1);
                    c = {below.r, below.g, below.b};
                } else if (kind < 4) {
                    c = {uniform(-0.05f, 1.05f), uniform(-0.05f, 1.05f), uniform(-0.05f, 1.05f)};
                } else {
                    const Rgb& centre = centres[rng() % centres.size()];
                    c = {centre.r + near(rng), centre.g + near(rng), centre.b + near(rng)};
                }
                plate.setPixel(i, j, {c.r, c.g, c.b, uniform(0.0f, 1.0f)});
            }
        }
        return plate;
    }

    PiImage randomBackground() {
        PiImage background(W - 20, H - 1);
        for (int j = 0; j < background.getHeight(); ++j) {
            for (int i = 0; i < background.getWidth(); ++i) {
                background.setPixel(i, j,
                                    {uniform(0.0f, 1.0f), uniform(0.0f, 1.0f), uniform(0.0f, 1.0f),
                                     uniform(0.0f, 1.0f)});
            }
        }
        return background;
    }

    // The background behind plate pixel (i, j): the image where it reaches,
    // transparent black beyond, the checkerboard without an image.
    static Rgba backgroundAt(const PiImage* background, int i, int j) {
        if (!background) {
            const int square = (i / TsBlendStage::CheckerSize + j / TsBlendStage::CheckerSize) & 1;
            const float v = square ? TsBlendStage::CheckerLight : TsBlendStage::CheckerDark;
            return {v, v, v, 1.0f};
        }
        if (i < background->getWidth() && j < background->getHeight()) {
            return background->getPixel(i, j);
        }
        return {0.0f, 0.0f, 0.0f, 0.0f};
    }
};

TEST_F(RandomScenes, EveryViewMatchesTheFormulasPixelByPixel) {
    struct Case {
        TsViewMode mode;
        bool withBackground;
    };
    const Case cases[] = {{TsViewMode::Matte, false},
                          {TsViewMode::Status, false},
                          {TsViewMode::Foreground, false},
                          {TsViewMode::Composite, true},
                          {TsViewMode::Composite, false}};
    int compared = 0, skipped = 0, softMattes = 0, despilled = 0;
    for (int scene = 0; scene < 60; ++scene) {
        std::vector<Rgb> centres;
        const TsKeyerSettings settings = randomSettings(centres);
        const PiImage plate = randomPlate(centres);
        const PiImage background = randomBackground();
        const ReferenceKeyer reference(settings, plate);
        for (const Case& c : cases) {
            const PiImage* back = c.withBackground ? &background : nullptr;
            PiImage out;
            TsKeyerPass::run(plate, back, settings, c.mode, out);
            ASSERT_EQ(out.getWidth(), W);
            ASSERT_EQ(out.getHeight(), H);
            for (int j = 0; j < H; ++j) {
                for (int i = 0; i < W; ++i) {
                    const Rgba p = plate.getPixel(i, j);
                    bool nearSwitch = false;
                    const Rgba expected =
                        reference.view(c.mode, i, j, backgroundAt(back, i, j), nearSwitch);
                    if (nearSwitch) {
                        ++skipped;
                        continue;
                    }
                    ++compared;
                    const Rgba got = out.getPixel(i, j);
                    // The foreground's straight colour divides by alpha: it
                    // is compared premultiplied, as it is composited.
                    const bool straight = c.mode == TsViewMode::Foreground;
                    for (int k = 0; k < 4; ++k) {
                        const float scaleGot = straight && k < 3 ? got.a : 1.0f;
                        const float scaleExpected = straight && k < 3 ? expected.a : 1.0f;
                        ASSERT_NEAR(got[k] * scaleGot, expected[k] * scaleExpected, Tolerance)
                            << "scene " << scene << " view " << static_cast<int>(c.mode)
                            << " pixel " << i << ", " << j << " channel " << k;
                    }
                    if (c.mode == TsViewMode::Matte) {
                        softMattes += expected.r > 0.0f && expected.r < 1.0f;
                    }
                    if (c.mode == TsViewMode::Foreground) {
                        despilled += std::fabs(expected.g - p.g) > 1e-3f ||
                                     std::fabs(expected.b - p.b) > 1e-3f;
                    }
                }
            }
        }
    }
    // The scenes exercise the formulas, not just their clamps.
    EXPECT_GT(softMattes, 500);
    EXPECT_GT(despilled, 500);
    EXPECT_LT(skipped, compared / 100);
}

} // namespace
