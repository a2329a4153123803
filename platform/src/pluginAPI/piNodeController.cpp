#include <pluginAPI/piNode.h>
#include <pluginAPI/piNodeController.h>

PiNodeController::PiNodeController() = default;

PiNodeController::~PiNodeController() = default;

RCShdPtr<PiNode> PiNodeController::getNode() const {
    // A node that nobody holds yet (or any more) is not handed out: the
    // pointer would destroy it.
    if (!_node || _node->rcCount() == 0) {
        return RCShdPtr<PiNode>();
    }
    return RCShdPtr<PiNode>(_node);
}

void PiNodeController::addCallback(const std::type_info& eventType,
                                   CbHandler<const PiNodeEvent>* handler) {
    if (!handler) {
        return;
    }
    CbDispatcher<const PiNodeEvent>* dispatcher = find(eventType);
    if (!dispatcher) {
        _dispatchers.emplace_back(std::type_index(eventType),
                                  std::make_unique<CbDispatcher<const PiNodeEvent>>());
        dispatcher = _dispatchers.back().second.get();
    }
    dispatcher->addHandler(handler);
}

void PiNodeController::removeCallback(const std::type_info& eventType,
                                      CbHandler<const PiNodeEvent>* handler) {
    if (CbDispatcher<const PiNodeEvent>* dispatcher = find(eventType)) {
        dispatcher->removeHandler(handler);
    }
}

bool PiNodeController::hasCallbacks(const std::type_info& eventType) const {
    const CbDispatcher<const PiNodeEvent>* dispatcher = find(eventType);
    return dispatcher && !dispatcher->isEmpty();
}

void PiNodeController::fireEvent(const PiNodeEvent& event) {
    if (CbDispatcher<const PiNodeEvent>* dispatcher = find(typeid(event))) {
        dispatcher->call(event);
    }
}

void PiNodeController::inputChanged(PiInput&) {}

LiString PiNodeController::getValueRefusal(const PiInput&, const PiValue&) const {
    return LiString();
}

CbDispatcher<const PiNodeEvent>* PiNodeController::find(const std::type_info& eventType) const {
    const std::type_index key(eventType);
    for (const auto& [type, dispatcher] : _dispatchers) {
        if (type == key) {
            return dispatcher.get();
        }
    }
    return nullptr;
}
