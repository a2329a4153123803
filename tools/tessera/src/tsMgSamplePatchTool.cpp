#include "tsMgSamplePatchTool.h"

#include <base/rcCast.h>
#include <base/rcExUtil.h>
#include <base/typeName.h>
#include <pluginAPI/piGraphObject.h>
#include <pluginAPI/piNode.h>
#include <resmgt/msgServer.h>
#include <resmgt/msgSubscription.h>
#include <tesseraCore/tsMgTool.h>
#include <tesseraUtil/tsMgAnimToAlgo.h>
#include <tesseraUtil/tsMgUtils.h>
#include <tesseraUtil/tsUtils.h>

#include <algorithm>

namespace {

// The undo name of a patch sample.
MsgSubscription setPatchSampleMsg("MSG_TS_SET_PATCH_SAMPLE");

} // namespace

TsMgSamplePatchTool::PatchInputs::PatchInputs(TsMgInterface& mg,
                                              const RCShdPtr<PiTimePath>& timePath)
    : patch(mg.getCurrentPatch())
    , timePath(timePath) {
    mode = std::make_unique<PiTypedAnimInput<int>>(mg.getPatchModeInput(patch));
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 4; ++c) {
            box[r][c] =
                std::make_unique<PiTypedAnimInput<double>>(mg.getPatchBoxInput(patch, r, c));
        }
    }
}

TsMgSamplePatchTool::TsMgSamplePatchTool(PiImgPick& imgPick,
                                         const RCShdPtr<TsMgInputValues>& values,
                                         const RCShdPtr<PiTimePath>& timePath, TsMgInterface* mg)
    : TsAddSampleTool(imgPick)
    , _mg(mg)
    , _values(values)
    , _timePath(timePath) {
    if (!_mg) {
        RCExUtil::throwExNullPtr(typeNameOf<TsMgInterface>().c_str());
    }
    _patchInputs = std::make_unique<PatchInputs>(*_mg, _timePath);
    _nodeCb.set(this, &TsMgSamplePatchTool::nodeValueChanged);
    _currentPatchInput = _mg->getNode()->getInput(TsMgTool::getCurrentPatchName());
    if (!_currentPatchInput) {
        RCExUtil::throwExNullPtr(typeNameOf<PiInput>().c_str());
    }
    _mg->addCallback<PiNodeEvent::ValueChanged>(&_nodeCb);
    setUndoString(setPatchSampleMsg.getText());
}

TsMgSamplePatchTool::~TsMgSamplePatchTool() = default;

int TsMgSamplePatchTool::getPatch() const {
    return _patchInputs->patch;
}

void TsMgSamplePatchTool::nodeValueChanged(const PiNodeEvent& event) {
    const auto& changed = refCast<const PiNodeEvent::ValueChanged>(event);
    if (PiGraphObject::areEqual(changed.getValue(), _currentPatchInput)) {
        _patchInputs = std::make_unique<PatchInputs>(*_mg, _timePath);
    }
}

CoAffineMatrixTyped<float> TsMgSamplePatchTool::getCurrentBoxMatrix() const {
    const double time = _timePath->getTime();
    CoAffineMatrixTyped<float> box;
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 4; ++c) {
            box[4 * c + r] = static_cast<float>(_patchInputs->box[r][c]->getValue(time));
        }
    }
    return box;
}

void TsMgSamplePatchTool::process(const List<CoRgbaColorTyped<float>>& picked) {
    const Vector<CoRgbaColorTyped<float>> colours = collectColours(picked);
    const CoAffineMatrixTyped<float> box = TsUtils::computeMinimalBoxMatrix(colours);
    const double time = _timePath->getTime();
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 4; ++c) {
            _patchInputs->box[r][c]->setValue(time, static_cast<double>(box[4 * c + r]));
        }
    }
    const CoRgbColorTyped<float> keyColour = _values->getBlendedKeyColor();
    const float intrusion =
        TsMgAnimToAlgo::overallToIntrusion(_values->getValue(TsMgTypes::Overall));
    const float opponent =
        TsMgAnimToAlgo::rangeEToOpponent(_values->getValue(TsMgTypes::EdgeSoftness));
    // An earlier sample's or the user's choice of mode stands.
    if (_patchInputs->mode->getValue(time) == 0) {
        _patchInputs->mode->setValue(time, classifyMode(keyColour, colours, intrusion, opponent));
    }
}

int TsMgSamplePatchTool::classifyMode(const CoRgbColorTyped<float>& keyColour,
                                      const Vector<CoRgbaColorTyped<float>>& colours,
                                      float intrusion, float opponent) {
    const CoAffineMatrixTyped<float> s = TsMgUtils::getSoftnessMatrix(keyColour, intrusion);
    // Only the lowest and the highest score matter: one pass finds them
    // (sorting a million picked colours' scores would cost most of a pick).
    float low = 0.0f;
    float high = 0.0f;
    bool first = true;
    for (const CoRgbaColorTyped<float>& c : colours) {
        const float x = s[0] * c.r + s[4] * c.g + s[8] * c.b + s[12];
        const float raw = x < 0.0f ? -x : opponent * x;
        // Clamped to [0, 1]; a colour that is not a number scores 0.
        const float score = raw > 0.0f ? std::min(raw, 1.0f) : 0.0f;
        if (first) {
            low = high = score;
            first = false;
        } else {
            low = std::min(low, score);
            high = std::max(high, score);
        }
    }
    if (high > 0.5f) {
        return low >= 0.2f ? 2 : 1;
    }
    return 3;
}

void tsMgSamplePatchToolInitialise() {
    MsgServer::getInstance().registerSubscription(&setPatchSampleMsg);
}

void tsMgSamplePatchToolFinalise() {}
