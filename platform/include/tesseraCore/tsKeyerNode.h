#pragma once

#include <base/rcShdPtr.h>
#include <pluginAPI/piInput.h>
#include <pluginAPI/piNode.h>
#include <tesseraCore/tesseraCoreExport.h>
#include <tesseraCore/tsKeyerSettings.h>
#include <tesseraCore/tsMgTypes.h>
#include <tesseraCore/tsTypes.h>

#include <array>
#include <string>
#include <vector>

// A keyer node: the plate and background image inputs and every setting of
// the keyer as an animatable input. Its controller implements TsMgInterface,
// TsDgInterface, TsSpillBlendInterface, PiToolInterface and PiImageModifier.
//
// Inputs (socket names; defaults are those of TsKeyerSettings):
//   "image", "background"            images (constant over time)
//   "overall" .. "keyBlend"          the nine matte parameters, [0, 1]
//   "keyColor1", "keyColor2"         structured colours, black on a new node
//   "patchNames", "currentPatch"     the patches' names and the current index
//                                    (both static: not animated)
//   "degrain.on", "degrain.box_R_C"  the degrain flag (off) and its box
//                                    (identity), R 0..2, C 0..3
//   "spill.amount", "spill.range", "blend.amount", "blend.width",
//   "edgeBalance.x", "edgeBalance.y" [0, 1]
//   "patchN.box_R_C", "patchN.mode", "patchN.range", "patchN.softness"
//                                    per patch, N from 1; mode 0..3, range
//                                    and softness [0, 1]
// Colour boxes are stored by element: input box_R_C holds element (R, C) of
// the CoAffineMatrixTyped<float> (storage element 4C + R); the fourth row is
// always (0, 0, 0, 1).
class TS_CORE_API TsKeyerNode : public PiNode {
public:
    static RCShdPtr<TsKeyerNode> create(const LiString& name);
    ~TsKeyerNode() override;

    // Everything the keyer's image processing needs at a frame.
    TsKeyerSettings getSettings(double time) const;

    const RCShdPtr<PiInput>& getImageInput() const { return _image; }
    const RCShdPtr<PiInput>& getBackgroundInput() const { return _background; }
    const RCShdPtr<PiInput>& getMatteParamInput(TsMgTypes::MatteParam p) const;
    const RCShdPtr<PiStructuredInput>& getKeyColorInput(TsTypes::KeyColor k) const;
    const RCShdPtr<PiInput>& getPatchNamesInput() const { return _patchNames; }
    const RCShdPtr<PiInput>& getCurrentPatchInput() const { return _currentPatch; }
    const RCShdPtr<PiInput>& getDegrainInput() const { return _degrainOn; }
    const RCShdPtr<PiInput>& getDegrainBoxInput(int row, int column) const;
    const RCShdPtr<PiInput>& getSpillInput(int index) const { return _spill.at(index); }
    const RCShdPtr<PiInput>& getBlendInput(int index) const { return _blend.at(index); }
    const RCShdPtr<PiInput>& getEdgeBalanceInput(int axis) const { return _edgeBalance.at(axis); }

    // --- Patches (see TsMgInterface)
    //
    // A patch is a name of the patch-names input and its own inputs (box,
    // mode, range, softness): the node holds one set of patch inputs per
    // name, and the first set also while no patch is named, so that a tool
    // can bind to the current patch from the start. Every path keeps the two
    // in step: an edit of the names that adds names adds their inputs (in the
    // edit's undo step, named "New Patch"); an edit that would remove names
    // is refused (getPatchNamesRefusal); createPatch, the resets and setup
    // loads change both in one step; undo and redo put both back.
    int getPatchCount() const;
    int getCurrentPatch() const;
    std::vector<std::string> getPatchNames() const;
    void makePatchCurrent(int patch);
    int createPatch();
    // The sets of patch inputs: max(1, getPatchCount()) but while undo or
    // redo puts a step back.
    int getPatchInputCount() const { return static_cast<int>(_patches.size()); }
    // Makes the node hold `count` (at least 1) sets of patch inputs: new ones
    // hold their defaults, dropped ones go with their values. In a graph,
    // this is a change of the node's structure that the command stack
    // records, so that undo puts the sets back as they were.
    void setPatchInputCount(int count);
    // Why an edit writing `names` into the patch-names input is refused
    // ("" when it is taken): it would leave patches without a name.
    LiString getPatchNamesRefusal(const PiValue& names) const;
    // The patch names changed (an edit, a load, undo, redo): names added by
    // an edit get their inputs, and the edit's step is a "New Patch".
    void patchNamesChanged();
    // Empty for a patch without inputs or an element out of range.
    RCShdPtr<PiInput> getPatchBoxInput(int patch, int row, int column) const;
    RCShdPtr<PiInput> getPatchModeInput(int patch) const;
    RCShdPtr<PiInput> getPatchRangeInput(int patch) const;
    RCShdPtr<PiInput> getPatchSoftnessInput(int patch) const;

    // --- Resets (see the interfaces): each writes the documented defaults
    // through the command stack as one step unless one is open.
    void resetMatteGeneration();
    void resetDegrain();
    void resetSpillBlend();
    void resetKeyer();

    // True when both key colours are locked.
    bool areKeyColorsLocked() const;

private:
    explicit TsKeyerNode(const LiString& name);

    struct PatchInputs {
        std::array<RCShdPtr<PiInput>, 12> box; // row-major: 4 * row + column
        RCShdPtr<PiInput> mode;
        RCShdPtr<PiInput> range;
        RCShdPtr<PiInput> softness;
    };

    RCShdPtr<PiInput> addDouble(const LiString& name, double value, bool ranged);
    std::array<RCShdPtr<PiInput>, 12> addBox(const LiString& prefix);
    const PatchInputs* patchInputs(int patch) const;
    static std::vector<RCShdPtr<PiInput>> inputsOf(const PatchInputs& patch);
    // The undo and redo of setPatchInputCount.
    void dropPatchInputs(std::size_t count);
    void restorePatchInputs(const std::vector<PatchInputs>& patches);
    // Empties the patch-names input and keeps one set of patch inputs (a
    // reset); nothing when the names are locked.
    void removePatches();

    RCShdPtr<PiInput> _image;
    RCShdPtr<PiInput> _background;
    std::array<RCShdPtr<PiInput>, TsMgTypes::MatteParamCount> _matte;
    std::array<RCShdPtr<PiStructuredInput>, 2> _keyColors;
    RCShdPtr<PiInput> _patchNames;
    RCShdPtr<PiInput> _currentPatch;
    RCShdPtr<PiInput> _degrainOn;
    std::array<RCShdPtr<PiInput>, 12> _degrainBox;
    std::array<RCShdPtr<PiInput>, 2> _spill;
    std::array<RCShdPtr<PiInput>, 2> _blend;
    std::array<RCShdPtr<PiInput>, 2> _edgeBalance;
    std::vector<PatchInputs> _patches;
    // Set while the node itself removes patches with their names.
    bool _removingPatches = false;
    // The names the patch-names input held when it last changed.
    int _namedPatches = 0;
};
