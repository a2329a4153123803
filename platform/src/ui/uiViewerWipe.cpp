#include <ui/uiViewerWipe.h>

#include <base/vwUtils.h>
#include <base/vwView.h>

#include <algorithm>
#include <cmath>

void UiViewerWipe::set(bool on, float x, const std::string& view) {
    _on = on;
    _x = x;
    _view = view;
    _dragging = _dragging && on;
}

float UiViewerWipe::windowX(const VwView& view) const {
    return view.getPan().x + view.getZoom() * _x;
}

bool UiViewerWipe::hits(const VwView& view, const GePoint2<float>& window) const {
    return _on && std::fabs(window.x - windowX(view)) <= GraspDistance;
}

void UiViewerWipe::drag(const VwView& view, const GePoint2<float>& window,
                        const GeRectangle<float>& extent) {
    const float x = VwUtils::windowToWorldOrtho(view, window).x;
    _x = extent.getWidth() > 0.0f ? std::clamp(x, extent.getXMin(), extent.getXMax()) : x;
}
