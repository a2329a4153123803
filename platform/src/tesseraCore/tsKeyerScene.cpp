#include "tsUndoStep.h"

#include <tesseraCore/colour/tsColour.h>
#include <tesseraCore/io/tsPlateIO.h>
#include <tesseraCore/tsKeyerScene.h>

#include <tesseraCore/tsGroupInterface.h>
#include <tesseraCore/tsSetup.h>

#include <base/exReporter.h>
#include <base/fsInputFile.h>
#include <base/znLimits.h>

#include <algorithm>

namespace {

const char* const GroupName = "Tessera";

// An image input set as the host wires it: no undo step.
void wire(const RCShdPtr<PiInput>& input, const PiClipPtr& image) {
    if (!input) {
        return;
    }
    PiInputState state = input->getState();
    state.constant = PiValue(image);
    state.keys.clear();
    input->restoreState(state);
}

} // namespace

TsKeyerScene::TsKeyerScene() {
    makeKeyer(1, 1);
}

TsKeyerScene::~TsKeyerScene() {
    detachGroup();
}

void TsKeyerScene::makeKeyer(int generation, int nodes) {
    detachGroup();
    _graph = PiGraph::create();
    _group = TsKeyerGroup::create(GroupName, generation, std::max(nodes, 1));
    _graph->getRoot()->addNode(_group);
    for (int i = 0; i < std::min(_group->getKeyerNodeCount(), TsGroupInterface::SlotCount); ++i) {
        _group->setSlotNode(i, _group->getKeyerNode(i));
    }
    _group->setSelectedNode(_group->getKeyerNode(0));
    wirePlates();
    _graph->getCommandStack().clear();
    attachGroup();
    // The new group chooses automatic spaces.
    colourChanged();
}

void TsKeyerScene::attachGroup() {
    for (Source source : {Source::Plate, Source::Background}) {
        spaceInput(source)->addValueChangedCb(&_colourChanged);
    }
}

void TsKeyerScene::detachGroup() {
    if (_group) {
        for (Source source : {Source::Plate, Source::Background}) {
            spaceInput(source)->removeValueChangedCb(&_colourChanged);
        }
    }
}

RCShdPtr<PiNode> TsKeyerScene::findNode(const std::string& name) const {
    if (name == _group->getName()) {
        return _group;
    }
    return _group->findNode(name);
}

RCShdPtr<TsKeyerNode> TsKeyerScene::getActiveNode() const {
    const RCShdPtr<PiNode> selected = _group->getSelectedNode();
    RCShdPtr<TsKeyerNode> keyer(dynamic_cast<TsKeyerNode*>(selected.get()));
    return keyer ? keyer : _group->getKeyerNode(0);
}

void TsKeyerScene::setPlate(const PiClipPtr& plate, const std::string& name) {
    _plate = plate;
    _plateName = name;
    _files[0] = File();
    wirePlates();
}

void TsKeyerScene::setBackground(const PiClipPtr& background, const std::string& name) {
    _background = background;
    _backgroundName = name;
    _files[1] = File();
    wirePlates();
}

// --- files and their colour spaces

const RCShdPtr<PiInput>& TsKeyerScene::spaceInput(Source source) const {
    return source == Source::Plate ? _group->getPlateColorSpaceInput()
                                   : _group->getBackgroundColorSpaceInput();
}

bool TsKeyerScene::readSource(Source source, const std::string& path, const std::string& name,
                              std::string& error, const std::string* space,
                              const TsSequenceOptions& sequence) {
    File file{path, getColourSpace(source), "", sequence};
    if (space && !space->empty() && !TsColour::resolve(*space, file.requested, error)) {
        return false;
    }
    if (space && space->empty()) {
        file.requested.clear();
    }
    PiClipPtr image;
    if (TsSequence::isPattern(path)) {
        image = TsSequenceClip::open(path, sequence, file.requested, error, &file.used);
    } else {
        image = TsPlateIO::read(path, error, file.requested, &file.used);
    }
    if (!image) {
        return false;
    }
    if (file.requested != getColourSpace(source)) {
        // The choice follows; the file is read in it already.
        _files[static_cast<int>(source)] = file;
        setColourSpace(source, file.requested, error);
    }
    if (source == Source::Plate) {
        setPlate(image, name);
    } else {
        setBackground(image, name);
    }
    _files[static_cast<int>(source)] = file;
    return true;
}

std::string TsKeyerScene::getColourSpace(Source source) const {
    const auto names = spaceInput(source)->getTypedValue<PiStringList>(0.0);
    return names.empty() ? std::string() : names.front();
}

bool TsKeyerScene::setColourSpace(Source source, const std::string& space, std::string& error) {
    std::string name;
    if (!space.empty() && !TsColour::resolve(space, name, error)) {
        return false;
    }
    const TsUndoStep step(*_group, source == Source::Plate ? "Plate Colour Space"
                                                           : "Background Colour Space");
    spaceInput(source)->setValue(0.0, PiValue(name.empty() ? PiStringList{} : PiStringList{name}));
    return true;
}

const std::string& TsKeyerScene::getFileColourSpace(Source source) const {
    return _files[static_cast<int>(source)].used;
}

bool TsKeyerScene::reread(Source source) {
    const File file = _files[static_cast<int>(source)];
    if (file.path.empty()) {
        return true;
    }
    std::string error;
    if (!readSource(source, file.path, source == Source::Plate ? _plateName : _backgroundName,
                    error, nullptr, file.sequence)) {
        ExReporter::getInstance().report("scene", error);
        return false;
    }
    return true;
}

void TsKeyerScene::colourChanged() {
    for (Source source : {Source::Plate, Source::Background}) {
        if (_files[static_cast<int>(source)].requested != getColourSpace(source)) {
            reread(source);
        }
    }
}

void TsKeyerScene::refreshColour() {
    for (Source source : {Source::Plate, Source::Background}) {
        reread(source);
    }
}

void TsKeyerScene::wirePlates() {
    for (int i = 0; i < _group->getKeyerNodeCount(); ++i) {
        const RCShdPtr<TsKeyerNode> keyer = _group->getKeyerNode(i);
        exContain("scene: plates of " + keyer->getName(), [&] {
            wire(keyer->getImageInput(), _plate);
            wire(keyer->getBackgroundInput(), _background);
        });
    }
}

bool TsKeyerScene::saveSetup(const std::string& path, std::string& error) const {
    return TsSetup::save(*_group, path, error);
}

bool TsKeyerScene::loadSetup(const std::string& path, std::string& error) {
    bool loaded = false;
    error.clear();
    exContain("scene: loading " + path, [&] { loaded = TsSetup::load(*_group, path, error); });
    if (!loaded) {
        if (error.empty()) {
            error = path + ": the setup was not loaded (see the report before)";
        }
        return false;
    }
    // Keyer nodes the setup added get the plate too.
    wirePlates();
    return true;
}

bool TsKeyerScene::openSetup(const std::string& path, std::string& error) {
    std::string text;
    std::string reason;
    if (!FsInputFile::read(path, ZnLimits::SetupBytes, "a setup", text, reason)) {
        error = path + ": cannot read the setup: " + reason;
        return false;
    }
    makeKeyer(TsSetup::getGeneration(text) == 2 ? 2 : 1, 1);
    if (!loadSetup(path, error)) {
        return false;
    }
    _graph->getCommandStack().clear();
    return true;
}
