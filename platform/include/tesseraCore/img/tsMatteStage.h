#pragma once

#include <tesseraCore/img/tsPixelMath.h>
#include <tesseraCore/tesseraCoreExport.h>
#include <tesseraCore/tsKeyerSettings.h>

#include <base/coAffineMatrixTyped.h>
#include <base/coRgbColorTyped.h>

#include <cmath>
#include <vector>

// The matte generator: the alpha of a colour seen in the key colour's light,
// from the matte parameters, the key colours, the patches and the degrain box
// of TsKeyerSettings. The keyer pass first brings every pixel into that light
// (TsScreenEstimate: a pixel of a darker part of the screen becomes the key
// colour) and averages the screen's grain out of flat neighbourhoods
// (TsKeyerPass); this stage is the formula for one colour, and the matte of a
// flat patch of colour on an evenly lit screen is its matte.
//
// Set-up, from the settings (parameters clamped to [0, 1]):
//   K  = keyColors[0] (1 - p8) + keyColors[1] p8        the blended key colour
//   i  = TsMgAnimToAlgo::overallToIntrusion(p0)         0.6 p0^2
//   w  = 1 / TsMgAnimToAlgo::rangeEToOpponent(p7)       0.1 + p7
//   c  = CoreShare i                                    the transparent core
//   S  = TsMgUtils::getSoftnessMatrix(K, i)
//   hue reaches (TsMgAnimToAlgo::hueToReach, 0.6 p^2): deep hue plus p3,
//   deep hue minus p4, hue plus p5, hue minus p6.
// Shadows p1 and Highlights p2 say how much darker and brighter than K the
// screen may be lit: the screen estimate keeps the screen within that light
// (TsScreenEstimate) and the matte makes colours beyond it opaque.
//
// Per colour X = (r, g, b):
//   (d1, d2) = rows 1 and 2 of S X      d1 already lowered by i
//   deep = d1 < -i                      X is deeper than the key colour
//   hue reaches   R+ = deep ? p3 : p5,  R- = deep ? p4 : p6
//   e2 = max(d2 - R+, -d2 - R-)         how far X lies beyond the hue reach
//   b  = 1 + d3 / beta                  X's brightness as a share of K's
//                                       (beta = |K's grey| / |c|, TsMgUtils)
//   e3 = max((b - (1 + hr)) / 2 hr, ((1 - sr) - b) / 2 sr)   beyond the
//                                       screen's light, twice as far again to
//                                       opaque (widths below MinReach count as
//                                       MinReach)
//   t  = max(d1 + i - c, 0),  h = max(e2, 0)
//   alpha = clamp(max(sqrt(t^2 + h^2) / (i + w - c), e3), 0, 1)
// with sr and hr the reaches of Shadows and Highlights
// (TsMgAnimToAlgo::shadowsToScreenReach, highlightsToScreenReach).
//
// Along axis 1 that is the screen's share of the colour: a mix of the key
// colour with a neutral subject colour lies on axis 1 at the subject's share
// (TsMgUtils), so the matte is 0 up to the core c, which grain and a screen
// that is not quite the key colour need, and rises in a straight line to 1 at
// i + w, where a subject's colour with the screen's light spilled on it lies.
// Across it, a hue beyond the reach makes the colour opaque at the same rate:
// the matte is the distance from the screen's region of the (d1, d2) plane
// (the core along axis 1, the hue reaches across it). A subject near the
// screen's hue (a yellow-green stem) is not keyed, and a hue reach narrowed
// makes any colour with a hue beyond it more opaque, whatever its share.
// Brightness makes a colour opaque only beyond the screen's light: a colour
// brighter or darker than the screen can be lit is subject, rising to opaque
// twice as far beyond again (at the default reaches from twice the key
// colour's brightness to four times it, and from 60 % of it down, three
// quarters opaque at black; with a reach of 0, whatever is brighter or darker
// than the key colour); short of that a light semi-transparent veil and a
// dark strand of hair are mixes with the screen like any other, and their
// share of the screen is on axis 1.
//
// With default parameters on a green key (0.1, 0.5, 0.1): i = 0.15, c =
// 0.0375, the ramp ends at 0.75; the key colour is 0, every grey 1, and the
// screen mixed half and half with a grey is (0.5 - 0.0375) / 0.7125 = 0.649.
//
// Then, when degrainOn and the degrain box B is not the identity: a colour
// with TsUtils::boxDistance(B, X) <= 1 (inside the box) gets alpha 0. The keyer
// pass tests the box with the colour as it is and in the key colour's light,
// so that the box sampled on one part of the screen holds the grain of all of
// it.
//
// Then each patch in order whose box P is not the identity and whose mode is
// 1, 2 or 3, with q = TsUtils::boxDistance(P, X) (X as it is in the plate), the
// reach 1 + range and the transition width softness (both in the box's cube
// units):
//   w = 1                                      when q <= 1 + range
//   w = clamp(1 - (q - 1 - range) / softness)  beyond (0 when softness is 0)
//   mode 1 (edge):       alpha += w * (0.5 - alpha) / 2   half way to 0.5
//   mode 2 (foreground): alpha += w * (1 - alpha)         forced opaque
//   mode 3 (background): alpha -= w * alpha               forced transparent
// Patches come last so that the artist's explicit choices win over the
// degrain box; a later patch wins over an earlier one where they overlap.
//
// Every matte parameter raised keys more (the matte at any colour falls or
// stays), lowered keys less: the bars of the sample-matte tool move the matte
// the way their sides say.
//
// A NaN component gives alpha 0 (every comparison with it fails).
class TS_CORE_API TsMatteStage {
public:
    explicit TsMatteStage(const TsKeyerSettings& settings);

