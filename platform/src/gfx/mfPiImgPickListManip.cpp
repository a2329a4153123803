#include <gfx/mfPiImgPickListManip.h>

#include <pluginAPI/piEventContext.h>

MfPiImgPickListManip::MfPiImgPickListManip(PiImgPick& imgPick)
    : MfPiImgPickManip(imgPick) {}

void MfPiImgPickListManip::beginManipulation(const PiEventContext& context) {
    MfPiImgPickManip::beginManipulation(context);
    _picked.clear();
    pick(context);
}

void MfPiImgPickListManip::continueManipulation(const PiEventContext& context) {
    pick(context);
}

void MfPiImgPickListManip::pick(const PiEventContext& context) {
    if (!context.hasDeviceEvent()) {
        return;
    }
    const GeRectangle<float> pixel = PiImgPick::getPixelRectangle(context.getWorldPoint());
    getImgPick().setPickRectangle(pixel);
    getImgPick().pickColors(pixel, _picked);
}

void MfPiImgPickListManip::collect(List<CoRgbaColorTyped<float>>& colours) const {
    colours.insert(colours.end(), _picked.begin(), _picked.end());
}
