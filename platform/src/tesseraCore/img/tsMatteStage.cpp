#include <tesseraCore/img/tsMatteStage.h>

#include <tesseraUtil/tsMgAnimToAlgo.h>
#include <tesseraUtil/tsMgUtils.h>
#include <tesseraUtil/tsUtils.h>

#include "tsPixelKernel.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

float unit(double v) {
    // NaN fails the comparison and ends up 0.
    return v > 0.0 ? static_cast<float>(std::min(v, 1.0)) : 0.0f;
}

constexpr float HardEdge = 1e30f;

} // namespace

TsMatteStage::ColourBounds TsMatteStage::ColourBounds::around(const CoAffineMatrixTyped<float>& box,
                                                              float radius) {
    constexpr float Unbounded = std::numeric_limits<float>::infinity();
    ColourBounds bounds{{-Unbounded, -Unbounded, -Unbounded}, {Unbounded, Unbounded, Unbounded}};
    CoAffineMatrixTyped<float> inverse;
    if (!box.computeInverse(inverse)) {
        return bounds;
    }
    // The box's cube [-radius, radius]^3 taken back to colours: a
    // parallelepiped about the inverse's translation. A margin keeps rounding
    // from leaving out a colour at its very edge.
    for (int c = 0; c < 3; ++c) {
        const float extent = radius * (std::fabs(inverse[c]) + std::fabs(inverse[4 + c]) +
                                       std::fabs(inverse[8 + c]));
        const float centre = inverse[12 + c];
        const float margin = 1e-3f * (extent + std::fabs(centre)) + 1e-6f;
        if (!std::isfinite(extent) || !std::isfinite(centre)) {
            return bounds;
        }
        bounds.lo[c] = centre - extent - margin;
        bounds.hi[c] = centre + extent + margin;
    }
    return bounds;
}

TsMatteStage::TsMatteStage(const TsKeyerSettings& settings) {
    const auto& p = settings.matte;
    const float blend = unit(p[8]);
    const auto& k0 = settings.keyColors[0];
    const auto& k1 = settings.keyColors[1];
    _key = {k0.r * (1.0f - blend) + k1.r * blend, k0.g * (1.0f - blend) + k1.g * blend,
            k0.b * (1.0f - blend) + k1.b * blend};
    _intrusion = TsMgAnimToAlgo::overallToIntrusion(static_cast<float>(p[0]));
    const float width = 1.0f / TsMgAnimToAlgo::rangeEToOpponent(static_cast<float>(p[7]));
    _softness = TsMgUtils::getSoftnessMatrix(_key, _intrusion);
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 4; ++column) {
            _base.s[4 * row + column] = _softness.get(row, column);
        }
    }
    _base.deepLimit = -_intrusion;
    _base.lift = (1.0f - CoreShare) * _intrusion;
    _base.slope = 1.0f / (width + _base.lift);
    _base.deepPlus = TsMgAnimToAlgo::hueToReach(static_cast<float>(p[3]));
    _base.deepMinus = TsMgAnimToAlgo::hueToReach(static_cast<float>(p[4]));
    _base.huePlus = TsMgAnimToAlgo::hueToReach(static_cast<float>(p[5]));
    _base.hueMinus = TsMgAnimToAlgo::hueToReach(static_cast<float>(p[6]));
    const TsMgUtils::KeyAxes axes = TsMgUtils::getKeyAxes(_key);
    const float grey = std::fabs(_key.r + _key.g + _key.b) / std::sqrt(3.0f);
    // A black key has no brightness to share: the term then stays out.
    _base.invBeta = grey > 1e-6f ? axes.chroma / grey : 0.0f;
    const float highlights = TsMgAnimToAlgo::highlightsToScreenReach(static_cast<float>(p[2]));
    const float shadows = TsMgAnimToAlgo::shadowsToScreenReach(static_cast<float>(p[1]));
    _base.upper = 1.0f + highlights;
    _base.lower = 1.0f - shadows;
    _base.invUpperWidth = 1.0f / std::max(2.0f * highlights, MinReach);
    _base.invLowerWidth = 1.0f / std::max(2.0f * shadows, MinReach);

    _degrain = settings.degrainOn && settings.degrainBox != CoAffineMatrixTyped<float>::IDENTITY;
    _degrainBox = settings.degrainBox;
    _degrainBounds = ColourBounds::around(_degrainBox, 1.0f);

    for (const TsKeyerSettings::Patch& patch : settings.patches) {
        if (patch.mode < 1 || patch.mode > 3 || patch.box == CoAffineMatrixTyped<float>::IDENTITY) {
            continue;
        }
        const float softness = unit(patch.softness);
        const float reach = 1.0f + unit(patch.range);
        _patches.push_back({patch.box, patch.mode, reach,
                            softness > 0.0f ? 1.0f / softness : HardEdge,
                            ColourBounds::around(patch.box, reach + softness)});
    }
}

float TsMatteStage::alphaOf(float r, float g, float b) const {
    float alpha;
    computeAlpha(&r, &g, &b, &alpha, 1);
    return alpha;
}

TsMatteStage::ColourMatte TsMatteStage::matteOf(float r, float g, float b) const {
    ColourMatte m;
    _base.coords(r, g, b, m.d1, m.d2, m.d3);
    m.alpha = alphaOf(r, g, b);
    return m;
}

