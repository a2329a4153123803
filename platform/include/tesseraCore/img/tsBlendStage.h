#pragma once

#include <tesseraCore/tesseraCoreExport.h>
#include <tesseraCore/tsKeyerSettings.h>

// The composite of the despilled foreground over the background, with the
// background's light wrapped onto the foreground's soft edges.
//
// With the matte alpha, the despilled foreground F, the background B (with
// its alpha Ba), amount = blend[0] and width = blend[1]:
//   wrap  = amount * clamp(1 - alpha / width, 0, 1)     (0 when width is 0)
//   F'    = F (1 - wrap) + B wrap
//   out   = alpha F' + (1 - alpha) B,   out alpha = alpha + (1 - alpha) Ba
//
// So the wrap is strongest where the foreground is thinnest and fades out at
// alpha = width: a wider wrap reaches further into the subject's soft edge,
// and solid foreground (alpha 1 beyond the width) is never touched. At
// amount 0 this is the plain "over" of straight colours.
//
// Without a background input the composite is taken over a checkerboard of
// CheckerSize-pixel squares (plate pixels) of CheckerDark and CheckerLight
// grey, the square at the plate's lower-left corner dark.
class TS_CORE_API TsBlendStage {
public:
    static constexpr int CheckerSize = 16;
    static constexpr float CheckerDark = 0.1f;
    static constexpr float CheckerLight = 0.25f;

    explicit TsBlendStage(const TsKeyerSettings& settings);

    // The composite of n pixels (vectorised loops, BlockSize at a time), in place in the foreground
    // planes (fr, fg, fb; fa is the matte and becomes the output alpha) over the background planes.
    void composite(float* fr, float* fg, float* fb, float* fa, const float* br, const float* bg,
                   const float* bb, const float* ba, int n) const;
    static constexpr int BlockSize = 64;

private:
    void compositeBlock(float* fr, float* fg, float* fb, float* fa, const float* br,
                        const float* bg, const float* bb, const float* ba) const;

    float _amount;
    float _invWidth;
};
