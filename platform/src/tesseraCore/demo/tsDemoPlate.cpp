#include <tesseraCore/demo/tsDemoPlate.h>

#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_for.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace {

using Rgb = CoRgbColorTyped<float>;

// Deterministic randomness: splitmix64 over a counter, so that every pixel's
// grain depends only on the seed and its coordinates.
std::uint64_t splitmix(std::uint64_t x) {
    x += 0x9e3779b97f4a7c15ULL;
    x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9ULL;
    x = (x ^ (x >> 27)) * 0x94d049bb133111ebULL;
    return x ^ (x >> 31);
}

double uniform(std::uint64_t bits) {
    return static_cast<double>(bits >> 11) * (1.0 / 9007199254740992.0);
}

// A normal deviate for (seed, pixel, channel), by Box-Muller.
float gaussian(std::uint64_t seed, std::uint64_t index) {
    const std::uint64_t h = splitmix(seed ^ splitmix(index));
    const double u1 = std::max(uniform(h), 1e-12);
    const double u2 = uniform(splitmix(h));
    return static_cast<float>(std::sqrt(-2.0 * std::log(u1)) *
                              std::cos(2.0 * std::numbers::pi * u2));
}

class Random {
public:
    explicit Random(std::uint64_t seed)
        : _state(seed) {}
    double next() { return uniform(splitmix(_state++)); }
    double between(double lo, double hi) { return lo + (hi - lo) * next(); }

private:
    std::uint64_t _state;
};

// The signed distance (pixels, negative inside) to an ellipse, to first
// order: (k - 1) / |grad k| with k the ellipse's normalised radius.
struct Ellipse {
    double cx, cy, rx, ry;

    double distance(double x, double y) const {
        const double u = (x - cx) / rx;
        const double v = (y - cy) / ry;
        const double k = std::sqrt(u * u + v * v);
        if (k < 1e-9) {
            return -std::min(rx, ry);
        }
        const double gx = u / (rx * k);
        const double gy = v / (ry * k);
        return (k - 1.0) / std::sqrt(gx * gx + gy * gy);
    }
};

double clamp01(double v) {
    return std::clamp(v, 0.0, 1.0);
}

Rgb mix(const Rgb& a, const Rgb& b, float t) {
    return a * (1.0f - t) + b * t;
}

// The scene's fixed colours.
const Rgb ScreenGreen{0.08f, 0.42f, 0.11f};
const Rgb Skin{0.56f, 0.37f, 0.28f};
const Rgb Shirt{0.18f, 0.2f, 0.28f};
const Rgb ShirtStripe{0.62f, 0.6f, 0.56f};
const Rgb HairRoot{0.28f, 0.17f, 0.09f};
const Rgb HairTip{0.45f, 0.31f, 0.16f};

// One hair strand, drawn as a quadratic curve of given width, with its
// coverage of the pixels it touches.
struct Strand {
    double x0, y0, x1, y1, x2, y2;
    double width;
    double opacity;
};

} // namespace

TsDemoPlate::TsDemoPlate()
    : TsDemoPlate(Options{}) {}

TsDemoPlate::TsDemoPlate(const Options& options)
    : _options(options) {
    _options.width = std::max(_options.width, 64);
    _options.height = std::max(_options.height, 64);
    generate();
}

