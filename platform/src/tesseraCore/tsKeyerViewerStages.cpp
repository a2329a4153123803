// The keyer node's viewer stages: which handler a viewer installs for each,
// and which stage owns a tool.
#include "tsKeyerController.h"

#include <pluginAPI/piEventHandler.h>
#include <tesseraCore/tsDgTool.h>
#include <tesseraCore/tsMgTool.h>
#include <tesseraCore/tsSpillBlendTool.h>

#include <base/exReporter.h>

namespace {

const std::string matteStage = "matte";
const std::string degrainStage = "degrain";
const std::string spillStage = "spill";

template <class Tool>
bool holds(const std::string& toolName) {
    for (int i = 0; i < Tool::ManipToolCount; ++i) {
        if (Tool::getManipToolName(i) == toolName) {
            return true;
        }
    }
    return false;
}

} // namespace

std::vector<std::string> TsKeyerController::getViewerStages() const {
    return {matteStage, degrainStage, spillStage};
}

RCStrongPtr<PiEventHandler>
TsKeyerController::createViewerEventHandler(const std::string& stage, PiViewer& viewer,
                                            const RCShdPtr<PiNode>& node,
                                            const RCShdPtr<PiPath>& path) {
    if (stage == matteStage) {
        return TsMgInterface::createEventHandler(viewer, node, path);
    }
    if (stage == degrainStage) {
        return TsDgInterface::createEventHandler(viewer, node, path);
    }
    if (stage == spillStage) {
        return TsSpillBlendInterface::createEventHandler(viewer, node, path);
    }
    ExReporter::getInstance().report("keyer",
                                     "no viewer stage \"" + stage + "\" (matte, degrain, spill)");
    return RCStrongPtr<PiEventHandler>();
}

std::string TsKeyerController::getViewerStageOfTool(const std::string& toolName) const {
    if (toolName.empty()) {
        return {};
    }
    if (holds<TsMgTool>(toolName)) {
        return matteStage;
    }
    if (holds<TsDgTool>(toolName)) {
        return degrainStage;
    }
    if (holds<TsSpillBlendTool>(toolName)) {
        return spillStage;
    }
    return {};
}