    // The alpha of one colour (the formula above, one colour at a time).
    float alphaOf(float r, float g, float b) const;
    // The matte of one colour with the current inputs, as on an evenly lit
    // screen with no grain, and where the colour lies in the softness space
    // (d1 lowered by the intrusion, as above): what a view of colour space
    // draws.
    struct ColourMatte {
        float alpha;
        float d1, d2, d3;
    };
    ColourMatte matteOf(float r, float g, float b) const;

    // The alpha of n colours given as three planes; the loops are written for
    // the compiler to vectorise, BlockSize colours at a time. The planes may
    // hold any n; a multiple of BlockSize is fastest.
    static constexpr int BlockSize = 64;
    void computeAlpha(const float* r, const float* g, const float* b, float* alpha, int n) const;

    // The blended key colour, intrusion, softness matrix in use.
    const CoRgbColorTyped<float>& getKeyColour() const { return _key; }
    float getIntrusion() const { return _intrusion; }
    const CoAffineMatrixTyped<float>& getSoftnessMatrix() const { return _softness; }

    // The share of the intrusion that is the transparent core.
    static constexpr float CoreShare = 0.25f;
    // The least width of the brightness ramps.
    static constexpr float MinReach = 0.01f;

    // The matte before the degrain box and the patches: the first part of the
    // formula above, for one colour, with the colour's softness coordinates
    // (d1 lowered by the intrusion). Inline and by value, so that the keyer
    // pass can run it in one vectorised loop with the despill.
    struct Base {
        float s[12]; // rows 0, 1, 2 of the softness matrix: s[4 row + column]
        float deepLimit;
        float lift;  // i - c
        float slope; // 1 / (i + w - c)
        float deepPlus, deepMinus, huePlus, hueMinus;
        // The brightness term (see above): invBeta = 1 / beta, upper = 1 + hr,
        // lower = 1 - sr, and the inverse widths of the two ramps.
        float invBeta, upper, lower, invUpperWidth, invLowerWidth;

