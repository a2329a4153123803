#include "tsImgPickKeyColorsTool.h"

#include <pluginAPI/piNode.h>
#include <pluginAPI/piPath.h>
#include <resmgt/msgServer.h>
#include <resmgt/msgSubscription.h>

namespace {

// The undo name of a pick.
MsgSubscription setKeyColorMsg("MSG_TS_SET_KEY_COLOR");

} // namespace

TsImgPickKeyColorsTool::TsImgPickKeyColorsTool(PiImgPick& imgPick, PiViewer& viewer,
                                               TsMgInterface& mg, const RCShdPtr<PiPath>& path,
                                               TsTypes::KeyColor keyColor)
    : MfImgPickColorTool(imgPick, viewer, mg.getNode(), path, mg.getKeyColorInput(keyColor)) {
    _otherKeyColor = PiInputRgbColor::create(mg.getKeyColorInput(TsTypes::otherKeyColor(keyColor)),
                                             getInputRgbColor()->getTimePath());
    setUndoString(setKeyColorMsg.getText());
}

TsImgPickKeyColorsTool::~TsImgPickKeyColorsTool() = default;

void TsImgPickKeyColorsTool::finalizeManipulation(const PiEventContext& context) {
    MfImgPickTool::finalizeManipulation(context);
    PiInputRgbColor& other = *_otherKeyColor;
    if (other.isLocked()) {
        return;
    }
    const CoRgbColorTyped<float> value = other.getValue();
    if (value.r == 0.0f && value.g == 0.0f && value.b == 0.0f) {
        other.setValue(getInputRgbColor()->getValue());
    }
}

void tsImgPickKeyColorsToolInitialise() {
    MsgServer::getInstance().registerSubscription(&setKeyColorMsg);
}

void tsImgPickKeyColorsToolFinalise() {}
