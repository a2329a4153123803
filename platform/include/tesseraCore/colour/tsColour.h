#pragma once

#include <pluginAPI/piDisplayTransform.h>

// Every colour conversion of the keyer happens here, and nowhere else: the
// keyer works in one scene-linear space, into which plates are converted
// once, as they are read; outputs are converted out of it as they are
// written; the viewer shows it through the display transform. The encoding
// of integer files is the sRGB transfer curve:
//   decode(v) = v / 12.92                      for v <= 0.04045
//               ((v + 0.055) / 1.055)^2.4      above
//   encode(v) = 12.92 v                        for v <= 0.0031308
//               1.055 v^(1/2.4) - 0.055        above
class TsColour {
public:
    // A file's code value in [0, 1] to the working space, and back.
    static float decode(float v);
    static float encode(float v);

    // The viewer's transform: the encoding, clamped to [0, 1], rounded to
    // 8 bits.
    static const PiDisplayTransform& getDisplayTransform();
};
