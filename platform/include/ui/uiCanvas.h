#pragma once

#include <base/rcShdPtr.h>
#include <gfx/wsFont.h>
#include <ui/uiExport.h>

// What a widget offers to draw into: its size in pixels and its font.
class TS_UI_API UiCanvas {
public:
    UiCanvas(int width, int height, const RCShdPtr<WsFont>& font)
        : _width(width)
        , _height(height)
        , _font(font) {}

    int getWidth() const { return _width; }
    int getHeight() const { return _height; }
    const RCShdPtr<WsFont>& getFont() const { return _font; }

private:
    int _width;
    int _height;
    RCShdPtr<WsFont> _font;
};
