#include <gfx/mfEventPredicates.h>
#include <gfx/mfPiImgPickDragManip.h>

#include <base/vwPainter.h>
#include <base/vwUtils.h>
#include <base/vwView.h>
#include <pluginAPI/piEventContext.h>

MfPiImgPickDragManip::MfPiImgPickDragManip(PiImgPick& imgPick)
    : MfPiImgPickManip(imgPick) {
    addGraspEventPredicate(MfEventPredicates::isKeyModifierOn(EvKeyboardState::CtrlMask));
}

GeRectangle<float> MfPiImgPickDragManip::getRectangle() const {
    return GeRectangle<float>::fromCorners(_start.x, _start.y, _end.x, _end.y);
}

void MfPiImgPickDragManip::beginManipulation(const PiEventContext& context) {
    MfPiImgPickManip::beginManipulation(context);
    _start = _end = context.getWorldPoint();
    getImgPick().setPickRectangle(getRectangle());
}

void MfPiImgPickDragManip::continueManipulation(const PiEventContext& context) {
    if (context.hasDeviceEvent()) {
        _end = context.getWorldPoint();
        getImgPick().setPickRectangle(getRectangle());
    }
}

void MfPiImgPickDragManip::collect(List<CoRgbaColorTyped<float>>& colours) const {
    if (!getImgPick().pickColors(getRectangle(), colours)) {
        getImgPick().pickColors(PiImgPick::getPixelRectangle(_end), colours);
    }
}

void MfPiImgPickDragManip::drawSelf(const VwView& view, const GeAffineMatrix3<float>&) const {
    if (!isManipulating()) {
        return;
    }
    // The rubber band: a dark line around a light one, so that it shows over
    // a screen of any colour.
    const GeRectangle<float> band = VwUtils::worldToWindowOrtho(view, getRectangle());
    const GeRectangle<float> outer(band.getXMin() - 1.0f, band.getXMax() + 1.0f,
                                   band.getYMin() - 1.0f, band.getYMax() + 1.0f);
    view.getPainter()->drawRect(outer, {0.0f, 0.0f, 0.0f, 0.6f});
    view.getPainter()->drawRect(band, getDrawColour());
}
