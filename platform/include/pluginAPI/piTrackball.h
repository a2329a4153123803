#pragma once

#include <pluginAPI/piWidget.h>
#include <pluginAPI/pluginAPIExport.h>

// A widget dragged with the pointer to move a value in two dimensions.
// A drag fires DragBegin at the press, DragMove at each move and DragEnd at
// the release. The delta is the whole pointer displacement since the press,
// in pixels, x to the right and y up; it stays as the drag left it until the
// next press.
class TS_PLUGIN_API PiTrackball : public virtual PiWidget {
public:
    ~PiTrackball() override;

    virtual void getDelta(float& dx, float& dy) const = 0;
    float getDeltaX() const;
    float getDeltaY() const;
    virtual bool isDragging() const = 0;
};
