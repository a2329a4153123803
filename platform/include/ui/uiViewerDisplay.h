#pragma once

#include <base/coRgbaColorTyped.h>
#include <pluginAPI/piImage.h>
#include <ui/uiExport.h>

#include <QImage>

#include <string>
#include <vector>

class PiDisplayTransform;
class QPainter;
class QRectF;

// How a viewer shows an image for the eye, beyond the view the node renders:
// one channel alone, and what shows through where the image is transparent
// (the backdrop). Neither changes what picks, the keyer or outputs read.
//
// A channel is shown as grey: the displayed red, green or blue byte (after
// the display transform), or the alpha, on every one of the three, opaque.
// The backdrop fills the image's extent under the image: the viewer's own
// dark grey (none), a checkerboard of 8-pixel squares fixed to the window, or
// a solid colour given in display values (0 to 1, shown as they are).
class TS_UI_API UiViewerDisplay {
public:
    enum class Channel { Rgb, Red, Green, Blue, Alpha };
    enum class Backdrop { None, Checker, Colour };

    // "rgb", "red", "green", "blue", "alpha"; false for another name.
    static const std::vector<std::string>& getChannelNames();
    static const std::string& getChannelName(Channel channel);
    static bool parseChannel(const std::string& name, Channel& channel);

    Channel getChannel() const { return _channel; }
    void setChannel(Channel channel) { _channel = channel; }
    Backdrop getBackdrop() const { return _backdrop; }
    const CoRgbaColorTyped<float>& getBackdropColour() const { return _colour; }
    // The colour is used by Backdrop::Colour only; components are clamped
    // into [0, 1].
    void setBackdrop(Backdrop backdrop,
                     const CoRgbaColorTyped<float>& colour = {0.0f, 0.0f, 0.0f, 1.0f});
    // "none", "checker", "colour R G B" (the colour's components as decimals).
    std::string describeBackdrop() const;

    // The image as the screen shows it: rows top down, 8-bit straight RGBA,
    // through the transform (null: the plain clamp) and the channel.
    QImage convert(const PiImage& image, const PiDisplayTransform* transform) const;
    // Paints the backdrop over a window rectangle (nothing for none).
    void paintBackdrop(QPainter& painter, const QRectF& rect) const;

private:
    Channel _channel = Channel::Rgb;
    Backdrop _backdrop = Backdrop::None;
    CoRgbaColorTyped<float> _colour{0.0f, 0.0f, 0.0f, 1.0f};
};
