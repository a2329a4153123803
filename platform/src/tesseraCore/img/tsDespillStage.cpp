#include <tesseraCore/img/tsDespillStage.h>

#include <tesseraUtil/tsMgAnimToAlgo.h>
#include <tesseraUtil/tsMgUtils.h>

#include "tsPixelKernel.h"

#include <algorithm>
#include <cmath>

namespace {

float unit(double v) {
    return v > 0.0 ? static_cast<float>(std::min(v, 1.0)) : 0.0f;
}

} // namespace

TsDespillStage::TsDespillStage(const TsKeyerSettings& settings) {
    // The same blended key colour and softness space as the matte.
    const float blend = unit(settings.matte[8]);
    const auto& k0 = settings.keyColors[0];
    const auto& k1 = settings.keyColors[1];
    CoRgbColorTyped<float> key{k0.r * (1.0f - blend) + k1.r * blend,
                               k0.g * (1.0f - blend) + k1.g * blend,
                               k0.b * (1.0f - blend) + k1.b * blend};
    for (int c = 0; c < 3; ++c) {
        if (!std::isfinite(key[c])) {
            key[c] = 0.0f;
        }
    }
    const float intrusion =
        TsMgAnimToAlgo::overallToIntrusion(static_cast<float>(settings.matte[0]));
    _softness = TsMgUtils::getSoftnessMatrix(key, intrusion);

    const TsMgUtils::KeyAxes axes = TsMgUtils::getKeyAxes(key);
    const auto& e1 = axes.axis[0];
    CoRgbColorTyped<float> hue = axes.axis[1];
    if (hue.r - hue.b < 0.0f) {
        hue = hue * -1.0f;
    }
    const auto& n = axes.axis[2];
    const float bx = 2.0f * unit(settings.edgeBalanceX) - 1.0f;
    const float by = 2.0f * unit(settings.edgeBalanceY) - 1.0f;
    _core.u0 = -e1.r;
    _core.u2 = -e1.b;
    for (int c = 0; c < 3; ++c) {
        _core.shift[c] = bx * hue[c] + by * n[c] + e1[c];
    }
    _core.invChroma = 1.0f / axes.chroma;
    _core.intrusion = intrusion;
    const float reach = 0.1f + 2.0f * unit(settings.spill[1]);
    _core.invReach2 = 1.0f / (reach * reach);
    _core.scale = unit(settings.spill[0]) * axes.chroma;
}

CoRgbColorTyped<float> TsDespillStage::apply(const CoRgbColorTyped<float>& colour) const {
    CoRgbColorTyped<float> out = colour;
    apply(&out.r, &out.g, &out.b, 1);
    return out;
}

void TsDespillStage::apply(float* r, float* g, float* b, int n) const {
    for (int base = 0; base < n; base += BlockSize) {
        const int count = std::min(BlockSize, n - base);
        if (count == BlockSize) {
            applyBlock(r + base, g + base, b + base);
            continue;
        }
        alignas(64) float pr[BlockSize] = {}, pg[BlockSize] = {}, pb[BlockSize] = {};
        std::copy(r + base, r + base + count, pr);
        std::copy(g + base, g + base + count, pg);
        std::copy(b + base, b + base + count, pb);
        applyBlock(pr, pg, pb);
        std::copy(pr, pr + count, r + base);
        std::copy(pg, pg + count, g + base);
        std::copy(pb, pb + count, b + base);
    }
}

TS_PIXEL_KERNEL
void TsDespillStage::applyBlock(float* __restrict r, float* __restrict g,
                                float* __restrict b) const {
    const Core core = _core;
    const auto& s = _softness;
    const float s0 = s[0], s4 = s[4], s8 = s[8], s12 = s[12];
    const float s1 = s[1], s5 = s[5], s9 = s[9], s13 = s[13];
    const float s2 = s[2], s6 = s[6], s10 = s[10], s14 = s[14];
    const float zero = tsPixelZero, one = tsPixelOne;
    for (int k = 0; k < BlockSize; ++k) {
        const float d1 = s0 * r[k] + s4 * g[k] + s8 * b[k] + s12;
        const float d2 = s1 * r[k] + s5 * g[k] + s9 * b[k] + s13;
        const float d3 = s2 * r[k] + s6 * g[k] + s10 * b[k] + s14;
        core.apply(r[k], g[k], b[k], d1, d2, d3, zero, one);
    }
}
