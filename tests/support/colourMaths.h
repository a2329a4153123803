#pragma once

// Colour maths the colour tests derive their expected values from, on their
// own: matrices from primaries' chromaticities, the Bradford adaptation, and
// the sRGB curve as published.

#include <array>
#include <cmath>

namespace colourMaths {

using Matrix = std::array<std::array<double, 3>, 3>;
using Vector = std::array<double, 3>;

inline Matrix multiply(const Matrix& a, const Matrix& b) {
    Matrix m{};
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            for (int k = 0; k < 3; ++k) {
                m[i][j] += a[i][k] * b[k][j];
            }
        }
    }
    return m;
}

inline Vector times(const Matrix& m, const Vector& v) {
    return {m[0][0] * v[0] + m[0][1] * v[1] + m[0][2] * v[2],
            m[1][0] * v[0] + m[1][1] * v[1] + m[1][2] * v[2],
            m[2][0] * v[0] + m[2][1] * v[1] + m[2][2] * v[2]};
}

inline Matrix inverse(const Matrix& m) {
    const double det = m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
                       m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
                       m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
    Matrix r{};
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            const int i1 = (j + 1) % 3, i2 = (j + 2) % 3, j1 = (i + 1) % 3, j2 = (i + 2) % 3;
            r[i][j] = (m[i1][j1] * m[i2][j2] - m[i1][j2] * m[i2][j1]) / det;
        }
    }
    return r;
}

inline Vector whiteXYZ(double x, double y) {
    return {x / y, 1.0, (1.0 - x - y) / y};
}

// RGB to XYZ for primaries and a white point given as xy chromaticities.
inline Matrix rgbToXyz(const std::array<std::array<double, 2>, 3>& primaries, double wx,
                       double wy) {
    Matrix p{};
    for (int c = 0; c < 3; ++c) {
        const Vector v = whiteXYZ(primaries[c][0], primaries[c][1]);
        for (int r = 0; r < 3; ++r) {
            p[r][c] = v[r];
        }
    }
    const Vector s = times(inverse(p), whiteXYZ(wx, wy));
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 3; ++c) {
            p[r][c] *= s[c];
        }
    }
    return p;
}

// The Bradford adaptation from one white to another.
inline Matrix bradford(const Vector& from, const Vector& to) {
    const Matrix b{
        {{0.8951, 0.2664, -0.1614}, {-0.7502, 1.7135, 0.0367}, {0.0389, -0.0685, 1.0296}}};
    const Vector f = times(b, from);
    const Vector t = times(b, to);
    const Matrix scale{{{t[0] / f[0], 0, 0}, {0, t[1] / f[1], 0}, {0, 0, t[2] / f[2]}}};
    return multiply(inverse(b), multiply(scale, b));
}

inline double srgbDecode(double v) {
    return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
}

inline double srgbEncode(double v) {
    return v <= 0.0031308 ? 12.92 * v : 1.055 * std::pow(v, 1.0 / 2.4) - 0.055;
}

// Linear ACEScg (AP1 primaries, the ACES white) to linear Rec.709 (D65).
inline Matrix acesCgToRec709() {
    const double acesX = 0.32168, acesY = 0.33767, d65X = 0.3127, d65Y = 0.3290;
    const Matrix ap1 = rgbToXyz({{{0.713, 0.293}, {0.165, 0.830}, {0.128, 0.044}}}, acesX, acesY);
    const Matrix rec709 = rgbToXyz({{{0.64, 0.33}, {0.30, 0.60}, {0.15, 0.06}}}, d65X, d65Y);
    return multiply(inverse(rec709),
                    multiply(bradford(whiteXYZ(acesX, acesY), whiteXYZ(d65X, d65Y)), ap1));
}

} // namespace colourMaths
