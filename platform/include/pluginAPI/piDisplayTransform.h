#pragma once

#include <cstddef>
#include <pluginAPI/pluginAPIExport.h>

class PiImage;

// Turns the host's scene-linear float RGBA into the 8-bit RGBA a display
// shows, for the viewer. It changes only what is shown: picks, the keyer and
// every output read the scene-linear image. The host installs the colour
// management's transform on each viewer; until then a viewer clamps the
// linear values to [0, 1] and shows them as they are.
class TS_PLUGIN_API PiDisplayTransform {
public:
    PiDisplayTransform() = default;
    PiDisplayTransform(const PiDisplayTransform&) = delete;
    PiDisplayTransform& operator=(const PiDisplayTransform&) = delete;
    virtual ~PiDisplayTransform();

    // `count` pixels of `rgba` (four floats each) into `out` (four bytes
    // each). Alpha is clamped to [0, 1] and scaled, never transformed.
    virtual void apply(const float* rgba, unsigned char* out, std::size_t count) const = 0;
    // A whole image, whose rows are stored bottom up, into `out` top down (a
    // window's order), row after row `outStride` bytes apart. By default row
    // by row through apply; a transform may spread the rows over threads.
    virtual void applyImage(const PiImage& image, unsigned char* out, std::size_t outStride) const;
};