        // The softness coordinates of a colour (d1 lowered by the intrusion).
        [[gnu::always_inline]] void coords(float r, float g, float b, float& d1, float& d2,
                                           float& d3) const {
            d1 = s[0] * r + s[1] * g + s[2] * b + s[3];
            d2 = s[4] * r + s[5] * g + s[6] * b + s[7];
            d3 = s[8] * r + s[9] * g + s[10] * b + s[11];
        }
        // The alpha of the coordinates.
        [[gnu::always_inline]] float alphaAt(float d1, float d2, float d3, float zero,
                                             float one) const {
            using TsPixelMath::maxOf;
            const bool deep = d1 < deepLimit;
            const float reachPlus = deep ? deepPlus : huePlus;
            const float reachMinus = deep ? deepMinus : hueMinus;
            const float e2 = maxOf(d2 - reachPlus, -d2 - reachMinus);
            const float brightness = d3 * invBeta + 1.0f;
            const float e3 =
                maxOf((brightness - upper) * invUpperWidth, (lower - brightness) * invLowerWidth);
            const float share = maxOf(d1 + lift, zero);
            const float hue = maxOf(e2, zero);
            const float distance = std::sqrt(share * share + hue * hue);
            return TsPixelMath::clampUnit(maxOf(slope * distance, e3), zero, one);
        }
        [[gnu::always_inline]] float alpha(float r, float g, float b, float& d1, float& d2,
                                           float& d3, float zero, float one) const {
            coords(r, g, b, d1, d2, d3);
            return alphaAt(d1, d2, d3, zero, one);
        }
    };
    const Base& getBase() const { return _base; }
    // True when the degrain box or a patch takes part (the alpha is then more
    // than the base).
    bool hasBoxRules() const { return _degrain || !_patches.empty(); }
    // True when a patch takes part (it reads the colours as they are).
    bool hasPatches() const { return !_patches.empty(); }
    // The second part of the formula: the degrain box and the patches, in
    // place on the base alphas of n colours. The degrain box is tested on the
    // colours as they are (r, g, b) and brought to the key colour's light (cr,
    // cg, cb; see TsScreenEstimate), the patches on the colours as they are.
    void applyBoxRules(const float* cr, const float* cg, const float* cb, const float* r,
                       const float* g, const float* b, float* alpha, int n) const;

private:
    void computeBlock(const float* r, const float* g, const float* b, float* alpha) const;
    void applyBoxRulesBlock(const float* cr, const float* cg, const float* cb, const float* r,
                            const float* g, const float* b, float* alpha) const;

    // The colours a box rule can change lie within bounds along r, g and b;
    // a block of colours wholly outside them is left alone without testing
    // each colour. A box that cannot be inverted has no bounds.
    struct ColourBounds {
        float lo[3];
        float hi[3];
        static ColourBounds around(const CoAffineMatrixTyped<float>& box, float radius);
        // The least and greatest of a block's colours. A NaN is passed over:
        // no rule changes the alpha of a colour with a NaN in it.
        [[gnu::always_inline]] static ColourBounds
        of(const float* __restrict r, const float* __restrict g, const float* __restrict b) {
            using TsPixelMath::maxOf;
            using TsPixelMath::minOf;
            // Sixteen lanes at a time, so that the loops vectorise; then the
            // lanes.
            constexpr int Lanes = 16;
            const float* planes[3] = {r, g, b};
            ColourBounds bounds;
            for (int c = 0; c < 3; ++c) {
                const float* __restrict v = planes[c];
                float lo[Lanes], hi[Lanes];
                for (int l = 0; l < Lanes; ++l) {
                    lo[l] = v[l];
                    hi[l] = v[l];
                }
                for (int k = Lanes; k < BlockSize; k += Lanes) {
                    for (int l = 0; l < Lanes; ++l) {
                        lo[l] = minOf(v[k + l], lo[l]);
                        hi[l] = maxOf(v[k + l], hi[l]);
                    }
                }
                for (int l = 1; l < Lanes; ++l) {
                    lo[0] = minOf(lo[l], lo[0]);
                    hi[0] = maxOf(hi[l], hi[0]);
                }
                bounds.lo[c] = lo[0];
                bounds.hi[c] = hi[0];
            }
            return bounds;
        }
        bool misses(const ColourBounds& block) const {
            for (int c = 0; c < 3; ++c) {
                if (block.lo[c] > hi[c] || block.hi[c] < lo[c]) {
                    return true;
                }
            }
            return false;
        }
    };

    struct BoxRule {
        CoAffineMatrixTyped<float> box;
        int mode;          // 1, 2, 3 for the patches, 0 for the degrain box
        float reach;       // 1 + range
        float invSoftness; // 1 / softness, or a huge value for a hard edge
        ColourBounds bounds;
    };

    CoRgbColorTyped<float> _key;
    float _intrusion;
    CoAffineMatrixTyped<float> _softness;
    Base _base;
    bool _degrain = false;
    CoAffineMatrixTyped<float> _degrainBox;
    ColourBounds _degrainBounds;
    std::vector<BoxRule> _patches;
};
