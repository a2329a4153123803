#pragma once

#include <base/coRgbColorTyped.h>
#include <tesseraCore/tesseraCoreExport.h>

// The orthographic camera of the colour-space view. Colours are points of
// (r, g, b) space. The camera turns about the grey axis (1, 1, 1): the grey
// axis is up on the screen at elevation 0, azimuth 0 looks from the red side
// of grey, 90 from the green-minus-blue side; elevation 90 looks down the
// grey axis from white. `centre` shows at the middle of the picture, offset
// by `panX`, `panY` pixels, `scale` pixels to one unit of colour.
struct TS_CORE_API TsCsCamera {
    double azimuth = 30.0;   // degrees
    double elevation = 20.0; // degrees
    CoRgbColorTyped<float> centre{0.5f, 0.5f, 0.5f};
    float scale = 300.0f;
    float panX = 0.0f;
    float panY = 0.0f;
    int width = 800;
    int height = 600;

    // Turns the camera so that `direction` points at the viewer (a preset
    // view along an axis); a null direction leaves it as it is.
    void lookAlong(const CoRgbColorTyped<float>& direction);
    // Centres the box [lo, hi] and scales it to fill the picture whatever the
    // direction of view.
    void frame(const CoRgbColorTyped<float>& lo, const CoRgbColorTyped<float>& hi);
};

// A camera's projection, computed once for many points: picture x right and
// y down in pixels, depth towards the viewer (larger is nearer).
class TS_CORE_API TsCsProjection {
public:
    struct Point {
        float x, y, depth;
    };

    explicit TsCsProjection(const TsCsCamera& camera);

    Point operator()(const CoRgbColorTyped<float>& c) const { return (*this)(c.r, c.g, c.b); }
    Point operator()(float r, float g, float b) const {
        return {m[0] * r + m[1] * g + m[2] * b + m[3], m[4] * r + m[5] * g + m[6] * b + m[7],
                m[8] * r + m[9] * g + m[10] * b + m[11]};
    }

    // Rows x, y, depth of an affine map.
    float m[12];
};
