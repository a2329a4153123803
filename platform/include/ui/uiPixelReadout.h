#pragma once

#include <base/coRgbaColorTyped.h>
#include <ui/uiExport.h>

#include <string>

// What lies under the pointer in a viewer, for a status line: the plate
// pixel, the plate's RGBA there (scene-linear, as picks read it) and the
// matte's value (the node's "matte" view, when it has one).
struct TS_UI_API UiPixelReadout {
    bool overImage = false; // the point lies over the plate
    int x = 0;              // the plate pixel: x right, y up from the lower left
    int y = 0;
    CoRgbaColorTyped<float> rgba;
    bool hasMatte = false;
    float matte = 0.0f;

    // "x 120  y 45    R 0.0731  G 0.4052  B 0.1080  A 1    matte 0.0021", four
    // decimals; "" when the point is not over the plate.
    std::string format() const;
};
