#pragma once

#include <pluginAPI/piImageModifier.h>
#include <pluginAPI/piToolInterface.h>
#include <pluginAPI/piViewRenderer.h>
#include <pluginAPI/piViewerStageInterface.h>
#include <tesseraCore/tsDgInterface.h>
#include <tesseraCore/tsKeyerNode.h>
#include <tesseraCore/tsMgInterface.h>
#include <tesseraCore/tsSpillBlendInterface.h>

// The controller of a keyer node: one object behind all of the node's
// interfaces, forwarding to the node.
class TsKeyerController : public TsMgInterface,
                          public TsDgInterface,
                          public TsSpillBlendInterface,
                          public PiToolInterface,
                          public PiImageModifier,
                          public PiViewerStageInterface,
                          public PiViewRenderInterface {
public:
    TsKeyerController() = default;

    // TsMgInterface
    RCShdPtr<PiInput> getMatteParamInput(TsMgTypes::MatteParam p) const override;
    RCShdPtr<PiStructuredInput> getKeyColorInput(TsTypes::KeyColor k) const override;
    int getPatchCount() const override { return node().getPatchCount(); }
    int getCurrentPatch() const override { return node().getCurrentPatch(); }
    void makePatchCurrent(int patch) override { node().makePatchCurrent(patch); }
    int createPatch() override { return node().createPatch(); }
    std::vector<std::string> getPatchNames() const override { return node().getPatchNames(); }
    RCShdPtr<PiInput> getPatchNamesInput() const override { return node().getPatchNamesInput(); }
    RCShdPtr<PiInput> getCurrentPatchInput() const override {
        return node().getCurrentPatchInput();
    }
    RCShdPtr<PiInput> getPatchBoxInput(int patch, int row, int column) const override {
        return node().getPatchBoxInput(patch, row, column);
    }
    RCShdPtr<PiInput> getPatchModeInput(int patch) const override {
        return node().getPatchModeInput(patch);
    }
    RCShdPtr<PiInput> getPatchRangeInput(int patch) const override {
        return node().getPatchRangeInput(patch);
    }
    RCShdPtr<PiInput> getPatchSoftnessInput(int patch) const override {
        return node().getPatchSoftnessInput(patch);
    }
    void resetKeyer() override { node().resetKeyer(); }

    // TsDgInterface
    RCShdPtr<PiInput> getDegrainBoxInput(int row, int column) const override;
    RCShdPtr<PiInput> getDegrainInput() const override { return node().getDegrainInput(); }
    RCShdPtr<PiInput> getKeyBlendInput() const override {
        return node().getMatteParamInput(TsMgTypes::KeyBlend);
    }
    bool hasNoKeyColorToggles() const override { return node().areKeyColorsLocked(); }
    void resetDegrain() override { node().resetDegrain(); }

    // TsSpillBlendInterface
    RCShdPtr<PiInput> getSpillInput(int index) const override;
    RCShdPtr<PiInput> getBlendInput(int index) const override;
    RCShdPtr<PiInput> getEdgeBalanceInput(int axis) const override;
    void resetSpillBlend() override { node().resetSpillBlend(); }

    // PiImageModifier: the plate.
    RCShdPtr<PiInput> getInput() const override { return node().getImageInput(); }

    // PiViewerStageInterface: "matte" (the default), "degrain" and "spill",
    // whose handlers the stage interfaces' registered factories make. A tool
    // that several stages hold (the key-colour picks) belongs to the first.
    std::vector<std::string> getViewerStages() const override;
    RCStrongPtr<PiEventHandler> createViewerEventHandler(const std::string& stage, PiViewer& viewer,
                                                         const RCShdPtr<PiNode>& node,
                                                         const RCShdPtr<PiPath>& path) override;
    std::string getViewerStageOfTool(const std::string& toolName) const override;

    // PiViewRenderInterface: the keyer's views (TsViewRender), the
    // composite first shown.
    std::vector<std::string> getViews() const override;
    std::string getDefaultView() const override;
    std::unique_ptr<PiViewRenderer> createViewRenderer() override;

    // Refuses a names edit that would leave patches without a name.
    LiString getValueRefusal(const PiInput& input, const PiValue& value) const override;

protected:
    void inputChanged(PiInput& input) override;

private:
    // The node; ExNullPtr once it is gone.
    TsKeyerNode& node() const;
};
