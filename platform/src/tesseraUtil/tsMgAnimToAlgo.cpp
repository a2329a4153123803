#include <tesseraUtil/tsMgAnimToAlgo.h>

#include <algorithm>

namespace {

float unitClamp(float v) {
    // NaN fails both comparisons and ends up 0.
    return v > 0.0f ? std::min(v, 1.0f) : 0.0f;
}

} // namespace

float TsMgAnimToAlgo::overallToIntrusion(float overall) {
    const float o = unitClamp(overall);
    return MaxIntrusion * o * o;
}

float TsMgAnimToAlgo::rangeEToOpponent(float rangeE) {
    return 1.0f / (MinEdgeWidth + unitClamp(rangeE));
}

float TsMgAnimToAlgo::hueToReach(float hue) {
    const float h = unitClamp(hue);
    return MaxHueReach * h * h;
}

float TsMgAnimToAlgo::shadowsToScreenReach(float shadows) {
    return MaxShadowReach * unitClamp(shadows);
}

float TsMgAnimToAlgo::highlightsToScreenReach(float highlights) {
    return MaxHighlightReach * unitClamp(highlights);
}
