#include <pluginAPI/piCurrentToolEventHandler.h>
#include <pluginAPI/piEventHandler.h>
#include <pluginAPI/piViewer.h>

PiEventHandler::~PiEventHandler() = default;

bool PiEventHandler::handleEvent(const PiEventContext&) const {
    return false;
}

bool PiEventHandler::isModal() const {
    return false;
}

bool PiEventHandler::isManipulating() const {
    return false;
}

void PiEventHandler::selectionUpdate(PiViewer&) {}

void PiEventHandler::scenePostDraw(const GeRectangle<int>&, const VwView&) {}

void PiEventHandler::windowPostDraw(const GeRectangle<int>&, const VwView&) {}

PiCurrentToolEventHandler::PiCurrentToolEventHandler(PiViewer* viewer)
    : _viewer(viewer) {}

PiCurrentToolEventHandler::~PiCurrentToolEventHandler() = default;

void PiCurrentToolEventHandler::setCurrentTool(const std::string& name) {
    if (performSetCurrentTool(name)) {
        return;
    }
    if (_viewer) {
        // The viewer may replace this handler by another stage's: it stays
        // alive until the call returns.
        const RCShdPtr<PiCurrentToolEventHandler> self(rcCount() > 0 ? this : nullptr);
        _viewer->offerTool(name);
    }
}

void PiCurrentToolEventHandler::addToolChangedCb(CbHandler<CbEmptyType>* handler) {
    if (!handler || _toolChanged.holds(handler)) {
        return;
    }
    _toolChanged.addHandler(handler);
    CbEmptyType current;
    handler->callback(current);
}

void PiCurrentToolEventHandler::removeToolChangedCb(CbHandler<CbEmptyType>* handler) {
    _toolChanged.removeHandler(handler);
}

void PiCurrentToolEventHandler::notifyToolChanged() {
    _toolChanged.call();
}
