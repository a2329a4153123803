#include <tesseraCore/render/tsViewRender.h>

#include <tesseraCore/io/tsPlateIO.h>
#include <tesseraCore/tsKeyerNode.h>

#include <base/assertions.h>

#include <algorithm>

namespace {

PiClipPtr clipOf(const RCShdPtr<PiInput>& input) {
    return input ? input->getTypedValue<PiClipPtr>(0.0) : PiClipPtr();
}

PiImagePtr imageOf(const RCShdPtr<PiInput>& input, double frame) {
    const PiClipPtr clip = clipOf(input);
    return clip ? clip->getImageAt(frame) : PiImagePtr();
}

// Grows with every change of any input of the node: the cache's staleness
// test (a sum of the inputs' revisions, which only ever grow).
std::uint64_t revisionOf(const PiNode& node) {
    std::uint64_t sum = 0;
    for (int i = 0; i < node.getInputCount(); ++i) {
        sum += node.getInput(i)->getRevision();
    }
    return sum;
}

} // namespace

const std::vector<std::string>& TsViewRender::getViewNames() {
    static const std::vector<std::string> names = {"source", "matte", "status", "foreground",
                                                   "composite"};
    return names;
}

const std::string& TsViewRender::getViewName(TsViewMode mode) {
    return getViewNames().at(static_cast<std::size_t>(mode));
}

bool TsViewRender::parseView(const std::string& name, TsViewMode& mode) {
    const auto& names = getViewNames();
    const auto it = std::find(names.begin(), names.end(), name);
    if (it == names.end()) {
        return false;
    }
    mode = static_cast<TsViewMode>(it - names.begin());
    return true;
}

PiImagePtr TsViewRender::render(const TsKeyerNode& node, double frame, TsViewMode mode) {
    const PiImagePtr plate = imageOf(node.getImageInput(), frame);
    if (!plate || plate->isEmpty()) {
        return PiImagePtr();
    }
    TsKeyerPass pass;
    pass.setPlate(plate);
    pass.setBackground(imageOf(node.getBackgroundInput(), frame));
    pass.setSettings(node.getSettings(frame));
    return pass.render(mode);
}

bool TsViewRender::write(const PiImage& view, TsViewMode mode, const std::string& path,
                         std::string& error, const std::string& colourSpace) {
    return TsPlateIO::write(view, path, error, colourSpace,
                            mode == TsViewMode::Matte ? TsPlateIO::Holds::Matte
                                                      : TsPlateIO::Holds::Rgba);
}

PiImagePtr TsViewRenderer::reducedBackground(const PiImagePtr& background, double time,
                                             int factor) {
    if (!background) {
        return PiImagePtr();
    }
    const PiClipPtr clip = clipOf(_node->getBackgroundInput());
    if (PiImagePtr reduced = clip ? clip->getReducedAt(time, factor) : PiImagePtr()) {
        return reduced;
    }
    if (_backgroundSource.get() != background.get() || _backgroundFactor != factor) {
        _backgroundReduced = TsKeyerPass::reduce(*background, factor);
        _backgroundSource = background;
        _backgroundFactor = factor;
    }
    return _backgroundReduced;
}

TsViewRenderer::TsViewRenderer(const RCShdPtr<const TsKeyerNode>& node)
    : _node(node) {}

PiImagePtr TsViewRenderer::render(const std::string& view, double time, int width) {
    TsViewMode mode = TsViewMode::Composite;
    if (!TsViewRender::parseView(view, mode)) {
        Assertions::fail("TsViewRender::parseView(view, mode)");
    }
    const TsKeyerNode& node = *_node;
    const Key key{revisionOf(node), time, mode, std::max(width, 0)};
    if (_valid && key == _key) {
        return _image;
    }
    const PiImagePtr plate = imageOf(node.getImageInput(), time);
    if (!plate || plate->isEmpty()) {
        _image.reset();
    } else {
        if (_pass.getPlate().get() != plate.get()) {
            _pass.setPlate(plate);
        }
        const PiImagePtr background = imageOf(node.getBackgroundInput(), time);
        if (_pass.getBackground().get() != background.get()) {
            _pass.setBackground(background);
        }
        _pass.setSettings(node.getSettings(time));
        // A frame of a sequence comes with its reduced copy from the frame
        // cache (made when it was read ahead); the pass reduces a still itself.
        const int factor = key.width > 0 ? _pass.getViewerFactor(key.width) : 1;
        const PiClipPtr clip = clipOf(node.getImageInput());
        const PiImagePtr reduced = factor > 1 ? clip->getReducedAt(time, factor) : PiImagePtr();
        if (reduced) {
            auto out = rcMake<PiImage>();
            TsKeyerPass::run(*reduced, reducedBackground(background, time, factor).get(),
                             _pass.getSettings(), mode, *out, factor);
            _image = PiImagePtr(out);
            ++_reducedRenders;
        } else if (key.width > 0) {
            auto out = rcMake<PiImage>();
            _pass.renderViewer(mode, key.width, *out);
            _image = PiImagePtr(out);
            ++_reducedRenders;
        } else {
            _image = _pass.render(mode);
            ++_renders;
        }
    }
    _key = key;
    _valid = true;
    return _image;
}