void TsMatteStage::computeAlpha(const float* r, const float* g, const float* b, float* alpha,
                                int n) const {
    for (int base = 0; base < n; base += BlockSize) {
        const int count = std::min(BlockSize, n - base);
        if (count == BlockSize) {
            computeBlock(r + base, g + base, b + base, alpha + base);
            continue;
        }
        // A short block goes through the same loops, padded.
        alignas(64) float pr[BlockSize] = {}, pg[BlockSize] = {}, pb[BlockSize] = {};
        alignas(64) float pa[BlockSize];
        std::copy(r + base, r + base + count, pr);
        std::copy(g + base, g + base + count, pg);
        std::copy(b + base, b + base + count, pb);
        computeBlock(pr, pg, pb, pa);
        std::copy(pa, pa + count, alpha + base);
    }
}

// Loops of a fixed count, so that the compiler vectorises them without
// remainder handling.
TS_PIXEL_KERNEL
void TsMatteStage::computeBlock(const float* __restrict r, const float* __restrict g,
                                const float* __restrict b, float* __restrict alpha) const {
    const Base base = _base;
    const float zero = tsPixelZero, one = tsPixelOne;
    for (int k = 0; k < BlockSize; ++k) {
        float d1, d2, d3;
        alpha[k] = base.alpha(r[k], g[k], b[k], d1, d2, d3, zero, one);
    }
    if (hasBoxRules()) {
        applyBoxRulesBlock(r, g, b, r, g, b, alpha);
    }
}

void TsMatteStage::applyBoxRules(const float* cr, const float* cg, const float* cb, const float* r,
                                 const float* g, const float* b, float* alpha, int n) const {
    for (int base = 0; base < n; base += BlockSize) {
        const int count = std::min(BlockSize, n - base);
        if (count == BlockSize) {
            applyBoxRulesBlock(cr + base, cg + base, cb + base, r + base, g + base, b + base,
                               alpha + base);
            continue;
        }
        alignas(64) float p[7][BlockSize] = {};
        const float* in[6] = {cr, cg, cb, r, g, b};
        for (int c = 0; c < 6; ++c) {
            std::copy(in[c] + base, in[c] + base + count, p[c]);
        }
        std::copy(alpha + base, alpha + base + count, p[6]);
        applyBoxRulesBlock(p[0], p[1], p[2], p[3], p[4], p[5], p[6]);
        std::copy(p[6], p[6] + count, alpha + base);
    }
}

TS_PIXEL_KERNEL
void TsMatteStage::applyBoxRulesBlock(const float* __restrict cr, const float* __restrict cg,
                                      const float* __restrict cb, const float* __restrict r,
                                      const float* __restrict g, const float* __restrict b,
                                      float* __restrict alpha) const {
    const float zero = tsPixelZero, one = tsPixelOne;
    const ColourBounds block = ColourBounds::of(r, g, b);
    if (_degrain &&
        !(_degrainBounds.misses(block) && _degrainBounds.misses(ColourBounds::of(cr, cg, cb)))) {
        const auto& m = _degrainBox;
        const float m0 = m[0], m4 = m[4], m8 = m[8], m12 = m[12];
        const float m1 = m[1], m5 = m[5], m9 = m[9], m13 = m[13];
        const float m2 = m[2], m6 = m[6], m10 = m[10], m14 = m[14];
        for (int k = 0; k < BlockSize; ++k) {
            const float q0 = m0 * cr[k] + m4 * cg[k] + m8 * cb[k] + m12;
            const float q1 = m1 * cr[k] + m5 * cg[k] + m9 * cb[k] + m13;
            const float q2 = m2 * cr[k] + m6 * cg[k] + m10 * cb[k] + m14;
            const float q = maxOf(std::fabs(q0), maxOf(std::fabs(q1), std::fabs(q2)));
            const float p0 = m0 * r[k] + m4 * g[k] + m8 * b[k] + m12;
            const float p1 = m1 * r[k] + m5 * g[k] + m9 * b[k] + m13;
            const float p2 = m2 * r[k] + m6 * g[k] + m10 * b[k] + m14;
            const float p = maxOf(std::fabs(p0), maxOf(std::fabs(p1), std::fabs(p2)));
            const float a = alpha[k];
            alpha[k] = minOf(p, q) <= 1.0f ? 0.0f : a;
        }
    }

    for (const BoxRule& patch : _patches) {
        if (patch.bounds.misses(block)) {
            continue;
        }
        const auto& m = patch.box;
        const float m0 = m[0], m4 = m[4], m8 = m[8], m12 = m[12];
        const float m1 = m[1], m5 = m[5], m9 = m[9], m13 = m[13];
        const float m2 = m[2], m6 = m[6], m10 = m[10], m14 = m[14];
        const float reach = patch.reach;
        const float invSoftness = patch.invSoftness;
        // The three modes as one blend towards a target:
        // alpha += w share (target - alpha).
        const float target = patch.mode == 2 ? 1.0f : patch.mode == 3 ? 0.0f : 0.5f;
        const float share = patch.mode == 1 ? 0.5f : 1.0f;
        for (int k = 0; k < BlockSize; ++k) {
            const float q0 = m0 * r[k] + m4 * g[k] + m8 * b[k] + m12;
            const float q1 = m1 * r[k] + m5 * g[k] + m9 * b[k] + m13;
            const float q2 = m2 * r[k] + m6 * g[k] + m10 * b[k] + m14;
            const float q = maxOf(std::fabs(q0), maxOf(std::fabs(q1), std::fabs(q2)));
            const float w = minOf(maxOf(one - (q - reach) * invSoftness, zero), one);
            alpha[k] += w * share * (target - alpha[k]);
        }
    }
}
