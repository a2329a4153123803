#include <pluginAPI/piImage.h>

#include <algorithm>
#include <cmath>

PiClip::~PiClip() = default;

PiImagePtr PiClip::getReducedAt(double, int) const {
    return PiImagePtr();
}

int PiClip::frameOf(double time) {
    return static_cast<int>(std::lround(time));
}

PiImage::PiImage(int width, int height)
    : _width(std::max(0, width))
    , _height(std::max(0, height))
    , _pixels(4 * getPixelCount(), 0.0f) {}

PiImage::PiImage(int width, int height, const CoRgbaColorTyped<float>& fill)
    : PiImage(width, height) {
    for (std::size_t k = 0; k < _pixels.size(); k += 4) {
        _pixels[k] = fill.r;
        _pixels[k + 1] = fill.g;
        _pixels[k + 2] = fill.b;
        _pixels[k + 3] = fill.a;
    }
}
