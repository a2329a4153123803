#include "uiScene.h"

#include <gfx/wsFontUtils.h>
#include <ui/uiFont.h>

namespace {

using UiFontTest = UiScene;

TEST_F(UiFontTest, TruncationFitsTheWidgetsFont) {
    LoggingWidget widget;
    widget.resize(120, 30);
    const UiCanvas canvas = widget.getCanvas();
    EXPECT_EQ(canvas.getWidth(), 120);
    const RCShdPtr<WsFont>& font = canvas.getFont();
    const LiString name = "A keyer node with a very long name indeed";
    ASSERT_GT(font->getTextWidth(name), 120);
    const LiString cut = WsFontUtils::truncateAtTheEnd(font, name, 120);
    EXPECT_LE(font->getTextWidth(cut), 120);
    ASSERT_GT(cut.size(), 3u);
    EXPECT_EQ(cut.substr(cut.size() - 3), "...");
    EXPECT_EQ(name.compare(0, cut.size() - 3, cut, 0, cut.size() - 3), 0);
    // One more character would not have fitted.
    const LiString longer = name.substr(0, cut.size() - 3 + 1) + "...";
    EXPECT_GT(font->getTextWidth(longer), 120);
}

} // namespace
