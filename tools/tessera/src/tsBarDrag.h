#pragma once

#include "tsAssertionTexts.h"

#include <gfx/mfRangeManipulator.h>

// The drag of one bar of a column of slider bars, as the sample-matte and the
// spill-and-blend tools run it: the grasp finds the bar that took it (the
// first bar, in order, that is manipulating) and the tool stops hearing its
// own changes of that bar's value; each move reads the bar's value while it
// is still being dragged; the release (or a drag the host abandons) lets the
// tool hear its changes again. `barAt(i)` answers the column's bar i.
class TsBarDrag {
public:
    // The index of the bar the grasp took among the first `count`;
    // `notFound` fails when none is manipulating.
    template <class BarAt>
    static int grasped(int count, BarAt&& barAt, const TsAssertionText& notFound) {
        for (int i = 0; i < count; ++i) {
            if (barAt(i)->isManipulating()) {
                return i;
            }
        }
        notFound.fail();
    }

    // The dragged bar's value. A bar no longer manipulating (the host ended
    // the drag without a release) runs `abandon` (the tool hears its changes
    // again), then `lost` fails.
    template <class Abandon>
    static float dragged(const MfRangeManipulator& bar, Abandon&& abandon,
                         const TsAssertionText& lost) {
        if (!bar.isManipulating()) {
            abandon();
            lost.fail();
        }
        return bar.getValue();
    }
};
