#pragma once

#include <pluginAPI/piWidget.h>
#include <pluginAPI/pluginAPIExport.h>
#include <resmgt/liString.h>

// A text label. Fires Resized when its size changes, so that a plug-in can
// fit its text to the new width (UiLabel offers the font and the width).
class TS_PLUGIN_API PiLabel : public virtual PiWidget {
public:
    ~PiLabel() override;

    virtual LiString getText() const = 0;
    virtual void setText(const LiString& text) = 0;
};
