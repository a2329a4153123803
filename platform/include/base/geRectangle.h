#pragma once

#include <algorithm>

// An axis-aligned rectangle, given by its x extent and its y extent.
//
// The constructor takes the four bounds in storage order (x min, x max, y min,
// y max); fromCorners() takes two corners. A default rectangle is invalid (no
// extent); the union of an invalid rectangle with another is the other.
template <class T>
class GeRectangle {
public:
    GeRectangle() = default;
    GeRectangle(T xMin, T xMax, T yMin, T yMax)
        : _xMin(xMin)
        , _xMax(xMax)
        , _yMin(yMin)
        , _yMax(yMax) {}

    static GeRectangle fromCorners(T x0, T y0, T x1, T y1) {
        return GeRectangle(std::min(x0, x1), std::max(x0, x1), std::min(y0, y1), std::max(y0, y1));
    }

    T getXMin() const { return _xMin; }
    T getXMax() const { return _xMax; }
    T getYMin() const { return _yMin; }
    T getYMax() const { return _yMax; }
    T getWidth() const { return _xMax - _xMin; }
    T getHeight() const { return _yMax - _yMin; }

    void set(T xMin, T xMax, T yMin, T yMax) { *this = GeRectangle(xMin, xMax, yMin, yMax); }

    // Valid when it has a non-negative extent on both axes.
    bool isValid() const { return _xMin <= _xMax && _yMin <= _yMax; }

    // Closed on every side.
    bool contains(T x, T y) const {
        return isValid() && x >= _xMin && x <= _xMax && y >= _yMin && y <= _yMax;
    }

    GeRectangle unite(const GeRectangle& o) const {
        if (!isValid()) {
            return o;
        }
        if (!o.isValid()) {
            return *this;
        }
        return GeRectangle(std::min(_xMin, o._xMin), std::max(_xMax, o._xMax),
                           std::min(_yMin, o._yMin), std::max(_yMax, o._yMax));
    }

    bool operator==(const GeRectangle& o) const = default;

private:
    T _xMin = T(1);
    T _xMax = T(0);
    T _yMin = T(1);
    T _yMax = T(0);
};
