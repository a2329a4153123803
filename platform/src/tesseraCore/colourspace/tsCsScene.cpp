#include <tesseraCore/colourspace/tsCsScene.h>

#include <tesseraCore/colourspace/tsCsMatte.h>
#include <tesseraCore/tsKeyerSettings.h>
#include <tesseraUtil/tsMgUtils.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using Colour = TsCsScene::Colour;

bool isFinite(const Colour& c) {
    return std::isfinite(c.r) && std::isfinite(c.g) && std::isfinite(c.b);
}

// The segments of one grid cell at a level, as pairs of the cell's edges
// (0 bottom, 1 right, 2 top, 3 left), by which corners (bit 0 lower left,
// then counter-clockwise) are at or above it.
constexpr int CellEdges[16][4] = {
    {-1, -1, -1, -1}, {3, 0, -1, -1}, {0, 1, -1, -1}, {3, 1, -1, -1},
    {1, 2, -1, -1},   {3, 0, 1, 2},   {0, 2, -1, -1}, {3, 2, -1, -1},
    {2, 3, -1, -1},   {0, 2, -1, -1}, {0, 1, 2, 3},   {1, 2, -1, -1},
    {1, 3, -1, -1},   {0, 1, -1, -1}, {3, 0, -1, -1}, {-1, -1, -1, -1}};

// Traces the level lines of a grid of values over the plane
// origin + u axisU + v axisV, u and v from their low ends in equal steps.
class LevelTracer {
public:
    LevelTracer(const std::vector<float>& values, int n, const Colour& origin, const Colour& axisU,
                const Colour& axisV, float u0, float v0, float du, float dv)
        : _values(values)
        , _n(n)
        , _origin(origin)
        , _axisU(axisU)
        , _axisV(axisV)
        , _u0(u0)
        , _v0(v0)
        , _du(du)
        , _dv(dv) {}

    void trace(float level, std::vector<TsCsScene::Segment>& out) const {
        for (int y = 0; y < _n; ++y) {
            for (int x = 0; x < _n; ++x) {
                const int corners[4][2] = {{x, y}, {x + 1, y}, {x + 1, y + 1}, {x, y + 1}};
                int index = 0;
                for (int c = 0; c < 4; ++c) {
                    if (value(corners[c][0], corners[c][1]) >= level) {
                        index |= 1 << c;
                    }
                }
                const int* edges = CellEdges[index];
                for (int s = 0; s < 4 && edges[s] >= 0; s += 2) {
                    out.push_back(
                        {onEdge(corners, edges[s], level), onEdge(corners, edges[s + 1], level)});
                }
            }
        }
    }

private:
    float value(int x, int y) const { return _values[static_cast<std::size_t>(y) * (_n + 1) + x]; }

    Colour onEdge(const int (&corners)[4][2], int edge, float level) const {
        const int* a = corners[edge];
        const int* b = corners[(edge + 1) % 4];
        const float fa = value(a[0], a[1]);
        const float fb = value(b[0], b[1]);
        const float t = fb != fa ? std::clamp((level - fa) / (fb - fa), 0.0f, 1.0f) : 0.5f;
        const float x = static_cast<float>(a[0]) + t * static_cast<float>(b[0] - a[0]);
        const float y = static_cast<float>(a[1]) + t * static_cast<float>(b[1] - a[1]);
        return _origin + _axisU * (_u0 + x * _du) + _axisV * (_v0 + y * _dv);
    }

    const std::vector<float>& _values;
    int _n;
    Colour _origin, _axisU, _axisV;
    float _u0, _v0, _du, _dv;
};

} // namespace

bool TsCsScene::boxOf(const CoAffineMatrixTyped<float>& matrix, int mode, Box& box) {
    CoAffineMatrixTyped<float> inverse;
    if (!matrix.computeInverse(inverse)) {
        return false;
    }
    box.mode = mode;
    for (int k = 0; k < 8; ++k) {
        box.corners[k] = inverse.transform((k & 1) ? 1.0f : -1.0f, (k & 2) ? 1.0f : -1.0f,
                                           (k & 4) ? 1.0f : -1.0f);
    }
    return std::all_of(box.corners.begin(), box.corners.end(), isFinite);
}

