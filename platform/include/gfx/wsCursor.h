#pragma once

#include <base/gePoint2.h>
#include <base/rcBase.h>
#include <resmgt/liString.h>

// A named pointer shape. The toolkit draws it (the ui library maps each name
// to a cursor of the window system); the hot spot is in the shape's pixels,
// from its top-left corner, for shapes that the toolkit draws itself.
class WsCursor : public RCBase<LkCounter<int>> {
public:
    WsCursor(const LiString& name, const GePoint2<int>& hotSpot)
        : _name(name)
        , _hotSpot(hotSpot) {}

    const LiString& getName() const { return _name; }
    const GePoint2<int>& getHotSpot() const { return _hotSpot; }

private:
    LiString _name;
    GePoint2<int> _hotSpot;
};