void TsDemoPlate::generate() {
    const int width = _options.width;
    const int height = _options.height;
    const double h = height;
    const double cx = 0.5 * width;
    const std::uint64_t seed = splitmix(_options.seed);

    const Ellipse head{cx, 0.56 * h, 0.14 * h, 0.18 * h};
    const Ellipse neck{cx, 0.36 * h, 0.06 * h, 0.11 * h};
    const Ellipse torso{cx, -0.05 * h, 0.42 * h, 0.36 * h};
    const Ellipse cap{cx, 0.61 * h, 0.15 * h, 0.165 * h};
    // The hairline: high on the forehead, lower at the temples.
    auto hairline = [&](double x) {
        const double u = (x - cx) / (0.15 * h);
        return (0.62 - 0.05 * u * u) * h;
    };

    // Hair strands from the upper rim of the hair, out and down.
    Random random(seed ^ 0x5151);
    std::vector<Strand> strands;
    const int strandCount = 160;
    for (int s = 0; s < strandCount; ++s) {
        const double angle = random.between(0.12, 0.88) * std::numbers::pi;
        const double bx = cap.cx + cap.rx * std::cos(angle);
        const double by = cap.cy + cap.ry * std::sin(angle);
        const double turn = random.between(-0.45, 0.45);
        const double dx = std::cos(angle + turn);
        const double dy = std::sin(angle + turn);
        const double length = random.between(0.05, 0.2) * h;
        const double droop = random.between(0.1, 0.6) * length;
        strands.push_back(
            {bx - 0.03 * h * std::cos(angle), by - 0.03 * h * std::sin(angle),
             bx + 0.55 * length * dx, by + 0.55 * length * dy,
             bx + length * dx + random.between(-0.2, 0.2) * length, by + length * dy - droop,
             std::max(0.5, random.between(0.5, 1.4) * h / 720.0), random.between(0.8, 1.0)});
    }

    // The strands' coverage and colour (premultiplied), layered in order.
    std::vector<float> strandAlpha(static_cast<std::size_t>(width) * height, 0.0f);
    std::vector<Rgb> strandColour(static_cast<std::size_t>(width) * height, Rgb{});
    std::vector<float> coverage;
    for (const Strand& st : strands) {
        const int x0 =
            std::max(0, static_cast<int>(std::floor(std::min({st.x0, st.x1, st.x2}) - 3.0)));
        const int x1 =
            std::min(width - 1, static_cast<int>(std::ceil(std::max({st.x0, st.x1, st.x2}) + 3.0)));
        const int y0 =
            std::max(0, static_cast<int>(std::floor(std::min({st.y0, st.y1, st.y2}) - 3.0)));
        const int y1 = std::min(height - 1,
                                static_cast<int>(std::ceil(std::max({st.y0, st.y1, st.y2}) + 3.0)));
        if (x0 > x1 || y0 > y1) {
            continue;
        }
        const int bw = x1 - x0 + 1;
        coverage.assign(static_cast<std::size_t>(bw) * (y1 - y0 + 1), 0.0f);
        const double chord =
            std::hypot(st.x2 - st.x0, st.y2 - st.y0) + std::hypot(st.x1 - st.x0, st.y1 - st.y0);
        const int steps = std::max(8, static_cast<int>(chord * 4.0));
        for (int k = 0; k <= steps; ++k) {
            const double t = static_cast<double>(k) / steps;
            const double a = (1 - t) * (1 - t), b = 2 * (1 - t) * t, c = t * t;
            const double px = a * st.x0 + b * st.x1 + c * st.x2;
            const double py = a * st.y0 + b * st.y1 + c * st.y2;
            const double w = st.width * (1.0 - 0.6 * t); // strands thin out
            for (int j = std::max(y0, static_cast<int>(py) - 2);
                 j <= std::min(y1, static_cast<int>(py) + 2); ++j) {
                for (int i = std::max(x0, static_cast<int>(px) - 2);
                     i <= std::min(x1, static_cast<int>(px) + 2); ++i) {
                    const double d = std::hypot(i + 0.5 - px, j + 0.5 - py);
                    const float cov = static_cast<float>(clamp01(0.5 * w + 0.5 - d) * st.opacity);
                    float& cell = coverage[static_cast<std::size_t>(j - y0) * bw + (i - x0)];
                    cell = std::max(cell, cov);
                }
            }
        }
        for (int j = y0; j <= y1; ++j) {
            for (int i = x0; i <= x1; ++i) {
                const float cov = coverage[static_cast<std::size_t>(j - y0) * bw + (i - x0)];
                if (cov <= 0.0f) {
                    continue;
                }
                const std::size_t p = static_cast<std::size_t>(j) * width + i;
                // Lighter towards the tip: the distance from the root.
                const double tip = clamp01(std::hypot(i - st.x0, j - st.y0) /
                                           std::max(1.0, std::hypot(st.x2 - st.x0, st.y2 - st.y0)));
                const Rgb colour = mix(HairRoot, HairTip, static_cast<float>(tip));
                strandColour[p] = strandColour[p] * (1.0f - cov) + colour * cov;
                strandAlpha[p] = strandAlpha[p] * (1.0f - cov) + cov;
            }
        }
    }

    auto plate = rcMake<PiImage>(width, height);
    auto background = rcMake<PiImage>(width, height);
    auto truthAlpha = rcMake<PiImage>(width, height);
    auto truthForeground = rcMake<PiImage>(width, height);
    const Rgb screenChroma =
        ScreenGreen - Rgb{1, 1, 1} * ((ScreenGreen.r + ScreenGreen.g + ScreenGreen.b) / 3.0f);
    const double pi = std::numbers::pi;

    // The screen's light: a broad, gentle unevenness (within about 6 %).
    auto lighting = [&](double x, double y) {
        const double u = x / width, v = y / h;
        return 1.0 + 0.035 * std::cos(2 * pi * 0.8 * u + 0.3) * std::sin(2 * pi * 0.6 * v + 1.1) -
               0.03 * (u - 0.5) * (u - 0.5) * 4.0 + 0.015 * (v - 0.5);
    };

    tbb::parallel_for(tbb::blocked_range<int>(0, height), [&](const tbb::blocked_range<int>& rows) {
        for (int j = rows.begin(); j != rows.end(); ++j) {
            const double y = j + 0.5;
            for (int i = 0; i < width; ++i) {
                const double x = i + 0.5;
                const std::size_t p = static_cast<std::size_t>(j) * width + i;

                // The body: head, neck and torso; its edge softens from left
                // to right (0.8 to 6 pixels at 720 lines).
                const double dHead = head.distance(x, y);
                const double dNeck = neck.distance(x, y);
                const double dTorso = torso.distance(x, y);
                const double dBody = std::min({dHead, dNeck, dTorso});
                const double side = clamp01((x - (cx - 0.45 * h)) / (0.9 * h));
                const double softness = (0.8 + 5.2 * side * side) * h / 720.0;
                const double bodyAlpha = clamp01(0.5 - dBody / softness);
                Rgb body;
                if (dTorso < std::min(dHead, dNeck)) {
                    const double stripe = 0.5 + 0.5 * std::sin(2 * pi * x / (0.045 * h));
                    body = mix(Shirt, ShirtStripe, static_cast<float>(stripe > 0.85 ? 1.0 : 0.0));
                } else {
                    const double shade =
                        1.0 + 0.08 * std::sin(x / (0.05 * h)) * std::cos(y / (0.07 * h));
                    body = Skin * static_cast<float>(shade);
                }

                // The hair: a cap over the top of the head and the strands.
                const double dCap = cap.distance(x, y);
                const double capAlpha = clamp01(0.5 - dCap / (0.9 * h / 720.0)) *
                                        clamp01((y - hairline(x)) / (0.015 * h));
                const double sA = strandAlpha[p];
                const double hairAlpha = 1.0 - (1.0 - capAlpha) * (1.0 - sA);
                Rgb hairPremult =
                    HairRoot * static_cast<float>(capAlpha * (1.0 - sA)) + strandColour[p];

                // Hair over body.
                const double alpha = hairAlpha + bodyAlpha * (1.0 - hairAlpha);
                const float a = static_cast<float>(alpha);
                Rgb premult =
                    hairPremult + body * static_cast<float>(bodyAlpha * (1.0 - hairAlpha));
                Rgb foreground = alpha > 0.0 ? premult * static_cast<float>(1.0 / alpha) : Rgb{};

                // Spill: the screen's chroma, strongest at the body's edge and
                // on the strands.
                const double inside = std::max(0.0, -dBody);
                const double bodySpill = 0.35 * std::exp(-inside / (0.03 * h));
                const double hairSpill = 0.12 * capAlpha * (1.0 - sA) + 0.35 * sA;
                const double spill =
                    alpha > 0.0 ? (hairSpill + bodySpill * bodyAlpha * (1.0 - hairAlpha)) / alpha
                                : 0.0;
                const Rgb spilled = foreground + screenChroma * static_cast<float>(spill);

                const Rgb screen = ScreenGreen * static_cast<float>(lighting(x, y));
                const Rgb colour = spilled * a + screen * (1.0f - a);

                float* out = plate->row(j) + 4 * i;
                for (int c = 0; c < 3; ++c) {
                    const float sigma = 0.004f + 0.012f * std::max(0.0f, colour[c]);
                    out[c] = colour[c] + sigma * gaussian(seed, 3 * p + c);
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
    return score(*_truthAlpha, matte);
}

TsMatteScore TsDemoPlate::score(const PiImage& truth, const PiImage& matte) {
    TsMatteScore result;
    const int width = truth.getWidth();
    const int height = truth.getHeight();
    if (matte.getWidth() != width || matte.getHeight() != height || truth.isEmpty()) {
        return result;
    }
    // The edge band: partial pixels, dilated.
    const int radius = TsMatteScore::EdgeBandRadius;
    std::vector<unsigned char> partial(static_cast<std::size_t>(width) * height, 0);
    std::vector<unsigned char> band(partial.size(), 0);
    for (int j = 0; j < height; ++j) {
        for (int i = 0; i < width; ++i) {
            const float a = truth.row(j)[4 * i];
            partial[static_cast<std::size_t>(j) * width + i] = a > 0.0f && a < 1.0f;
        }
    }
    for (int j = 0; j < height; ++j) {
        for (int i = 0; i < width; ++i) {
            if (!partial[static_cast<std::size_t>(j) * width + i]) {
                continue;
            }
            for (int y = std::max(0, j - radius); y <= std::min(height - 1, j + radius); ++y) {
                for (int x = std::max(0, i - radius); x <= std::min(width - 1, i + radius); ++x) {
                    band[static_cast<std::size_t>(y) * width + x] = 1;
                }
            }
        }
    }
    double inside = 0.0, outside = 0.0, edge = 0.0;
    for (int j = 0; j < height; ++j) {
        const float* t = truth.row(j);
        const float* m = matte.row(j);
        for (int i = 0; i < width; ++i) {
            const double error = std::fabs(static_cast<double>(m[4 * i]) - t[4 * i]);
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
