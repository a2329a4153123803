#pragma once

#include <base/coAffineMatrixTyped.h>
#include <base/coRgbColorTyped.h>
#include <tesseraCore/tesseraCoreExport.h>

#include <array>
#include <vector>

class TsCsMatte;
struct TsKeyerSettings;

// The key in colour space, as the colour-space view draws it: the key colours
// and their blend, the softness axes from the blend, every patch's box and
// the degrain box by their corners, and where the matte crosses 0, 0.5 and 1
// on a slice through the blend.
//
// Softness space here is the key's without the intrusion: the blended key
// colour is its origin, and axes[k] is one softness unit along axis k + 1 in
// (r, g, b). The slice is the plane through the key colour spanned by the two
// axes other than `sliceNormal`; the matte is sampled on a grid over it (as
// far as the box [lo, hi] reaches) and its level lines traced there.
struct TS_CORE_API TsCsScene {
    using Colour = CoRgbColorTyped<float>;

    // The levels drawn: just above 0, 0.5, just below 1.
    static constexpr std::array<float, 3> Levels{0.01f, 0.5f, 0.99f};
    static constexpr int SliceGrid = 96;

    struct Box {
        int mode = 0; // a patch's mode (0 to 3); -1 for the degrain box
        // Corner k is the inverse of the box's matrix at (x, y, z) with
        // x = -1 or 1 as bit 0 of k is clear or set, y bit 1, z bit 2.
        std::array<Colour, 8> corners;
    };
    struct Segment {
        Colour a, b;
    };

    std::array<Colour, 2> keyColours;
    Colour key;
    bool hasAxes = false; // false for a key colour without chroma (black, grey)
    std::array<Colour, 3> axes;
    CoAffineMatrixTyped<float> softness; // (r, g, b) to softness coordinates
    int sliceNormal = 2;
    std::vector<Box> boxes; // the patches that act, then the degrain box when on
    std::array<std::vector<Segment>, Levels.size()> levels;

    static TsCsScene build(const TsKeyerSettings& settings, const TsCsMatte& matte,
                           const Colour& lo, const Colour& hi, int sliceNormal = 2);
    // The box whose matrix maps it onto the cube [-1, 1]^3; false for a
    // matrix without an inverse.
    static bool boxOf(const CoAffineMatrixTyped<float>& matrix, int mode, Box& box);
    // The corners joined by the box's twelve edges.
    static const std::array<std::array<int, 2>, 12>& boxEdges();
};
