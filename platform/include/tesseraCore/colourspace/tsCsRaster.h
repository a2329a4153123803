#pragma once

#include <tesseraCore/colourspace/tsCsCamera.h>
#include <tesseraCore/tesseraCoreExport.h>

#include <cstdint>
#include <vector>

class TsCsCloud;

// Draws a cloud's points into a 32-bit picture (0xAARRGGBB, rows top down),
// nearer points over farther ones: squares of `pointSize` pixels in the
// point's own colour (scene-linear, shown with the sRGB curve) or its matte
// (blue transparent to white opaque).
class TS_CORE_API TsCsRaster {
public:
    enum class Colouring { Own, Matte };
    struct Style {
        int pointSize = 2;
        Colouring colouring = Colouring::Own;
    };

    static void drawPoints(std::uint32_t* pixels, int width, int height, int stride,
                           const TsCsProjection& projection, const TsCsCloud& cloud,
                           const Style& style, std::vector<float>& depth);
    // The colour a point is drawn in.
    static std::uint32_t pointColour(float r, float g, float b, float alpha, Colouring colouring);
};
