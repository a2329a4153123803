#pragma once

#include <base/rcShdPtr.h>
#include <pluginAPI/piInput.h>
#include <pluginAPI/piNode.h>
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
class TsKeyerNode : public PiNode {
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
    int getPatchCount() const;
    int getCurrentPatch() const;
    std::vector<std::string> getPatchNames() const;
    void makePatchCurrent(int patch);
    int createPatch();
    // The patches that have inputs (at least 1, at least getPatchCount()).
    int getPatchInputCount() const { return static_cast<int>(_patches.size()); }
    // Makes the inputs of patches up to `count` exist. New inputs hold their
    // defaults. In a graph, their coming is a change of the node's structure
    // that the command stack records, so that undo takes them away again.
    void ensurePatchInputs(int count);
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
    // The undo and redo of ensurePatchInputs.
    void dropPatchInputs(std::size_t count);
    void restorePatchInputs(const std::vector<PatchInputs>& patches);

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
};
