#include "tsKeyerController.h"
#include "tsUndoStep.h"

#include <tesseraCore/tsKeyerNode.h>
#include <tesseraCore/tsMgTool.h>

#include <base/exReporter.h>

#include <algorithm>

namespace {

const RCShdPtr<const PiInputPolicy>& unitRange() {
    static const auto* policy =
        new RCShdPtr<const PiInputPolicy>(new PiRangeInputPolicy<double>(0.0, 1.0));
    return *policy;
}

const RCShdPtr<const PiInputPolicy>& modeRange() {
    static const auto* policy =
        new RCShdPtr<const PiInputPolicy>(new PiRangeInputPolicy<int>(0, 3));
    return *policy;
}

LiString boxName(const LiString& prefix, int row, int column) {
    return prefix + ".box_" + std::to_string(row) + "_" + std::to_string(column);
}

LiString patchPrefix(int patch) {
    return "patch" + std::to_string(patch + 1);
}

CoAffineMatrixTyped<float> readBox(const std::array<RCShdPtr<PiInput>, 12>& box, double time) {
    CoAffineMatrixTyped<float> m;
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 4; ++c) {
            m.set(r, c, static_cast<float>(box[4 * r + c]->getTypedValue<double>(time)));
        }
    }
    return m;
}

const TsKeyerSettings defaults;

} // namespace

RCShdPtr<TsKeyerNode> TsKeyerNode::create(const LiString& name) {
    RCShdPtr<TsKeyerNode> node(new TsKeyerNode(name));
    node->setController(RCShdPtr<PiNodeController>(new TsKeyerController));
    return node;
}

TsKeyerNode::TsKeyerNode(const LiString& name)
    : PiNode(name) {
    _image = rcMake<PiInput>("image", PiValue(PiImagePtr()));
    _background = rcMake<PiInput>("background", PiValue(PiImagePtr()));
    addInput(_image);
    addInput(_background);
    for (auto p = TsMgTypes::Overall; p < TsMgTypes::MatteParamCount; p = TsMgTypes::next(p)) {
        _matte[p] = addDouble(TsMgTool::getMatteParamInputName(p), defaults.matte[p], true);
    }
    for (int k = 0; k < 2; ++k) {
        _keyColors[k] =
            rcMake<PiStructuredInput>("keyColor" + std::to_string(k + 1), defaults.keyColors[k]);
        addInput(_keyColors[k]);
    }
    _patchNames = rcMake<PiInput>(TsMgTool::getPatchNamesName(), PiValue(PiStringList{}));
    _currentPatch = rcMake<PiInput>(TsMgTool::getCurrentPatchName(), PiValue(0));
    _currentPatch->setStatic();
    addInput(_patchNames);
    addInput(_currentPatch);
    _degrainOn = rcMake<PiInput>("degrain.on", PiValue(defaults.degrainOn));
    addInput(_degrainOn);
    _degrainBox = addBox("degrain");
    _spill = {addDouble("spill.amount", defaults.spill[0], true),
              addDouble("spill.range", defaults.spill[1], true)};
    _blend = {addDouble("blend.amount", defaults.blend[0], true),
              addDouble("blend.width", defaults.blend[1], true)};
    _edgeBalance = {addDouble("edgeBalance.x", defaults.edgeBalanceX, true),
                    addDouble("edgeBalance.y", defaults.edgeBalanceY, true)};
    setPatchInputCount(1);
}

TsKeyerNode::~TsKeyerNode() = default;

RCShdPtr<PiInput> TsKeyerNode::addDouble(const LiString& name, double value, bool ranged) {
    auto input = rcMake<PiInput>(name, PiValue(value));
    if (ranged) {
        input->setPolicy(unitRange());
    }
    addInput(input);
    return input;
}

std::array<RCShdPtr<PiInput>, 12> TsKeyerNode::addBox(const LiString& prefix) {
    std::array<RCShdPtr<PiInput>, 12> box;
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 4; ++c) {
            box[4 * r + c] = addDouble(boxName(prefix, r, c), r == c ? 1.0 : 0.0, false);
        }
    }
    return box;
}

