#pragma once

#include <base/geRectangle.h>
#include <gfx/gfxExport.h>
#include <gfx/mfManipulator.h>

#include <string>

// A horizontal slider bar: a rectangle in local coordinates with a value on
// its x extent. Dragging puts the value where the pointer is (its local x,
// clamped to the extent): the handle follows the pointer, it is not moved by
// the pointer's displacement. A grasp alone does not change the value.
// setValue takes any value as it is; the bar draws the handle clamped.
//
// Drawn as the bar's outline, the handle (a filled band at the value, the
// bar's height) and the name, left-aligned inside the bar, each of its words
// capitalised as the panels write their fields. A bar is a control on the
// screen: see MfManipulator for its tree's frame.
class TS_GFX_API MfRangeManipulator : public MfManipulator {
public:
    // Starts at the middle of the extent.
    MfRangeManipulator(const GeRectangle<float>& rect, const std::string& name);

    float getValue() const { return _value; }
    void setValue(float value) { _value = value; }
    const GeRectangle<float>& getRectangle() const { return _rect; }
    const std::string& getName() const { return _name; }
    // The handle's width in local units.
    static constexpr float HandleWidth = 6.0f;

    bool hitTest(const VwView& view, const GePoint2<float>& window) const override;
    void continueManipulation(const PiEventContext& context) override;

protected:
    void drawSelf(const VwView& view, const GeAffineMatrix3<float>& localToWindow) const override;

private:
    void follow(const PiEventContext& context);

    GeRectangle<float> _rect;
    std::string _name;
    float _value;
};
