#include <base/vwUtils.h>
#include <base/vwView.h>

#include <algorithm>
#include <cmath>

namespace {
constexpr float minZoom = 1.0f / 1024.0f;
constexpr float maxZoom = 1024.0f;
} // namespace

VwView::VwView(int width, int height, float zoom, const GePoint2<float>& pan)
    : _pan(pan) {
    setViewportSize(width, height);
    setZoom(zoom);
}

void VwView::setZoom(float zoom) {
    if (!std::isfinite(zoom) || zoom <= 0.0f) {
        return;
    }
    _zoom = std::clamp(zoom, minZoom, maxZoom);
}

void VwView::setViewportSize(int width, int height) {
    _width = std::max(0, width);
    _height = std::max(0, height);
}

GeAffineMatrix3<float> VwView::getWorldToWindow() const {
    GeAffineMatrix3<float> m = GeAffineMatrix3<float>::scaling(_zoom, -_zoom);
    m.set(0, 2, _pan.x);
    m.set(1, 2, _pan.y);
    return m;
}

void VwView::zoomAbout(const GePoint2<float>& window, float factor) {
    const GePoint2<float> world = VwUtils::windowToWorldOrtho(*this, window);
    setZoom(_zoom * factor);
    // Put the world point back under the window point.
    _pan = {window.x - _zoom * world.x, window.y + _zoom * world.y};
}

void VwView::panBy(float dx, float dy) {
    _pan = {_pan.x + dx, _pan.y + dy};
}

void VwView::fit(const GeRectangle<float>& world, float margin) {
    if (!world.isValid() || world.getWidth() <= 0.0f || world.getHeight() <= 0.0f || _width <= 0 ||
        _height <= 0) {
        return;
    }
    const float w = std::max(1.0f, static_cast<float>(_width) - 2.0f * margin);
    const float h = std::max(1.0f, static_cast<float>(_height) - 2.0f * margin);
    setZoom(std::min(w / world.getWidth(), h / world.getHeight()));
    const float cx = 0.5f * (world.getXMin() + world.getXMax());
    const float cy = 0.5f * (world.getYMin() + world.getYMax());
    _pan = {0.5f * static_cast<float>(_width) - _zoom * cx,
            0.5f * static_cast<float>(_height) + _zoom * cy};
}
