#pragma once

// Panel values of the matte parameters (all in [0, 1]) turned into the
// quantities of the matte generator, measured in the softness space of
// TsMgUtils (where the key colour is 1 away from neutral on axis 1).
// Out-of-range values are clamped to [0, 1] first; a NaN counts as 0.
class TsMgAnimToAlgo {
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

    // "Edge Softness" to the opponent, the slope of the matte beyond the core
    // along axis 1 (alpha per unit of d1):
    //   width = MinEdgeWidth + rangeE,   opponent = 1 / width
    // The default 0.5 gives a soft edge 0.6 wide (opponent 5/3); 0 a hard one
    // 0.1 wide (opponent 10); 1 a width of 1.1 (opponent 1/1.1).
    static float rangeEToOpponent(float rangeE);
};
