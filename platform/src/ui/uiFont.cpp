#include <ui/uiFont.h>

#include <QFontMetrics>
#include <QString>

int UiFont::getTextWidth(const LiString& text) const {
    return QFontMetrics(_font).horizontalAdvance(
        QString::fromUtf8(text.data(), static_cast<int>(text.size())));
}

int UiFont::getHeight() const {
    return QFontMetrics(_font).height();
}
