#pragma once

#include <tesseraCore/colourspace/tsCsCamera.h>
#include <tesseraCore/tesseraCoreExport.h>

#include <base/coRgbColorTyped.h>
#include <pluginAPI/piImage.h>

#include <cstdint>
#include <vector>

class TsCsMatte;

// A subsample of a plate's colours for the colour-space view: every step-th
// pixel each way, the step the smallest that keeps to the point budget, so
// the view costs the same on any plate. Pixels that are not finite are left
// out. Each point keeps the plate pixel it came from and its matte.
class TS_CORE_API TsCsCloud {
public:
    static constexpr int DefaultBudget = 65536;

    void build(const PiImage& plate, int budget = DefaultBudget);
    // The matte of every point (again after the key changed).
    void computeMatte(const TsCsMatte& matte);

    int size() const { return static_cast<int>(r.size()); }
    CoRgbColorTyped<float> colour(int k) const { return {r[k], g[k], b[k]}; }
    int getStep() const { return _step; }
    // The bounds of the points' colours (both 0 for an empty cloud).
    const CoRgbColorTyped<float>& getLow() const { return _low; }
    const CoRgbColorTyped<float>& getHigh() const { return _high; }

    // The point nearest to picture point (x, y) within `radius` pixels, the
    // nearest to the viewer among equals; -1 when none is that close.
    int pick(const TsCsProjection& projection, float x, float y, float radius) const;

    std::vector<float> r, g, b, alpha;
    std::vector<std::int32_t> pixelX, pixelY;

private:
    int _step = 1;
    CoRgbColorTyped<float> _low, _high;
};
