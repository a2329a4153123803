#include <tesseraUtil/tsUtils.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <vector>

namespace {

// The bits of a component with -0 folded onto 0, so that equal values hash
// alike.
inline std::uint32_t componentBits(float v) {
    return v == 0.0f ? 0u : std::bit_cast<std::uint32_t>(v);
}

struct ColourKey {
    std::uint32_t bits[4];

    explicit ColourKey(const CoRgbaColorTyped<float>& c)
        : bits{componentBits(c.r), componentBits(c.g), componentBits(c.b), componentBits(c.a)} {}
    bool operator==(const ColourKey& o) const {
        return bits[0] == o.bits[0] && bits[1] == o.bits[1] && bits[2] == o.bits[2] &&
               bits[3] == o.bits[3];
    }
};

inline std::uint64_t mix64(std::uint64_t x) {
    x ^= x >> 33;
    x *= 0xff51afd7ed558ccdULL;
    x ^= x >> 33;
    x *= 0xc4ceb9fe1a85ec53ULL;
    x ^= x >> 33;
    return x;
}

inline std::uint64_t hashKey(const ColourKey& k) {
    const std::uint64_t lo = k.bits[0] | (static_cast<std::uint64_t>(k.bits[1]) << 32);
    const std::uint64_t hi = k.bits[2] | (static_cast<std::uint64_t>(k.bits[3]) << 32);
    return mix64(lo ^ (hi * 0x9e3779b97f4a7c15ULL));
}

bool isFinite(const CoRgbaColorTyped<float>& c) {
    return std::isfinite(c.r) && std::isfinite(c.g) && std::isfinite(c.b);
}

// Marks in `first` the first appearance of every distinct colour and answers
// how many there are. Open addressing with linear probing, at most half full.
// A slot holds the index + 1 of a first appearance in its low IndexBits bits
// (0: empty) and the top bits of the colour's hash above them, a tag, so that
// a probe that meets another colour rarely has to read it. Slot is 32 bits
// wide for picks of up to 2^25 colours (a table of 8 bytes a colour at most)
// and 64 bits beyond.
template <class Slot, int IndexBits>
std::size_t markFirstAppearances(const List<CoRgbaColorTyped<float>>& colours,
                                 std::vector<std::uint8_t>& first) {
    constexpr int TagBits = 8 * static_cast<int>(sizeof(Slot)) - IndexBits;
    constexpr Slot IndexMask = (Slot(1) << IndexBits) - 1;
    const std::size_t n = colours.size();
    std::size_t capacity = 16;
    while (capacity < 2 * n) {
        capacity *= 2;
    }
    const std::size_t mask = capacity - 1;
    std::vector<Slot> table(capacity, 0);
    std::size_t count = 0;

    // Hashes are computed Ahead colours in advance and their slots
    // prefetched, so that the table's cache misses overlap.
    constexpr std::size_t Ahead = 16;
    std::uint64_t pending[Ahead];
    for (std::size_t i = 0; i < std::min(n, Ahead); ++i) {
        pending[i] = hashKey(ColourKey(colours[i]));
        __builtin_prefetch(&table[pending[i] & mask]);
    }
    for (std::size_t i = 0; i < n; ++i) {
        const std::uint64_t h = pending[i % Ahead];
        if (i + Ahead < n) {
            const std::uint64_t next = hashKey(ColourKey(colours[i + Ahead]));
            pending[i % Ahead] = next;
            __builtin_prefetch(&table[next & mask]);
        }
        const ColourKey key(colours[i]);
        const Slot tag = static_cast<Slot>(h >> (64 - TagBits));
        std::size_t slot = h & mask;
        for (;;) {
            const Slot entry = table[slot];
            if (entry == 0) {
                table[slot] = static_cast<Slot>((tag << IndexBits) | static_cast<Slot>(i + 1));
                first[i] = 1;
                ++count;
                break;
            }
            if ((entry >> IndexBits) == tag &&
                ColourKey(colours[static_cast<std::size_t>(entry & IndexMask) - 1]) == key) {
                break;
            }
            slot = (slot + 1) & mask;
        }
    }
    return count;
}

} // namespace

