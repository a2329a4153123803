#pragma once

#include <base/rcShdPtr.h>
#include <gfx/wsFont.h>
#include <resmgt/liString.h>
#include <ui/uiExport.h>

// A text as a widget shows it: the text and the font it is drawn in.
class TS_UI_API UiString {
public:
    UiString(const LiString& text, const RCShdPtr<WsFont>& font)
        : _text(text)
        , _font(font) {}

    const LiString& getText() const { return _text; }
    const RCShdPtr<WsFont>& getFont() const { return _font; }
    // The text's width in the font, in pixels.
    int getWidth() const { return _font ? _font->getTextWidth(_text) : 0; }

private:
    LiString _text;
    RCShdPtr<WsFont> _font;
};
