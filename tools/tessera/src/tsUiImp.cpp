#include "tsUiImp.h"

#include <tesseraCore/tsDgTool.h>
#include <tesseraCore/tsMgTool.h>
#include <tesseraCore/tsSpillBlendTool.h>

namespace {

const TsUiImpNames names{"tsMainUiContainer", "tsOtherUi",  "tsSpillBlend", "tsDegrain",
                         "tsMatteGen",        "sampleMenu", "nodeSelect",   "nodeSelectLabel"};

std::vector<std::string> toolNames;

} // namespace

const TsUiImpNames& TsUiImpGeneration1::getNames() {
    return names;
}

std::vector<std::string>& TsUiImpGeneration1::getToolNames() {
    return toolNames;
}

template class TsUiImp<TsUiImpGeneration1>;

RCShdPtr<RCBase<LkCounter<int>>> tsUiImpFactory(const RCShdPtr<PiWidget>& widget,
                                                const RCShdPtr<PiGroupNode>& group,
                                                const RCShdPtr<const PiTimePath>& timePath) {
    return RCShdPtr<RCBase<LkCounter<int>>>(
        new TsUiImp<TsUiImpGeneration1>(widget, group, timePath));
}

void tsUiImpInitialise() {
    TsInterface::setInstanceDataFactory(&tsUiImpFactory);
    // The sample menu's entries, in order.
    toolNames.clear();
    toolNames.push_back(TsMgTool::getManipToolName(2));
    toolNames.push_back(TsMgTool::getManipToolName(3));
    toolNames.push_back(TsDgTool::getManipToolName(2));
    toolNames.push_back(TsSpillBlendTool::getManipToolName(2));
    toolNames.push_back(TsSpillBlendTool::getManipToolName(3));
}

// The factory stays registered after shut-down.
void tsUiImpFinalise() {}
