#include <gfx/mfImgPickTool.h>
#include <gfx/mfPiImgPickDragManip.h>
#include <gfx/mfPiImgPickListManip.h>
#include <gfx/wsCursorRegistry.h>

#include <utility>

namespace {

MfImgPickTool::PickObserver& pickObserver() {
    static MfImgPickTool::PickObserver observer;
    return observer;
}

} // namespace

MfImgPickTool::PickObserver MfImgPickTool::setPickObserver(PickObserver observer) {
    std::swap(pickObserver(), observer);
    return observer;
}

MfImgPickTool::MfImgPickTool(PiImgPick& imgPick)
    : _imgPick(&imgPick) {
    addManipulator(RCShdPtr<MfManipulator>(new MfPiImgPickDragManip(imgPick)));
    addManipulator(RCShdPtr<MfManipulator>(new MfPiImgPickListManip(imgPick)));
}

MfImgPickTool::~MfImgPickTool() = default;

RCShdPtr<WsCursor> MfImgPickTool::getCursor() const {
    return WsCursorRegistry::getInstance().getCursor(WsCursorRegistry::Pick);
}

void MfImgPickTool::initiateManipulation(const PiEventContext& context) {
    MfTool::initiateManipulation(context);
    _imgPickManip = RCShdPtr<MfManipulator>(getGraspedManipulator());
}

void MfImgPickTool::finalizeManipulation(const PiEventContext& context) {
    MfTool::finalizeManipulation(context);
    List<CoRgbaColorTyped<float>> colours;
    if (auto* manip = dynamic_cast<MfPiImgPickManip*>(_imgPickManip.get())) {
        manip->collect(colours);
    }
    process(colours);
    if (const PickObserver& observer = pickObserver()) {
        observer(colours);
    }
}
