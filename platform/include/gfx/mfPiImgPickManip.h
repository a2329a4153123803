#pragma once

#include <base/coRgbaColorTyped.h>
#include <base/list.h>
#include <gfx/gfxExport.h>
#include <gfx/mfManipulator.h>
#include <pluginAPI/piImgPick.h>

// The common part of the image-pick manipulators: hit wherever the pointer is
// over the image of their picker, and collecting what a manipulation picked.
class TS_GFX_API MfPiImgPickManip : public MfManipulator {
public:
    explicit MfPiImgPickManip(PiImgPick& imgPick);
    ~MfPiImgPickManip() override;

    PiImgPick& getImgPick() const { return *_imgPick; }
    bool hitTest(const VwView& view, const GePoint2<float>& window) const override;

    // Appends the colours picked by the manipulation under way (or just
    // ended) to `colours`.
    virtual void collect(List<CoRgbaColorTyped<float>>& colours) const = 0;

private:
    RCShdPtr<PiImgPick> _imgPick;
};
