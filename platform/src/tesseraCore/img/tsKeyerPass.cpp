#include <tesseraCore/img/tsKeyerPass.h>

#include <tesseraCore/img/tsBlendStage.h>
#include <tesseraCore/img/tsDespillStage.h>
#include <tesseraCore/img/tsMatteStage.h>

#include "tsPixelKernel.h"

#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_for.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace {

constexpr int Block = TsMatteStage::BlockSize;
static_assert(Block == TsDespillStage::BlockSize && Block == TsBlendStage::BlockSize);

// One block of pixels split into planes.
struct Planes {
    alignas(64) float r[Block];
    alignas(64) float g[Block];
    alignas(64) float b[Block];
    alignas(64) float a[Block];
};

// Fixed-count loops (n == Block) let the compiler vectorise without
// remainder handling; the tail of a row takes the general path. A short
// block is padded with zeros, so the stages always see whole blocks.
[[gnu::always_inline]] inline void load(const float* __restrict src, Planes& p, int n) {
    if (n == Block) {
        for (int k = 0; k < Block; ++k) {
            p.r[k] = src[4 * k];
            p.g[k] = src[4 * k + 1];
            p.b[k] = src[4 * k + 2];
            p.a[k] = src[4 * k + 3];
        }
        return;
    }
    for (int k = 0; k < n; ++k) {
        p.r[k] = src[4 * k];
        p.g[k] = src[4 * k + 1];
        p.b[k] = src[4 * k + 2];
        p.a[k] = src[4 * k + 3];
    }
    for (int k = n; k < Block; ++k) {
        p.r[k] = 0.0f;
        p.g[k] = 0.0f;
        p.b[k] = 0.0f;
        p.a[k] = 0.0f;
    }
}

// Whole blocks are written with streaming (non-temporal) stores where the
// processor has them: the output is not read back by this pass, and writing
// around the cache saves reading every output line from memory first, which
// would otherwise make the pass move half as many bytes again as a copy.
#if defined(__SSE2__)
inline bool streamable(const float* dst) {
    return (reinterpret_cast<std::uintptr_t>(dst) & 15u) == 0;
}

inline void streamBlock(const float* __restrict r, const float* __restrict g,
                        const float* __restrict b, const float* __restrict a,
                        float* __restrict dst) {
    for (int k = 0; k < Block; k += 4) {
        __m128 vr = _mm_load_ps(r + k);
        __m128 vg = _mm_load_ps(g + k);
        __m128 vb = _mm_load_ps(b + k);
        __m128 va = _mm_load_ps(a + k);
        _MM_TRANSPOSE4_PS(vr, vg, vb, va);
        _mm_stream_ps(dst + 4 * k, vr);
        _mm_stream_ps(dst + 4 * k + 4, vg);
        _mm_stream_ps(dst + 4 * k + 8, vb);
        _mm_stream_ps(dst + 4 * k + 12, va);
    }
}

#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
// The same eight pixels at a time with AVX: half the shuffles. Called only
// when the processor has AVX (inlined into the AVX2 build of the row loop).
__attribute__((target("avx"))) inline void
streamBlockAvx(const float* __restrict r, const float* __restrict g, const float* __restrict b,
               const float* __restrict a, float* __restrict dst) {
    for (int k = 0; k < Block; k += 8) {
        const __m256 vr = _mm256_load_ps(r + k);
        const __m256 vg = _mm256_load_ps(g + k);
        const __m256 vb = _mm256_load_ps(b + k);
        const __m256 va = _mm256_load_ps(a + k);
        // Within each 128-bit half: r g pairs and b a pairs, then pixels.
        const __m256 rg0 = _mm256_unpacklo_ps(vr, vg); // r0 g0 r1 g1 | r4 g4 r5 g5
        const __m256 rg1 = _mm256_unpackhi_ps(vr, vg); // r2 g2 r3 g3 | r6 g6 r7 g7
        const __m256 ba0 = _mm256_unpacklo_ps(vb, va);
        const __m256 ba1 = _mm256_unpackhi_ps(vb, va);
        const __m256 p04 = _mm256_shuffle_ps(rg0, ba0, 0x44); // pixel 0 | pixel 4
        const __m256 p15 = _mm256_shuffle_ps(rg0, ba0, 0xee);
        const __m256 p26 = _mm256_shuffle_ps(rg1, ba1, 0x44);
        const __m256 p37 = _mm256_shuffle_ps(rg1, ba1, 0xee);
        float* out = dst + 4 * k;
        _mm_stream_ps(out, _mm256_castps256_ps128(p04));
        _mm_stream_ps(out + 4, _mm256_castps256_ps128(p15));
        _mm_stream_ps(out + 8, _mm256_castps256_ps128(p26));
        _mm_stream_ps(out + 12, _mm256_castps256_ps128(p37));
        _mm_stream_ps(out + 16, _mm256_extractf128_ps(p04, 1));
        _mm_stream_ps(out + 20, _mm256_extractf128_ps(p15, 1));
        _mm_stream_ps(out + 24, _mm256_extractf128_ps(p26, 1));
        _mm_stream_ps(out + 28, _mm256_extractf128_ps(p37, 1));
    }
}

