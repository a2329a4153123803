#pragma once

#include <base/gePoint2.h>

#include <array>
#include <cmath>

// An affine transform of the plane as a 3x3 matrix acting on column vectors
// (x, y, 1): element (r, c) at index 3r + c; the last row is (0, 0, 1).
template <class T>
class GeAffineMatrix3 {
public:
    GeAffineMatrix3() { setIdentity(); }

    static GeAffineMatrix3 translation(T tx, T ty) {
        GeAffineMatrix3 m;
        m.setTranslation(tx, ty);
        return m;
    }
    static GeAffineMatrix3 scaling(T sx, T sy) {
        GeAffineMatrix3 m;
        m._m[0] = sx;
        m._m[4] = sy;
        return m;
    }

    void setIdentity() { _m = {T(1), T(0), T(0), T(0), T(1), T(0), T(0), T(0), T(1)}; }
    // Replaces the translation part.
    void setTranslation(T tx, T ty) {
        _m[2] = tx;
        _m[5] = ty;
    }
    // this := this * translation(tx, ty): a translation applied first.
    void translate(T tx, T ty) { *this = *this * translation(tx, ty); }

    T get(int r, int c) const { return _m[3 * r + c]; }
    void set(int r, int c, T v) { _m[3 * r + c] = v; }
    T getTranslationX() const { return _m[2]; }
    T getTranslationY() const { return _m[5]; }

    GeAffineMatrix3 operator*(const GeAffineMatrix3& o) const {
        GeAffineMatrix3 out;
        for (int r = 0; r < 3; ++r) {
            for (int c = 0; c < 3; ++c) {
                T sum = T(0);
                for (int k = 0; k < 3; ++k) {
                    sum += get(r, k) * o.get(k, c);
                }
                out.set(r, c, sum);
            }
        }
        return out;
    }

    GePoint2<T> transformPoint(const GePoint2<T>& p) const {
        return {_m[0] * p.x + _m[1] * p.y + _m[2], _m[3] * p.x + _m[4] * p.y + _m[5]};
    }
    // A vector: the translation does not apply.
    GePoint2<T> transformVector(const GePoint2<T>& v) const {
        return {_m[0] * v.x + _m[1] * v.y, _m[3] * v.x + _m[4] * v.y};
    }

    // The inverse; a singular matrix answers false and leaves out alone.
    bool computeInverse(GeAffineMatrix3& out) const {
        const T det = _m[0] * _m[4] - _m[1] * _m[3];
        if (det == T(0) || !std::isfinite(det)) {
            return false;
        }
        const T inv = T(1) / det;
        GeAffineMatrix3 r;
        r._m[0] = _m[4] * inv;
        r._m[1] = -_m[1] * inv;
        r._m[3] = -_m[3] * inv;
        r._m[4] = _m[0] * inv;
        r._m[2] = -(r._m[0] * _m[2] + r._m[1] * _m[5]);
        r._m[5] = -(r._m[3] * _m[2] + r._m[4] * _m[5]);
        out = r;
        return true;
    }

    bool operator==(const GeAffineMatrix3& o) const = default;

private:
    std::array<T, 9> _m;
};
