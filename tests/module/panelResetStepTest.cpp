#include "stageScene.h"

#include <tesseraCore/tsDgInterface.h>
#include <tesseraCore/tsMgInterface.h>
#include <tesseraCore/tsSpillBlendInterface.h>
#include <ui/uiPushButton.h>

namespace stages {
namespace {

// A keyer whose resets write their inputs back to their defaults without
// opening an undo step of their own, as any keyer behind these interfaces may.
// The reference keyer names its reset steps exactly as the panels do, so only
// with this one does a panel that left the step to the keyer show: each input
// would become a step of its own.
class StepLessKeyer : public TsMgInterface, public TsDgInterface, public TsSpillBlendInterface {
public:
    RCShdPtr<PiInput> getMatteParamInput(TsMgTypes::MatteParam p) const override {
        return keyer().getMatteParamInput(p);
    }
    RCShdPtr<PiStructuredInput> getKeyColorInput(TsTypes::KeyColor k) const override {
        return keyer().getKeyColorInput(k);
    }
    int getPatchCount() const override { return keyer().getPatchCount(); }
    int getCurrentPatch() const override { return keyer().getCurrentPatch(); }
    void makePatchCurrent(int patch) override { keyer().makePatchCurrent(patch); }
    int createPatch() override { return keyer().createPatch(); }
    std::vector<std::string> getPatchNames() const override { return keyer().getPatchNames(); }
    RCShdPtr<PiInput> getPatchNamesInput() const override { return keyer().getPatchNamesInput(); }
    RCShdPtr<PiInput> getCurrentPatchInput() const override {
        return keyer().getCurrentPatchInput();
    }
    RCShdPtr<PiInput> getPatchBoxInput(int patch, int row, int column) const override {
        return keyer().getPatchBoxInput(patch, row, column);
    }
    RCShdPtr<PiInput> getPatchModeInput(int patch) const override {
        return keyer().getPatchModeInput(patch);
    }
    RCShdPtr<PiInput> getPatchRangeInput(int patch) const override {
        return keyer().getPatchRangeInput(patch);
    }
    RCShdPtr<PiInput> getPatchSoftnessInput(int patch) const override {
        return keyer().getPatchSoftnessInput(patch);
    }
    RCShdPtr<PiInput> getDegrainBoxInput(int row, int column) const override {
        return keyer().getDegrainBoxInput(row, column);
    }
    RCShdPtr<PiInput> getDegrainInput() const override { return keyer().getDegrainInput(); }
    RCShdPtr<PiInput> getKeyBlendInput() const override {
        return keyer().getMatteParamInput(TsMgTypes::KeyBlend);
    }
    RCShdPtr<PiInput> getSpillInput(int index) const override {
        return keyer().getSpillInput(index);
    }
    RCShdPtr<PiInput> getBlendInput(int index) const override {
        return keyer().getBlendInput(index);
    }
    RCShdPtr<PiInput> getEdgeBalanceInput(int axis) const override {
        return keyer().getEdgeBalanceInput(axis);
    }
    bool hasNoKeyColorToggles() const override { return keyer().areKeyColorsLocked(); }

    void resetDegrain() override {
        keyer().getDegrainInput()->resetToDefault();
        keyer().getDegrainBoxInput(0, 0)->resetToDefault();
    }
    void resetSpillBlend() override {
        keyer().getSpillInput(0)->resetToDefault();
        keyer().getBlendInput(0)->resetToDefault();
    }
    void resetKeyer() override {
        keyer().getMatteParamInput(TsMgTypes::Shadows)->resetToDefault();
        resetDegrain();
        resetSpillBlend();
    }

private:
    TsKeyerNode& keyer() const { return static_cast<TsKeyerNode&>(*getNodePtr()); }
};

struct Reset {
    const char* panel;
    const char* step;
};

void PrintTo(const Reset& r, std::ostream* os) {
    *os << r.panel;
}

class PanelResetStep : public StageScene, public ::testing::WithParamInterface<Reset> {
protected:
    std::string stage() const override { return "degrain"; }
};

TEST_P(PanelResetStep, IsOneStepOfThePanelsOwnWhateverTheKeyerDoes) {
    node->setController(RCShdPtr<PiNodeController>(new StepLessKeyer));
    const std::vector<std::pair<RCShdPtr<PiInput>, double>> edited{
        {node->getMatteParamInput(TsMgTypes::Shadows), 0.9},
        {node->getDegrainBoxInput(0, 0), 0.5},
        {node->getSpillInput(0), 0.1},
        {node->getBlendInput(0), 0.2}};
    for (const auto& [input, v] : edited) {
        setValue(input, v);
    }
    node->getDegrainInput()->setValue(time(), PiValue(true));
    stack().clear();
    openPanel(GetParam().panel);

    panel->find<UiPushButton>("reset")->click();
    EXPECT_EQ(stack().getStepNames(), std::vector<LiString>{GetParam().step});
    stack().undo();
    for (const auto& [input, v] : edited) {
        EXPECT_EQ(value(input), v);
    }
}

INSTANTIATE_TEST_SUITE_P(Panels, PanelResetStep,
                         ::testing::Values(Reset{"tsDegrain", "Reset Screen Degrain"},
                                           Reset{"tsSpillBlend", "Reset Spill & Blend"},
                                           Reset{"tsMatteGen", "Reset Tessera"}));

} // namespace
} // namespace stages
