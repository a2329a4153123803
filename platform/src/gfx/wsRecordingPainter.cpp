#include <gfx/wsRecordingPainter.h>

void WsRecordingPainter::drawLine(const GePoint2<float>& from, const GePoint2<float>& to,
                                  const CoRgbaColorTyped<float>& colour) {
    _items.push_back({Item::Line, from.x, from.y, to.x, to.y, colour, {}});
}

void WsRecordingPainter::drawRect(const GeRectangle<float>& rect,
                                  const CoRgbaColorTyped<float>& colour) {
    _items.push_back(
        {Item::Rect, rect.getXMin(), rect.getYMin(), rect.getXMax(), rect.getYMax(), colour, {}});
}

void WsRecordingPainter::fillRect(const GeRectangle<float>& rect,
                                  const CoRgbaColorTyped<float>& colour) {
    _items.push_back({Item::FilledRect,
                      rect.getXMin(),
                      rect.getYMin(),
                      rect.getXMax(),
                      rect.getYMax(),
                      colour,
                      {}});
}

void WsRecordingPainter::drawText(const GePoint2<float>& at, const std::string& text,
                                  const CoRgbaColorTyped<float>& colour) {
    _items.push_back({Item::Text, at.x, at.y, at.x, at.y, colour, text});
}

std::vector<WsRecordingPainter::Item> WsRecordingPainter::getItems(Item::Kind kind) const {
    std::vector<Item> out;
    for (const Item& item : _items) {
        if (item.kind == kind) {
            out.push_back(item);
        }
    }
    return out;
}

const WsRecordingPainter::Item* WsRecordingPainter::findText(const std::string& text) const {
    for (const Item& item : _items) {
        if (item.kind == Item::Text && item.text == text) {
            return &item;
        }
    }
    return nullptr;
}
