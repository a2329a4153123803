#include "tsDemoSubject.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace {

using Rgb = CoRgbColorTyped<float>;
constexpr double Pi = std::numbers::pi;

class Random {
public:
    explicit Random(std::uint64_t seed)
        : _state(seed) {}
    double next() { return TsDemoRandom::uniform(TsDemoRandom::splitmix(_state++)); }
    double between(double lo, double hi) { return lo + (hi - lo) * next(); }

private:
    std::uint64_t _state;
};

double clamp01(double v) {
    return std::clamp(v, 0.0, 1.0);
}

Rgb mix(const Rgb& a, const Rgb& b, float t) {
    return a * (1.0f - t) + b * t;
}

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

// The coverage of a pixel by a shape whose edge is `distance` away (negative
// inside), the edge `softness` pixels wide.
double cover(double distance, double softness) {
    return clamp01(0.5 - distance / softness);
}

// Spill on a solid shape: strongest at its edge, fading inwards over `depth`.
double edgeSpill(double distance, double depth) {
    return 0.35 * std::exp(-std::max(0.0, -distance) / depth);
}

// One strand, a quadratic curve of given width thinning towards its tip.
struct Strand {
    double x0, y0, x1, y1, x2, y2;
    double width;
    double opacity;
};

// Strands drawn one over the other: per pixel their coverage and colour
// (premultiplied), the colour going from the root's to the tip's along each.
class StrandLayer {
public:
    StrandLayer(int width, int height)
        : _width(width)
        , _height(height)
        , _alpha(static_cast<std::size_t>(width) * height, 0.0f)
        , _colour(_alpha.size(), Rgb{}) {}

    float alpha(std::size_t p) const { return _alpha[p]; }
    const Rgb& colour(std::size_t p) const { return _colour[p]; }
    // Pixel p as fine detail with `spill` of the screen's chroma (straight
    // colour).
    TsDemoSubject::Pixel pixel(std::size_t p, double spill) const {
        TsDemoSubject::Pixel out;
        out.alpha = _alpha[p];
        if (out.alpha > 0.0) {
            out.colour = _colour[p] * static_cast<float>(1.0 / out.alpha);
        }
        out.spill = spill;
        out.fine = out.alpha > 0.0;
        return out;
    }

    void draw(const Strand& st, const Rgb& root, const Rgb& tip) {
        const int x0 =
            std::max(0, static_cast<int>(std::floor(std::min({st.x0, st.x1, st.x2}) - 3.0)));
        const int x1 = std::min(_width - 1,
                                static_cast<int>(std::ceil(std::max({st.x0, st.x1, st.x2}) + 3.0)));
        const int y0 =
            std::max(0, static_cast<int>(std::floor(std::min({st.y0, st.y1, st.y2}) - 3.0)));
        const int y1 = std::min(_height - 1,
                                static_cast<int>(std::ceil(std::max({st.y0, st.y1, st.y2}) + 3.0)));
        if (x0 > x1 || y0 > y1) {
            return;
        }
        const int bw = x1 - x0 + 1;
        _coverage.assign(static_cast<std::size_t>(bw) * (y1 - y0 + 1), 0.0f);
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
                    float& cell = _coverage[static_cast<std::size_t>(j - y0) * bw + (i - x0)];
                    cell = std::max(cell, cov);
                }
            }
        }
        for (int j = y0; j <= y1; ++j) {
            for (int i = x0; i <= x1; ++i) {
                const float cov = _coverage[static_cast<std::size_t>(j - y0) * bw + (i - x0)];
                if (cov <= 0.0f) {
                    continue;
                }
                const std::size_t p = static_cast<std::size_t>(j) * _width + i;
                // Lighter towards the tip: the distance from the root.
                const double along =
                    clamp01(std::hypot(i - st.x0, j - st.y0) /
                            std::max(1.0, std::hypot(st.x2 - st.x0, st.y2 - st.y0)));
                const Rgb colour = mix(root, tip, static_cast<float>(along));
                _colour[p] = _colour[p] * (1.0f - cov) + colour * cov;
                _alpha[p] = _alpha[p] * (1.0f - cov) + cov;
            }
        }
    }

private:
    int _width;
    int _height;
    std::vector<float> _alpha;
    std::vector<Rgb> _colour;
    std::vector<float> _coverage;
};

