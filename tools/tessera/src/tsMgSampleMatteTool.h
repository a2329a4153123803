#pragma once

#include "tsMgInputValues.h"

#include <base/rcShdPtr.h>
#include <gfx/mfTool.h>

class PiImgPick;
class PiViewer;

// The sample-matte tool of a keyer node's viewer.
//
// A left click on the image (while nothing is shown), or a pointer move with
// Ctrl held, samples the 5 x 5 pixels around the point: it measures the
// colours against the blended key colour along the softness axes and gives
// each of the matte parameters 0 to 7 a level from 0 (untouched) to 5. A
// column of slider bars (400 x 20 window pixels, 30 apart) then hangs down
// from the point, the most affected parameters on top; a parameter the
// sample did not touch has its bar hidden. Dragging a bar writes its
// parameter, as one undo step named by the text of "MSG_TS_SET_MATTE_SAMPLE";
// a parameter changed anywhere else moves its bar.
//
// While the column is shown, a left click that no bar takes, Escape or the
// loss of the focus hides it; so does the tool becoming current again
// (toolChanged).
class TsMgSampleMatteTool : public MfTool {
public:
    // ExNullPtr when the values are missing.
    static RCShdPtr<MfTool> create(PiImgPick& imgPick, const RCShdPtr<TsMgInputValues>& values,
                                   PiViewer& viewer);

    // The tool was made current: the column is hidden and the viewer redrawn.
    virtual void toolChanged() = 0;
};

// Start-up: builds the tool's event predicates, registers the subscription
// "MSG_TS_SET_MATTE_SAMPLE" and computes the mapping between parameter values
// and bar positions. Shut-down does nothing.
void tsMgSampleMatteToolInitialise();
void tsMgSampleMatteToolFinalise();
