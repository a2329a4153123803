#include "hostSession.h"

#include "hostPackages.h"

#include <base/rcCast.h>
#include <pluginAPI/piContainer.h>
#include <pluginAPI/piCurrentToolEventHandler.h>
#include <pluginAPI/piEventHandler.h>
#include <pluginAPI/piNodeWidget.h>
#include <pluginAPI/piPath.h>
#include <pluginAPI/piSnItem.h>
#include <pluginAPI/piTimePath.h>
#include <resmgt/msgFileGuard.h>
#include <tesseraCore/colour/tsColour.h>
#include <tesseraCore/demo/tsDemoPlate.h>
#include <tesseraCore/demo/tsDemoShot.h>
#include <tesseraCore/io/tsPlateIO.h>
#include <tesseraCore/tsNodeSelectChangedEvent.h>
#include <tesseraCore/tsSetup.h>
#include <ui/uiApplication.h>
#include <ui/uiHotkeyRegistry.h>
#include <ui/uiMainWindow.h>
#include <ui/uiNodeWidget.h>
#include <ui/uiPanel.h>
#include <ui/uiViewer.h>
#include <ui/uiWorkspace.h>

#include <QCoreApplication>
#include <QEvent>
#include <QRect>

#include <algorithm>
#include <fstream>
#include <sstream>

namespace {

// The areas of the main panel, by the panel names scripts use.
const std::vector<std::pair<std::string, std::string>> Areas = {{"matte", "tsMatteGen"},
                                                                {"degrain", "tsDegrain"},
                                                                {"spill", "tsSpillBlend"},
                                                                {"other", "tsOtherUi"}};

UiNodeWidget* areaOf(const PiContainer& panel, const std::string& area) {
    RCShdPtr<PiWidget> widget;
    exContain("session: panel area " + area, [&] { widget = panel.findWidget(area); });
    return dynamic_cast<UiNodeWidget*>(widget.get());
}

// The keyer node a selection item refers to, if it is one.
RCShdPtr<PiNode> nodeOf(const RCShdPtr<const SnItem>& item) {
    const auto* node = dynamic_cast<const PiSnItem<PiNode>*>(item.get());
    return node ? node->get() : RCShdPtr<PiNode>();
}

} // namespace

bool HostSession::startPackages() {
    static const bool started = HostPackages::loadAndStart(HostPackages::defaultModulePath());
    return started;
}

HostSession::HostSession(QWidget* viewerParent, int width, int height, QWidget* panelParent) {
    UiApplication::getInstance();
    startPackages();
    _listener = ExReporter::getInstance().addListener(
        [this](const ExReporter::Report& r) { _reports.push_back(r); });
    _pickObserverBefore =
        MfImgPickTool::setPickObserver([this](const List<CoRgbaColorTyped<float>>& colours) {
            _lastPicked.clear();
            for (const CoRgbaColorTyped<float>& c : colours) {
                _lastPicked.push_back({c.r, c.g, c.b});
            }
        });
    _catalogue = std::make_unique<MsgFileGuard>("tessera.msg");
    // The colour configuration is read on first use: now, so that a bad one
    // is reported at start.
    TsColour::getConfigPath();
    // The hotkey table is read on first use: now, so that a bad table is
    // reported at start.
    UiHotkeyRegistry::getInstance();
    _viewer = std::make_unique<UiViewer>(viewerParent, "viewer");
    _viewer->resize(width, height);
    _viewer->setDisplayTransform(&_display);
    UiWorkspace::getInstance().addViewer(_viewer.get());
    _mainPanel = std::make_unique<UiPanel>("main", panelParent);
    if (!panelParent) {
        // A window of its own stands beside the viewer's, as on a desktop: a
        // click on the panel is no click on the viewer.
        const QRect viewerWindow = _viewer->window()->frameGeometry();
        _mainPanel->move(viewerWindow.right() + 1, viewerWindow.top());
    }
    if (!UiApplication::getInstance().getMainWindow()) {
        _mainWindow = std::make_unique<UiMainWindow>(_viewer->window());
        UiApplication::getInstance().setMainWindow(_mainWindow.get());
    }
    SnSelection::getCurrent()->attachObserver(this);
    _scene = std::make_unique<TsKeyerScene>();
    makeKeyer(1, 1);
}