void TsKeyerNode::setPatchInputCount(int count) {
    const std::size_t before = _patches.size();
    const auto wanted = static_cast<std::size_t>(std::max(count, 1));
    std::vector<PatchInputs> dropped(
        _patches.begin() + static_cast<std::ptrdiff_t>(std::min(before, wanted)), _patches.end());
    dropPatchInputs(wanted);
    while (_patches.size() < wanted) {
        const LiString prefix = patchPrefix(static_cast<int>(_patches.size()));
        PatchInputs p;
        p.box = addBox(prefix);
        p.mode = rcMake<PiInput>(prefix + ".mode", PiValue(0));
        p.mode->setPolicy(modeRange());
        addInput(p.mode);
        p.range = addDouble(prefix + ".range", 0.0, true);
        p.softness = addDouble(prefix + ".softness", 0.0, true);
        _patches.push_back(std::move(p));
    }
    PiCommandStack* stack = getCommandStack();
    if (_patches.size() == before || !stack || stack->isReplaying()) {
        return;
    }
    const RCShdPtr<TsKeyerNode> self(this);
    if (!dropped.empty()) {
        stack->recordChange(
            "Remove Patches", [self, dropped] { self->restorePatchInputs(dropped); },
            [self, wanted] { self->dropPatchInputs(wanted); });
        return;
    }
    const std::vector<PatchInputs> added(_patches.begin() + static_cast<std::ptrdiff_t>(before),
                                         _patches.end());
    stack->recordChange(
        "New Patch", [self, before] { self->dropPatchInputs(before); },
        [self, added] { self->restorePatchInputs(added); });
}

std::vector<RCShdPtr<PiInput>> TsKeyerNode::inputsOf(const PatchInputs& patch) {
    std::vector<RCShdPtr<PiInput>> inputs(patch.box.begin(), patch.box.end());
    inputs.insert(inputs.end(), {patch.mode, patch.range, patch.softness});
    return inputs;
}

void TsKeyerNode::dropPatchInputs(std::size_t count) {
    while (_patches.size() > count) {
        for (const RCShdPtr<PiInput>& input : inputsOf(_patches.back())) {
            removeInput(input);
        }
        _patches.pop_back();
    }
}

void TsKeyerNode::restorePatchInputs(const std::vector<PatchInputs>& patches) {
    for (const PatchInputs& patch : patches) {
        for (const RCShdPtr<PiInput>& input : inputsOf(patch)) {
            addInput(input);
        }
        _patches.push_back(patch);
    }
}

const RCShdPtr<PiInput>& TsKeyerNode::getMatteParamInput(TsMgTypes::MatteParam p) const {
    return _matte.at(static_cast<std::size_t>(p));
}

const RCShdPtr<PiStructuredInput>& TsKeyerNode::getKeyColorInput(TsTypes::KeyColor k) const {
    return _keyColors.at(static_cast<std::size_t>(k));
}

const RCShdPtr<PiInput>& TsKeyerNode::getDegrainBoxInput(int row, int column) const {
    return _degrainBox.at(static_cast<std::size_t>(4 * row + column));
}

TsKeyerSettings TsKeyerNode::getSettings(double time) const {
    TsKeyerSettings s;
    for (std::size_t p = 0; p < _matte.size(); ++p) {
        s.matte[p] = _matte[p]->getTypedValue<double>(time);
    }
    for (std::size_t k = 0; k < 2; ++k) {
        s.keyColors[k] = _keyColors[k]->getTypedValue<CoRgbColorTyped<float>>(time);
    }
    const int count = getPatchCount();
    for (int i = 0; i < count; ++i) {
        const PatchInputs& in = _patches[static_cast<std::size_t>(i)];
        TsKeyerSettings::Patch patch;
        patch.box = readBox(in.box, time);
        patch.mode = in.mode->getTypedValue<int>(time);
        patch.range = in.range->getTypedValue<double>(time);
        patch.softness = in.softness->getTypedValue<double>(time);
        s.patches.push_back(patch);
    }
    s.degrainBox = readBox(_degrainBox, time);
    s.degrainOn = _degrainOn->getTypedValue<bool>(time);
    for (std::size_t i = 0; i < 2; ++i) {
        s.spill[i] = _spill[i]->getTypedValue<double>(time);
        s.blend[i] = _blend[i]->getTypedValue<double>(time);
    }
    s.edgeBalanceX = static_cast<float>(_edgeBalance[0]->getTypedValue<double>(time));
    s.edgeBalanceY = static_cast<float>(_edgeBalance[1]->getTypedValue<double>(time));
    return s;
}

// --- Patches

int TsKeyerNode::getPatchCount() const {
    const auto& names = std::get<PiStringList>(_patchNames->getState().constant);
    return std::min(static_cast<int>(names.size()), getPatchInputCount());
}

LiString TsKeyerNode::getPatchNamesRefusal(const PiValue& names) const {
    const auto* list = std::get_if<PiStringList>(&names);
    const int count = getPatchCount();
    if (_removingPatches || !list || static_cast<int>(list->size()) >= count) {
        return LiString();
    }
    return "the keyer has " + std::to_string(count) + " patch" + (count == 1 ? "" : "es") +
           ": a names edit renames or adds patches, it does not remove them";
}

void TsKeyerNode::patchNamesChanged() {
    const auto names = static_cast<int>(getPatchNames().size());
    const bool added = names > _namedPatches;
    _namedPatches = names;
    // Undo and redo put the inputs back themselves.
    PiCommandStack* stack = getCommandStack();
    if (!added || (stack && stack->isReplaying())) {
        return;
    }
    if (stack) {
        stack->nameStep("New Patch");
    }
    if (names > getPatchInputCount()) {
        setPatchInputCount(names);
    }
}

