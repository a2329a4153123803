#include "tsDgSampleTool.h"

#include <resmgt/msgServer.h>
#include <resmgt/msgSubscription.h>
#include <tesseraUtil/tsUtils.h>

namespace {

// The undo name of a degrain sample.
MsgSubscription setDegrainSampleMsg("MSG_TS_SET_DEGRAIN_SAMPLE");

} // namespace

TsDgSampleTool::DegrainAnimInputs::DegrainAnimInputs(TsDgInterface& dg,
                                                     const RCShdPtr<PiTimePath>& path)
    : timePath(path)
    , _blendChangedCb(this, &DegrainAnimInputs::blendChanged)
    , _blendUpdateCb(this, &DegrainAnimInputs::blendUpdate) {
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 4; ++c) {
            box[r][c] = std::make_unique<PiTypedAnimInput<double>>(dg.getDegrainBoxInput(r, c));
        }
    }
    blend = PiInputValue<double>::createTyped(dg.getKeyBlendInput(), timePath);
    blend->addValueChangedCb(&_blendChangedCb);
    blend->addUpdateCb(&_blendUpdateCb);
    keyColor1 = PiInputRgbColor::create(dg.getKeyColorInput(TsTypes::KeyColor1), timePath);
    keyColor2 = PiInputRgbColor::create(dg.getKeyColorInput(TsTypes::KeyColor2), timePath);
}

TsDgSampleTool::DegrainAnimInputs::~DegrainAnimInputs() = default;

void TsDgSampleTool::DegrainAnimInputs::blendChanged() {
    if (blend->needsUpdate()) {
        blend->update();
    }
}

void TsDgSampleTool::DegrainAnimInputs::blendUpdate() {
    blend->update();
}

TsDgSampleTool::TsDgSampleTool(PiImgPick& imgPick, TsDgInterface& dg,
                               const RCShdPtr<PiTimePath>& timePath)
    : TsAddSampleTool(imgPick)
    , _degrainChangedCb(this, &TsDgSampleTool::flagChanged)
    , _degrainUpdateCb(this, &TsDgSampleTool::flagUpdate) {
    _inputs = std::make_unique<DegrainAnimInputs>(dg, timePath);
    _degrain = PiInputValue<bool>::createTyped(dg.getDegrainInput(), timePath);
    _degrain->addValueChangedCb(&_degrainChangedCb);
    _degrain->addUpdateCb(&_degrainUpdateCb);
    setUndoString(setDegrainSampleMsg.getText());
}

TsDgSampleTool::~TsDgSampleTool() = default;

void TsDgSampleTool::flagChanged() {
    if (_degrain->needsUpdate()) {
        _degrain->update();
    }
}

void TsDgSampleTool::flagUpdate() {
    _degrain->update();
}

CoAffineMatrixTyped<float> TsDgSampleTool::getCurrentBoxMatrix() const {
    const double time = _inputs->timePath->getTime();
    CoAffineMatrixTyped<float> box;
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 4; ++c) {
            box[4 * c + r] = static_cast<float>(_inputs->box[r][c]->getValue(time));
        }
    }
    return box;
}

void TsDgSampleTool::process(const List<CoRgbaColorTyped<float>>& picked) {
    const Vector<CoRgbaColorTyped<float>> colours = collectColours(picked);
    const double t = _inputs->blend->getValue();
    const CoRgbColorTyped<float> k1 = _inputs->keyColor1->getValue();
    const CoRgbColorTyped<float> k2 = _inputs->keyColor2->getValue();
    const CoRgbColorTyped<float> keyColour{static_cast<float>(k1.r * (1.0 - t) + k2.r * t),
                                           static_cast<float>(k1.g * (1.0 - t) + k2.g * t),
                                           static_cast<float>(k1.b * (1.0 - t) + k2.b * t)};
    const CoAffineMatrixTyped<float> box = TsUtils::computeMinimalBoxMatrix(colours);
    const CoAffineMatrixTyped<float> arranged = TsUtils::arrangeMatrixForPatchEdge(keyColour, box);
    const double time = _inputs->timePath->getTime();
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 4; ++c) {
            _inputs->box[r][c]->setValue(time, static_cast<double>(arranged[4 * c + r]));
        }
    }
}

void TsDgSampleTool::finalizeManipulation(const PiEventContext& context) {
    MfImgPickTool::finalizeManipulation(context);
    // Taking a degrain sample turns degraining on; a locked flag stays as
    // the user set it.
    if (_degrain->isLocked()) {
        return;
    }
    if (_degrain->getValue()) {
        return;
    }
    _degrain->setValue(true);
}

void tsDgSampleToolInitialise() {
    MsgServer::getInstance().registerSubscription(&setDegrainSampleMsg);
}

void tsDgSampleToolFinalise() {}
