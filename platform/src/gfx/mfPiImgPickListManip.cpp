#include <gfx/mfPiImgPickListManip.h>

#include <base/vwPainter.h>
#include <base/vwUtils.h>
#include <base/vwView.h>
#include <pluginAPI/piEventContext.h>

MfPiImgPickListManip::MfPiImgPickListManip(PiImgPick& imgPick)
    : MfPiImgPickManip(imgPick) {}

void MfPiImgPickListManip::beginManipulation(const PiEventContext& context) {
    MfPiImgPickManip::beginManipulation(context);
    _picked.clear();
    _trail.clear();
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
    if (getImgPick().pickColors(pixel, _picked) && (_trail.empty() || !(_trail.back() == pixel))) {
        _trail.push_back(pixel);
    }
}

void MfPiImgPickListManip::drawSelf(const VwView& view, const GeAffineMatrix3<float>&) const {
    if (!isManipulating() || _trail.empty()) {
        return;
    }
    VwPainter& painter = *view.getPainter();
    const CoRgbaColorTyped<float> colour = getDrawColour();
    auto centre = [&view](const GeRectangle<float>& r) {
        const GeRectangle<float> w = VwUtils::worldToWindowOrtho(view, r);
        return GePoint2<float>{0.5f * (w.getXMin() + w.getXMax()),
                               0.5f * (w.getYMin() + w.getYMax())};
    };
    for (std::size_t i = 1; i < _trail.size(); ++i) {
        painter.drawLine(centre(_trail[i - 1]), centre(_trail[i]), colour);
    }
    painter.drawRect(VwUtils::worldToWindowOrtho(view, _trail.back()), colour);
}

void MfPiImgPickListManip::collect(List<CoRgbaColorTyped<float>>& colours) const {
    colours.insert(colours.end(), _picked.begin(), _picked.end());
}
