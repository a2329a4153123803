#include <gfx/mfManipObject.h>

#include <base/assertions.h>
#include <base/vwView.h>

MfManipObject::MfManipObject(int pickTolerance)
    : _tolerance(pickTolerance < 0 ? 0 : pickTolerance) {}

void MfManipObject::addAppearance(const RCShdPtr<MfAppearance>& appearance) {
    if (!appearance) {
        Assertions::fail("appearance");
    }
    _appearances.push_back(appearance);
}

const RCShdPtr<MfAppearance>& MfManipObject::getAppearance(int index) const {
    if (index < 0 || index >= getAppearanceCount()) {
        Assertions::fail("index >= 0 && index < getAppearanceCount()");
    }
    return _appearances[static_cast<std::size_t>(index)];
}

bool MfManipObject::hitTest(const VwView& view, const GePoint2<float>& window) const {
    const GeAffineMatrix3<float> toWindow = getLocalToWindow(view);
    for (const auto& appearance : _appearances) {
        if (appearance->hitTest(toWindow, window, static_cast<float>(_tolerance))) {
            return true;
        }
    }
    return false;
}

void MfManipObject::drawSelf(const VwView& view,
                             const GeAffineMatrix3<float>& localToWindow) const {
    const CoRgbaColorTyped<float> colour = getDrawColour();
    for (const auto& appearance : _appearances) {
        if (appearance->isDrawable()) {
            appearance->draw(*view.getPainter(), localToWindow, colour);
        }
    }
}
