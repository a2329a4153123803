#pragma once

// A point (or vector) in the plane.
template <class T>
struct GePoint2 {
    T x{};
    T y{};

    GePoint2() = default;
    GePoint2(T px, T py)
        : x(px)
        , y(py) {}

    GePoint2 operator+(const GePoint2& o) const { return {x + o.x, y + o.y}; }
    GePoint2 operator-(const GePoint2& o) const { return {x - o.x, y - o.y}; }
    GePoint2 operator*(T s) const { return {x * s, y * s}; }
    bool operator==(const GePoint2& o) const = default;
};