HostSession::~HostSession() {
    MfImgPickTool::setPickObserver(std::move(_pickObserverBefore));
    SnSelection::getCurrent()->detachObserver(this);
    detachGroup();
    // The panel's and the viewer's handlers (module code) go while the keyer
    // still lives.
    exContain("session: closing the panels", [&] { _mainPanel.reset(); });
    UiWorkspace::getInstance().removeViewer(_viewer.get());
    if (_mainWindow && UiApplication::getInstance().getMainWindow() == _mainWindow.get()) {
        UiApplication::getInstance().setMainWindow(nullptr);
    }
    exContain("session: closing the viewer", [&] { _viewer.reset(); });
    _shown.reset();
    _scene.reset();
    settle();
    _catalogue.reset();
    ExReporter::getInstance().removeListener(_listener);
}

void HostSession::settle() {
    UiApplication::getInstance().processRequests();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// --- the keyer

void HostSession::attachGroup() {
    const RCShdPtr<PiNodeController>& controller = getKeyer()->getController();
    controller->addCallback<TsNodeSelectChangedEvent>(&_selectChanged);
    controller->addCallback<PiNodeEvent::NodeRemovedFromGroup>(&_removed);
}

void HostSession::detachGroup() {
    if (!_scene || !getKeyer()) {
        return;
    }
    const RCShdPtr<PiNodeController>& controller = getKeyer()->getController();
    controller->removeCallback<TsNodeSelectChangedEvent>(&_selectChanged);
    controller->removeCallback<PiNodeEvent::NodeRemovedFromGroup>(&_removed);
}

void HostSession::makeKeyer(int generation, int nodes) {
    detachGroup();
    exContain("session: the panels let the old keyer go",
              [&] { _mainPanel->setNode(RCShdPtr<PiNode>(), RCShdPtr<const PiTimePath>()); });
    exContain("session: the viewer lets the old keyer go",
              [&] { _viewer->setNode(RCShdPtr<PiNode>()); });
    _shown.reset();
    _scene->makeKeyer(generation, nodes);
    const RCShdPtr<TsKeyerGroup>& group = getKeyer();
    attachGroup();
    followKeyer();
    const RCShdPtr<const PiTimePath> timePath(
        new PiTimePath(&_viewer->getTime(), rcMake<PiPath>(RCShdPtr<PiNode>(group))));
    exContain("session: the main panel", [&] { _mainPanel->setNode(group, timePath); });
    showPanels();
    select(group->getKeyerNode(0));
}

const std::vector<std::string>& HostSession::getPanelNames() {
    static const std::vector<std::string> names = {"main", "matte", "degrain", "spill", "other"};
    return names;
}

RCShdPtr<PiContainer> HostSession::getPanel(const std::string& name) const {
    const RCShdPtr<PiContainer> main = _mainPanel->getContainer();
    if (name == "main" || !main) {
        return name == "main" ? main : RCShdPtr<PiContainer>();
    }
    for (const auto& [panel, area] : Areas) {
        if (panel == name) {
            UiNodeWidget* widget = areaOf(*main, area);
            return widget ? widget->getContent().container : RCShdPtr<PiContainer>();
        }
    }
    return RCShdPtr<PiContainer>();
}

void HostSession::showPanels() {
    const RCShdPtr<PiContainer> main = _mainPanel->getContainer();
    if (!main || _mainPanel->getController()) {
        return;
    }
    // No controller to fill the areas: the host shows the shown node's stage
    // panels in them.
    for (const auto& [panel, area] : Areas) {
        UiNodeWidget* widget = areaOf(*main, area);
        if (widget && widget->getNode().get() != _shown.get()) {
            exContain("session: panel " + panel,
                      [&] { widget->setContent(RCShdPtr<PiNode>(_shown)); });
        }
    }
}

void HostSession::followKeyer() {
    const RCShdPtr<TsKeyerNode> keyer = _scene->getActiveNode();
    if (keyer.get() != _shown.get() || _viewer->getNode().get() != keyer.get()) {
        _shown = keyer;
        exContain("session: showing " + (keyer ? keyer->getName() : std::string("no node")),
                  [&] { _viewer->setNode(keyer); });
        if (_mainPanel) {
            showPanels();
        }
    }
    selectShown();
}

void HostSession::selectShown() {
    if (!_shown || getCommandStack().isReplaying()) {
        return;
    }
    const RCShdPtr<PiNode> selected = nodeOf(SnSelection::getCurrent()->first());
    if (!selected || selected.get() == _shown.get()) {
        return;
    }
    const RCShdPtr<TsKeyerGroup>& group = getKeyer();
    const bool left = !selected->getGraphPtr();
    const bool other = selected->getParent() == group.get() &&
                       dynamic_cast<TsKeyerNode*>(selected.get()) &&
                       group->getSelectedNode().get() == _shown.get();
    if (left || other) {
        exContain("session: selection",
                  [&] { SnSelection::getCurrent()->setItems({PiSnItemUtil::create(_shown)}); });
    }
}

void HostSession::selectedNodeChanged(const PiNodeEvent&) {
    followKeyer();
}

void HostSession::nodeRemoved(const PiNodeEvent& event) {
    if (event.getNode().get() == _shown.get()) {
        // The group still holds it while its handlers run: let it go after.
        _shown.reset();
        exContain("session: the viewer lets the removed node go",
                  [&] { _viewer->setNode(RCShdPtr<PiNode>()); });
        showPanels();
    }
}

void HostSession::update(const Sn& selection) {
    const RCShdPtr<PiNode> node = nodeOf(selection.first());
    const RCShdPtr<TsKeyerGroup>& group = getKeyer();
    if (!node || node->getParent() != group.get() || !dynamic_cast<TsKeyerNode*>(node.get())) {
        return;
    }
    if (group->getSelectedNode().get() != node.get()) {
        exContain("session: selecting " + node->getName(), [&] { group->setSelectedNode(node); });
    }
}

void HostSession::select(const RCShdPtr<PiNode>& node) {
    exContain("session: selection", [&] {
        if (node) {
            SnSelection::getCurrent()->setItems({PiSnItemUtil::create(node)});
        } else {
            SnSelection::getCurrent()->clear();
        }
    });
    settle();
}

void HostSession::rename(const RCShdPtr<PiNode>& node, const std::string& name) {
    exContain("session: renaming " + node->getName(), [&] { node->setName(name); });
    settle();
}

bool HostSession::remove(const RCShdPtr<PiNode>& node) {
    const RCShdPtr<TsKeyerGroup>& group = getKeyer();
    if (!node || node.get() == group.get() || node->getParent() != group.get() ||
        dynamic_cast<PiBoundaryNode*>(node.get())) {
        return false;
    }
    bool removed = false;
    exContain("session: removing " + node->getName(),
              [&] { removed = group->removeKeyerNode(node); });
    followKeyer();
    settle();
    return removed;
}

int HostSession::undo(int steps) {
    int done = 0;
    PiCommandStack& stack = getCommandStack();
    while (done < steps && stack.canUndo()) {
        ++done;
        if (!exContain("session: undo", [&] { stack.undo(); })) {
            break;
        }
    }
    followKeyer();
    settle();
    return done;
}

int HostSession::redo(int steps) {
    int done = 0;
    PiCommandStack& stack = getCommandStack();
    while (done < steps && stack.canRedo()) {
        ++done;
        if (!exContain("session: redo", [&] { stack.redo(); })) {
            break;
        }
    }
    followKeyer();
    settle();
    return done;
}

// --- setups

bool HostSession::saveSetup(const std::string& path, std::string& error) const {
    if (!_scene->saveSetup(path, error)) {
        return false;
    }
    getCommandStack().setClean();
    return true;
}

bool HostSession::loadSetup(const std::string& path, std::string& error) {
    if (!_scene->loadSetup(path, error)) {
        return false;
    }
    getCommandStack().setClean();
    followKeyer();
    settle();
    return true;
}

bool HostSession::openSetup(const std::string& path, std::string& error) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    const int generation = in ? TsSetup::getGeneration(text.str()) : -1;
    if (generation < 0) {
        error =
            "cannot open \"" + path + "\": " + (in ? "it is not a keyer setup" : "no such file");
        return false;
    }
    makeKeyer(generation == 2 ? 2 : 1, 1);
    if (!loadSetup(path, error)) {
        return false;
    }
    getCommandStack().clear();
    return true;
}

