#include <base/vwUtils.h>
#include <base/vwView.h>

GePoint2<float> VwUtils::windowToWorldOrtho(const VwView& view, const GePoint2<float>& window) {
    const float z = view.getZoom();
    return {(window.x - view.getPan().x) / z, (view.getPan().y - window.y) / z};
}

GePoint2<float> VwUtils::worldToWindowOrtho(const VwView& view, const GePoint2<float>& world) {
    const float z = view.getZoom();
    return {view.getPan().x + z * world.x, view.getPan().y - z * world.y};
}

GeRectangle<float> VwUtils::windowToWorldOrtho(const VwView& view,
                                               const GeRectangle<float>& window) {
    const GePoint2<float> a = windowToWorldOrtho(view, {window.getXMin(), window.getYMin()});
    const GePoint2<float> b = windowToWorldOrtho(view, {window.getXMax(), window.getYMax()});
    return GeRectangle<float>::fromCorners(a.x, a.y, b.x, b.y);
}

GeRectangle<float> VwUtils::worldToWindowOrtho(const VwView& view,
                                               const GeRectangle<float>& world) {
    const GePoint2<float> a = worldToWindowOrtho(view, {world.getXMin(), world.getYMin()});
    const GePoint2<float> b = worldToWindowOrtho(view, {world.getXMax(), world.getYMax()});
    return GeRectangle<float>::fromCorners(a.x, a.y, b.x, b.y);
}
