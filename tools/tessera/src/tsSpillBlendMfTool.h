#pragma once

#include <base/rcShdPtr.h>
#include <gfx/mfTool.h>
#include <pluginAPI/piInput.h>
#include <pluginAPI/piPath.h>
#include <pluginAPI/piTimePath.h>
#include <resmgt/liString.h>

#include <vector>

class PiToolInterface;
class PiViewer;

namespace Zn {

// The slider-bar tool of the spill-and-blend stage: a stack of horizontal
// bars, one per input it edits (the spill tool: amount and range; the blend
// tool: amount and width), shown where the user clicks in the viewer.
//
// Each bar is 400 x 20 world units (x from -200 to 200), the first at the
// point clicked and each next one 30 units lower, named after its input. The
// input's range [min, max] (its PiRangeInputPolicy<double>) maps linearly
// onto the bar's x extent: min at -200, max at 200. Dragging a bar writes its
// input, one undo step per drag named by the tool's undo string; while a bar
// is dragged, changes of its own input do not move it (no echo). Changes made
// elsewhere move the bars.
//
// Showing and hiding: hidden at first. A left press shows the stack under
// the pointer (and may grasp a bar in the same press); a pointer move with
// Ctrl held (modifier mask 4) moves it there, shown. While shown, a left
// press that no bar takes, Escape or the loss of the focus hides it.
// hideManipulator hides it (the event handler calls it whenever the tool
// becomes current).
class TsSpillBlendMfTool : public MfTool {
public:
    // A tool editing `inputs`, in bar order, at the time path's time, with
    // their ranges from `toolInterface`; `path` is the node's path. Each
    // input's policy must be a PiRangeInputPolicy<double> (ExNullPtr for
    // none, ExCastFailed for another kind).
    static RCShdPtr<MfTool> create(PiViewer& viewer, const RCShdPtr<PiPath>& path,
                                   const std::vector<RCShdPtr<PiInput>>& inputs,
                                   const RCShdPtr<PiTimePath>& timePath,
                                   const PiToolInterface& toolInterface,
                                   const LiString& undoString);

    // Hides the stack and asks the viewer to redraw.
    virtual void hideManipulator() = 0;
};

} // namespace Zn

// Start-up: builds the tool's three event predicates (move the stack, show
// it, dismiss it). Shut-down does nothing.
void tsSpillBlendMfToolInitialise();
void tsSpillBlendMfToolFinalise();
