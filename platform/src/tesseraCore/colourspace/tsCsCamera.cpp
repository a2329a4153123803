#include <tesseraCore/colourspace/tsCsCamera.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

using Colour = CoRgbColorTyped<float>;

// The grey axis and two directions across it (red, green minus blue).
const double Up[3] = {1.0 / std::sqrt(3.0), 1.0 / std::sqrt(3.0), 1.0 / std::sqrt(3.0)};
const double H1[3] = {2.0 / std::sqrt(6.0), -1.0 / std::sqrt(6.0), -1.0 / std::sqrt(6.0)};
const double H2[3] = {0.0, 1.0 / std::sqrt(2.0), -1.0 / std::sqrt(2.0)};

double dot(const double* a, const Colour& c) {
    return a[0] * c.r + a[1] * c.g + a[2] * c.b;
}

constexpr double Radians = std::numbers::pi / 180.0;

} // namespace

void TsCsCamera::lookAlong(const Colour& direction) {
    const double length = std::sqrt(static_cast<double>(direction.r) * direction.r +
                                    static_cast<double>(direction.g) * direction.g +
                                    static_cast<double>(direction.b) * direction.b);
    if (!(length > 0.0) || !std::isfinite(length)) {
        return;
    }
    const double up = std::clamp(dot(Up, direction) / length, -1.0, 1.0);
    elevation = std::asin(up) / Radians;
    azimuth = std::atan2(dot(H2, direction), dot(H1, direction)) / Radians;
}

void TsCsCamera::frame(const Colour& lo, const Colour& hi) {
    centre = (lo + hi) * 0.5f;
    const Colour d = hi - lo;
    const float diagonal = std::sqrt(d.r * d.r + d.g * d.g + d.b * d.b);
    scale = 0.9f * static_cast<float>(std::min(width, height)) / std::max(diagonal, 1e-6f);
    panX = 0.0f;
    panY = 0.0f;
}

TsCsProjection::TsCsProjection(const TsCsCamera& camera) {
    const double a = camera.azimuth * Radians;
    const double e = camera.elevation * Radians;
    double right[3], up[3], toward[3];
    for (int i = 0; i < 3; ++i) {
        right[i] = -std::sin(a) * H1[i] + std::cos(a) * H2[i];
        up[i] = -std::sin(e) * (std::cos(a) * H1[i] + std::sin(a) * H2[i]) + std::cos(e) * Up[i];
        toward[i] = std::cos(e) * (std::cos(a) * H1[i] + std::sin(a) * H2[i]) + std::sin(e) * Up[i];
    }
    const double s = camera.scale;
    const double cx = 0.5 * camera.width + camera.panX;
    const double cy = 0.5 * camera.height + camera.panY;
    const double* rows[3] = {right, up, toward};
    const double scales[3] = {s, -s, 1.0};
    const double offsets[3] = {cx, cy, 0.0};
    for (int k = 0; k < 3; ++k) {
        for (int i = 0; i < 3; ++i) {
            m[4 * k + i] = static_cast<float>(scales[k] * rows[k][i]);
        }
        m[4 * k + 3] = static_cast<float>(offsets[k] - scales[k] * dot(rows[k], camera.centre));
    }
}
