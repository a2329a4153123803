#include <tesseraCore/demo/tsDemoPlate.h>

#include "tsDemoSubject.h"

#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_for.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace {

using Rgb = CoRgbColorTyped<float>;

using TsDemoRandom::splitmix;
using TsDemoRandom::uniform;

// A normal deviate for (seed, pixel, channel), by Box-Muller.
float gaussian(std::uint64_t seed, std::uint64_t index) {
    const std::uint64_t h = splitmix(seed ^ splitmix(index));
    const double u1 = std::max(uniform(h), 1e-12);
    const double u2 = uniform(splitmix(h));
    return static_cast<float>(std::sqrt(-2.0 * std::log(u1)) *
                              std::cos(2.0 * std::numbers::pi * u2));
}

double clamp01(double v) {
    return std::clamp(v, 0.0, 1.0);
}

Rgb mix(const Rgb& a, const Rgb& b, float t) {
    return a * (1.0f - t) + b * t;
}

const Rgb ScreenGreen{0.08f, 0.42f, 0.11f};

// The mask grown by `radius` pixels (a square neighbourhood).
std::vector<unsigned char> dilate(const std::vector<unsigned char>& mask, int width, int height,
                                  int radius) {
    std::vector<unsigned char> out(mask.size(), 0);
    for (int j = 0; j < height; ++j) {
        for (int i = 0; i < width; ++i) {
            if (!mask[static_cast<std::size_t>(j) * width + i]) {
                continue;
            }
            for (int y = std::max(0, j - radius); y <= std::min(height - 1, j + radius); ++y) {
                std::fill_n(out.begin() + static_cast<std::ptrdiff_t>(y) * width +
                                std::max(0, i - radius),
                            std::min(width - 1, i + radius) - std::max(0, i - radius) + 1, 1);
            }
        }
    }
    return out;
}

} // namespace

TsDemoPlate::TsDemoPlate()
    : TsDemoPlate(Options{}) {}

TsDemoPlate::TsDemoPlate(const Options& options)
    : _options(options) {
    _options.width = std::max(_options.width, 64);
    _options.height = std::max(_options.height, 64);
    generate();
}

const std::vector<std::string>& TsDemoPlate::getSubjectNames() {
    static const std::vector<std::string> names{"portrait", "darkhair", "lighthair",
                                                "fur",      "lattice",  "stem"};
    return names;
}

bool TsDemoPlate::parseSubject(const std::string& name, Subject& subject) {
    const auto& names = getSubjectNames();
    const auto it = std::find(names.begin(), names.end(), name);
    if (it == names.end()) {
        return false;
    }
    subject = static_cast<Subject>(it - names.begin());
    return true;
}

void TsDemoPlate::generate() {
    const int width = _options.width;
    const int height = _options.height;
    const double h = height;
    const std::uint64_t seed = splitmix(_options.seed);
    const std::unique_ptr<TsDemoSubject> subject = TsDemoSubject::make(_options, seed);

    auto plate = rcMake<PiImage>(width, height);
    auto background = rcMake<PiImage>(width, height);
    auto truthAlpha = rcMake<PiImage>(width, height);
    auto truthForeground = rcMake<PiImage>(width, height);
    _hair.assign(static_cast<std::size_t>(width) * height, 0);
    const Rgb screenChroma =
        ScreenGreen - Rgb{1, 1, 1} * ((ScreenGreen.r + ScreenGreen.g + ScreenGreen.b) / 3.0f);
    const double pi = std::numbers::pi;
    const double uneven = _options.uneven;
    const double spillScale = _options.spill;
    const float grainScale = static_cast<float>(_options.grain);

    // A frame of a shot: the subject's sideways sway, the light's drift and
    // the grain's own seed.
    const double frame = _options.frame;
    const int sway = static_cast<int>(std::lround(0.06 * h * std::sin(2 * pi * frame / 40.0)));
    const double drift = 1.0 - 0.04 * (1.0 - std::cos(2 * pi * frame / 60.0));
    const double phase = 0.15 * frame;
    const std::uint64_t grainSeed =
        _options.frame == 0 ? seed : splitmix(seed ^ splitmix(0x5107 + _options.frame));

    // The screen's light: a broad, gentle unevenness (within about 6 %),
    // scaled by the options.
    auto lighting = [&](double x, double y) {
        const double u = x / width, v = y / h;
        return drift * (1.0 +
                        uneven * 0.035 * std::cos(2 * pi * 0.8 * u + 0.3 + phase) *
                            std::sin(2 * pi * 0.6 * v + 1.1) -
                        uneven * 0.03 * (u - 0.5) * (u - 0.5) * 4.0 + uneven * 0.015 * (v - 0.5));
    };

    tbb::parallel_for(tbb::blocked_range<int>(0, height), [&](const tbb::blocked_range<int>& rows) {
        for (int j = rows.begin(); j != rows.end(); ++j) {
            const double y = j + 0.5;
            for (int i = 0; i < width; ++i) {
                const double x = i + 0.5;
                const std::size_t p = static_cast<std::size_t>(j) * width + i;
                const TsDemoSubject::Pixel s = subject->at(std::clamp(i - sway, 0, width - 1), j);
                const float a = static_cast<float>(s.alpha);
                const Rgb& foreground = s.colour;
                const Rgb spilled =
                    foreground + screenChroma * static_cast<float>(s.spill * spillScale);

                const Rgb screen = ScreenGreen * static_cast<float>(lighting(x, y));
                const Rgb colour = spilled * a + screen * (1.0f - a);

                float* out = plate->row(j) + 4 * i;
                for (int c = 0; c < 3; ++c) {
                    const float sigma = (0.004f + 0.012f * std::max(0.0f, colour[c])) * grainScale;
                    out[c] = colour[c] + sigma * gaussian(grainSeed, 3 * p + c);
                }
                out[3] = 1.0f;

                float* t = truthAlpha->row(j) + 4 * i;
                t[0] = t[1] = t[2] = a;
                t[3] = 1.0f;
                float* f = truthForeground->row(j) + 4 * i;
                f[0] = foreground.r;
                f[1] = foreground.g;
                f[2] = foreground.b;
                f[3] = a;
                _hair[p] = s.fine && a < 1.0f;

                // The background scene: ground, a warm horizon, a blue sky
                // and a bright sun.
                const double v = y / h;
                Rgb scene;
                if (v < 0.3) {
                    const double grain = 0.9 + 0.1 * std::sin(x * 0.37) * std::sin(y * 0.23);
                    scene = Rgb{0.16f, 0.13f, 0.1f} * static_cast<float>(grain);
                } else {
                    scene = mix(Rgb{0.95f, 0.7f, 0.45f}, Rgb{0.25f, 0.42f, 0.8f},
                                static_cast<float>(clamp01((v - 0.3) / 0.6)));
                }
                const double sun = std::hypot(x - 0.82 * width, y - 0.78 * h) / (0.05 * h);
                if (sun < 1.5) {
                    scene =
                        mix(scene, Rgb{3.0f, 2.6f, 2.0f}, static_cast<float>(clamp01(1.5 - sun)));
                }
                float* b = background->row(j) + 4 * i;
                b[0] = scene.r;
                b[1] = scene.g;
                b[2] = scene.b;
                b[3] = 1.0f;
            }
        }
    });

    // The hair region: the band around partly covered fine detail, as wide as
    // the edge band.
    _hair = dilate(_hair, width, height, TsMatteScore::EdgeBandRadius);
    _screen = ScreenGreen * static_cast<float>(lighting(16.0, h - 16.0));
    _plate = plate;
    _background = background;
    _truthAlpha = truthAlpha;
    _truthForeground = truthForeground;
}

