#pragma once

#include <gfx/wsFont.h>
#include <ui/uiExport.h>

#include <QFont>

// A host font on a window-system font.
class TS_UI_API UiFont : public WsFont {
public:
    explicit UiFont(const QFont& font)
        : _font(font) {}

    int getTextWidth(const LiString& text) const override;
    int getHeight() const override;
    const QFont& getQFont() const { return _font; }

private:
    QFont _font;
};
