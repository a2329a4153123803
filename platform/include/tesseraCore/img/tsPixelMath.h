#pragma once

// The few operations of the keyer's per-pixel formulas that must map onto
// single vector instructions. Always inlined: a helper that a pixel loop of
// another target (TS_PIXEL_KERNEL) calls out of line keeps that loop from
// being vectorised.
namespace TsPixelMath {

// max and min as the vector instructions compute them: a NaN in `v` yields
// `bound`.
[[gnu::always_inline]] inline float maxOf(float v, float bound) {
    return v > bound ? v : bound;
}
[[gnu::always_inline]] inline float minOf(float v, float bound) {
    return v < bound ? v : bound;
}

// v clamped to [zero, one]. The loops pass 0 and 1 from variables that the
// compiler cannot see through: with literal bounds it merges the two
// comparisons into a longer compare-and-blend sequence.
[[gnu::always_inline]] inline float clampUnit(float v, float zero, float one) {
    return minOf(maxOf(v, zero), one);
}

} // namespace TsPixelMath