CoRgbColorTyped<float> TsDemoPlate::pickScreenColour() const {
    return medianColour(*_plate, 0, _options.height - 32, 32, 32);
}

TsKeyerSettings TsDemoPlate::makeDefaultSettings() const {
    TsKeyerSettings settings;
    const CoRgbColorTyped<float> key = pickScreenColour();
    settings.keyColors = {key, key};
    return settings;
}

TsMatteScore TsDemoPlate::score(const PiImage& matte) const {
    return score(*_truthAlpha, matte, &_hair);
}

TsMatteScore TsDemoPlate::score(const PiImage& truth, const PiImage& matte,
                                const std::vector<unsigned char>* hair) {
    TsMatteScore result;
    const int width = truth.getWidth();
    const int height = truth.getHeight();
    if (matte.getWidth() != width || matte.getHeight() != height || truth.isEmpty()) {
        return result;
    }
    // The edge band: partial pixels, dilated.
    std::vector<unsigned char> partial(static_cast<std::size_t>(width) * height, 0);
    for (int j = 0; j < height; ++j) {
        for (int i = 0; i < width; ++i) {
            const float a = truth.row(j)[4 * i];
            partial[static_cast<std::size_t>(j) * width + i] = a > 0.0f && a < 1.0f;
        }
    }
    const std::vector<unsigned char> band =
        dilate(partial, width, height, TsMatteScore::EdgeBandRadius);
    const bool withHair = hair && hair->size() == band.size();
    double inside = 0.0, outside = 0.0, edge = 0.0, hairSum = 0.0;
    for (int j = 0; j < height; ++j) {
        const float* t = truth.row(j);
        const float* m = matte.row(j);
        for (int i = 0; i < width; ++i) {
            const double error = std::fabs(static_cast<double>(m[4 * i]) - t[4 * i]);
            if (withHair && (*hair)[static_cast<std::size_t>(j) * width + i]) {
                hairSum += error;
                ++result.hairCount;
            }
            if (band[static_cast<std::size_t>(j) * width + i]) {
                edge += error;
                ++result.edgeCount;
            } else if (t[4 * i] >= 1.0f) {
                inside += error;
                ++result.insideCount;
            } else {
                outside += error;
                ++result.outsideCount;
            }
        }
    }
    auto mean = [](double sum, std::size_t count) {
        return count > 0 ? sum / static_cast<double>(count) : 0.0;
    };
    result.inside = mean(inside, result.insideCount);
    result.outside = mean(outside, result.outsideCount);
    result.edge = mean(edge, result.edgeCount);
    result.hair = mean(hairSum, result.hairCount);
    result.all =
        mean(inside + outside + edge, result.insideCount + result.outsideCount + result.edgeCount);
    return result;
}

CoRgbColorTyped<float> TsDemoPlate::medianColour(const PiImage& image, int x, int y, int w, int h) {
    const int x0 = std::max(0, x), y0 = std::max(0, y);
    const int x1 = std::min(image.getWidth(), x + w), y1 = std::min(image.getHeight(), y + h);
    if (x0 >= x1 || y0 >= y1) {
        return {};
    }
    CoRgbColorTyped<float> out;
    std::vector<float> values;
    values.reserve(static_cast<std::size_t>(x1 - x0) * (y1 - y0));
    for (int c = 0; c < 3; ++c) {
        values.clear();
        for (int j = y0; j < y1; ++j) {
            for (int i = x0; i < x1; ++i) {
                values.push_back(image.row(j)[4 * i + c]);
            }
        }
        auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
        std::nth_element(values.begin(), middle, values.end());
        out[c] = *middle;
    }
    return out;
}
