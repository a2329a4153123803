#include <tesseraCore/img/tsKeyerPass.h>

#include <tesseraCore/img/tsBlendStage.h>
#include <tesseraCore/img/tsDespillStage.h>
#include <tesseraCore/img/tsMatteStage.h>
#include <tesseraCore/img/tsScreenEstimate.h>

#include "tsPixelKernel.h"

#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_for.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace {

constexpr int Block = TsMatteStage::BlockSize;
static_assert(Block == TsDespillStage::BlockSize && Block == TsBlendStage::BlockSize &&
              Block == TsScreenEstimate::RowBlock);

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

// Sixteen pixels at a time with AVX-512: each store writes a whole cache
// line, so that a line waits for no second store before it leaves. (GCC 12
// warns of an undefined register inside its own unpack intrinsics.)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
__attribute__((target("avx512f"))) inline void
streamBlockAvx512(const float* __restrict r, const float* __restrict g, const float* __restrict b,
                  const float* __restrict a, float* __restrict dst) {
    for (int k = 0; k < Block; k += 16) {
        const __m512 vr = _mm512_load_ps(r + k);
        const __m512 vg = _mm512_load_ps(g + k);
        const __m512 vb = _mm512_load_ps(b + k);
        const __m512 va = _mm512_load_ps(a + k);
        // Within each 128-bit quarter as with AVX: pixels 0 4 8 12 in p0, 1 5
        // 9 13 in p1, and so on; then the quarters in order.
        const __m512 rg0 = _mm512_unpacklo_ps(vr, vg);
        const __m512 rg1 = _mm512_unpackhi_ps(vr, vg);
        const __m512 ba0 = _mm512_unpacklo_ps(vb, va);
        const __m512 ba1 = _mm512_unpackhi_ps(vb, va);
        const __m512 p0 = _mm512_shuffle_ps(rg0, ba0, 0x44);
        const __m512 p1 = _mm512_shuffle_ps(rg0, ba0, 0xee);
        const __m512 p2 = _mm512_shuffle_ps(rg1, ba1, 0x44);
        const __m512 p3 = _mm512_shuffle_ps(rg1, ba1, 0xee);
        const __m512 t0 = _mm512_shuffle_f32x4(p0, p1, 0x44); // 0 4 1 5
        const __m512 t1 = _mm512_shuffle_f32x4(p2, p3, 0x44); // 2 6 3 7
        const __m512 t2 = _mm512_shuffle_f32x4(p0, p1, 0xee); // 8 12 9 13
        const __m512 t3 = _mm512_shuffle_f32x4(p2, p3, 0xee); // 10 14 11 15
        float* out = dst + 4 * k;
        _mm512_stream_ps(out, _mm512_shuffle_f32x4(t0, t1, 0x88));
        _mm512_stream_ps(out + 16, _mm512_shuffle_f32x4(t0, t1, 0xdd));
        _mm512_stream_ps(out + 32, _mm512_shuffle_f32x4(t2, t3, 0x88));
        _mm512_stream_ps(out + 48, _mm512_shuffle_f32x4(t2, t3, 0xdd));
    }
}
#pragma GCC diagnostic pop

// The processor's features may be asked before the runtime's own start-up
// code has looked at them, hence the explicit initialisation.
const bool haveAvx = (__builtin_cpu_init(), __builtin_cpu_supports("avx"));
const bool haveAvx512 = (__builtin_cpu_init(), __builtin_cpu_supports("avx512f"));
#else
constexpr bool haveAvx = false;
constexpr bool haveAvx512 = false;
inline void streamBlockAvx(const float*, const float*, const float*, const float*, float*) {}
inline void streamBlockAvx512(const float*, const float*, const float*, const float*, float*) {}
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
constexpr bool haveAvx512 = false;
inline void streamBlock(const float*, const float*, const float*, const float*, float*) {}
inline void streamBlockAvx(const float*, const float*, const float*, const float*, float*) {}
inline void streamBlockAvx512(const float*, const float*, const float*, const float*, float*) {}
inline void finishStores() {}
#endif