// The processor's features may be asked before the runtime's own start-up
// code has looked at them, hence the explicit initialisation.
const bool haveAvx = (__builtin_cpu_init(), __builtin_cpu_supports("avx"));
#else
constexpr bool haveAvx = false;
inline void streamBlockAvx(const float*, const float*, const float*, const float*, float*) {}
#endif

// Orders the streaming stores before the work is handed back.
inline void finishStores() {
    _mm_sfence();
}
#else
inline bool streamable(const float*) {
    return false;
}
constexpr bool haveAvx = false;
inline void streamBlock(const float*, const float*, const float*, const float*, float*) {}
inline void streamBlockAvx(const float*, const float*, const float*, const float*, float*) {}
inline void finishStores() {}
#endif

inline void store(const float* __restrict r, const float* __restrict g, const float* __restrict b,
                  const float* __restrict a, float* __restrict dst, int n) {
    if (n == Block && streamable(dst)) {
        if (haveAvx) {
            streamBlockAvx(r, g, b, a, dst);
        } else {
            streamBlock(r, g, b, a, dst);
        }
        return;
    }
    for (int k = 0; k < n; ++k) {
        dst[4 * k] = r[k];
        dst[4 * k + 1] = g[k];
        dst[4 * k + 2] = b[k];
        dst[4 * k + 3] = a[k];
    }
}

struct Ones {
    alignas(64) float v[Block];
    constexpr Ones()
        : v{} {
        for (float& x : v) {
            x = 1.0f;
        }
    }
};
constexpr Ones ones;

// (v, v, v, 1) for each pixel.
inline void storeGrey(const float* __restrict v, float* __restrict dst, int n) {
    store(v, v, v, ones.v, dst, n);
}

// The background of pixels x0 .. x0 + n - 1 of row j: the background image
// where it reaches, transparent black beyond; the checkerboard when there is
// no background image.
[[gnu::always_inline]] inline void loadBackground(const PiImage* background, int x0, int j, int n,
                                                  int checkerScale, Planes& p) {
    if (!background) {
        const int y = (j * checkerScale) / TsBlendStage::CheckerSize;
        for (int k = 0; k < Block; ++k) {
            const int x = ((x0 + k) * checkerScale) / TsBlendStage::CheckerSize;
            const float v =
                ((x + y) & 1) != 0 ? TsBlendStage::CheckerLight : TsBlendStage::CheckerDark;
            p.r[k] = v;
            p.g[k] = v;
            p.b[k] = v;
            p.a[k] = 1.0f;
        }
        return;
    }
    const bool rowInside = j < background->getHeight() && x0 < background->getWidth();
    const int valid = rowInside ? std::min(n, background->getWidth() - x0) : 0;
    if (valid > 0) {
        load(background->row(j) + 4 * x0, p, valid);
        return;
    }
    std::fill(p.r, p.r + Block, 0.0f);
    std::fill(p.g, p.g + Block, 0.0f);
    std::fill(p.b, p.b + Block, 0.0f);
    std::fill(p.a, p.a + Block, 0.0f);
}

