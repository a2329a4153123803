#pragma once

#include <base/baseExport.h>
#include <base/geAffineMatrix3.h>
#include <base/gePoint2.h>
#include <base/geRectangle.h>

class VwPainter;

// How a viewer shows the world: a zoom, a pan and a viewport, plus the painter
// that tools draw into while the viewer paints.
//
// World units are plate pixels, origin at the plate's lower-left corner, y up.
// Window units are the viewer widget's pixels, origin top-left, y down. The
// zoom is the number of window pixels per world unit; the pan is the window
// position of the world origin. So a world point (x, y) shows at window
// (pan.x + zoom * x, pan.y - zoom * y).
class TS_BASE_API VwView {
public:
    VwView() = default;
    VwView(int width, int height, float zoom = 1.0f, const GePoint2<float>& pan = {});

    float getZoom() const { return _zoom; }
    // Zooms outside [1/1024, 1024] are clamped; a zoom that is not a positive
    // finite number is ignored.
    void setZoom(float zoom);
    const GePoint2<float>& getPan() const { return _pan; }
    void setPan(const GePoint2<float>& pan) { _pan = pan; }

    // The viewport, in window pixels.
    int getWidth() const { return _width; }
    int getHeight() const { return _height; }
    void setViewportSize(int width, int height);

    // Not owned; null while nobody paints.
    VwPainter* getPainter() const { return _painter; }
    void setPainter(VwPainter* painter) { _painter = painter; }

    // The world-to-window transform as a matrix.
    GeAffineMatrix3<float> getWorldToWindow() const;

    // Navigation. zoomAbout keeps the world point under `window` where it is.
    void zoomAbout(const GePoint2<float>& window, float factor);
    void panBy(float dx, float dy);
    // Centres the world rectangle in the viewport at the largest zoom that
    // shows all of it with `margin` window pixels around.
    void fit(const GeRectangle<float>& world, float margin = 0.0f);

    bool operator==(const VwView& o) const {
        return _width == o._width && _height == o._height && _zoom == o._zoom && _pan == o._pan;
    }

private:
    int _width = 0;
    int _height = 0;
    float _zoom = 1.0f;
    GePoint2<float> _pan;
    VwPainter* _painter = nullptr;
};
