#pragma once

#include <base/baseExport.h>
#include <base/coRgbColorTyped.h>
#include <base/coRgbaColorTyped.h>

#include <array>
#include <cmath>

// A 4x4 affine transform of colour space acting on column vectors
// (r, g, b, 1). Storage is column-major: element (row r, column c) is storage
// element 4c + r, so the translation is in elements 12 to 14 and the fourth
// row is elements 3, 7, 11, 15 (normally 0, 0, 0, 1). Equality is exact, in
// all sixteen elements.
template <class T>
class CoAffineMatrixTyped {
public:
    static const CoAffineMatrixTyped IDENTITY;

    constexpr CoAffineMatrixTyped()
        : _m{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1} {}
    explicit CoAffineMatrixTyped(const std::array<T, 16>& storage)
        : _m(storage) {}

    T& operator[](int i) { return _m[i]; }
    const T& operator[](int i) const { return _m[i]; }
    T get(int row, int col) const { return _m[4 * col + row]; }
    void set(int row, int col, T v) { _m[4 * col + row] = v; }
    const std::array<T, 16>& storage() const { return _m; }

    CoAffineMatrixTyped operator*(const CoAffineMatrixTyped& o) const {
        CoAffineMatrixTyped out;
        for (int r = 0; r < 4; ++r) {
            for (int c = 0; c < 4; ++c) {
                T sum = T(0);
                for (int k = 0; k < 4; ++k) {
                    sum += get(r, k) * o.get(k, c);
                }
                out.set(r, c, sum);
            }
        }
        return out;
    }

    // The point (x, y, z, 1) transformed; the fourth row is not applied.
    CoRgbColorTyped<T> transform(T x, T y, T z) const {
        return {_m[0] * x + _m[4] * y + _m[8] * z + _m[12],
                _m[1] * x + _m[5] * y + _m[9] * z + _m[13],
                _m[2] * x + _m[6] * y + _m[10] * z + _m[14]};
    }
    CoRgbColorTyped<T> transform(const CoRgbColorTyped<T>& c) const {
        return transform(c.r, c.g, c.b);
    }

    // The general inverse (cofactors); a singular or non-finite matrix answers
    // false and leaves out alone.
    TS_BASE_API bool computeInverse(CoAffineMatrixTyped& out) const;
    // The inverse; a singular or non-finite matrix has none and answers the
    // matrix whose every element is NaN, so that every point computed from
    // it is not a number (see TsUtils for what a colour box makes of that).
    TS_BASE_API CoAffineMatrixTyped computeInverse() const;

    bool operator==(const CoAffineMatrixTyped& o) const = default;

private:
    std::array<T, 16> _m;
};

template <class T>
constexpr CoAffineMatrixTyped<T> CoAffineMatrixTyped<T>::IDENTITY{};

// computeInverse is defined once, in the base library, for float and double.
