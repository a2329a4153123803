#include <gfx/mfAppearance.h>
#include <gfx/mfRangeManipulator.h>

#include <base/vwPainter.h>
#include <base/vwView.h>
#include <pluginAPI/piEventContext.h>
#include <pluginAPI/piViewer.h>

#include <algorithm>
#include <cctype>

namespace {

// A bar's label as the panels write their fields: each word capitalised
// ("spill amount" shows as "Spill Amount").
std::string titleCase(std::string text) {
    bool start = true;
    for (char& c : text) {
        if (start) {
            c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        }
        start = c == ' ';
    }
    return text;
}

} // namespace

MfRangeManipulator::MfRangeManipulator(const GeRectangle<float>& rect, const std::string& name)
    : _rect(rect)
    , _name(name)
    , _value(0.5f * (rect.getXMin() + rect.getXMax())) {
    holdsScreenControl();
}

bool MfRangeManipulator::hitTest(const VwView& view, const GePoint2<float>& window) const {
    const GeRectangle<float> r = MfRectAppearance::toWindow(getLocalToWindow(view), _rect);
    return r.contains(window.x, window.y);
}

void MfRangeManipulator::continueManipulation(const PiEventContext& context) {
    follow(context);
}

void MfRangeManipulator::follow(const PiEventContext& context) {
    if (!context.hasDeviceEvent()) {
        return;
    }
    const GePoint2<float> local =
        windowToLocal(context.getViewer().getView(), context.getDeviceEvent().getCoord());
    _value = std::clamp(local.x, _rect.getXMin(), _rect.getXMax());
}

void MfRangeManipulator::drawSelf(const VwView& view,
                                  const GeAffineMatrix3<float>& localToWindow) const {
    VwPainter& painter = *view.getPainter();
    const CoRgbaColorTyped<float> colour = getDrawColour();
    const GeRectangle<float> bar = MfRectAppearance::toWindow(localToWindow, _rect);
    painter.fillRect(bar, {0.1f, 0.1f, 0.1f, 0.45f});
    painter.drawRect(bar, colour);

    const float x = std::clamp(_value, _rect.getXMin(), _rect.getXMax());
    const float half = 0.5f * HandleWidth;
    const GeRectangle<float> handle(std::max(_rect.getXMin(), x - half),
                                    std::min(_rect.getXMax(), x + half), _rect.getYMin(),
                                    _rect.getYMax());
    painter.fillRect(MfRectAppearance::toWindow(localToWindow, handle), colour);

    if (!_name.empty()) {
        // Left-aligned, a few pixels in, vertically centred on the viewer's
        // overlay text (12 pixels).
        painter.drawText({bar.getXMin() + 4.0f, 0.5f * (bar.getYMin() + bar.getYMax()) + 5.0f},
                         titleCase(_name), colour);
    }
}
