#include <pluginAPI/piGraph.h>
#include <pluginAPI/piGroupNode.h>
#include <pluginAPI/piNode.h>

#include <algorithm>

#include <base/assertions.h>
#include <base/znLimits.h>
#include <pluginAPI/piCommandStack.h>

#include <optional>

namespace {} // namespace

PiNode::PiNode(const LiString& name)
    : _name(name)
    , _controller(new PiNodeController) {
    _controller->attach(this);
}

PiNode::~PiNode() {
    for (const RCShdPtr<PiInput>& input : _inputs) {
        input->setNode(nullptr);
    }
    if (_controller) {
        _controller->attach(nullptr);
    }
}

LiString PiNode::checkName(const LiString& name) {
    if (name.empty()) {
        return "a node's name is not empty";
    }
    if (name.size() > ZnLimits::NameBytes) {
        return "a node's name is at most " + std::to_string(ZnLimits::NameBytes) +
               " bytes long, not " + std::to_string(name.size());
    }
    for (const char c : name) {
        if (c == '/') {
            return "a node's name holds no '/'";
        }
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) {
            return "a node's name holds no control character (a newline, a tab, ...)";
        }
    }
    return "";
}

void PiNode::setName(const LiString& requested) {
    if (requested == _name) {
        return;
    }
    if (!checkName(requested).empty()) {
        Assertions::fail("checkName(name).empty()");
    }
    // Names are unique within a group, so that a name finds one node (and a
    // saved setup, which refers to nodes by name, loads back).
    const LiString name = _parent ? _parent->makeUniqueName(requested) : requested;
    if (name == _name) {
        return;
    }
    const LiString old = _name;
    _name = name;
    if (rcCount() == 0) {
        return; // not held yet (being built): nobody can listen
    }
    const RCShdPtr<PiNode> self(this);
    // One step with whatever the handlers change in answer.
    std::optional<PiUndoGuard> step;
    PiCommandStack* stack = getCommandStack();
    if (stack && !stack->isReplaying()) {
        step.emplace(*stack, "Rename Node");
        stack->recordChange(
            "Rename Node", [self, old] { self->setName(old); },
            [self, name] { self->setName(name); });
    }
    const PiNodeEvent::NameChanged event(self, old);
    // The controller may be replaced by a handler; keep it while it is called.
    const RCShdPtr<PiNodeController> controller = _controller;
    controller->fireEvent(event);
    if (_parent) {
        const RCShdPtr<PiNodeController> groupController = _parent->getController();
        if (groupController != controller) {
            groupController->fireEvent(event);
        }
    }
}

void PiNode::setController(const RCShdPtr<PiNodeController>& controller) {
    if (!controller) {
        RCExUtil::throwExNullPtr(typeNameOf<PiNodeController>().c_str());
    }
    if (controller->getNodePtr() && controller->getNodePtr() != this) {
        Assertions::fail("controller of no other node");
    }
    _controller->attach(nullptr);
    _controller = controller;
    _controller->attach(this);
}

RCShdPtr<PiInput> PiNode::getInput(const LiString& name) const {
    const auto it = _inputIndex.find(name);
    return it == _inputIndex.end() ? RCShdPtr<PiInput>() : _inputs[it->second];
}

void PiNode::addInput(const RCShdPtr<PiInput>& input) {
    if (!input) {
        RCExUtil::throwExNullPtr(typeNameOf<PiInput>().c_str());
    }
    if (input->getNode() || getInput(input->getName())) {
        Assertions::fail("input of no node, with a name new to this node");
    }
    _inputIndex.emplace(input->getName(), _inputs.size());
    _inputs.push_back(input);
    input->setNode(this);
}

void PiNode::removeInput(const RCShdPtr<PiInput>& input) {
    const auto indexed = input ? _inputIndex.find(input->getName()) : _inputIndex.end();
    if (indexed == _inputIndex.end() || _inputs[indexed->second] != input) {
        Assertions::fail("an input of this node");
    }
    const std::size_t at = indexed->second;
    _inputIndex.erase(indexed);
    _inputs.erase(_inputs.begin() + static_cast<std::ptrdiff_t>(at));
    // The inputs after it move up one (none when it was the last: a patch
    // dropped again).
    for (std::size_t i = at; i < _inputs.size(); ++i) {
        _inputIndex[_inputs[i]->getName()] = i;
    }
    input->setNode(nullptr);
}

RCShdPtr<PiGraph> PiNode::getGraph() const {
    return _graph ? RCShdPtr<PiGraph>(_graph) : RCShdPtr<PiGraph>();
}

PiCommandStack* PiNode::getCommandStack() const {
    return _graph ? &_graph->getCommandStack() : nullptr;
}

void PiNode::inputChanged(PiInput& input) {
    const RCShdPtr<PiNodeController> controller = _controller;
    controller->inputChanged(input);
}

void PiNode::fireValueChanged(PiInput& input) {
    if (rcCount() == 0) {
        return; // not held yet (being built) or being destroyed: nobody can listen
    }
    const RCShdPtr<PiNodeController> controller = _controller;
    if (controller->hasCallbacks(typeid(PiNodeEvent::ValueChanged))) {
        controller->fireEvent(
            PiNodeEvent::ValueChanged(RCShdPtr<PiNode>(this), RCShdPtr<PiInput>(&input)));
    }
}
