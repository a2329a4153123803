#pragma once

#include <base/rcBase.h>
#include <base/rcShdPtr.h>
#include <base/rcStrongPtr.h>
#include <pluginAPI/piInput.h>
#include <pluginAPI/piNode.h>
#include <pluginAPI/piNodeController.h>
#include <pluginAPI/piPath.h>
#include <pluginAPI/piTimePath.h>
#include <tesseraCore/tesseraCoreExport.h>
#include <tesseraCore/tsMgTypes.h>
#include <tesseraCore/tsStageFactories.h>
#include <tesseraCore/tsTypes.h>

#include <string>
#include <vector>

// The matte-generation stage of a keyer node: its nine matte parameters, its
// two key colours and its patches. Reached by casting the keyer node's
// controller; the same controller implements TsDgInterface and
// TsSpillBlendInterface.
//
// The factories of its viewer handler and its panel: TsStageFactories.
//
// Patches: a keyer node has getPatchCount() patches, named by its
// patch-names input (one name per patch, in order); the current-patch input
// holds the index of the patch that the panel and the sample-patch tool
// edit. The inputs of the first patch exist from the start, so a tool can
// bind to the current patch of a node that has no patch yet; they only take
// effect once the patch exists.
class TS_CORE_API TsMgInterface : public virtual PiNodeController,
                                  public TsStageFactories<TsMgInterface> {
public:
    // Out of line: the interface's type information lives in libZNtesseraCore.
    ~TsMgInterface() override;

    // --- Inputs
    virtual RCShdPtr<PiInput> getMatteParamInput(TsMgTypes::MatteParam p) const = 0;
    virtual RCShdPtr<PiStructuredInput> getKeyColorInput(TsTypes::KeyColor k) const = 0;

    // --- Patches
    virtual int getPatchCount() const = 0;
    // In [0, getPatchCount() - 1], or 0 when there is no patch.
    virtual int getCurrentPatch() const = 0;
    // Writes the current-patch input (undoable). An index outside the
    // patches is reported and changes nothing.
    virtual void makePatchCurrent(int patch) = 0;
    // Appends a patch named "Patch N" to the patch-names input and makes it
    // current, as one undo step ("New Patch"); answers its index, or -1
    // (reported) when the patch inputs are locked.
    virtual int createPatch() = 0;
    virtual std::vector<std::string> getPatchNames() const = 0;
    virtual RCShdPtr<PiInput> getPatchNamesInput() const = 0;
    virtual RCShdPtr<PiInput> getCurrentPatchInput() const = 0;
    // The inputs of a patch (empty for an index without inputs): the box
    // (row 0..2, column 0..3: element (r, c) of the colour box matrix), the
    // mode (0..3), the range and the softness ([0, 1]).
    virtual RCShdPtr<PiInput> getPatchBoxInput(int patch, int row, int column) const = 0;
    virtual RCShdPtr<PiInput> getPatchModeInput(int patch) const = 0;
    virtual RCShdPtr<PiInput> getPatchRangeInput(int patch) const = 0;
    virtual RCShdPtr<PiInput> getPatchSoftnessInput(int patch) const = 0;

    // Resets the whole keyer to the values of a fresh node: matte parameters,
    // black key colours, no patches, degrain off with an identity box, and
    // the spill, blend and edge balance defaults (the plates, and locked
    // inputs, are left as they are). One undo step ("Reset Tessera") unless
    // the caller has a step open, which it joins.
    virtual void resetKeyer() = 0;

protected:
    TsMgInterface() = default;
};
