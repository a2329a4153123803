#include <pluginAPI/piEventHandler.h>
#include <pluginAPI/piEventHandlingInterface.h>
#include <pluginAPI/piViewer.h>

#include <base/exReporter.h>

#include <algorithm>

PiEventHandlingInterface& PiEventHandlingInterface::getInstance() {
    static PiEventHandlingInterface instance;
    return instance;
}

RCShdPtr<PiEventHandler> PiEventHandlingInterface::getCurrentEventHandler() const {
    return _viewer ? _viewer->getCurrentEventHandler() : RCShdPtr<PiEventHandler>();
}

void PiEventHandlingInterface::addCurrentEventHandlerChangedCallback(
    CbHandler<CbEmptyType>* handler) {
    _changed.addHandler(handler);
}

void PiEventHandlingInterface::removeCurrentEventHandlerChangedCallback(
    CbHandler<CbEmptyType>* handler) {
    _changed.removeHandler(handler);
}

void PiEventHandlingInterface::viewerCreated(PiViewer& viewer) {
    _recent.insert(_recent.begin(), &viewer);
    if (!_viewer) {
        setCurrentViewer(&viewer);
    }
}

void PiEventHandlingInterface::setCurrentViewer(PiViewer* viewer) {
    if (viewer) {
        const auto it = std::find(_recent.begin(), _recent.end(), viewer);
        if (it != _recent.end()) {
            std::rotate(it, it + 1, _recent.end());
        }
    }
    if (viewer == _viewer) {
        return;
    }
    const RCShdPtr<PiEventHandler> before = getCurrentEventHandler();
    _viewer = viewer;
    if (getCurrentEventHandler().get() != before.get()) {
        notify();
    }
}

void PiEventHandlingInterface::handlerReplaced(PiViewer& viewer) {
    if (&viewer == _viewer) {
        notify();
    }
}

void PiEventHandlingInterface::viewerDestroyed(PiViewer& viewer) {
    std::erase(_recent, &viewer);
    if (&viewer == _viewer) {
        _viewer = _recent.empty() ? nullptr : _recent.back();
        notify();
    }
}

void PiEventHandlingInterface::notify() {
    exContain("current event handler changed", [this] { _changed.call(); });
}
