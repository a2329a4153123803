#pragma once

#include <tesseraCore/tesseraCoreExport.h>
#include <tesseraCore/tsMgInterface.h>
#include <tesseraCore/tsStageFactories.h>

// The degrain stage of a keyer node: the degrain box (colours counted as
// screen grain), its on/off flag, and the key colours it is arranged
// against. Reached by casting the keyer node's controller.
class TS_CORE_API TsDgInterface : public virtual PiNodeController,
                                  public TsStageFactories<TsDgInterface> {
public:
    // Out of line: the interface's type information lives in libZNtesseraCore.
    ~TsDgInterface() override;

    // Element (row 0..2, column 0..3) of the degrain box matrix.
    virtual RCShdPtr<PiInput> getDegrainBoxInput(int row, int column) const = 0;
    // The on/off flag (bool).
    virtual RCShdPtr<PiInput> getDegrainInput() const = 0;
    // The blend between the key colours (matte parameter 8).
    virtual RCShdPtr<PiInput> getKeyBlendInput() const = 0;
    virtual RCShdPtr<PiStructuredInput> getKeyColorInput(TsTypes::KeyColor k) const = 0;

    // True when both key colours are locked: picking them is impossible, so
    // the stage panels offer no key-colour toggles.
    virtual bool hasNoKeyColorToggles() const = 0;

    // Degrain off, identity box (locked inputs are left as they are). One
    // undo step ("Reset Screen Degrain") unless the caller has one open.
    virtual void resetDegrain() = 0;

protected:
    TsDgInterface() = default;
};