// `top` over `below`, both straight, with their spill shares.
TsDemoSubject::Pixel over(const TsDemoSubject::Pixel& top, const TsDemoSubject::Pixel& below) {
    TsDemoSubject::Pixel out;
    const double rest = below.alpha * (1.0 - top.alpha);
    out.alpha = top.alpha + rest;
    if (out.alpha > 0.0) {
        out.colour =
            (top.colour * static_cast<float>(top.alpha) + below.colour * static_cast<float>(rest)) *
            static_cast<float>(1.0 / out.alpha);
        out.spill = (top.spill * top.alpha + below.spill * rest) / out.alpha;
    }
    out.fine = top.fine || below.fine;
    return out;
}

// The head-and-shoulders subject: an ellipse head, neck and torso whose edge
// softens from left to right, skin and a striped shirt, a cap of hair with
// strands from its upper rim out and down.
class Portrait : public TsDemoSubject {
public:
    Portrait(int width, int height, std::uint64_t seed, const Rgb& root, const Rgb& tip)
        : _width(width)
        , _h(height)
        , _cx(0.5 * width)
        , _head{_cx, 0.56 * _h, 0.14 * _h, 0.18 * _h}
        , _neck{_cx, 0.36 * _h, 0.06 * _h, 0.11 * _h}
        , _torso{_cx, -0.05 * _h, 0.42 * _h, 0.36 * _h}
        , _cap{_cx, 0.61 * _h, 0.15 * _h, 0.165 * _h}
        , _root(root)
        , _strands(width, height) {
        Random random(seed ^ 0x5151);
        const int strandCount = 160;
        for (int s = 0; s < strandCount; ++s) {
            const double angle = random.between(0.12, 0.88) * Pi;
            const double bx = _cap.cx + _cap.rx * std::cos(angle);
            const double by = _cap.cy + _cap.ry * std::sin(angle);
            const double turn = random.between(-0.45, 0.45);
            const double dx = std::cos(angle + turn);
            const double dy = std::sin(angle + turn);
            const double length = random.between(0.05, 0.2) * _h;
            const double droop = random.between(0.1, 0.6) * length;
            const Strand strand{bx - 0.03 * _h * std::cos(angle),
                                by - 0.03 * _h * std::sin(angle),
                                bx + 0.55 * length * dx,
                                by + 0.55 * length * dy,
                                bx + length * dx + random.between(-0.2, 0.2) * length,
                                by + length * dy - droop,
                                std::max(0.5, random.between(0.5, 1.4) * _h / 720.0),
                                random.between(0.8, 1.0)};
            _strands.draw(strand, root, tip);
        }
    }

    Pixel at(int i, int j) const override {
        const double x = i + 0.5;
        const double y = j + 0.5;
        const std::size_t p = static_cast<std::size_t>(j) * _width + i;

        // The body: head, neck and torso; its edge softens from left to right
        // (0.8 to 6 pixels at 720 lines).
        const double dHead = _head.distance(x, y);
        const double dNeck = _neck.distance(x, y);
        const double dTorso = _torso.distance(x, y);
        const double dBody = std::min({dHead, dNeck, dTorso});
        const double side = clamp01((x - (_cx - 0.45 * _h)) / (0.9 * _h));
        const double softness = (0.8 + 5.2 * side * side) * _h / 720.0;
        const double bodyAlpha = clamp01(0.5 - dBody / softness);
        Rgb body;
        if (dTorso < std::min(dHead, dNeck)) {
            const double stripe = 0.5 + 0.5 * std::sin(2 * Pi * x / (0.045 * _h));
            body = mix(Shirt, ShirtStripe, static_cast<float>(stripe > 0.85 ? 1.0 : 0.0));
        } else {
            const double shade = 1.0 + 0.08 * std::sin(x / (0.05 * _h)) * std::cos(y / (0.07 * _h));
            body = Skin * static_cast<float>(shade);
        }

        // The hair: the cap over the top of the head, below the hairline
        // (high on the forehead, lower at the temples), and the strands.
        const double u = (x - _cx) / (0.15 * _h);
        const double hairline = (0.62 - 0.05 * u * u) * _h;
        const double capAlpha = clamp01(0.5 - _cap.distance(x, y) / (0.9 * _h / 720.0)) *
                                clamp01((y - hairline) / (0.015 * _h));
        const double sA = _strands.alpha(p);
        const double hairAlpha = 1.0 - (1.0 - capAlpha) * (1.0 - sA);
        const Rgb hairPremult =
            _root * static_cast<float>(capAlpha * (1.0 - sA)) + _strands.colour(p);

        // Hair over body.
        Pixel out;
        out.alpha = hairAlpha + bodyAlpha * (1.0 - hairAlpha);
        const Rgb premult = hairPremult + body * static_cast<float>(bodyAlpha * (1.0 - hairAlpha));
        out.colour = out.alpha > 0.0 ? premult * static_cast<float>(1.0 / out.alpha) : Rgb{};

        // Spill: strongest at the body's edge and on the strands.
        const double bodySpill = edgeSpill(dBody, 0.03 * _h);
        const double hairSpill = 0.12 * capAlpha * (1.0 - sA) + 0.35 * sA;
        out.spill = out.alpha > 0.0
                        ? (hairSpill + bodySpill * bodyAlpha * (1.0 - hairAlpha)) / out.alpha
                        : 0.0;
        out.fine = sA > 0.0;
        return out;
    }

private:
    static inline const Rgb Skin{0.56f, 0.37f, 0.28f};
    static inline const Rgb Shirt{0.18f, 0.2f, 0.28f};
    static inline const Rgb ShirtStripe{0.62f, 0.6f, 0.56f};

