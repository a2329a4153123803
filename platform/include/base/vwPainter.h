#pragma once

#include <base/baseExport.h>
#include <base/coRgbaColorTyped.h>
#include <base/gePoint2.h>
#include <base/geRectangle.h>

#include <string>

// What tools and manipulators draw into. Every coordinate is in window pixels
// (origin top-left, y down); a rectangle is given by its x and y extents in
// those coordinates. Colours are straight RGBA in [0, 1].
//
// The viewer hands a painter to its event handler through the VwView; the
// reference host records the calls (a display list) and paints them after
// the plate.
class TS_BASE_API VwPainter {
public:
    VwPainter() = default;
    VwPainter(const VwPainter&) = default;
    VwPainter& operator=(const VwPainter&) = default;
    virtual ~VwPainter();

    virtual void drawLine(const GePoint2<float>& from, const GePoint2<float>& to,
                          const CoRgbaColorTyped<float>& colour) = 0;
    // The outline of the rectangle.
    virtual void drawRect(const GeRectangle<float>& rect,
                          const CoRgbaColorTyped<float>& colour) = 0;
    virtual void fillRect(const GeRectangle<float>& rect,
                          const CoRgbaColorTyped<float>& colour) = 0;
    // One line of UTF-8 text whose baseline starts at `at`.
    virtual void drawText(const GePoint2<float>& at, const std::string& text,
                          const CoRgbaColorTyped<float>& colour) = 0;
};
