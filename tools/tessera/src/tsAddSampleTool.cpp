#include "tsAddSampleTool.h"
#include "tsAssertionTexts.h"

#include <base/assertions.h>
#include <gfx/mfEventPredicates.h>
#include <gfx/mfPiImgPickDragManip.h>
#include <gfx/mfPiImgPickListManip.h>
#include <gfx/wsCursorRegistry.h>
#include <pluginAPI/piEventContext.h>
#include <tesseraUtil/tsUtils.h>

namespace {

// Filled at start-up.
List<CoRgbaColorTyped<float>> cubeCorners;

} // namespace

TsAddSampleTool::TsAddSampleTool(PiImgPick& imgPick)
    : MfImgPickTool(imgPick) {
    if (!(size() == 2)) {
        TsAssertionTexts::AddSampleManipulators.fail();
    }
    const auto shift = static_cast<EvKeyCode::KeyCode>(142);
    for (auto it = begin(); it != end(); ++it) {
        (*it)->addGraspEventPredicate(MfEventPredicates::isKeyDown(shift));
        (*it)->setFeedbackEventPredicate(MfEventPredicates::isKeyDown(shift));
    }
    _addManips.push_back(RCShdPtr<MfManipulator>(new MfPiImgPickDragManip(imgPick)));
    _addManips.push_back(RCShdPtr<MfManipulator>(new MfPiImgPickListManip(imgPick)));
    for (const auto& manip : _addManips) {
        manip->setCursor(WsCursorRegistry::getInstance().getCursor(WsCursorRegistry::PickPlus));
        manip->setFeedbackEventPredicate(!MfEventPredicates::isHotkey());
        addManipulator(manip);
    }
}

TsAddSampleTool::~TsAddSampleTool() = default;

bool TsAddSampleTool::isAdding() const {
    const MfManipulator* current = getImgPickManip().get();
    return current == _addManips[0].get() || current == _addManips[1].get();
}

void TsAddSampleTool::initiateManipulation(const PiEventContext& context) {
    MfImgPickTool::initiateManipulation(context);
    if (!isAdding()) {
        return;
    }
    _corners.clear();
    const CoAffineMatrixTyped<float> box = getCurrentBoxMatrix();
    if (box == CoAffineMatrixTyped<float>::IDENTITY) {
        return;
    }
    const CoAffineMatrixTyped<float> i = box.computeInverse();
    for (const CoRgbaColorTyped<float>& c : cubeCorners) {
        _corners.append({i[0] * c.r + i[4] * c.g + i[8] * c.b + i[12],
                         i[1] * c.r + i[5] * c.g + i[9] * c.b + i[13],
                         i[2] * c.r + i[6] * c.g + i[10] * c.b + i[14], c.a});
    }
}

Vector<CoRgbaColorTyped<float>>
TsAddSampleTool::collectColours(const List<CoRgbaColorTyped<float>>& picked) const {
    if (isAdding()) {
        List<CoRgbaColorTyped<float>> all;
        all.reserve(picked.size() + _corners.size());
        all.insert(all.end(), picked.begin(), picked.end());
        all.insert(all.end(), _corners.begin(), _corners.end());
        return TsUtils::makeUnique(all);
    }
    return TsUtils::makeUnique(picked);
}

void TsAddSampleTool::endFeedback(const PiEventContext& context) {
    MfTool::endFeedback(context);
    context.getEvent().setProcessed(false);
}

const List<CoRgbaColorTyped<float>>& TsAddSampleTool::getCubeCorners() {
    return cubeCorners;
}

void tsAddSampleToolInitialise() {
    cubeCorners.clear();
    for (float x : {-1.0f, 1.0f}) {
        for (float y : {-1.0f, 1.0f}) {
            for (float z : {-1.0f, 1.0f}) {
                cubeCorners.append({x, y, z, 1.0f});
            }
        }
    }
}

void tsAddSampleToolFinalise() {}
