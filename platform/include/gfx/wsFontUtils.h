#pragma once

#include <base/rcShdPtr.h>
#include <gfx/gfxExport.h>
#include <gfx/wsFont.h>
#include <resmgt/liString.h>

class TS_GFX_API WsFontUtils {
public:
    // The text unchanged when it fits in `width` pixels; otherwise the longest
    // beginning of it (cut between UTF-8 characters, trailing blanks dropped)
    // followed by "..." that fits, or "" when not even "..." fits. A null font
    // throws ExNullPtr.
    static LiString truncateAtTheEnd(const RCShdPtr<WsFont>& font, const LiString& text, int width);
    static const LiString Ellipsis;
};