// The base matte of a block into out.a and, for the colour views, its
// foreground colour (despilled with Despill) into out.r, g, b, in a single
// loop: the despill reuses the softness coordinates that the matte computed.
// The degrain box and the patches are applied afterwards, to out.a, from the
// block's own colours.
template <bool Colour, bool Despill>
[[gnu::always_inline]] inline void
keyBlock(const Planes& in, Planes& out, const TsMatteStage::Base& base,
         const TsDespillStage::Core& core, float zero, float one) {
    for (int k = 0; k < Block; ++k) {
        float d1, d2, d3;
        out.a[k] = base.alpha(in.r[k], in.g[k], in.b[k], d1, d2, d3, zero, one);
        if constexpr (Colour) {
            float r = in.r[k], g = in.g[k], b = in.b[k];
            if constexpr (Despill) {
                core.apply(r, g, b, d1, d2, d3, zero, one);
            }
            out.r[k] = r;
            out.g[k] = g;
            out.b[k] = b;
        }
    }
}

// Everything one render needs, shared by the threads.
struct RowJob {
    const PiImage& plate;
    const PiImage* background;
    PiImage& out;
    TsMatteStage matte;
    TsDespillStage despill;
    TsBlendStage blend;
    TsViewMode mode;
    int checkerScale;
};

// Rows j0 .. j1 - 1 of one view, in blocks of pixels split into planes.
TS_PIXEL_KERNEL
void keyRows(const RowJob& job, int j0, int j1) {
    Planes plate;
    Planes fg;
    Planes bg;
    alignas(64) float status[Block];
    const int width = job.plate.getWidth();
    const bool despilling = !job.despill.isIdentity();
    const bool colour = job.mode == TsViewMode::Foreground || job.mode == TsViewMode::Composite;
    const bool boxRules = job.matte.hasBoxRules();
    const TsMatteStage::Base base = job.matte.getBase();
    const TsDespillStage::Core core = job.despill.getCore();
    const float zero = tsPixelZero, one = tsPixelOne;
    for (int j = j0; j != j1; ++j) {
        const float* src = job.plate.row(j);
        float* dst = job.out.row(j);
        for (int x0 = 0; x0 < width; x0 += Block) {
            const int n = std::min(Block, width - x0);
            // The block after next is fetched into the cache while this one is
            // keyed, so that the loads below rarely wait for memory.
            if (x0 + 3 * Block <= width) {
                for (int line = 0; line < 4 * Block; line += 16) {
                    __builtin_prefetch(src + 4 * (x0 + 2 * Block) + line);
                }
            }
            load(src + 4 * x0, plate, n);
            if (!colour) {
                keyBlock<false, false>(plate, fg, base, core, zero, one);
            } else if (despilling) {
                keyBlock<true, true>(plate, fg, base, core, zero, one);
            } else {
                keyBlock<true, false>(plate, fg, base, core, zero, one);
            }
            if (boxRules) {
                job.matte.applyBoxRules(plate.r, plate.g, plate.b, fg.a, Block);
            }
            switch (job.mode) {
            case TsViewMode::Matte:
                storeGrey(fg.a, dst + 4 * x0, n);
                break;
            case TsViewMode::Status:
                for (int k = 0; k < Block; ++k) {
                    const float a = fg.a[k];
                    status[k] = a <= 0.0f ? 0.0f : (a >= 1.0f ? 1.0f : 0.5f);
                }
                storeGrey(status, dst + 4 * x0, n);
                break;
            case TsViewMode::Foreground:
                store(fg.r, fg.g, fg.b, fg.a, dst + 4 * x0, n);
                break;
            case TsViewMode::Composite:
                loadBackground(job.background, x0, j, n, job.checkerScale, bg);
                job.blend.composite(fg.r, fg.g, fg.b, fg.a, bg.r, bg.g, bg.b, bg.a, Block);
                store(fg.r, fg.g, fg.b, fg.a, dst + 4 * x0, n);
                break;
            case TsViewMode::Source:
                break;
            }
        }
    }
    finishStores();
}

} // namespace

void TsKeyerPass::setPlate(const PiImagePtr& plate) {
    std::lock_guard<std::mutex> lock(_proxyMutex);
    if (plate.get() != _plate.get()) {
        _proxyFactor = 0;
        _plateProxy.reset();
        _backgroundProxy.reset();
    }
    _plate = plate;
}

void TsKeyerPass::setBackground(const PiImagePtr& background) {
    std::lock_guard<std::mutex> lock(_proxyMutex);
    if (background.get() != _background.get()) {
        _proxyFactor = 0;
        _plateProxy.reset();
        _backgroundProxy.reset();
    }
    _background = background;
}