void TsKeyerNode::removePatches() {
    bool emptied = false;
    {
        // This names edit may remove patches; the flag goes down also when
        // a handler of the edit throws.
        struct Removing {
            bool& flag;
            ~Removing() { flag = false; }
        };
        _removingPatches = true;
        const Removing removing{_removingPatches};
        emptied = _patchNames->resetToDefault();
    }
    if (emptied) {
        setPatchInputCount(1);
    }
}

int TsKeyerNode::getCurrentPatch() const {
    const int count = getPatchCount();
    const int current = _currentPatch->getTypedValue<int>(0.0);
    return count == 0 ? 0 : std::clamp(current, 0, count - 1);
}

std::vector<std::string> TsKeyerNode::getPatchNames() const {
    return std::get<PiStringList>(_patchNames->getState().constant);
}

void TsKeyerNode::makePatchCurrent(int patch) {
    const int count = getPatchCount();
    if (patch < 0 || patch >= count) {
        ExReporter::getInstance().report(getName(),
                                         "there is no patch " + std::to_string(patch + 1) +
                                             " (the keyer has " + std::to_string(count) + ")");
        return;
    }
    const TsUndoStep step(*this, "Select Patch");
    _currentPatch->setValue(0.0, PiValue(patch));
}

int TsKeyerNode::createPatch() {
    if (_patchNames->isLocked() || _currentPatch->isLocked()) {
        ExReporter::getInstance().report(getName(),
                                         "cannot add a patch: the patch inputs are locked");
        return -1;
    }
    const TsUndoStep step(*this, "New Patch");
    const int index = getPatchCount();
    setPatchInputCount(index + 1);
    PiStringList names = getPatchNames();
    names.resize(static_cast<std::size_t>(index));
    LiString name;
    for (int n = index + 1;; ++n) {
        name = "Patch " + std::to_string(n);
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            break;
        }
    }
    names.push_back(name);
    _patchNames->setValue(0.0, PiValue(names));
    _currentPatch->setValue(0.0, PiValue(index));
    return index;
}

const TsKeyerNode::PatchInputs* TsKeyerNode::patchInputs(int patch) const {
    if (patch < 0 || patch >= getPatchInputCount()) {
        return nullptr;
    }
    return &_patches[static_cast<std::size_t>(patch)];
}

RCShdPtr<PiInput> TsKeyerNode::getPatchBoxInput(int patch, int row, int column) const {
    const PatchInputs* p = patchInputs(patch);
    if (!p || row < 0 || row > 2 || column < 0 || column > 3) {
        return RCShdPtr<PiInput>();
    }
    return p->box[static_cast<std::size_t>(4 * row + column)];
}

RCShdPtr<PiInput> TsKeyerNode::getPatchModeInput(int patch) const {
    const PatchInputs* p = patchInputs(patch);
    return p ? p->mode : RCShdPtr<PiInput>();
}

RCShdPtr<PiInput> TsKeyerNode::getPatchRangeInput(int patch) const {
    const PatchInputs* p = patchInputs(patch);
    return p ? p->range : RCShdPtr<PiInput>();
}

RCShdPtr<PiInput> TsKeyerNode::getPatchSoftnessInput(int patch) const {
    const PatchInputs* p = patchInputs(patch);
    return p ? p->softness : RCShdPtr<PiInput>();
}

// --- Resets

void TsKeyerNode::resetMatteGeneration() {
    const TsUndoStep step(*this, "Reset Matte Generation");
    for (const auto& in : _matte) {
        in->resetToDefault();
    }
    for (const auto& in : _keyColors) {
        in->resetToDefault();
    }
    _currentPatch->resetToDefault();
    removePatches();
    for (const PatchInputs& p : _patches) {
        for (const auto& in : p.box) {
            in->resetToDefault();
        }
        p.mode->resetToDefault();
        p.range->resetToDefault();
        p.softness->resetToDefault();
    }
}

void TsKeyerNode::resetDegrain() {
    const TsUndoStep step(*this, "Reset Screen Degrain");
    _degrainOn->resetToDefault();
    for (const auto& in : _degrainBox) {
        in->resetToDefault();
    }
}

void TsKeyerNode::resetSpillBlend() {
    const TsUndoStep step(*this, "Reset Spill & Blend");
    for (const auto* group : {&_spill, &_blend, &_edgeBalance}) {
        for (const auto& in : *group) {
            in->resetToDefault();
        }
    }
}

void TsKeyerNode::resetKeyer() {
    const TsUndoStep step(*this, "Reset Tessera");
    resetMatteGeneration();
    resetDegrain();
    resetSpillBlend();
}

bool TsKeyerNode::areKeyColorsLocked() const {
    return _keyColors[0]->isLocked() && _keyColors[1]->isLocked();
}
