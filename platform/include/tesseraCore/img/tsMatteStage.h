#pragma once

#include <tesseraCore/img/tsPixelMath.h>
#include <tesseraCore/tsKeyerSettings.h>

#include <base/coAffineMatrixTyped.h>
#include <base/coRgbColorTyped.h>

#include <vector>

// The matte generator: the alpha of a colour, from the matte parameters, the
// key colours, the patches and the degrain box of TsKeyerSettings. It looks at
// one colour at a time (no neighbourhood), so the matte of a flat colour is the
// matte of every pixel of it.
//
// Set-up, from the settings (parameters clamped to [0, 1]):
//   K  = keyColors[0] (1 - p8) + keyColors[1] p8        the blended key colour
//   i  = TsMgAnimToAlgo::overallToIntrusion(p0)         0.6 p0^2
//   o  = TsMgAnimToAlgo::rangeEToOpponent(p7)           1 / (0.1 + p7)
//   S  = TsMgUtils::getSoftnessMatrix(K, i)
//   reaches, in softness units: shadows p1, highlights p2, deep hue plus p3,
//   deep hue minus p4, hue plus p5, hue minus p6.
//
// Per colour X = (r, g, b):
//   (d1, d2, d3) = S X                  d1 already lowered by i
//   deep = d1 < -i                      X is deeper than the key colour
//   hue reaches   R+ = deep ? p3 : p5,  R- = deep ? p4 : p6
//   e2 = max(0, d2 - R+, -d2 - R-)      how far X lies beyond the hue reach
//   e3 = max(0, d3 - p2, -d3 - p1)      ... beyond the brightness reach
//   alpha = clamp(o * max(d1, e2, e3), 0, 1)
//
// So the transparent core is the box d1 <= 0, -R- <= d2 <= R+,
// -p1 <= d3 <= p2 of softness space, and the matte rises linearly with slope o
// (over a width 1 / o) beyond each of its faces. With default parameters on
// a green key (0.1, 0.5, 0.1): the key colour and every colour within 0.15 of
// it along axis 1 are 0, any grey is clamp(5/3 * 0.85) = 1, and the screen
// mixed half and half with a grey of its brightness is
// 5/3 * (0.5 - 0.15) = 0.583.
//
// Then, when degrainOn and the degrain box B is not the identity: a colour
// with TsUtils::boxDistance(B, X) <= 1 (inside the box) gets alpha 0.
//
// Then each patch in order whose box P is not the identity and whose mode is
// 1, 2 or 3, with q = TsUtils::boxDistance(P, X), the reach 1 + range and the
// transition width softness (both in the box's cube units):
//   w = 1                                      when q <= 1 + range
//   w = clamp(1 - (q - 1 - range) / softness)  beyond (0 when softness is 0)
//   mode 1 (edge):       alpha += w * (0.5 - alpha) / 2   half way to 0.5
//   mode 2 (foreground): alpha += w * (1 - alpha)         forced opaque
//   mode 3 (background): alpha -= w * alpha               forced transparent
// Patches come last so that the artist's explicit choices win over the
// degrain box; a later patch wins over an earlier one where they overlap.
//
// A NaN component gives alpha 0 (every comparison with it fails).
class TsMatteStage {
public:
    explicit TsMatteStage(const TsKeyerSettings& settings);

    // The alpha of one colour (the formula above, one colour at a time).
    float alphaOf(float r, float g, float b) const;

    // The alpha of n colours given as three planes; the loops are written for
    // the compiler to vectorise, BlockSize colours at a time. The planes may
    // hold any n; a multiple of BlockSize is fastest.
    static constexpr int BlockSize = 64;
    void computeAlpha(const float* r, const float* g, const float* b, float* alpha, int n) const;

    // The blended key colour, intrusion, opponent and softness matrix in use.
    const CoRgbColorTyped<float>& getKeyColour() const { return _key; }
    float getIntrusion() const { return _intrusion; }
    float getOpponent() const { return _opponent; }
    const CoAffineMatrixTyped<float>& getSoftnessMatrix() const { return _softness; }

    // The matte before the degrain box and the patches: the first part of the
    // formula above, for one colour, with the colour's softness coordinates
    // (d1 lowered by the intrusion). Inline and by value, so that the keyer
    // pass can run it in one vectorised loop with the despill.
    struct Base {
        float s[12]; // rows 0, 1, 2 of the softness matrix: s[4 row + column]
        float deepLimit;
        float opponent;
        float shadows, highlights, deepPlus, deepMinus, huePlus, hueMinus;

        float alpha(float r, float g, float b, float& d1, float& d2, float& d3, float zero,
                    float one) const {
            using TsPixelMath::maxOf;
            d1 = s[0] * r + s[1] * g + s[2] * b + s[3];
            d2 = s[4] * r + s[5] * g + s[6] * b + s[7];
            d3 = s[8] * r + s[9] * g + s[10] * b + s[11];
            const bool deep = d1 < deepLimit;
            const float reachPlus = deep ? deepPlus : huePlus;
            const float reachMinus = deep ? deepMinus : hueMinus;
            const float e2 = maxOf(d2 - reachPlus, -d2 - reachMinus);
            const float e3 = maxOf(d3 - highlights, -d3 - shadows);
            return TsPixelMath::clampUnit(opponent * maxOf(d1, maxOf(e2, e3)), zero, one);
        }
    };
    const Base& getBase() const { return _base; }
    // True when the degrain box or a patch takes part (the alpha is then more
    // than the base).
    bool hasBoxRules() const { return _degrain || !_patches.empty(); }
    // The second part of the formula: the degrain box and the patches, in
    // place on the base alphas of n colours.
    void applyBoxRules(const float* r, const float* g, const float* b, float* alpha, int n) const;

private:
    void computeBlock(const float* r, const float* g, const float* b, float* alpha) const;
    void applyBoxRulesBlock(const float* r, const float* g, const float* b, float* alpha) const;

    struct BoxRule {
        CoAffineMatrixTyped<float> box;
        int mode;          // 1, 2, 3 for the patches, 0 for the degrain box
        float reach;       // 1 + range
        float invSoftness; // 1 / softness, or a huge value for a hard edge
    };

    CoRgbColorTyped<float> _key;
    float _intrusion;
    float _opponent;
    CoAffineMatrixTyped<float> _softness;
    Base _base;
    bool _degrain = false;
    CoAffineMatrixTyped<float> _degrainBox;
    std::vector<BoxRule> _patches;
};
