#include <pluginAPI/piEventContext.h>
#include <pluginAPI/piImgPick.h>
#include <pluginAPI/piInput.h>
#include <pluginAPI/piTimePath.h>

#include <base/rcExUtil.h>
#include <base/typeName.h>

#include <algorithm>
#include <cmath>

RCStrongPtr<PiImgPick> PiImgPick::create(const RCShdPtr<const PiInput>& input,
                                         const RCShdPtr<const PiTimePath>& timePath, int stream) {
    if (!input) {
        RCExUtil::throwExNullPtr(typeNameOf<PiInput>().c_str());
    }
    if (input->getType() != PiValueType::Image) {
        RCExUtil::throwExCastFailed(
            (LiString("PiInput of ") + PiValueUtil::getTypeName(input->getType())).c_str(),
            "PiInput of image");
    }
    return RCStrongPtr<PiImgPick>(new PiImgPick(input, timePath, stream));
}

PiImgPick::PiImgPick(const RCShdPtr<const PiInput>& input,
                     const RCShdPtr<const PiTimePath>& timePath, int stream)
    : _input(input)
    , _timePath(timePath)
    , _stream(stream) {}

PiImagePtr PiImgPick::getImage() const {
    const PiClipPtr clip = _input->getTypedValue<PiClipPtr>(0.0);
    return clip ? clip->getImageAt(_timePath ? _timePath->getTime() : 0.0) : PiImagePtr();
}

bool PiImgPick::accepts(const PiEventContext& context) const {
    return context.hasDeviceEvent() && isOverImage(context.getWorldPoint());
}

bool PiImgPick::isOverImage(const GePoint2<float>& world) const {
    const PiImagePtr image = getImage();
    return image && world.x >= 0.0f && world.y >= 0.0f &&
           world.x < static_cast<float>(image->getWidth()) &&
           world.y < static_cast<float>(image->getHeight());
}

bool PiImgPick::pickColors(const GeRectangle<float>& rect,
                           List<CoRgbaColorTyped<float>>& colours) const {
    const PiImagePtr image = getImage();
    return image && pickColors(*image, rect, colours);
}

bool PiImgPick::pickColors(const PiImage& image, const GeRectangle<float>& rect,
                           List<CoRgbaColorTyped<float>>& colours) {
    if (image.isEmpty() || !rect.isValid() || !std::isfinite(rect.getXMin()) ||
        !std::isfinite(rect.getXMax()) || !std::isfinite(rect.getYMin()) ||
        !std::isfinite(rect.getYMax())) {
        return false;
    }
    // Pixel i has its centre in [min, max) when min <= i + 0.5 < max.
    auto first = [](float min, int size) {
        const double i = std::ceil(static_cast<double>(min) - 0.5);
        return static_cast<int>(std::clamp(i, 0.0, static_cast<double>(size)));
    };
    auto past = [](float max, int size) {
        const double i = std::ceil(static_cast<double>(max) - 0.5);
        return static_cast<int>(std::clamp(i, 0.0, static_cast<double>(size)));
    };
    const int i0 = first(rect.getXMin(), image.getWidth());
    const int i1 = past(rect.getXMax(), image.getWidth());
    const int j0 = first(rect.getYMin(), image.getHeight());
    const int j1 = past(rect.getYMax(), image.getHeight());
    if (i0 >= i1 || j0 >= j1) {
        return false;
    }
    colours.reserve(colours.size() + static_cast<std::size_t>(i1 - i0) * (j1 - j0));
    for (int j = j0; j < j1; ++j) {
        const float* p = image.row(j) + 4 * i0;
        for (int i = i0; i < i1; ++i, p += 4) {
            colours.emplace_back(p[0], p[1], p[2], p[3]);
        }
    }
    return true;
}

GeRectangle<float> PiImgPick::getPixelRectangle(const GePoint2<float>& world) {
    const float i = std::floor(world.x);
    const float j = std::floor(world.y);
    return GeRectangle<float>(i, i + 1.0f, j, j + 1.0f);
}