void TsKeyerPass::render(TsViewMode mode, PiImage& out) const {
    if (!_plate) {
        out = PiImage();
        return;
    }
    run(*_plate, _background.get(), _settings, mode, out, 1);
}

PiImagePtr TsKeyerPass::render(TsViewMode mode) const {
    if (!_plate) {
        return rcMake<PiImage>();
    }
    auto out = rcMake<PiImage>(_plate->getWidth(), _plate->getHeight());
    render(mode, *out);
    return out;
}

int TsKeyerPass::getViewerFactor(int maxWidth) const {
    if (!_plate || maxWidth <= 0) {
        return 1;
    }
    return std::max(1, (_plate->getWidth() + maxWidth - 1) / maxWidth);
}

void TsKeyerPass::renderViewer(TsViewMode mode, int maxWidth, PiImage& out) {
    if (!_plate) {
        out = PiImage();
        return;
    }
    const int factor = getViewerFactor(maxWidth);
    if (factor == 1) {
        run(*_plate, _background.get(), _settings, mode, out, 1);
        return;
    }
    PiImagePtr plate, background;
    {
        std::lock_guard<std::mutex> lock(_proxyMutex);
        if (_proxyFactor != factor) {
            _plateProxy = reduce(*_plate, factor);
            _backgroundProxy = _background ? reduce(*_background, factor) : PiImagePtr();
            _proxyFactor = factor;
        }
        plate = _plateProxy;
        background = _backgroundProxy;
    }
    run(*plate, background.get(), _settings, mode, out, factor);
}

void TsKeyerPass::run(const PiImage& plate, const PiImage* background,
                      const TsKeyerSettings& settings, TsViewMode mode, PiImage& out,
                      int checkerScale) {
    const int width = plate.getWidth();
    const int height = plate.getHeight();
    if (out.getWidth() != width || out.getHeight() != height) {
        out = PiImage(width, height);
    }
    if (plate.isEmpty()) {
        return;
    }
    const std::size_t rowFloats = 4 * static_cast<std::size_t>(width);
    if (mode == TsViewMode::Source) {
        tbb::parallel_for(tbb::blocked_range<int>(0, height),
                          [&](const tbb::blocked_range<int>& rows) {
                              for (int j = rows.begin(); j != rows.end(); ++j) {
                                  std::memcpy(out.row(j), plate.row(j), rowFloats * sizeof(float));
                              }
                          });
        return;
    }

    const RowJob job{plate,
                     background,
                     out,
                     TsMatteStage(settings),
                     TsDespillStage(settings),
                     TsBlendStage(settings),
                     mode,
                     checkerScale};
    tbb::parallel_for(tbb::blocked_range<int>(0, height), [&](const tbb::blocked_range<int>& rows) {
        keyRows(job, rows.begin(), rows.end());
    });
}

PiImagePtr TsKeyerPass::reduce(const PiImage& image, int factor) {
    factor = std::max(1, factor);
    const int width = (image.getWidth() + factor - 1) / factor;
    const int height = (image.getHeight() + factor - 1) / factor;
    auto out = rcMake<PiImage>(width, height);
    tbb::parallel_for(tbb::blocked_range<int>(0, height), [&](const tbb::blocked_range<int>& rows) {
        for (int j = rows.begin(); j != rows.end(); ++j) {
            const int y0 = j * factor;
            const int y1 = std::min(image.getHeight(), y0 + factor);
            float* dst = out->row(j);
            for (int i = 0; i < width; ++i) {
                const int x0 = i * factor;
                const int x1 = std::min(image.getWidth(), x0 + factor);
                float sum[4] = {0, 0, 0, 0};
                for (int y = y0; y < y1; ++y) {
                    const float* src = image.row(y);
                    for (int x = x0; x < x1; ++x) {
                        for (int c = 0; c < 4; ++c) {
                            sum[c] += src[4 * x + c];
                        }
                    }
                }
                const float inv = 1.0f / static_cast<float>((y1 - y0) * (x1 - x0));
                for (int c = 0; c < 4; ++c) {
                    dst[4 * i + c] = sum[c] * inv;
                }
            }
        }
    });
    return out;
}