    int _width;
    double _h;
    double _cx;
    Ellipse _head, _neck, _torso, _cap;
    Rgb _root;
    StrandLayer _strands;
};

// A white furry animal, sitting: body and head with a fringe of fur all round,
// a dark nose and eye.
class Fur : public TsDemoSubject {
public:
    Fur(int width, int height, std::uint64_t seed)
        : _width(width)
        , _h(height)
        , _body{0.47 * width, 0.3 * _h, 0.3 * _h, 0.24 * _h}
        , _head{0.47 * width + 0.2 * _h, 0.6 * _h, 0.13 * _h, 0.12 * _h}
        , _nose{0.47 * width + 0.31 * _h, 0.6 * _h, 0.018 * _h, 0.014 * _h}
        , _eye{0.47 * width + 0.22 * _h, 0.65 * _h, 0.012 * _h, 0.012 * _h}
        , _fur(width, height) {
        Random random(seed ^ 0xf0f0);
        const Ellipse* parts[2] = {&_body, &_head};
        for (int s = 0; s < 1400; ++s) {
            const Ellipse& e = *parts[s % 3 == 0 ? 1 : 0];
            const double angle = random.between(0.0, 2.0 * Pi);
            const double bx = e.cx + e.rx * std::cos(angle);
            const double by = e.cy + e.ry * std::sin(angle);
            if (by < 0.02 * _h) {
                continue; // the ground
            }
            const double turn = random.between(-0.6, 0.6);
            const double length = random.between(0.015, 0.06) * _h;
            const double dx = std::cos(angle + turn), dy = std::sin(angle + turn);
            const double inset = 0.012 * _h;
            const Strand strand{bx - inset * std::cos(angle),
                                by - inset * std::sin(angle),
                                bx + 0.5 * length * dx,
                                by + 0.5 * length * dy,
                                bx + length * dx + random.between(-0.2, 0.2) * length,
                                by + length * dy - random.between(0.0, 0.3) * length,
                                std::max(0.35, random.between(0.35, 0.9) * _h / 720.0),
                                random.between(0.35, 0.85)};
            _fur.draw(strand, FurRoot, FurTip);
        }
    }

    Pixel at(int i, int j) const override {
        const double x = i + 0.5, y = j + 0.5;
        const std::size_t p = static_cast<std::size_t>(j) * _width + i;
        const double soft = 1.5 * _h / 720.0;
        const double d = std::min(_body.distance(x, y), _head.distance(x, y));
        Pixel body;
        body.alpha = cover(d, soft);
        const double shade = 0.82 + 0.18 * std::sin(x / (0.04 * _h)) * std::sin(y / (0.05 * _h));
        body.colour = FurRoot * static_cast<float>(shade);
        body.spill = edgeSpill(d, 0.02 * _h);
        Pixel spot;
        spot.alpha = std::max(cover(_nose.distance(x, y), soft), cover(_eye.distance(x, y), soft));
        spot.colour = Rgb{0.04f, 0.035f, 0.035f};
        return over(spot, over(_fur.pixel(p, 0.35), body));
    }

private:
    static inline const Rgb FurRoot{0.84f, 0.83f, 0.78f};
    static inline const Rgb FurTip{0.93f, 0.92f, 0.9f};

