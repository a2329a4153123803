#pragma once

#include <base/coAffineMatrixTyped.h>
#include <base/coRgbColorTyped.h>
#include <tesseraUtil/tesseraUtilExport.h>

// The matte generator's colour geometry: the softness space of a key colour.
//
// Let K be the key colour, m = (K.r + K.g + K.b) / 3 its brightness and
// c = K - (m, m, m) its chroma, the part of K that neutral colours lack.
// With |c| its length and u = c / |c|, the three axes are orthonormal:
//
//   axis 1  e1 = -u                     from the key colour towards neutral,
//                                        where foreground colours lie
//   axis 3  e3 = (1, 1, 1) / sqrt(3)    brightness
//   axis 2  e2 = e3 x e1                hue: across the key's chroma (for a
//                                        green key towards red, for a blue key
//                                        towards green)
//
// and a colour X has the softness coordinates
//
//   d_k = e_k . (X - K) / |c|        (k = 1, 2, 3),   then d1 -= intrusion.
//
// So the space is colour space turned and scaled so that the key colour's
// distance from neutral is 1: at intrusion 0 the key colour sits at the
// origin, every neutral colour (black, greys, white) at d1 = 1, and a colour
// half way between the key colour and a grey at d1 = 0.5. A skin tone lies
// near d1 = 1.1 on a green screen and 1.5 on a blue one; colours within 0.04 of the key
// colour differ from it by 4 % of its chroma, about screen grain. Negative d1
// means deeper (more saturated) than the key colour. The intrusion moves the
// origin along axis 1 towards the foreground, to where the transparent core
// of the matte ends: d1 < 0 is then inside the core, d1 > 0 beyond it.
//
// A key colour with less chroma than MinChroma (a grey or black key, say an
// unset one) is given chroma MinChroma, along u if it has any and along the
// green direction (-1, 2, -1) / sqrt(6) if it has none; the matrix stays
// regular and finite. Non-finite key components count as 0.
class TS_UTIL_API TsMgUtils {
public:
    static constexpr float MinChroma = 1.0f / 1024.0f;

    // The axes e1, e2, e3 and the chroma length |c| (at least MinChroma) of a
    // key colour, as defined above.
    struct KeyAxes {
        CoRgbColorTyped<float> axis[3];
        float chroma = MinChroma;
    };
    static KeyAxes getKeyAxes(const CoRgbColorTyped<float>& keyColour);

    // The matrix S with rows 0, 1, 2 = d1, d2, d3 of (r, g, b, 1): row k is
    // e_k / |c| with translation -e_k . K / |c|, and row 0's translation is
    // lowered by the intrusion. The fourth row is (0, 0, 0, 1).
    static CoAffineMatrixTyped<float> getSoftnessMatrix(const CoRgbColorTyped<float>& keyColour,
                                                        float intrusion);
};
