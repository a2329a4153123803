#include <gfx/mfAppearance.h>

#include <base/vwPainter.h>

MfAppearance::~MfAppearance() = default;

MfRectAppearance::MfRectAppearance(bool outlined, bool filled)
    : _outlined(outlined)
    , _filled(filled) {}

GeRectangle<float> MfRectAppearance::toWindow(const GeAffineMatrix3<float>& localToWindow,
                                              const GeRectangle<float>& local) {
    const GePoint2<float> a = localToWindow.transformPoint({local.getXMin(), local.getYMin()});
    const GePoint2<float> b = localToWindow.transformPoint({local.getXMax(), local.getYMax()});
    return GeRectangle<float>::fromCorners(a.x, a.y, b.x, b.y);
}

void MfRectAppearance::draw(VwPainter& painter, const GeAffineMatrix3<float>& localToWindow,
                            const CoRgbaColorTyped<float>& colour) const {
    if (!_rect.isValid()) {
        return;
    }
    const GeRectangle<float> r = toWindow(localToWindow, _rect);
    if (_filled) {
        CoRgbaColorTyped<float> fill = colour;
        fill.a *= 0.35f;
        painter.fillRect(r, fill);
    }
    if (_outlined) {
        painter.drawRect(r, colour);
    }
}

bool MfRectAppearance::hitTest(const GeAffineMatrix3<float>& localToWindow,
                               const GePoint2<float>& window, float tolerance) const {
    if (!_rect.isValid()) {
        return false;
    }
    const GeRectangle<float> r = toWindow(localToWindow, _rect);
    const GeRectangle<float> outer(r.getXMin() - tolerance, r.getXMax() + tolerance,
                                   r.getYMin() - tolerance, r.getYMax() + tolerance);
    if (!outer.contains(window.x, window.y)) {
        return false;
    }
    if (_filled) {
        return true;
    }
    // Outline only: not deep inside.
    const GeRectangle<float> inner(r.getXMin() + tolerance, r.getXMax() - tolerance,
                                   r.getYMin() + tolerance, r.getYMax() - tolerance);
    return !inner.isValid() || !(window.x > inner.getXMin() && window.x < inner.getXMax() &&
                                 window.y > inner.getYMin() && window.y < inner.getYMax());
}
