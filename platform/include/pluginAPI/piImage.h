#pragma once

#include <base/coRgbaColorTyped.h>
#include <base/memAlignedAllocator.h>
#include <base/rcBase.h>
#include <base/rcShdPtr.h>
#include <pluginAPI/piClip.h>
#include <pluginAPI/pluginAPIExport.h>

#include <cstddef>
#include <vector>

// A float RGBA image as the host passes it between nodes, the viewer and the
// image picker: scene-linear, straight (not premultiplied) colour, alpha in
// [0, 1]. An image is a still clip: the same image at every frame.
//
// Coordinates follow the viewer's world: pixel (i, j) covers [i, i+1) x
// [j, j+1), origin at the lower-left corner, y up. Rows are stored bottom to
// top, pixels left to right, four floats a pixel, so row j starts at
// data() + 4 * width * j. Readers of top-down files flip on load.
class PiImage : public PiClip {
public:
    PiImage() = default;
    TS_PLUGIN_API PiImage(int width, int height);
    TS_PLUGIN_API PiImage(int width, int height, const CoRgbaColorTyped<float>& fill);

    int getWidth() const { return _width; }
    int getHeight() const { return _height; }
    bool isEmpty() const { return _width <= 0 || _height <= 0; }
    std::size_t getPixelCount() const {
        return static_cast<std::size_t>(_width) * static_cast<std::size_t>(_height);
    }

    float* data() { return _pixels.data(); }
    const float* data() const { return _pixels.data(); }
    float* row(int j) { return _pixels.data() + 4 * static_cast<std::size_t>(_width) * j; }
    const float* row(int j) const {
        return _pixels.data() + 4 * static_cast<std::size_t>(_width) * j;
    }

    // --- PiClip
    PiImagePtr getImageAt(double, std::string* = nullptr) const override {
        return PiImagePtr(this);
    }
    int getClipWidth() const override { return _width; }
    int getClipHeight() const override { return _height; }

    bool contains(int i, int j) const { return i >= 0 && j >= 0 && i < _width && j < _height; }
    // Unchecked: the caller tests contains().
    CoRgbaColorTyped<float> getPixel(int i, int j) const {
        const float* p = row(j) + 4 * i;
        return {p[0], p[1], p[2], p[3]};
    }
    void setPixel(int i, int j, const CoRgbaColorTyped<float>& c) {
        float* p = row(j) + 4 * i;
        p[0] = c.r;
        p[1] = c.g;
        p[2] = c.b;
        p[3] = c.a;
    }

private:
    int _width = 0;
    int _height = 0;
    // Rows start on a cache line wherever the width allows (a multiple of
    // four pixels).
    std::vector<float, MemAlignedAllocator<float, 64>> _pixels;
};
