#include <ui/uiViewerDisplay.h>

#include <pluginAPI/piDisplayTransform.h>

#include <QPainter>
#include <QRectF>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace {

unsigned char toByte(float v) {
    return static_cast<unsigned char>(std::lround(std::clamp(v, 0.0f, 1.0f) * 255.0f));
}

std::string shortest(float v) {
    char buffer[32];
    const auto r = std::to_chars(buffer, buffer + sizeof buffer, v);
    return std::string(buffer, r.ptr);
}

} // namespace

const std::vector<std::string>& UiViewerDisplay::getChannelNames() {
    static const std::vector<std::string> names = {"rgb", "red", "green", "blue", "alpha"};
    return names;
}

const std::string& UiViewerDisplay::getChannelName(Channel channel) {
    return getChannelNames().at(static_cast<std::size_t>(channel));
}

bool UiViewerDisplay::parseChannel(const std::string& name, Channel& channel) {
    const auto& names = getChannelNames();
    const auto it = std::find(names.begin(), names.end(), name);
    if (it == names.end()) {
        return false;
    }
    channel = static_cast<Channel>(it - names.begin());
    return true;
}

void UiViewerDisplay::setBackdrop(Backdrop backdrop, const CoRgbaColorTyped<float>& colour) {
    _backdrop = backdrop;
    _colour = {std::clamp(colour.r, 0.0f, 1.0f), std::clamp(colour.g, 0.0f, 1.0f),
               std::clamp(colour.b, 0.0f, 1.0f), 1.0f};
}

std::string UiViewerDisplay::describeBackdrop() const {
    switch (_backdrop) {
    case Backdrop::Checker:
        return "checker";
    case Backdrop::Colour:
        return "colour " + shortest(_colour.r) + " " + shortest(_colour.g) + " " +
               shortest(_colour.b);
    case Backdrop::None:
        break;
    }
    return "none";
}

QImage UiViewerDisplay::convert(const PiImage& image, const PiDisplayTransform* transform) const {
    const int w = image.getWidth();
    const int h = image.getHeight();
    QImage out(w, h, QImage::Format_RGBA8888);
    if (transform) {
        transform->applyImage(image, out.bits(), static_cast<std::size_t>(out.bytesPerLine()));
    } else {
        for (int j = 0; j < h; ++j) {
            // Rows are stored bottom up; the window's go top down.
            const float* src = image.row(j);
            uchar* dst = out.scanLine(h - 1 - j);
            for (int i = 0; i < 4 * w; ++i) {
                dst[i] = toByte(src[i]);
            }
        }
    }
    // The byte shown as grey when one channel is: red, green, blue or alpha.
    if (_channel != Channel::Rgb) {
        const int grey = static_cast<int>(_channel) - 1;
        for (int j = 0; j < h; ++j) {
            uchar* row = out.scanLine(j);
            for (int i = 0; i < w; ++i) {
                uchar* p = row + 4 * i;
                p[0] = p[1] = p[2] = p[grey];
                p[3] = 255;
            }
        }
    }
    return out;
}

void UiViewerDisplay::paintBackdrop(QPainter& painter, const QRectF& rect) const {
    if (_backdrop == Backdrop::Colour) {
        painter.fillRect(rect, QColor::fromRgbF(_colour.r, _colour.g, _colour.b));
        return;
    }
    if (_backdrop != Backdrop::Checker) {
        return;
    }
    // Squares fixed to the window, so that they do not swim as the view pans.
    constexpr int Square = 8;
    painter.save();
    painter.setClipRect(rect, Qt::IntersectClip);
    painter.fillRect(rect, QColor(102, 102, 102));
    const QRect cells = rect.toAlignedRect();
    const int x0 = cells.left() - (cells.left() % Square + Square) % Square;
    const int y0 = cells.top() - (cells.top() % Square + Square) % Square;
    for (int y = y0; y <= cells.bottom(); y += Square) {
        for (int x = x0; x <= cells.right(); x += Square) {
            if ((x / Square + y / Square) % 2 != 0) {
                painter.fillRect(QRect(x, y, Square, Square), QColor(153, 153, 153));
            }
        }
    }
    painter.restore();
}
