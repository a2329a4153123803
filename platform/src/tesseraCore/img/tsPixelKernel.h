#pragma once

#include <tesseraCore/img/tsPixelMath.h>

// The keyer's per-pixel loops are compiled three times on x86-64: for the
// baseline (SSE2, 4 floats a vector), for x86-64-v3 (AVX2 and FMA, 8 floats)
// and for x86-64-v4 (AVX-512, 16 floats, and twice the registers, so that the
// loops keep their constants in registers), chosen when the library is loaded
// by what the processor offers. The two wider builds compute the same values
// (the same operations, fused alike). Whatever such a loop calls must be
// inlined into it, or it runs as baseline code: hence the always_inline
// helpers. Sanitised builds keep the baseline only.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(TESSERA_SANITIZED)
#define TS_PIXEL_KERNEL                                                                            \
    __attribute__((target_clones("arch=x86-64-v4", "arch=x86-64-v3", "default")))
#else
#define TS_PIXEL_KERNEL
#endif

using TsPixelMath::clampUnit;
using TsPixelMath::maxOf;
using TsPixelMath::minOf;

// 0 and 1 for TsPixelMath::clampUnit, defined in another file so that the
// compiler cannot see their values. A loop reads them once into locals.
extern const float tsPixelZero;
extern const float tsPixelOne;
