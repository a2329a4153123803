#include "keyerImageSource.h"

#include <base/exReporter.h>
#include <pluginAPI/piEventHandler.h>
#include <pluginAPI/piPath.h>
#include <tesseraCore/tsKeyerNode.h>
#include <ui/uiViewer.h>

namespace {

// Grows with every change of any input of the node: the cache's staleness
// test (a sum of the inputs' revisions, which only ever grow).
std::uint64_t revisionOf(const PiNode& node) {
    std::uint64_t sum = 0;
    for (int i = 0; i < node.getInputCount(); ++i) {
        sum += node.getInput(i)->getRevision();
    }
    return sum;
}

PiImagePtr imageOf(const RCShdPtr<PiInput>& input, double frame) {
    return input ? input->getTypedValue<PiImagePtr>(frame) : PiImagePtr();
}

} // namespace

KeyerImageSource::KeyerImageSource(UiViewer& viewer)
    : _viewer(viewer) {
    _viewer.setImageSource([this](double frame) { return image(frame); });
}

KeyerImageSource::~KeyerImageSource() {
    _viewer.setImageSource(UiViewer::ImageSource());
}

const std::vector<std::string>& KeyerImageSource::getModeNames() {
    static const std::vector<std::string> names = {"source", "matte", "status", "foreground",
                                                   "composite"};
    return names;
}

const std::string& KeyerImageSource::getModeName(TsViewMode mode) {
    return getModeNames().at(static_cast<std::size_t>(mode));
}

bool KeyerImageSource::parseMode(const std::string& name, TsViewMode& mode) {
    const auto& names = getModeNames();
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names[i] == name) {
            mode = static_cast<TsViewMode>(i);
            return true;
        }
    }
    return false;
}

void KeyerImageSource::setMode(TsViewMode mode) {
    if (mode != _mode) {
        _mode = mode;
        _viewer.redraw();
    }
}

PiImagePtr KeyerImageSource::render(const TsKeyerNode& node, double frame, TsViewMode mode) {
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

PiImagePtr KeyerImageSource::image(double frame) {
    const RCShdPtr<PiNode> shown = _viewer.getNode();
    const auto* node = dynamic_cast<const TsKeyerNode*>(shown.get());
    if (!node) {
        return PiImagePtr();
    }
    const RCShdPtr<PiEventHandler> handler = _viewer.getCurrentEventHandler();
    bool dragging = false;
    if (handler) {
        exContain("viewer image: the handler's state",
                  [&] { dragging = handler->isManipulating(); });
    }
    const Key key{node, revisionOf(*node), frame, _mode, dragging ? _viewer.width() : 0};
    if (_valid && key == _key) {
        return _image;
    }
    const PiImagePtr plate = imageOf(node->getImageInput(), frame);
    if (!plate || plate->isEmpty()) {
        _image.reset();
    } else {
        if (_pass.getPlate().get() != plate.get()) {
            _pass.setPlate(plate);
        }
        const PiImagePtr background = imageOf(node->getBackgroundInput(), frame);
        if (_pass.getBackground().get() != background.get()) {
            _pass.setBackground(background);
        }
        _pass.setSettings(node->getSettings(frame));
        if (dragging) {
            auto out = rcMake<PiImage>();
            _pass.renderViewer(_mode, std::max(key.width, 1), *out);
            _image = PiImagePtr(out);
            ++_viewerRenders;
        } else {
            _image = _pass.render(_mode);
            ++_renders;
        }
    }
    _key = key;
    _valid = true;
    return _image;
}
