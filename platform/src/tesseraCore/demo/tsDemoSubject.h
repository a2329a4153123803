#pragma once

#include <tesseraCore/demo/tsDemoPlate.h>

#include <base/coRgbColorTyped.h>

#include <cstdint>
#include <memory>

// Deterministic randomness for the demo plate: splitmix64 over a counter, so
// that every value depends only on the seed and what it is for (a pixel's
// grain on the seed and the pixel's coordinates).
namespace TsDemoRandom {

inline std::uint64_t splitmix(std::uint64_t x) {
    x += 0x9e3779b97f4a7c15ULL;
    x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9ULL;
    x = (x ^ (x >> 27)) * 0x94d049bb133111ebULL;
    return x ^ (x >> 31);
}

// Uniform in [0, 1).
inline double uniform(std::uint64_t bits) {
    return static_cast<double>(bits >> 11) * (1.0 / 9007199254740992.0);
}

} // namespace TsDemoRandom

// The subject of a demo plate (TsDemoPlate::Subject), drawn pixel by pixel:
// what the subject puts on pixel (i, j), whose centre is (i + 0.5, j + 0.5)
// in plate pixels with y up. The plate generator puts it over the screen.
class TsDemoSubject {
public:
    struct Pixel {
        double alpha = 0.0;            // coverage
        CoRgbColorTyped<float> colour; // straight colour (black where alpha is 0)
        double spill = 0.0;            // the share of the screen's chroma added to it
        bool fine = false;             // fine detail (hair, fur, filaments, bars) covers it
    };

    virtual ~TsDemoSubject() = default;
    virtual Pixel at(int i, int j) const = 0;

    // The subject of the options; `seed` is the plate's mixed seed. Built
    // once per plate (fine detail is rasterised here), then read from any
    // thread.
    static std::unique_ptr<TsDemoSubject> make(const TsDemoPlate::Options& options,
                                               std::uint64_t seed);
};