bool HostSession::isModified() const {
    return !getCommandStack().isClean();
}

// --- plates

void HostSession::setDemoPlate(const std::shared_ptr<const TsDemoPlate>& still) {
    setDemoShot(rcMake<TsDemoShot>(still));
}

void HostSession::setDemoShot(const RCShdPtr<const TsDemoShot>& shot) {
    setPlate(shot->isStill() ? PiClipPtr(shot->plateAt(1)->getPlate()) : PiClipPtr(shot), "demo");
    _demo = shot;
}

std::shared_ptr<const TsDemoPlate> HostSession::getDemo() const {
    return _demo ? _demo->plateAt(PiClip::frameOf(getFrame())) : nullptr;
}

void HostSession::setPlate(const PiClipPtr& plate, const std::string& name) {
    _demo.reset();
    _scene->setPlate(plate, name);
    if (plate && !plate->getFrameRange().contains(PiClip::frameOf(getFrame()))) {
        setFrame(plate->getFrameRange().first);
    }
    _viewer->fitImage();
    _viewer->redraw();
}

void HostSession::setBackground(const PiClipPtr& background, const std::string& name) {
    _scene->setBackground(background, name);
    _viewer->redraw();
}

// --- files and colour

bool HostSession::readSource(TsKeyerScene::Source source, const std::string& path,
                             const std::string& name, const std::string* space, std::string& error,
                             const TsSequenceOptions& sequence) {
    if (!_scene->readSource(source, path, name, error, space, sequence)) {
        return false;
    }
    settle();
    if (source == TsKeyerScene::Source::Plate) {
        _demo.reset();
        // A sequence brings the frame into its range.
        const PiFrameRange range = getPlate()->getFrameRange();
        if (!range.contains(PiClip::frameOf(getFrame()))) {
            setFrame(range.first);
        }
        _viewer->fitImage();
    }
    _viewer->redraw();
    return true;
}

