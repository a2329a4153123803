#pragma once

#include <base/coAffineMatrixTyped.h>
#include <base/coRgbColorTyped.h>
#include <base/coRgbaColorTyped.h>
#include <base/list.h>
#include <base/vector.h>
#include <tesseraUtil/tesseraUtilExport.h>

// Colour boxes fitted to picked colours.
//
// A colour box is a CoAffineMatrixTyped<float> B that maps a box of colour
// space onto the cube [-1, 1]^3: the colour (r, g, b) lies in the box when
// each component of B (r, g, b, 1) lies in [-1, 1]. The identity stands for
// "no box sampled yet", so a box fitted to colours never comes out as the
// exact identity (see avoidIdentity).
//
// A singular B (a zero scale, which a setup or a script can store) is no
// box either: along its degenerate direction it is unbounded (or empty), so
// it has no finite corners to fit around. Its corners, the cube's corners
// mapped back through B's inverse, are not a number (computeInverse), and
// computeMinimalBoxMatrix skips them: a pick that adds to a singular box
// fits the picked colours alone, as a pick on no box does.
class TS_UTIL_API TsUtils {
public:
    // The smallest half-extent of a fitted box, in colour units. A pick of one
    // flat colour has a box of zero size on every axis; it gets this
    // half-extent instead, so that the matrix stays regular and the colour
    // sits at the centre of a small but real box.
    static constexpr float MinHalfExtent = 1.0f / 1024.0f;

    // The distinct colours of `colours`, in the order of their first
    // appearance. Two colours are the same when all four components are equal
    // (0 and -0 are equal; a NaN equals a NaN with the same bits). Linear time:
    // an open-addressing hash table over the component bits.
    static Vector<CoRgbaColorTyped<float>> makeUnique(const List<CoRgbaColorTyped<float>>& colours);

    // The box matrix of the tightest axis-aligned box around the colours' r, g
    // and b (alpha is ignored; colours with a non-finite component are
    // skipped). Per axis, with lo and hi the extremes:
    //   centre c = (lo + hi) / 2
    //   half   h = max((hi - lo) / 2, MinHalfExtent) + 2^-20 * max(|lo|, |hi|)
    //   row       = (x - c) / h
    // The small second term of h keeps the extreme colours inside the cube
    // when the matrix is evaluated in float. No usable colour at all answers
    // the identity (no box).
    static CoAffineMatrixTyped<float>
    computeMinimalBoxMatrix(const Vector<CoRgbaColorTyped<float>>& colours);

    // The box rearranged to be centred on the key colour, so that it also
    // holds the mirror image of the sampled colours about the key colour:
    // screen grain scatters both ways around the screen colour, and a sample
    // that happened to catch one side of it stands for both. With p = B K (the
    // key colour in the box's cube coordinates), row r of the result is
    //   (row r of B applied to x - p_r) / ((1 + |p_r|) (1 + 2^-16)),
    // which sends K to the origin and still holds every colour of B (the last
    // factor keeps B's faces inside when evaluated in float). The
    // identity (no box) is answered unchanged, as is the box when K is not
    // finite.
    static CoAffineMatrixTyped<float>
    arrangeMatrixForPatchEdge(const CoRgbColorTyped<float>& keyColour,
                              const CoAffineMatrixTyped<float>& box);

    // A box matrix that is the exact identity by accident (a box of exactly
    // [-1, 1]^3) is nudged: its first scale becomes the float just below 1,
    // a box wider by six parts in a hundred million on the red axis. Any other
    // matrix is answered unchanged.
    static CoAffineMatrixTyped<float> avoidIdentity(const CoAffineMatrixTyped<float>& box);

    // The distance of a colour from a box in the box's cube coordinates: the
    // largest |component| of B (r, g, b, 1). At most 1 inside the box, 1 on
    // its surface, 2 on the surface of the box twice as large.
    static float boxDistance(const CoAffineMatrixTyped<float>& box, float r, float g, float b);
};
