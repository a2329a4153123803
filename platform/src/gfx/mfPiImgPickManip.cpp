#include <gfx/mfPiImgPickDragManip.h>
#include <gfx/mfPiImgPickListManip.h>
#include <gfx/mfPiImgPickManip.h>

#include <base/vwUtils.h>
#include <base/vwView.h>

MfPiImgPickManip::MfPiImgPickManip(PiImgPick& imgPick)
    : _imgPick(&imgPick) {}

MfPiImgPickManip::~MfPiImgPickManip() = default;

bool MfPiImgPickManip::hitTest(const VwView& view, const GePoint2<float>& window) const {
    return _imgPick->isOverImage(VwUtils::windowToWorldOrtho(view, window));
}
