#pragma once

#include <tesseraUtil/tesseraUtilExport.h>

// Panel values of the matte parameters (all in [0, 1]) turned into the
// quantities of the matte generator, measured in the softness space of
// TsMgUtils (where the key colour is 1 away from neutral on axis 1).
// Out-of-range values are clamped to [0, 1] first; a NaN counts as 0.
class TS_UTIL_API TsMgAnimToAlgo {
public:
    static constexpr float MaxIntrusion = 0.6f;
    static constexpr float MinEdgeWidth = 0.1f;

    // "Overall" to the intrusion, the distance along axis 1 from the key
    // colour to the end of the matte's transparent core:
    //   intrusion = MaxIntrusion * overall^2
    // 0 keys the key colour and deeper ones only; the default 0.5 gives 0.15,
    // wide enough for an evenly lit, grainy screen; 1 reaches 0.6 of the way
    // to neutral. Squared so that the low end, where real screens sit, has the
    // finer control.
    static float overallToIntrusion(float overall);

    // "Edge Softness" to the opponent, the inverse of the width of the soft
    // edge along axis 1 beyond the intrusion:
    //   width = MinEdgeWidth + rangeE,   opponent = 1 / width
    // The default 0.5 gives a soft edge 0.6 wide (opponent 5/3); 0 a hard one
    // 0.1 wide (opponent 10); 1 a width of 1.1 (opponent 1/1.1). The matte is
    // opaque from d1 = intrusion + width on (TsMatteStage).
    static float rangeEToOpponent(float rangeE);

    // "Hue Plus", "Hue Minus" and the deep hues to how far, in softness units
    // along axis 2, a colour's hue may lie from the key colour's and still be
    // keyed:
    //   reach = MaxHueReach * hue^2
    // The default 0.5 gives 0.15, well beyond the grain of a screen and short
    // of a yellow-green or teal subject; squared, like the intrusion, for the
    // finer control at the low end.
    static constexpr float MaxHueReach = 0.6f;
    static float hueToReach(float hue);

    // "Shadows" and "Highlights" to how much darker and brighter than the key
    // colour the screen may be lit and still be taken for the screen, as a
    // share of the key colour's brightness (TsScreenEstimate):
    //   shadowReach    = MaxShadowReach * shadows       default 0.4: 40 % darker
    //   highlightReach = MaxHighlightReach * highlights default 1: twice as bright
    static constexpr float MaxShadowReach = 0.8f;
    static constexpr float MaxHighlightReach = 2.0f;
    static float shadowsToScreenReach(float shadows);
    static float highlightsToScreenReach(float highlights);
};
