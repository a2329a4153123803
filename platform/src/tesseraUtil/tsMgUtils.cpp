#include <tesseraUtil/tsMgUtils.h>

#include <algorithm>
#include <cmath>

namespace {

struct Vec3 {
    double x, y, z;
};

double dot(const Vec3& a, const Vec3& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

Vec3 cross(const Vec3& a, const Vec3& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

double finiteOrZero(float v) {
    return std::isfinite(v) ? static_cast<double>(v) : 0.0;
}

// The axes in double, for the matrix below.
struct Axes {
    Vec3 key;
    Vec3 e[3];
    double chroma;
};

Axes computeAxes(const CoRgbColorTyped<float>& keyColour) {
    Axes a;
    a.key = {finiteOrZero(keyColour.r), finiteOrZero(keyColour.g), finiteOrZero(keyColour.b)};
    const double m = (a.key.x + a.key.y + a.key.z) / 3.0;
    Vec3 c{a.key.x - m, a.key.y - m, a.key.z - m};
    double length = std::sqrt(dot(c, c));
    Vec3 u;
    if (length > 1e-12) {
        u = {c.x / length, c.y / length, c.z / length};
    } else {
        const double s = 1.0 / std::sqrt(6.0);
        u = {-s, 2.0 * s, -s};
    }
    a.chroma = std::max(length, static_cast<double>(TsMgUtils::MinChroma));
    const double t = 1.0 / std::sqrt(3.0);
    a.e[0] = {-u.x, -u.y, -u.z};
    a.e[2] = {t, t, t};
    a.e[1] = cross(a.e[2], a.e[0]);
    return a;
}

} // namespace

TsMgUtils::KeyAxes TsMgUtils::getKeyAxes(const CoRgbColorTyped<float>& keyColour) {
    const Axes a = computeAxes(keyColour);
    KeyAxes out;
    for (int k = 0; k < 3; ++k) {
        out.axis[k] = {static_cast<float>(a.e[k].x), static_cast<float>(a.e[k].y),
                       static_cast<float>(a.e[k].z)};
    }
    out.chroma = static_cast<float>(a.chroma);
    return out;
}

CoAffineMatrixTyped<float> TsMgUtils::getSoftnessMatrix(const CoRgbColorTyped<float>& keyColour,
                                                        float intrusion) {
    const Axes a = computeAxes(keyColour);
    const double shift = std::isfinite(intrusion) ? static_cast<double>(intrusion) : 0.0;
    CoAffineMatrixTyped<float> s;
    for (int k = 0; k < 3; ++k) {
        const Vec3& e = a.e[k];
        s.set(k, 0, static_cast<float>(e.x / a.chroma));
        s.set(k, 1, static_cast<float>(e.y / a.chroma));
        s.set(k, 2, static_cast<float>(e.z / a.chroma));
        double t = -dot(e, a.key) / a.chroma;
        if (k == 0) {
            t -= shift;
        }
        s.set(k, 3, static_cast<float>(t));
    }
    return s;
}
