#pragma once

#include <base/rcBase.h>
#include <gfx/gfxExport.h>
#include <resmgt/liString.h>

// A font as layout code sees it: how wide a text is, in pixels. The ui
// library implements it on the window system's font metrics.
class TS_GFX_API WsFont : public RCBase<LkCounter<int>> {
public:
    ~WsFont() override;
    // The advance width of the UTF-8 text, in pixels.
    virtual int getTextWidth(const LiString& text) const = 0;
    // Ascent plus descent, in pixels.
    virtual int getHeight() const = 0;
};