inline void store(const float* __restrict r, const float* __restrict g, const float* __restrict b,
                  const float* __restrict a, float* __restrict dst, int n) {
    if (n == Block && streamable(dst)) {
        if (haveAvx512 && (reinterpret_cast<std::uintptr_t>(dst) & 63u) == 0) {
            streamBlockAvx512(r, g, b, a, dst);
        } else if (haveAvx) {
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

constexpr int RowsPerTask = 64;

// Everything one render needs, shared by the threads.
struct RowJob {
    const PiImage& plate;
    const PiImage* background;
    PiImage& out;
    TsMatteStage matte;
    const TsScreenEstimate& screen;
    TsDespillStage despill;
    TsBlendStage blend;
    TsViewMode mode;
    int checkerScale;
};

// The loops of one block, each over __restrict parameters: the compiler
// vectorises a loop only when it can tell its planes apart.

// 0, 1, ... Block - 1: the steps along a block.
struct Steps {
    alignas(64) float v[Block];
    constexpr Steps()
        : v{} {
        for (int k = 0; k < Block; ++k) {
            v[k] = static_cast<float>(k);
        }
    }
};
constexpr Steps steps;
using Line = TsScreenEstimate::Line;

// The colours in the key colour's light (the screen's gains along the block's
// line), into cr, cg, cb.
[[gnu::always_inline]] inline void lightBlock(const Line& line, const float* __restrict r,
                                              const float* __restrict g, const float* __restrict b,
                                              float* __restrict cr, float* __restrict cg,
                                              float* __restrict cb) {
    const float r0 = line.start[0], rs = line.step[0];
    const float g0 = line.start[1], gs = line.step[1];
    const float b0 = line.start[2], bs = line.step[2];
    for (int k = 0; k < Block; ++k) {
        cr[k] = r[k] * (r0 + rs * steps.v[k]);
        cg[k] = g[k] * (g0 + gs * steps.v[k]);
        cb[k] = b[k] * (b0 + bs * steps.v[k]);
    }
}

// The softness coordinates of the colours in the key colour's light.
[[gnu::always_inline]] inline void coordsBlock(const TsMatteStage::Base& base, const Line& line,
                                               const float* __restrict r, const float* __restrict g,
                                               const float* __restrict b, float* __restrict d1,
                                               float* __restrict d2, float* __restrict d3) {
    const float r0 = line.start[0], rs = line.step[0];
    const float g0 = line.start[1], gs = line.step[1];
    const float b0 = line.start[2], bs = line.step[2];
    for (int k = 0; k < Block; ++k) {
        base.coords(r[k] * (r0 + rs * steps.v[k]), g[k] * (g0 + gs * steps.v[k]),
                    b[k] * (b0 + bs * steps.v[k]), d1[k], d2[k], d3[k]);
    }
}

// The sum, least and greatest d1 of each pixel with its left and right
// neighbours (d1[-1] and d1[Block] are read).
[[gnu::always_inline]] inline void rowNeighbours(const float* __restrict d1, float* __restrict sum,
                                                 float* __restrict lo, float* __restrict hi) {
    for (int k = 0; k < Block; ++k) {
        const float l = d1[k - 1], c = d1[k], r = d1[k + 1];
        sum[k] = l + c + r;
        lo[k] = minOf(minOf(l, c), r);
        hi[k] = maxOf(maxOf(l, c), r);
    }
}

// d1 with the screen's grain taken out (see TsKeyerPass), less the clean
// screen's widening of the core, from the rows below, here and above.
[[gnu::always_inline]] inline void
degrainBlock(const float* __restrict d1, const float* __restrict s0, const float* __restrict s1,
             const float* __restrict s2, const float* __restrict l0, const float* __restrict l1,
             const float* __restrict l2, const float* __restrict h0, const float* __restrict h1,
             const float* __restrict h2, float reach, float widen, float* __restrict out) {
    for (int k = 0; k < Block; ++k) {
        const float own = d1[k];
        const float total = s0[k] + s1[k] + s2[k];
        const float high = maxOf(h0[k], h2[k]), low = minOf(l0[k], l2[k]);
        const float left = d1[k - 1], right = d1[k + 1];
        const float spread = maxOf(high, h1[k]) - minOf(low, l1[k]);
        const float aroundSpread = maxOf(high, maxOf(left, right)) - minOf(low, minOf(left, right));
        const float value = spread <= reach         ? total * (1.0f / 9.0f)
                            : aroundSpread <= reach ? (total - own) * 0.125f
                                                    : own;
        out[k] = value - widen;
    }
}

[[gnu::always_inline]] inline void
alphaBlock(const TsMatteStage::Base& base, const float* __restrict d1, const float* __restrict d2,
           const float* __restrict d3, float* __restrict alpha, float zero, float one) {
    for (int k = 0; k < Block; ++k) {
        alpha[k] = base.alphaAt(d1[k], d2[k], d3[k], zero, one);
    }
}

// The foreground: the screen's share taken out (the screen S = K / gain along
// the block's line), then, with Despill, the spill.
template <bool Despill>
[[gnu::always_inline]] inline void
foregroundBlock(const TsDespillStage::Core& core, const CoRgbColorTyped<float>& key,
                const Line& line, const float* __restrict r, const float* __restrict g,
                const float* __restrict b, const float* __restrict alpha,
                const float* __restrict d1, const float* __restrict d2, const float* __restrict d3,
                float* __restrict fr, float* __restrict fg, float* __restrict fb, float zero,
                float one) {
    const float r0 = line.start[0], rs = line.step[0];
    const float g0 = line.start[1], gs = line.step[1];
    const float b0 = line.start[2], bs = line.step[2];
    for (int k = 0; k < Block; ++k) {
        const float a = alpha[k];
        const float rest = one - a;
        // 1 / a and the screen K / gain of each channel from one division
        // (a division costs as much as a dozen multiplications).
        const float gr = r0 + rs * steps.v[k], gg = g0 + gs * steps.v[k], gb = b0 + bs * steps.v[k];
        const float grg = gr * gg;
        const float shared = a > TsKeyerPass::MinUnmixAlpha ? one / (a * grg * gb) : zero;
        const float inverse = grg * gb * shared;
        const float screenShare = rest * a * shared;
        float x = maxOf((r[k] - key.r * (gg * gb) * screenShare) * inverse, zero);
        float y = maxOf((g[k] - key.g * (gr * gb) * screenShare) * inverse, zero);
        float z = maxOf((b[k] - key.b * grg * screenShare) * inverse, zero);
        if constexpr (Despill) {
            core.apply(x, y, z, d1[k], d2[k], d3[k], zero, one);
        }
        fr[k] = x;
        fg[k] = y;
        fb[k] = z;
    }
}

// The pass keys a range of rows one column of tiles at a time: a tile is
// TileBlocks blocks wide, so that the three prepared rows around the one
// being keyed stay in the first-level cache (a whole UHD row of them would
// not, and the pass would wait on the second level for every pixel).
constexpr int TileBlocks = 4;
constexpr int TileWidth = TileBlocks * Block;
// How many rows ahead of the one being keyed the plate is fetched.
constexpr int FetchAhead = 3;

// One row of a tile prepared for the rows around it: per block the screen
// estimate's line, how far the grain reaches there (FlatSpread times it) and
// how much the clean screen widens the core; per pixel the softness
// coordinates of the colour in the key colour's light (d1 with a block of
// margin either side, holding the pixels next to the tile, or the end pixel
// repeated at the plate's edge) and the sum, least and greatest d1 of each
// pixel with its left and right neighbours. Planes are TileWidth long.
struct PreparedRow {
    int row = -1;
    const Line* lines;
    float reach[TileBlocks];
    float widen[TileBlocks];
    alignas(64) float d1m[TileWidth + 2 * Block];
    alignas(64) float d2[TileWidth];
    alignas(64) float d3[TileWidth];
    alignas(64) float sum[TileWidth];
    alignas(64) float lo[TileWidth];
    alignas(64) float hi[TileWidth];
    float* d1() { return d1m + Block; }
    const float* d1() const { return d1m + Block; }
};

// The lines of rows y0 .. y1 - 1 for every block of the plate, computed once
// for all the tiles of a range of rows.
struct RowLines {
    std::vector<Line> lines;
    int y0 = 0;
    int blocks = 0;
    void compute(const TsScreenEstimate& screen, int width, int first, int last) {
        blocks = (width + Block - 1) / Block;
        y0 = first;
        lines.resize(static_cast<std::size_t>(blocks) * static_cast<std::size_t>(last - first));
        for (int y = first; y < last; ++y) {
            screen.rowLines(y, &lines[static_cast<std::size_t>(y - first) * blocks]);
        }
    }
    const Line* row(int y) const { return &lines[static_cast<std::size_t>(y - y0) * blocks]; }
};

// d1 of pixel x of plate row src, with the line of its block.
[[gnu::always_inline]] inline float d1At(const TsMatteStage::Base& base, const float* src,
                                         const Line* lines, int x) {
    const Line& line = lines[x / Block];
    const float k = steps.v[x % Block];
    float d1, d2, d3;
    base.coords(src[4 * x] * (line.start[0] + line.step[0] * k),
                src[4 * x + 1] * (line.start[1] + line.step[1] * k),
                src[4 * x + 2] * (line.start[2] + line.step[2] * k), d1, d2, d3);
    return d1;
}

// Prepares one row of a tile block by block (see PreparedRow), so that the
// pass can prepare the row above the one it keys block by block as it goes:
// the plate is then read while the view is written, rather than in turns.
class RowPreparer {
public:
    RowPreparer(const RowJob& job, const TsMatteStage::Base& base, const RowLines& rowLines, int t0)
        : _job(job)
        , _base(base)
        , _rowLines(rowLines)
        , _t0(t0)
        , _end(std::min(job.plate.getWidth(), t0 + TileWidth))
        , _blocks((_end - t0 + Block - 1) / Block) {}

    int getBlocks() const { return _blocks; }

    void begin(int y, PreparedRow& row) {
        _row = &row;
        row.row = y;
        row.lines = _rowLines.row(y) + _t0 / Block;
        _src = _job.plate.row(y);
    }

    // The softness coordinates of one block, and its grain's reach and the
    // widening of the core.
    [[gnu::always_inline]] void coords(int block) {
        PreparedRow& row = *_row;
        const int i = block * Block;
        const int x0 = _t0 + i;
        Planes p;
        load(_src + 4 * x0, p, std::min(Block, _job.plate.getWidth() - x0));
        const Line& line = row.lines[block];
        coordsBlock(_base, line, p.r, p.g, p.b, row.d1() + i, row.d2 + i, row.d3 + i);
        // The grain and the share at the block's middle.
        using V = TsScreenEstimate::Value;
        const float zero = tsPixelZero, one = tsPixelOne;
        const float middle = 0.5f * static_cast<float>(Block);
        const float grain = line.start[V::Grain] + line.step[V::Grain] * middle;
        const float share = line.start[V::Share] + line.step[V::Share] * middle;
        const float clean = clampUnit(
            (share - TsKeyerPass::CleanShare) / (1.0f - TsKeyerPass::CleanShare), zero, one);
        row.reach[block] = TsKeyerPass::FlatSpread * grain;
        row.widen[block] = clean * grain;
    }

    // The neighbours of one block's pixels: the coordinates of this block
    // and of the next one's first pixel must be there.
    [[gnu::always_inline]] void neighbours(int block) {
        PreparedRow& row = *_row;
        float* d1 = row.d1();
        const int width = _job.plate.getWidth();
        const Line* lines = _rowLines.row(row.row);
        if (block == 0) {
            d1[-1] = _t0 > 0 ? d1At(_base, _src, lines, _t0 - 1) : d1[0];
        }
        if (block == _blocks - 1) {
            const int n = _end - _t0;
            d1[n] = _end < width ? d1At(_base, _src, lines, _end) : d1[n - 1];
        }
        const int i = block * Block;
        rowNeighbours(d1 + i, row.sum + i, row.lo + i, row.hi + i);
    }

    // Row y of the ring of three (clamped to the plate), prepared whole
    // unless it is there already.
    [[gnu::always_inline]] PreparedRow& inRing(PreparedRow* ring, int y) {
        y = std::clamp(y, 0, _job.plate.getHeight() - 1);
        PreparedRow& row = ring[y % 3];
        if (row.row != y) {
            whole(y, row);
        }
        return row;
    }

    [[gnu::always_inline]] void whole(int y, PreparedRow& row) {
        begin(y, row);
        for (int block = 0; block < _blocks; ++block) {
            coords(block);
        }
        for (int block = 0; block < _blocks; ++block) {
            neighbours(block);
        }
    }

private:
    const RowJob& _job;
    const TsMatteStage::Base& _base;
    const RowLines& _rowLines;
    int _t0;
    int _end;
    int _blocks;
    PreparedRow* _row = nullptr;
    const float* _src = nullptr;
};

// Rows j0 .. j1 - 1 of one view, tile by tile, in blocks of pixels split
// into planes. Each thread keeps the rows around the one it keys in a ring of
// three.
TS_PIXEL_KERNEL
void keyRows(const RowJob& job, int j0, int j1) {
    Planes plate;
    Planes fg;
    Planes bg;
    Planes light;
    alignas(64) float flat[Block];
    alignas(64) float status[Block];
    const int width = job.plate.getWidth();
    const int height = job.plate.getHeight();
    const bool despilling = !job.despill.isIdentity();
    const bool colour = job.mode == TsViewMode::Foreground || job.mode == TsViewMode::Composite;
    const bool boxRules = job.matte.hasBoxRules();
    // The colours as they are: for the foreground and the degrain box and
    // patches.
    const bool rawColours = colour || boxRules;
    const TsMatteStage::Base& base = job.matte.getBase();
    const TsDespillStage::Core& core = job.despill.getCore();
    const CoRgbColorTyped<float>& key = job.matte.getKeyColour();
    const float zero = tsPixelZero, one = tsPixelOne;
    // The thread's ring and lines are kept from one render to the next.
    thread_local std::vector<PreparedRow> kept(3);
    PreparedRow* ring = kept.data();
    thread_local RowLines rowLines;
    const int first = std::max(j0 - 1, 0), last = std::min(j1 + 1, height);
    rowLines.compute(job.screen, width, first, last);
    for (int t0 = 0; t0 < width; t0 += TileWidth) {
        const int t1 = std::min(width, t0 + TileWidth);
        for (PreparedRow& r : kept) {
            r.row = -1;
        }
        RowPreparer preparer(job, base, rowLines, t0);
        for (int j = j0; j != j1; ++j) {
            const PreparedRow& below = preparer.inRing(ring, j - 1);
            const PreparedRow& here = preparer.inRing(ring, j);
            // The row above is prepared block by block as this one is keyed.
            const int up = std::min(j + 1, height - 1);
            PreparedRow& above = ring[up % 3];
            const bool preparing = above.row != up;
            if (preparing) {
                preparer.begin(up, above);
                preparer.coords(0);
            }
            const float* src = job.plate.row(j);
            float* dst = job.out.row(j);
            // The tile of a row to be prepared soon is fetched while this
            // one is keyed.
            const float* next = job.plate.row(std::min(j + FetchAhead, height - 1));
            for (int x0 = t0, block = 0; x0 < t1; x0 += Block, ++block) {
                const int n = std::min(Block, width - x0);
                for (int line = 0; line < 4 * n; line += 16) {
                    __builtin_prefetch(next + 4 * x0 + line, 0, 2);
                }
                if (preparing) {
                    if (block + 1 < preparer.getBlocks()) {
                        preparer.coords(block + 1);
                    }
                    preparer.neighbours(block);
                }
                const int i = x0 - t0;
                const Line& line = here.lines[block];
                if (rawColours) {
                    load(src + 4 * x0, plate, n);
                }
                degrainBlock(here.d1() + i, below.sum + i, here.sum + i, above.sum + i,
                             below.lo + i, here.lo + i, above.lo + i, below.hi + i, here.hi + i,
                             above.hi + i, here.reach[block], here.widen[block], flat);
                alphaBlock(base, flat, here.d2 + i, here.d3 + i, fg.a, zero, one);
                if (boxRules) {
                    lightBlock(line, plate.r, plate.g, plate.b, light.r, light.g, light.b);
                    job.matte.applyBoxRules(light.r, light.g, light.b, plate.r, plate.g, plate.b,
                                            fg.a, Block);
                }
                if (colour && despilling) {
                    foregroundBlock<true>(core, key, line, plate.r, plate.g, plate.b, fg.a,
                                          here.d1() + i, here.d2 + i, here.d3 + i, fg.r, fg.g, fg.b,
                                          zero, one);
                } else if (colour) {
                    foregroundBlock<false>(core, key, line, plate.r, plate.g, plate.b, fg.a,
                                           here.d1() + i, here.d2 + i, here.d3 + i, fg.r, fg.g,
                                           fg.b, zero, one);
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
    run(*_plate, _background.get(), _settings, *estimate(_plate, 0), mode, out, 1);
}

std::shared_ptr<const TsScreenEstimate> TsKeyerPass::estimate(const PiImagePtr& plate,
                                                              int slot) const {
    std::lock_guard<std::mutex> lock(_estimateMutex);
    KeptEstimate& kept = _estimates[slot];
    if (!kept.estimate || kept.plate.get() != plate.get() ||
        !TsScreenEstimate::sameInputs(kept.settings, _settings)) {
        kept.estimate = std::make_shared<const TsScreenEstimate>(*plate, _settings);
        kept.plate = plate;
        kept.settings = _settings;
    }
    return kept.estimate;
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
        run(*_plate, _background.get(), _settings, *estimate(_plate, 0), mode, out, 1);
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
    run(*plate, background.get(), _settings, *estimate(plate, 1), mode, out, factor);
}

void TsKeyerPass::run(const PiImage& plate, const PiImage* background,
                      const TsKeyerSettings& settings, TsViewMode mode, PiImage& out,
                      int checkerScale) {
    const TsScreenEstimate screen =
        mode == TsViewMode::Source ? TsScreenEstimate() : TsScreenEstimate(plate, settings);
    run(plate, background, settings, screen, mode, out, checkerScale);
}

void TsKeyerPass::run(const PiImage& plate, const PiImage* background,
                      const TsKeyerSettings& settings, const TsScreenEstimate& screen,
                      TsViewMode mode, PiImage& out, int checkerScale) {
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
                     screen,
                     TsDespillStage(settings),
                     TsBlendStage(settings),
                     mode,
                     checkerScale};
    // Each range of rows prepares the row either side of it again: ranges of
    // RowsPerTask / 2 to RowsPerTask rows keep that to a few per cent.
    tbb::parallel_for(
        tbb::blocked_range<int>(0, height, RowsPerTask),
        [&](const tbb::blocked_range<int>& rows) { keyRows(job, rows.begin(), rows.end()); });
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
