#include "tsUiImp3.h"

#include <tesseraCore/tsDgTool.h>
#include <tesseraCore/tsMgTool.h>
#include <tesseraCore/tsSpillBlendTool.h>

namespace {

const TsUiImpNames names{"tsMainUiContainer", "tsOtherUi",  "tsSpillBlend", "tsDegrain",
                         "tsMatteGen",        "sampleMenu", "nodeSelect",   "nodeSelectLabel"};

std::vector<std::string> toolNames;

} // namespace

const TsUiImpNames& TsUiImpSecond::getNames() {
    return names;
}

std::vector<std::string>& TsUiImpSecond::getToolNames() {
    return toolNames;
}

template class TsUiImp<TsUiImpSecond>;

RCShdPtr<RCBase<LkCounter<int>>> tsUiImp3Factory(const RCShdPtr<PiWidget>& widget,
                                                 const RCShdPtr<PiGroupNode>& group,
                                                 const RCShdPtr<const PiTimePath>& timePath) {
    return RCShdPtr<RCBase<LkCounter<int>>>(new TsUiImp<TsUiImpSecond>(widget, group, timePath));
}

void tsUiImp3Initialise() {
    TsInterface3::setInstanceDataFactory(&tsUiImp3Factory);
    // The sample menu's entries, in order.
    toolNames.clear();
    toolNames.push_back(TsMgTool::getManipToolName(2));
    toolNames.push_back(TsMgTool::getManipToolName(3));
    toolNames.push_back(TsDgTool::getManipToolName(2));
    toolNames.push_back(TsSpillBlendTool::getManipToolName(2));
    toolNames.push_back(TsSpillBlendTool::getManipToolName(3));
}

// The factory stays registered after shut-down.
void tsUiImp3Finalise() {}
