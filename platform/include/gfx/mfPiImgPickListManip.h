#pragma once

#include <gfx/gfxExport.h>
#include <gfx/mfPiImgPickManip.h>

// Picks the pixel under the pointer at each event of a click or a drag (its
// grasp predicate: a left press): the press, each move and a release
// elsewhere. Points off the image pick nothing. While dragging it draws the
// trail it sampled: the pixels it took, joined in the order taken.
class TS_GFX_API MfPiImgPickListManip : public MfPiImgPickManip {
public:
    explicit MfPiImgPickListManip(PiImgPick& imgPick);

    void beginManipulation(const PiEventContext& context) override;
    void continueManipulation(const PiEventContext& context) override;
    void collect(List<CoRgbaColorTyped<float>>& colours) const override;

    int getPickCount() const { return static_cast<int>(_picked.size()); }

protected:
    void drawSelf(const VwView& view, const GeAffineMatrix3<float>& localToWindow) const override;

private:
    void pick(const PiEventContext& context);

    List<CoRgbaColorTyped<float>> _picked;
    // The pixels taken, in world units, one entry a pixel in a row.
    std::vector<GeRectangle<float>> _trail;
};
