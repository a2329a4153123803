#pragma once

// A colour without alpha.
template <class T>
struct CoRgbColorTyped {
    T r{}, g{}, b{};

    CoRgbColorTyped() = default;
    CoRgbColorTyped(T red, T green, T blue)
        : r(red)
        , g(green)
        , b(blue) {}

    T& operator[](int i) { return (&r)[i]; }
    const T& operator[](int i) const { return (&r)[i]; }
    CoRgbColorTyped operator+(const CoRgbColorTyped& o) const {
        return {r + o.r, g + o.g, b + o.b};
    }
    CoRgbColorTyped operator-(const CoRgbColorTyped& o) const {
        return {r - o.r, g - o.g, b - o.b};
    }
    CoRgbColorTyped operator*(T s) const { return {r * s, g * s, b * s}; }
    bool operator==(const CoRgbColorTyped& o) const = default;
};