    int _width;
    double _h;
    Ellipse _body, _head, _nose, _eye;
    StrandLayer _fur;
};

// A light wooden lattice in a solid frame on the left; a white
// semi-transparent veil with folds on the right.
class Lattice : public TsDemoSubject {
public:
    Lattice(int width, int height, std::uint64_t seed)
        : _w(width)
        , _h(height) {
        Random random(seed ^ 0x1a77);
        _spacing = random.between(0.03, 0.045) * _h;
        _bar = random.between(1.2, 2.6) * _h / 720.0;
        _phase = random.between(0.0, 1.0);
    }

    Pixel at(int i, int j) const override {
        const double x = i + 0.5, y = j + 0.5;
        const double soft = 0.8 * _h / 720.0;
        // The frame: a rectangle with a hole.
        const double left = 0.1 * _w, right = 0.46 * _w, bottom = 0.12 * _h, top = 0.88 * _h;
        const double frame = 0.025 * _h;
        const double outer =
            std::max({left - x, x - right, bottom - y, y - top}); // distance outside
        const double inner =
            std::max({left + frame - x, x - right + frame, bottom + frame - y, y - top + frame});
        Pixel lattice;
        const double frameAlpha = std::min(cover(outer, soft), 1.0 - cover(inner, soft));
        // Diagonal bars both ways inside the frame.
        double bars = 0.0;
        if (inner < 0.5) {
            for (const double sign : {1.0, -1.0}) {
                // Lines x + sign y = k spacing sqrt 2, spacing apart.
                const double t = (x + sign * y) / (_spacing * std::numbers::sqrt2) + _phase;
                const double d = std::fabs(t - std::round(t)) * _spacing;
                bars = 1.0 - (1.0 - bars) * (1.0 - clamp01(0.5 * _bar + 0.5 - d));
            }
            bars *= cover(outer, soft);
        }
        lattice.alpha = 1.0 - (1.0 - frameAlpha) * (1.0 - bars);
        lattice.colour = Wood;
        lattice.spill = 0.3 * bars + edgeSpill(outer, 0.02 * _h) * frameAlpha;
        lattice.fine = bars > 0.0 && frameAlpha < 1.0;

        // The veil: soft-edged, its opacity rising and falling with the folds.
        Pixel veil;
        const double vx0 = 0.55 * _w, vx1 = 0.9 * _w;
        const double wave = 0.01 * _h * std::sin(y / (0.06 * _h));
        const double veilOut =
            std::max({vx0 + wave - x, x - vx1 - wave, 0.08 * _h - y, y - 0.92 * _h});
        const double fold = 0.5 + 0.5 * std::sin(2 * Pi * (x - vx0) / (0.08 * _h));
        veil.alpha = cover(veilOut, 4.0 * _h / 720.0) * (0.28 + 0.3 * fold);
        veil.colour = Veil;
        veil.spill = 0.15;
        return over(lattice, veil);
    }

private:
    static inline const Rgb Wood{0.8f, 0.72f, 0.56f};
    static inline const Rgb Veil{0.92f, 0.9f, 0.88f};

    double _w, _h;
    double _spacing, _bar, _phase;
};

