#pragma once

#include <tesseraCore/img/tsPixelMath.h>
#include <tesseraCore/tesseraCoreExport.h>
#include <tesseraCore/tsKeyerSettings.h>

#include <base/coAffineMatrixTyped.h>
#include <base/coRgbColorTyped.h>

// Spill suppression: the screen's light on the subject shows as an excess of
// the key colour's chroma. This stage takes that excess out of each colour
// and puts a neutral colour in its place (shifted by the edge balance).
//
// With the blended key colour K (as in TsMatteStage), its unit chroma
// u = -axis 1 and chroma length |c| (TsMgUtils::getKeyAxes), and a colour X:
//   sigma = (u . X) / |c|        the key's chroma in X: 1 at the key colour,
//                                0 for neutral colours, negative for colours
//                                leaning away from the key
//   D     = |X - K| / |c|        the distance from the key colour in softness
//                                units
//   R     = 0.1 + 2 * range      (range = spill[1]; default 1.1)
//   w     = clamp(2 - (D / R)^2, 0, 1)   spill is recognised fully up to
//                                        D = R and fades out by D = 1.41 R
//   m     = amount * max(0, sigma) * w * |c|     (amount = spill[0])
//   X'    = X - m u + m (bx h + by n)
// where n = (1, 1, 1) / sqrt(3), h is the unit hue axis (axis 2) signed
// towards warm (red over blue), bx = 2 edgeBalanceX - 1 and
// by = 2 edgeBalanceY - 1.
//
// So a neutral colour is never changed; the key colour itself, at amount 1,
// becomes the grey of its own brightness; a colour with spill loses the amount
// of its excess and keeps its brightness (u is free of brightness). At the
// centre of the edge balance the removed chroma is simply dropped; bx = +-1
// puts back as much as was removed along the warm (cool) axis, by = +-1 as
// much brightness (darkness).
//
// In the keyer pass X is the foreground with the screen's share already
// taken out (TsKeyerPass), and the distance D is that of the pixel as the
// plate has it, in the key colour's light: spill is recognised where the
// pixel is close to the screen, on the subject's soft edges and fine detail.
class TS_CORE_API TsDespillStage {
public:
    explicit TsDespillStage(const TsKeyerSettings& settings);

    CoRgbColorTyped<float> apply(const CoRgbColorTyped<float>& colour) const;

    // In place on n colours given as three planes (vectorised loops,
    // BlockSize colours at a time).
    static constexpr int BlockSize = 64;
    void apply(float* r, float* g, float* b, int n) const;

    // True when the stage changes nothing (amount 0): the pass skips it.
    bool isIdentity() const { return _core.scale <= 0.0f; }

    // The formula for one colour, given also its softness coordinates as
    // TsMatteStage::Base computes them (d1 lowered by the intrusion): since
    // the softness space is colour space turned and scaled by 1 / |c|,
    // D^2 = (d1 + intrusion)^2 + d2^2 + d3^2. Inline and by value, so that the
    // keyer pass can run it in one vectorised loop with the matte.
    struct Core {
        float u0, u2;    // the unit key chroma u (u1 = -u0 - u2)
        float invChroma; // 1 / |c|
        float intrusion; // the matte's shift of d1
        float invReach2; // 1 / R^2
        float scale;     // amount |c|
        float shift[3];  // bx h + by n - u: what one unit of m adds

        [[gnu::always_inline]] void apply(float& r, float& g, float& b, float d1, float d2,
                                          float d3, float zero, float one) const {
            // u . X written as u0 (r - g) + u2 (b - g): exactly 0 for every
            // neutral colour.
            const float sigma = (u0 * (r - g) + u2 * (b - g)) * invChroma;
            const float t = d1 + intrusion;
            const float distance2 = (t * t + d2 * d2 + d3 * d3) * invReach2;
            const float w = TsPixelMath::clampUnit(2.0f - distance2, zero, one);
            const float m = scale * TsPixelMath::maxOf(sigma, zero) * w;
            r += m * shift[0];
            g += m * shift[1];
            b += m * shift[2];
        }
    };
    const Core& getCore() const { return _core; }

private:
    void applyBlock(float* r, float* g, float* b) const;

    CoAffineMatrixTyped<float> _softness; // the matte's, for the coordinates
    Core _core;
};
