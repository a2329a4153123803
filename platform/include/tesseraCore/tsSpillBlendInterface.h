#pragma once

#include <tesseraCore/tesseraCoreExport.h>
#include <tesseraCore/tsMgInterface.h>
#include <tesseraCore/tsStageFactories.h>

// The spill-and-blend stage of a keyer node: spill suppression, the blend
// with the background, and the spill edge balance. Reached by casting the
// keyer node's controller. Its six inputs carry PiRangeInputPolicy<double>
// bounds (all [0, 1]).
class TS_CORE_API TsSpillBlendInterface : public virtual PiNodeController,
                                          public TsStageFactories<TsSpillBlendInterface> {
public:
    // Out of line: the interface's type information lives in libZNtesseraCore.
    ~TsSpillBlendInterface() override;

    // Spill: 0 the amount ("spill.amount"), 1 the range ("spill.range").
    virtual RCShdPtr<PiInput> getSpillInput(int index) const = 0;
    // Blend: 0 the amount ("blend.amount"), 1 the width ("blend.width").
    virtual RCShdPtr<PiInput> getBlendInput(int index) const = 0;
    // Edge balance: 0 x ("edgeBalance.x"), 1 y ("edgeBalance.y").
    virtual RCShdPtr<PiInput> getEdgeBalanceInput(int axis) const = 0;
    virtual RCShdPtr<PiStructuredInput> getKeyColorInput(TsTypes::KeyColor k) const = 0;

    // See TsDgInterface::hasNoKeyColorToggles.
    virtual bool hasNoKeyColorToggles() const = 0;

    // Spill amount and range 0.5, blend amount 0 and width 0.5, edge balance
    // (0.5, 0.5) (locked inputs are left as they are). One undo step ("Reset
    // Spill & Blend") unless the caller has one open.
    virtual void resetSpillBlend() = 0;

protected:
    TsSpillBlendInterface() = default;
};
