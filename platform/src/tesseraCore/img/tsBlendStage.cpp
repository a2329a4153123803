#include <tesseraCore/img/tsBlendStage.h>

#include "tsPixelKernel.h"

#include <algorithm>

namespace {

float unit(double v) {
    return v > 0.0 ? static_cast<float>(std::min(v, 1.0)) : 0.0f;
}

} // namespace

TsBlendStage::TsBlendStage(const TsKeyerSettings& settings)
    : _amount(unit(settings.blend[0])) {
    const float width = unit(settings.blend[1]);
    _invWidth = width > 0.0f ? 1.0f / width : 1e30f;
}

void TsBlendStage::composite(float* fr, float* fg, float* fb, float* fa, const float* br,
                             const float* bg, const float* bb, const float* ba, int n) const {
    for (int base = 0; base < n; base += BlockSize) {
        const int count = std::min(BlockSize, n - base);
        if (count == BlockSize) {
            compositeBlock(fr + base, fg + base, fb + base, fa + base, br + base, bg + base,
                           bb + base, ba + base);
            continue;
        }
        alignas(64) float p[8][BlockSize] = {};
        float* planes[4] = {fr, fg, fb, fa};
        const float* back[4] = {br, bg, bb, ba};
        for (int c = 0; c < 4; ++c) {
            std::copy(planes[c] + base, planes[c] + base + count, p[c]);
            std::copy(back[c] + base, back[c] + base + count, p[4 + c]);
        }
        compositeBlock(p[0], p[1], p[2], p[3], p[4], p[5], p[6], p[7]);
        for (int c = 0; c < 4; ++c) {
            std::copy(p[c], p[c] + count, planes[c] + base);
        }
    }
}

TS_PIXEL_KERNEL
void TsBlendStage::compositeBlock(float* __restrict fr, float* __restrict fg, float* __restrict fb,
                                  float* __restrict fa, const float* __restrict br,
                                  const float* __restrict bg, const float* __restrict bb,
                                  const float* __restrict ba) const {
    const float amount = _amount;
    const float invWidth = _invWidth;
    const float zero = tsPixelZero, one = tsPixelOne;
    for (int k = 0; k < BlockSize; ++k) {
        const float alpha = fa[k];
        const float wrap = amount * minOf(maxOf(one - alpha * invWidth, zero), one);
        // alpha (F (1 - wrap) + B wrap) + (1 - alpha) B
        //   = f F + (1 - f) B   with f = alpha (1 - wrap)
        const float f = alpha * (1.0f - wrap);
        const float rest = 1.0f - f;
        fr[k] = f * fr[k] + rest * br[k];
        fg[k] = f * fg[k] + rest * bg[k];
        fb[k] = f * fb[k] + rest * bb[k];
        fa[k] = alpha + (1.0f - alpha) * ba[k];
    }
}
