#pragma once

#include <base/vwPainter.h>
#include <gfx/gfxExport.h>

#include <string>
#include <vector>

// A painter that keeps what it is told as a display list, in window
// coordinates: the viewer records its handler's drawing into one and paints
// the list over the plate; tests read it.
class TS_GFX_API WsRecordingPainter : public VwPainter {
public:
    struct Item {
        enum Kind { Line, Rect, FilledRect, Text };
        Kind kind;
        // Line: from (x0, y0) to (x1, y1). Rect and FilledRect: x0..x1 by
        // y0..y1 (x0 <= x1, y0 <= y1). Text: the baseline start at (x0, y0).
        float x0, y0, x1, y1;
        CoRgbaColorTyped<float> colour;
        std::string text;

        GeRectangle<float> getRect() const { return GeRectangle<float>(x0, x1, y0, y1); }
    };

    void drawLine(const GePoint2<float>& from, const GePoint2<float>& to,
                  const CoRgbaColorTyped<float>& colour) override;
    void drawRect(const GeRectangle<float>& rect, const CoRgbaColorTyped<float>& colour) override;
    void fillRect(const GeRectangle<float>& rect, const CoRgbaColorTyped<float>& colour) override;
    void drawText(const GePoint2<float>& at, const std::string& text,
                  const CoRgbaColorTyped<float>& colour) override;

    const std::vector<Item>& getItems() const { return _items; }
    void clear() { _items.clear(); }
    bool isEmpty() const { return _items.empty(); }

    // The items of one kind; the first text item equal to `text` (null when
    // none).
    std::vector<Item> getItems(Item::Kind kind) const;
    const Item* findText(const std::string& text) const;

private:
    std::vector<Item> _items;
};
