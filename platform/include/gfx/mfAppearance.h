#pragma once

#include <base/coRgbaColorTyped.h>
#include <base/geAffineMatrix3.h>
#include <base/geRectangle.h>
#include <base/rcBase.h>
#include <gfx/gfxExport.h>

class VwPainter;

// A shape that a manipulator object (MfManipObject) shows and is hit by, in
// the manipulator's local coordinates. An appearance that is not drawable is
// still hit: it gives an invisible manipulator its extent.
class TS_GFX_API MfAppearance : public RCBase<LkCounter<int>> {
public:
    ~MfAppearance() override;

    bool isDrawable() const { return _drawable; }
    void setDrawable(bool drawable) { _drawable = drawable; }

    // Draws the shape, mapped by `localToWindow`, in the colour given.
    virtual void draw(VwPainter& painter, const GeAffineMatrix3<float>& localToWindow,
                      const CoRgbaColorTyped<float>& colour) const = 0;
    // Whether the window point lies on the shape, or within `tolerance`
    // window pixels of it.
    virtual bool hitTest(const GeAffineMatrix3<float>& localToWindow, const GePoint2<float>& window,
                         float tolerance) const = 0;

private:
    bool _drawable = true;
};

// A rectangle, outlined and/or filled. Hit anywhere inside when filled, on its
// outline when only outlined.
class TS_GFX_API MfRectAppearance : public MfAppearance {
public:
    MfRectAppearance(bool outlined, bool filled);

    const GeRectangle<float>& getRectangle() const { return _rect; }
    void setRectangle(const GeRectangle<float>& rect) { _rect = rect; }
    bool isOutlined() const { return _outlined; }
    bool isFilled() const { return _filled; }

    void draw(VwPainter& painter, const GeAffineMatrix3<float>& localToWindow,
              const CoRgbaColorTyped<float>& colour) const override;
    bool hitTest(const GeAffineMatrix3<float>& localToWindow, const GePoint2<float>& window,
                 float tolerance) const override;

    // The window rectangle that the local rectangle covers (transforms are
    // axis-aligned: translations and scalings).
    static GeRectangle<float> toWindow(const GeAffineMatrix3<float>& localToWindow,
                                       const GeRectangle<float>& local);

private:
    bool _outlined;
    bool _filled;
    GeRectangle<float> _rect{0.0f, 0.0f, 0.0f, 0.0f};
};