bool HostSession::setColourSpace(TsKeyerScene::Source source, const std::string& space,
                                 std::string& error) {
    const bool set = _scene->setColourSpace(source, space, error);
    settle();
    _viewer->redraw();
    return set;
}

bool HostSession::loadColourConfig(const std::string& path, std::string& error) {
    if (!TsColour::loadConfig(path, error)) {
        return false;
    }
    _scene->refreshColour();
    displayChanged();
    return true;
}

void HostSession::displayChanged() {
    _viewer->setDisplayTransform(&_display);
}

// --- the viewer

double HostSession::getFrame() const {
    return _viewer->getTime().getTime();
}

void HostSession::setFrame(double frame) {
    exContain("session: frame", [&] { _viewer->setFrame(frame); });
    settle();
}

bool HostSession::setTool(const std::string& name) {
    // Held for the call: the viewer may replace it by another stage's.
    const RCShdPtr<PiEventHandler> handler = _viewer->getCurrentEventHandler();
    auto* current = dynamic_cast<PiCurrentToolEventHandler*>(handler.get());
    bool made = false;
    exContain("session: tool \"" + name + "\"", [&] {
        if (current) {
            current->setCurrentTool(name);
            made = getTool() == name;
        } else {
            made = _viewer->offerTool(name);
        }
    });
    settle();
    return made;
}

std::string HostSession::getTool() const {
    const RCShdPtr<PiEventHandler> handler = _viewer->getCurrentEventHandler();
    auto* current = dynamic_cast<PiCurrentToolEventHandler*>(handler.get());
    std::string name;
    if (current) {
        exContain("session: the current tool", [&] { name = current->getCurrentTool(); });
    }
    return name;
}
