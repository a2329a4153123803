#pragma once

// A colour with alpha. Components are plain values (scene-linear floats in the
// keyer); no clamping is done.
template <class T>
struct CoRgbaColorTyped {
    T r{}, g{}, b{}, a{};

    CoRgbaColorTyped() = default;
    CoRgbaColorTyped(T red, T green, T blue, T alpha)
        : r(red)
        , g(green)
        , b(blue)
        , a(alpha) {}

    T& operator[](int i) { return (&r)[i]; }
    const T& operator[](int i) const { return (&r)[i]; }
    bool operator==(const CoRgbaColorTyped& o) const = default;
};
