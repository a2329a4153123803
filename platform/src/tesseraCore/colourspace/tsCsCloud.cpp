#include <tesseraCore/colourspace/tsCsCloud.h>

#include <tesseraCore/colourspace/tsCsMatte.h>

#include <algorithm>
#include <cmath>

void TsCsCloud::build(const PiImage& plate, int budget) {
    r.clear();
    g.clear();
    b.clear();
    alpha.clear();
    pixelX.clear();
    pixelY.clear();
    _low = _high = {};
    const double pixels = static_cast<double>(plate.getPixelCount());
    budget = std::max(budget, 1);
    _step = std::max(1, static_cast<int>(std::ceil(std::sqrt(pixels / budget))));
    while (static_cast<double>((plate.getWidth() + _step - 1) / _step) *
               ((plate.getHeight() + _step - 1) / _step) >
           budget) {
        ++_step;
    }
    const std::size_t expected = static_cast<std::size_t>(std::min(pixels, double(budget)));
    for (std::vector<float>* plane : {&r, &g, &b}) {
        plane->reserve(expected);
    }
    pixelX.reserve(expected);
    pixelY.reserve(expected);
    // Offset by half a step, so that the points sit in the middle of what
    // they stand for.
    const int start = _step / 2;
    for (int j = std::min(start, plate.getHeight() - 1); j >= 0 && j < plate.getHeight();
         j += _step) {
        const float* row = plate.row(j);
        for (int i = std::min(start, plate.getWidth() - 1); i < plate.getWidth(); i += _step) {
            const float* p = row + 4 * i;
            if (!std::isfinite(p[0]) || !std::isfinite(p[1]) || !std::isfinite(p[2])) {
                continue;
            }
            r.push_back(p[0]);
            g.push_back(p[1]);
            b.push_back(p[2]);
            pixelX.push_back(i);
            pixelY.push_back(j);
        }
    }
    if (!r.empty()) {
        const auto [r0, r1] = std::minmax_element(r.begin(), r.end());
        const auto [g0, g1] = std::minmax_element(g.begin(), g.end());
        const auto [b0, b1] = std::minmax_element(b.begin(), b.end());
        _low = {*r0, *g0, *b0};
        _high = {*r1, *g1, *b1};
    }
    alpha.assign(r.size(), 0.0f);
}

void TsCsCloud::computeMatte(const TsCsMatte& matte) {
    alpha.resize(r.size());
    matte.alphas(r.data(), g.data(), b.data(), alpha.data(), size());
}

int TsCsCloud::pick(const TsCsProjection& projection, float x, float y, float radius) const {
    int best = -1;
    float bestDistance = radius * radius;
    float bestDepth = 0.0f;
    for (int k = 0; k < size(); ++k) {
        const TsCsProjection::Point p = projection(r[k], g[k], b[k]);
        const float d = (p.x - x) * (p.x - x) + (p.y - y) * (p.y - y);
        if (d < bestDistance || (d == bestDistance && best >= 0 && p.depth > bestDepth)) {
            best = k;
            bestDistance = d;
            bestDepth = p.depth;
        }
    }
    return best;
}