Vector<CoRgbaColorTyped<float>> TsUtils::makeUnique(const List<CoRgbaColorTyped<float>>& colours) {
    Vector<CoRgbaColorTyped<float>> out;
    const std::size_t n = colours.size();
    if (n == 0) {
        return out;
    }
    if (n >= 0xffffffffu) {
        throw std::length_error("TsUtils::makeUnique: more than 2^32 - 2 colours");
    }
    // The first pass marks first appearances, the second copies them, so the
    // answer is allocated once.
    std::vector<std::uint8_t> first(n, 0);
    const std::size_t count = n < (std::size_t(1) << 25) - 1
                                  ? markFirstAppearances<std::uint32_t, 25>(colours, first)
                                  : markFirstAppearances<std::uint64_t, 32>(colours, first);
    out.reserve(count);
    for (std::size_t i = 0; i < n; ++i) {
        if (first[i]) {
            out.push_back(colours[i]);
        }
    }
    return out;
}

CoAffineMatrixTyped<float>
TsUtils::computeMinimalBoxMatrix(const Vector<CoRgbaColorTyped<float>>& colours) {
    float lo[3] = {std::numeric_limits<float>::infinity(), std::numeric_limits<float>::infinity(),
                   std::numeric_limits<float>::infinity()};
    float hi[3] = {-lo[0], -lo[1], -lo[2]};
    bool any = false;
    for (const auto& c : colours) {
        if (!isFinite(c)) {
            continue;
        }
        any = true;
        lo[0] = std::min(lo[0], c.r);
        lo[1] = std::min(lo[1], c.g);
        lo[2] = std::min(lo[2], c.b);
        hi[0] = std::max(hi[0], c.r);
        hi[1] = std::max(hi[1], c.g);
        hi[2] = std::max(hi[2], c.b);
    }
    if (!any) {
        return CoAffineMatrixTyped<float>::IDENTITY;
    }
    CoAffineMatrixTyped<float> box;
    for (int axis = 0; axis < 3; ++axis) {
        const double l = lo[axis];
        const double h = hi[axis];
        const double centre = 0.5 * (l + h);
        const double half = std::max(0.5 * (h - l), static_cast<double>(MinHalfExtent)) +
                            std::ldexp(std::max(std::fabs(l), std::fabs(h)), -20);
        box.set(axis, axis, static_cast<float>(1.0 / half));
        box.set(axis, 3, static_cast<float>(-centre / half));
    }
    return avoidIdentity(box);
}

CoAffineMatrixTyped<float>
TsUtils::arrangeMatrixForPatchEdge(const CoRgbColorTyped<float>& keyColour,
                                   const CoAffineMatrixTyped<float>& box) {
    if (box == CoAffineMatrixTyped<float>::IDENTITY) {
        return box;
    }
    if (!std::isfinite(keyColour.r) || !std::isfinite(keyColour.g) || !std::isfinite(keyColour.b)) {
        return box;
    }
    CoAffineMatrixTyped<float> out;
    for (int r = 0; r < 3; ++r) {
        double p = box.get(r, 3);
        for (int c = 0; c < 3; ++c) {
            p += static_cast<double>(box.get(r, c)) * keyColour[c];
        }
        if (!std::isfinite(p)) {
            return box;
        }
        const double scale = 1.0 / ((1.0 + std::fabs(p)) * (1.0 + std::ldexp(1.0, -16)));
        for (int c = 0; c < 3; ++c) {
            out.set(r, c, static_cast<float>(box.get(r, c) * scale));
        }
        out.set(r, 3, static_cast<float>((box.get(r, 3) - p) * scale));
    }
    return avoidIdentity(out);
}

CoAffineMatrixTyped<float> TsUtils::avoidIdentity(const CoAffineMatrixTyped<float>& box) {
    if (box != CoAffineMatrixTyped<float>::IDENTITY) {
        return box;
    }
    CoAffineMatrixTyped<float> out = box;
    out[0] = std::nextafter(1.0f, 0.0f);
    return out;
}

float TsUtils::boxDistance(const CoAffineMatrixTyped<float>& box, float r, float g, float b) {
    const CoRgbColorTyped<float> q = box.transform(r, g, b);
    return std::max(std::fabs(q.r), std::max(std::fabs(q.g), std::fabs(q.b)));
}
