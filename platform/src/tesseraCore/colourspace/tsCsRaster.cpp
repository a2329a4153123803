#include <tesseraCore/colourspace/tsCsRaster.h>

#include <tesseraCore/colourspace/tsCsCloud.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace {

// Scene-linear [0, 1] to 8-bit sRGB, in steps fine enough for the darks.
constexpr int LutSize = 4096;

const std::array<std::uint8_t, LutSize + 1>& srgb() {
    static const std::array<std::uint8_t, LutSize + 1> lut = [] {
        std::array<std::uint8_t, LutSize + 1> t{};
        for (int i = 0; i <= LutSize; ++i) {
            const double v = static_cast<double>(i) / LutSize;
            const double e = v <= 0.0031308 ? 12.92 * v : 1.055 * std::pow(v, 1.0 / 2.4) - 0.055;
            t[i] = static_cast<std::uint8_t>(std::lround(255.0 * e));
        }
        return t;
    }();
    return lut;
}

std::uint32_t channel(float v) {
    const float c = v > 0.0f ? std::min(v, 1.0f) : 0.0f;
    return srgb()[static_cast<int>(c * LutSize + 0.5f)];
}

} // namespace

std::uint32_t TsCsRaster::pointColour(float r, float g, float b, float alpha, Colouring colouring) {
    if (colouring == Colouring::Matte) {
        const float a = alpha > 0.0f ? std::min(alpha, 1.0f) : 0.0f;
        const auto mix = [a](float from, float to) {
            return static_cast<std::uint32_t>(std::lround(from + a * (to - from)));
        };
        return 0xff000000u | mix(40.0f, 255.0f) << 16 | mix(90.0f, 255.0f) << 8 |
               mix(230.0f, 255.0f);
    }
    return 0xff000000u | channel(r) << 16 | channel(g) << 8 | channel(b);
}

void TsCsRaster::drawPoints(std::uint32_t* pixels, int width, int height, int stride,
                            const TsCsProjection& projection, const TsCsCloud& cloud,
                            const Style& style, std::vector<float>& depth) {
    depth.assign(static_cast<std::size_t>(width) * height, -std::numeric_limits<float>::max());
    const int size = std::max(1, style.pointSize);
    const float half = 0.5f * static_cast<float>(size);
    for (int k = 0; k < cloud.size(); ++k) {
        const TsCsProjection::Point p = projection(cloud.r[k], cloud.g[k], cloud.b[k]);
        const int x0 = static_cast<int>(std::floor(p.x - half + 0.5f));
        const int y0 = static_cast<int>(std::floor(p.y - half + 0.5f));
        if (x0 + size <= 0 || y0 + size <= 0 || x0 >= width || y0 >= height) {
            continue;
        }
        const std::uint32_t colour =
            pointColour(cloud.r[k], cloud.g[k], cloud.b[k], cloud.alpha[k], style.colouring);
        for (int y = std::max(y0, 0); y < std::min(y0 + size, height); ++y) {
            float* z = depth.data() + static_cast<std::size_t>(y) * width;
            std::uint32_t* row = pixels + static_cast<std::size_t>(y) * stride;
            for (int x = std::max(x0, 0); x < std::min(x0 + size, width); ++x) {
                if (p.depth > z[x]) {
                    z[x] = p.depth;
                    row[x] = colour;
                }
            }
        }
    }
}
