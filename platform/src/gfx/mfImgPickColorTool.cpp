#include <gfx/mfImgPickColorTool.h>

#include <pluginAPI/piNode.h>
#include <pluginAPI/piPath.h>
#include <pluginAPI/piTimePath.h>
#include <pluginAPI/piViewer.h>

MfImgPickColorTool::MfImgPickColorTool(PiImgPick& imgPick, PiViewer& viewer,
                                       const RCShdPtr<PiNode>& node, const RCShdPtr<PiPath>& path,
                                       const RCShdPtr<PiStructuredInput>& input)
    : MfImgPickTool(imgPick)
    , _node(node) {
    *node; // a null node throws ExNullPtr
    const RCShdPtr<const PiTimePath> timePath(
        new PiTimePath(viewer.getTimeClient(), RCShdPtr<const PiPath>(path)));
    _colour = PiInputRgbColor::create(input, timePath);
}

MfImgPickColorTool::~MfImgPickColorTool() = default;

CoRgbColorTyped<float> MfImgPickColorTool::mean(const List<CoRgbaColorTyped<float>>& colours) {
    if (colours.empty()) {
        return {};
    }
    double r = 0.0, g = 0.0, b = 0.0;
    for (const auto& c : colours) {
        r += c.r;
        g += c.g;
        b += c.b;
    }
    const double n = static_cast<double>(colours.size());
    return {static_cast<float>(r / n), static_cast<float>(g / n), static_cast<float>(b / n)};
}

void MfImgPickColorTool::process(const List<CoRgbaColorTyped<float>>& colours) {
    if (colours.empty()) {
        return;
    }
    _colour->setValue(mean(colours));
}