const std::array<std::array<int, 2>, 12>& TsCsScene::boxEdges() {
    static const std::array<std::array<int, 2>, 12> edges = {{{0, 1},
                                                              {2, 3},
                                                              {4, 5},
                                                              {6, 7},
                                                              {0, 2},
                                                              {1, 3},
                                                              {4, 6},
                                                              {5, 7},
                                                              {0, 4},
                                                              {1, 5},
                                                              {2, 6},
                                                              {3, 7}}};
    return edges;
}

TsCsScene TsCsScene::build(const TsKeyerSettings& settings, const TsCsMatte& matte,
                           const Colour& lo, const Colour& hi, int sliceNormal) {
    TsCsScene scene;
    scene.keyColours = settings.keyColors;
    scene.key = matte.getKeyColour();
    scene.sliceNormal = std::clamp(sliceNormal, 0, 2);
    const auto identity = CoAffineMatrixTyped<float>::IDENTITY;
    for (const TsKeyerSettings::Patch& patch : settings.patches) {
        Box box;
        if (patch.mode >= 1 && patch.mode <= 3 && patch.box != identity &&
            boxOf(patch.box, patch.mode, box)) {
            scene.boxes.push_back(box);
        }
    }
    Box degrain;
    if (settings.degrainOn && settings.degrainBox != identity &&
        boxOf(settings.degrainBox, -1, degrain)) {
        scene.boxes.push_back(degrain);
    }

    scene.softness = TsMgUtils::getSoftnessMatrix(scene.key, 0.0f);
    CoAffineMatrixTyped<float> inverse;
    if (!scene.softness.computeInverse(inverse)) {
        return scene;
    }
    for (int k = 0; k < 3; ++k) {
        scene.axes[k] = {inverse.get(0, k), inverse.get(1, k), inverse.get(2, k)};
    }
    scene.hasAxes = std::all_of(scene.axes.begin(), scene.axes.end(), isFinite);
    if (!scene.hasAxes) {
        return scene;
    }

    // The slice reaches as far as the box [lo, hi] does along its two axes.
    const int iu = scene.sliceNormal == 0 ? 1 : 0;
    const int iv = scene.sliceNormal == 2 ? 1 : 2;
    float u0 = std::numeric_limits<float>::max(), u1 = -u0, v0 = u0, v1 = -u0;
    for (int k = 0; k < 8; ++k) {
        const Colour corner{(k & 1) ? hi.r : lo.r, (k & 2) ? hi.g : lo.g, (k & 4) ? hi.b : lo.b};
        const Colour d = scene.softness.transform(corner);
        u0 = std::min(u0, d[iu]);
        u1 = std::max(u1, d[iu]);
        v0 = std::min(v0, d[iv]);
        v1 = std::max(v1, d[iv]);
    }
    if (!(u1 > u0) || !(v1 > v0)) {
        return scene;
    }
    constexpr int n = SliceGrid;
    const float du = (u1 - u0) / n;
    const float dv = (v1 - v0) / n;
    std::vector<float> values(static_cast<std::size_t>(n + 1) * (n + 1));
    for (int y = 0; y <= n; ++y) {
        for (int x = 0; x <= n; ++x) {
            values[static_cast<std::size_t>(y) * (n + 1) + x] = matte.alphaOf(
                scene.key + scene.axes[iu] * (u0 + x * du) + scene.axes[iv] * (v0 + y * dv));
        }
    }
    const LevelTracer tracer(values, n, scene.key, scene.axes[iu], scene.axes[iv], u0, v0, du, dv);
    for (std::size_t l = 0; l < Levels.size(); ++l) {
        tracer.trace(Levels[l], scene.levels[l]);
    }
    return scene;
}
