#include "tsKeyerController.h"

#include <tesseraCore/render/tsViewRender.h>

#include <base/rcExUtil.h>
#include <base/typeName.h>

TsKeyerNode& TsKeyerController::node() const {
    auto* n = dynamic_cast<TsKeyerNode*>(getNodePtr());
    if (!n) {
        RCExUtil::throwExNullPtr(typeNameOf<TsKeyerNode>().c_str());
    }
    return *n;
}

RCShdPtr<PiInput> TsKeyerController::getMatteParamInput(TsMgTypes::MatteParam p) const {
    if (p < 0 || p >= TsMgTypes::MatteParamCount) {
        return RCShdPtr<PiInput>();
    }
    return node().getMatteParamInput(p);
}

RCShdPtr<PiStructuredInput> TsKeyerController::getKeyColorInput(TsTypes::KeyColor k) const {
    if (k != TsTypes::KeyColor1 && k != TsTypes::KeyColor2) {
        return RCShdPtr<PiStructuredInput>();
    }
    return node().getKeyColorInput(k);
}

RCShdPtr<PiInput> TsKeyerController::getDegrainBoxInput(int row, int column) const {
    if (row < 0 || row > 2 || column < 0 || column > 3) {
        return RCShdPtr<PiInput>();
    }
    return node().getDegrainBoxInput(row, column);
}

RCShdPtr<PiInput> TsKeyerController::getSpillInput(int index) const {
    return index == 0 || index == 1 ? node().getSpillInput(index) : RCShdPtr<PiInput>();
}

RCShdPtr<PiInput> TsKeyerController::getBlendInput(int index) const {
    return index == 0 || index == 1 ? node().getBlendInput(index) : RCShdPtr<PiInput>();
}

RCShdPtr<PiInput> TsKeyerController::getEdgeBalanceInput(int axis) const {
    return axis == 0 || axis == 1 ? node().getEdgeBalanceInput(axis) : RCShdPtr<PiInput>();
}

void TsKeyerController::inputChanged(PiInput& input) {
    TsKeyerNode& n = node();
    if (&input == n.getPatchNamesInput().get()) {
        n.patchNamesChanged();
    }
}

std::vector<std::string> TsKeyerController::getViews() const {
    return TsViewRender::getViewNames();
}

std::string TsKeyerController::getDefaultView() const {
    return TsViewRender::getViewName(TsViewMode::Composite);
}

std::unique_ptr<PiViewRenderer> TsKeyerController::createViewRenderer() {
    return std::make_unique<TsViewRenderer>(RCShdPtr<const TsKeyerNode>(&node()));
}

LiString TsKeyerController::getValueRefusal(const PiInput& input, const PiValue& value) const {
    const TsKeyerNode& n = node();
    return &input == n.getPatchNamesInput().get() ? n.getPatchNamesRefusal(value) : LiString();
}
