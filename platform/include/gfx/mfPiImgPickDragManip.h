#pragma once

#include <gfx/gfxExport.h>
#include <gfx/mfPiImgPickManip.h>

// Picks the rectangle swept by a drag with Ctrl held (its grasp predicates: a
// left press, Ctrl held). A Ctrl-click that sweeps no pixel centre picks the
// pixel under the pointer. Draws the rectangle while dragging (a rubber
// band: light over dark).
class TS_GFX_API MfPiImgPickDragManip : public MfPiImgPickManip {
public:
    explicit MfPiImgPickDragManip(PiImgPick& imgPick);

    // The rectangle swept so far, in world coordinates.
    GeRectangle<float> getRectangle() const;

    void beginManipulation(const PiEventContext& context) override;
    void continueManipulation(const PiEventContext& context) override;
    void collect(List<CoRgbaColorTyped<float>>& colours) const override;

protected:
    void drawSelf(const VwView& view, const GeAffineMatrix3<float>& localToWindow) const override;

private:
    GePoint2<float> _start;
    GePoint2<float> _end;
};