// A plant: a yellow-green stem and two leaves, close to the screen's hue,
// topped by a seed head of fine white filaments round a small core.
class Stem : public TsDemoSubject {
public:
    Stem(int width, int height, std::uint64_t seed)
        : _width(width)
        , _h(height)
        , _cx(0.5 * width)
        , _leafA{_cx - 0.12 * _h, 0.22 * _h, 0.11 * _h, 0.035 * _h}
        , _leafB{_cx + 0.1 * _h, 0.3 * _h, 0.09 * _h, 0.03 * _h}
        , _core{_cx + 0.02 * _h, 0.66 * _h, 0.025 * _h, 0.025 * _h}
        , _filaments(width, height) {
        Random random(seed ^ 0x57e3);
        for (int s = 0; s < 320; ++s) {
            const double angle = random.between(0.0, 2.0 * Pi);
            const double length = random.between(0.07, 0.13) * _h;
            const double dx = std::cos(angle), dy = std::sin(angle);
            const double bend = random.between(-0.08, 0.08) * length;
            const Strand strand{_core.cx + 0.5 * _core.rx * dx,
                                _core.cy + 0.5 * _core.ry * dy,
                                _core.cx + 0.5 * length * dx - bend * dy,
                                _core.cy + 0.5 * length * dy + bend * dx,
                                _core.cx + length * dx,
                                _core.cy + length * dy,
                                std::max(0.3, random.between(0.3, 0.7) * _h / 720.0),
                                random.between(0.4, 0.9)};
            _filaments.draw(strand, Filament, Filament);
        }
    }

    Pixel at(int i, int j) const override {
        const double x = i + 0.5, y = j + 0.5;
        const std::size_t p = static_cast<std::size_t>(j) * _width + i;
        const double soft = 1.2 * _h / 720.0;
        // The stem: a gentle curve up to the core, 0.012 h wide.
        const double t = clamp01(y / _core.cy);
        const double stemX = _cx - 0.1 * _h * (1.0 - t) * (1.0 - t) + 0.02 * _h * t;
        const double stemDistance =
            y > _core.cy ? 1e9 : std::fabs(x - stemX) - 0.006 * _h * (1.2 - 0.4 * t);
        Pixel plant;
        const double leafDistance = std::min(tilted(_leafA, 0.5, x, y), tilted(_leafB, -0.6, x, y));
        plant.alpha = std::max(cover(stemDistance, soft), cover(leafDistance, soft));
        plant.colour = stemDistance < leafDistance ? StemColour : Leaf;
        plant.spill = edgeSpill(std::min(stemDistance, leafDistance), 0.01 * _h);
        Pixel core;
        core.alpha = cover(_core.distance(x, y), soft);
        core.colour = Core;
        core.spill = edgeSpill(_core.distance(x, y), 0.01 * _h);
        return over(core, over(_filaments.pixel(p, 0.35), plant));
    }

private:
    static inline const Rgb StemColour{0.36f, 0.5f, 0.12f};
    static inline const Rgb Leaf{0.28f, 0.44f, 0.1f};
    static inline const Rgb Core{0.55f, 0.5f, 0.35f};
    static inline const Rgb Filament{0.92f, 0.92f, 0.9f};

    // The distance to an ellipse turned by `angle` about its centre.
    static double tilted(const Ellipse& e, double angle, double x, double y) {
        const double c = std::cos(angle), s = std::sin(angle);
        const double dx = x - e.cx, dy = y - e.cy;
        return e.distance(e.cx + c * dx + s * dy, e.cy - s * dx + c * dy);
    }

    int _width;
    double _h;
    double _cx;
    Ellipse _leafA, _leafB, _core;
    StrandLayer _filaments;
};

} // namespace

std::unique_ptr<TsDemoSubject> TsDemoSubject::make(const TsDemoPlate::Options& options,
                                                   std::uint64_t seed) {
    const int w = options.width, h = options.height;
    switch (options.subject) {
    case TsDemoPlate::Subject::DarkHair:
        return std::make_unique<Portrait>(w, h, seed, Rgb{0.035f, 0.03f, 0.028f},
                                          Rgb{0.08f, 0.065f, 0.055f});
    case TsDemoPlate::Subject::LightHair:
        return std::make_unique<Portrait>(w, h, seed, Rgb{0.6f, 0.5f, 0.32f},
                                          Rgb{0.88f, 0.8f, 0.62f});
    case TsDemoPlate::Subject::Fur:
        return std::make_unique<Fur>(w, h, seed);
    case TsDemoPlate::Subject::Lattice:
        return std::make_unique<Lattice>(w, h, seed);
    case TsDemoPlate::Subject::Stem:
        return std::make_unique<Stem>(w, h, seed);
    case TsDemoPlate::Subject::Portrait:
        break;
    }
    return std::make_unique<Portrait>(w, h, seed, Rgb{0.28f, 0.17f, 0.09f},
                                      Rgb{0.45f, 0.31f, 0.16f});
}
