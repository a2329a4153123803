#include <tesseraCore/tsKeyerScene.h>

#include <tesseraCore/tsGroupInterface.h>
#include <tesseraCore/tsSetup.h>

#include <base/exReporter.h>

#include <algorithm>
#include <fstream>
#include <sstream>

namespace {

const char* const GroupName = "Tessera";

// An image input set as the host wires it: no undo step.
void wire(const RCShdPtr<PiInput>& input, const PiImagePtr& image) {
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

void TsKeyerScene::makeKeyer(int generation, int nodes) {
    _graph = PiGraph::create();
    _group = TsKeyerGroup::create(GroupName, generation, std::max(nodes, 1));
    _graph->getRoot()->addNode(_group);
    for (int i = 0; i < std::min(_group->getKeyerNodeCount(), TsGroupInterface::SlotCount); ++i) {
        _group->setSlotNode(i, _group->getKeyerNode(i));
    }
    _group->setSelectedNode(_group->getKeyerNode(0));
    wirePlates();
    _graph->getCommandStack().clear();
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

void TsKeyerScene::setPlate(const PiImagePtr& plate, const std::string& name) {
    _plate = plate;
    _plateName = name;
    wirePlates();
}

void TsKeyerScene::setBackground(const PiImagePtr& background, const std::string& name) {
    _background = background;
    _backgroundName = name;
    wirePlates();
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
    LiString message;
    if (!TsSetup::save(*_group, path, &message)) {
        error = message;
        return false;
    }
    return true;
}

bool TsKeyerScene::loadSetup(const std::string& path, std::string& error) {
    bool loaded = false;
    LiString message;
    exContain("scene: loading " + path, [&] { loaded = TsSetup::load(*_group, path, &message); });
    if (!loaded) {
        error = message.empty() ? "the setup was not loaded" : message;
        return false;
    }
    // Keyer nodes the setup added get the plate too.
    wirePlates();
    return true;
}

bool TsKeyerScene::openSetup(const std::string& path, std::string& error) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    const int generation = TsSetup::getGeneration(text.str());
    makeKeyer(generation == 2 ? 2 : 1, 1);
    if (!loadSetup(path, error)) {
        return false;
    }
    _graph->getCommandStack().clear();
    return true;
}
