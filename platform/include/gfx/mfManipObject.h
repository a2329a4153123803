#pragma once

#include <gfx/gfxExport.h>
#include <gfx/mfAppearance.h>
#include <gfx/mfManipulator.h>

#include <vector>

// A manipulator made of appearances (MfAppearance): it draws its drawable
// appearances and is hit by any of them, drawable or not.
class TS_GFX_API MfManipObject : public MfManipulator {
public:
    // `pickTolerance`: how near, in window pixels, the pointer must come to an
    // appearance to hit it.
    explicit MfManipObject(int pickTolerance);

    void addAppearance(const RCShdPtr<MfAppearance>& appearance);
    int getAppearanceCount() const { return static_cast<int>(_appearances.size()); }
    const RCShdPtr<MfAppearance>& getAppearance(int index) const;
    int getPickTolerance() const { return _tolerance; }

    bool hitTest(const VwView& view, const GePoint2<float>& window) const override;

protected:
    void drawSelf(const VwView& view, const GeAffineMatrix3<float>& localToWindow) const override;

private:
    int _tolerance;
    std::vector<RCShdPtr<MfAppearance>> _appearances;
};
