#pragma once

#include <base/coAffineMatrixTyped.h>
#include <base/coRgbColorTyped.h>
#include <tesseraCore/tesseraCoreExport.h>

#include <array>
#include <vector>

// Everything the keyer's image processing needs from one keyer node at one
// frame: the values of the node's inputs, evaluated. The node fills it
// (TsKeyerNode::getSettings); the keyer pass reads it and nothing else.
//
// The matte parameters (index = TsMgTypes::MatteParam) all range over
// [0, 1] (TsMgTool::getMatteParamMin/Max). Colours are measured in the
// softness space of the key colour (TsMgUtils::getSoftnessMatrix): axis 1
// points from the key colour towards foreground colours, axes 2 and 3 span the
// directions across it (axis 2 hue, axis 3 brightness).
//
//   0 "Overall"          how far the transparent region reaches from the key
//                        colour along axis 1 (TsMgAnimToAlgo::overallToIntrusion)
//   1 "Shadows"          reach of the transparent region on the dark side
//                        (axis 3 negative)
//   2 "Highlights"       reach on the bright side (axis 3 positive)
//   3 "Deep Hue Plus"    reach along axis 2 positive, for colours deeper than
//                        the key colour (beyond it, away from the foreground)
//   4 "Deep Hue Minus"   the same along axis 2 negative
//   5 "Hue Plus"         reach along axis 2 positive elsewhere
//   6 "Hue Minus"        reach along axis 2 negative elsewhere
//   7 "Edge Softness"    width of the soft edge between transparent and
//                        opaque along axis 1 (TsMgAnimToAlgo::rangeEToOpponent)
//   8 "Key Blend"        blend between key colour 1 (0) and key colour 2 (1)
struct TS_CORE_API TsKeyerSettings {
    static constexpr int MatteParamCount = 9;

    std::array<double, MatteParamCount> matte{0.5, 0.5, 0.5, 0.5, 0.5, 0.5, 0.5, 0.5, 0.0};
    std::array<CoRgbColorTyped<float>, 2> keyColors{};

    // A patch: a box in colour space (the matrix maps the box onto the cube
    // [-1, 1]^3; the identity means none sampled yet) in which the matte is
    // treated specially. Mode 0: not decided (the patch does nothing);
    // 1: edge (the matte inside is softened towards the middle); 2: foreground
    // (forced opaque); 3: background (forced transparent). `range` widens the
    // box (0: the box itself, 1: twice its size), `softness` is the width of
    // the transition outside it, both in [0, 1].
    struct Patch {
        CoAffineMatrixTyped<float> box;
        int mode = 0;
        double range = 0.0;
        double softness = 0.0;
    };
    std::vector<Patch> patches;

    // The degrain box: colours inside it count as screen grain and are made
    // fully transparent when degraining is on.
    CoAffineMatrixTyped<float> degrainBox;
    bool degrainOn = false;

    // Spill suppression: `spill[0]` the amount (0 none, 1 full) and `spill[1]`
    // the range (how far from the key colour spill is still recognised), both
    // in [0, 1]. The edge balance (x, y) shifts the neutral colour that spill
    // is replaced by: x towards warm (positive) or cool (negative), y towards
    // bright (positive) or dark; both centred on 0.5 with range [0, 1].
    std::array<double, 2> spill{0.5, 0.5};
    float edgeBalanceX = 0.5f;
    float edgeBalanceY = 0.5f;

    // Blend with the background: `blend[0]` the amount of background light
    // wrapped onto the foreground's edges, `blend[1]` the width of that wrap,
    // both in [0, 1].
    std::array<double, 2> blend{0.0, 0.5};
};
