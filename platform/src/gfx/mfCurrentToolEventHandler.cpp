#include <gfx/mfCurrentToolEventHandler.h>

#include <base/vwView.h>
#include <pluginAPI/piEventContext.h>

MfCurrentToolEventHandler::MfCurrentToolEventHandler(const RCShdPtr<MfToolset>& toolset)
    : PiCurrentToolEventHandler(&toolset->getViewer())
    , _toolset(toolset)
    , _toolChanged(this, &MfCurrentToolEventHandler::toolsetChanged) {
    _toolset->addToolChangedCb(&_toolChanged);
}

MfCurrentToolEventHandler::~MfCurrentToolEventHandler() = default;

bool MfCurrentToolEventHandler::handleEvent(const PiEventContext& context) {
    return _toolset->handleEvent(context);
}

bool MfCurrentToolEventHandler::isManipulating() const {
    const RCShdPtr<MfTool> tool = _toolset->getCurrentTool();
    return tool && tool->isManipulating();
}

void MfCurrentToolEventHandler::selectionUpdate(PiViewer& viewer) {
    if (const RCShdPtr<MfTool> tool = _toolset->getCurrentTool()) {
        tool->selectionUpdate(viewer);
    }
}

void MfCurrentToolEventHandler::scenePostDraw(const VwView& view) {
    if (const RCShdPtr<MfTool> tool = _toolset->getCurrentTool()) {
        tool->draw(view);
    }
}

void MfCurrentToolEventHandler::windowPostDraw(const VwView& view) {
    if (const RCShdPtr<MfTool> tool = _toolset->getCurrentTool()) {
        tool->drawDecorations(view);
    }
}

std::string MfCurrentToolEventHandler::getCurrentTool() const {
    return _toolset->getCurrentToolName();
}

bool MfCurrentToolEventHandler::performSetCurrentTool(const std::string& name) {
    return _toolset->setCurrentTool(name);
}

void MfCurrentToolEventHandler::appendTool(const std::string& name, const RCShdPtr<MfTool>& tool) {
    _toolset->appendTool(name, tool);
}

RCShdPtr<MfTool> MfCurrentToolEventHandler::getCurrentMfTool() const {
    return _toolset->getCurrentTool();
}

RCShdPtr<WsCursor> MfCurrentToolEventHandler::getCursor() const {
    const RCShdPtr<MfTool> tool = _toolset->getCurrentTool();
    return tool ? tool->getActiveCursor() : RCShdPtr<WsCursor>();
}

void MfCurrentToolEventHandler::toolsetChanged() {
    notifyToolChanged();
}
