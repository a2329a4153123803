#include <pluginAPI/piContainer.h>
#include <pluginAPI/piDualState.h>
#include <pluginAPI/piLabel.h>
#include <pluginAPI/piMenu.h>
#include <pluginAPI/piNodeWidget.h>
#include <pluginAPI/piTrackball.h>
#include <pluginAPI/piWidget.h>

PiWidget::~PiWidget() = default;

void PiWidget::addCallback(int kind, CbHandler<EvEvent>* handler) {
    if (!handler) {
        return;
    }
    auto& dispatcher = _callbacks[kind];
    if (!dispatcher) {
        dispatcher = std::make_unique<CbDispatcher<EvEvent>>();
    }
    dispatcher->addHandler(handler);
}

void PiWidget::removeCallback(int kind, CbHandler<EvEvent>* handler) {
    auto it = _callbacks.find(kind);
    if (it != _callbacks.end()) {
        it->second->removeHandler(handler);
    }
}

bool PiWidget::hasCallback(int kind, const CbHandler<EvEvent>* handler) const {
    auto it = _callbacks.find(kind);
    return it != _callbacks.end() && it->second->holds(handler);
}

int PiWidget::getCallbackCount(int kind) const {
    auto it = _callbacks.find(kind);
    return it == _callbacks.end() ? 0 : static_cast<int>(it->second->size());
}

void PiWidget::fireCallbacks(int kind, EvEvent& event) {
    auto it = _callbacks.find(kind);
    if (it != _callbacks.end()) {
        it->second->call(event);
    }
}

PiContainer::~PiContainer() = default;
PiDualState::~PiDualState() = default;
PiMenu::~PiMenu() = default;
PiLabel::~PiLabel() = default;
PiNodeWidget::~PiNodeWidget() = default;
PiTrackball::~PiTrackball() = default;

float PiTrackball::getDeltaX() const {
    float dx = 0.0f;
    float dy = 0.0f;
    getDelta(dx, dy);
    return dx;
}

float PiTrackball::getDeltaY() const {
    float dx = 0.0f;
    float dy = 0.0f;
    getDelta(dx, dy);
    return dy;
}
