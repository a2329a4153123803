#include <pluginAPI/piGraph.h>
#include <pluginAPI/piGroupNode.h>

#include <base/assertions.h>
#include <base/znLimits.h>
#include <pluginAPI/piCommandStack.h>

#include <algorithm>
#include <optional>

namespace {

bool isWithin(const PiNode* node, const PiNode* ancestor) {
    for (const PiNode* n = node; n; n = n->getParent()) {
        if (n == ancestor) {
            return true;
        }
    }
    return false;
}

} // namespace

PiGroupNode::PiGroupNode(const LiString& name, bool withBoundaryNodes)
    : PiNode(name) {
    if (withBoundaryNodes) {
        auto input = rcMake<PiBoundaryNode>("input", PiBoundaryNode::Input);
        auto output = rcMake<PiBoundaryNode>("output", PiBoundaryNode::Output);
        for (PiNode* boundary :
             {static_cast<PiNode*>(input.get()), static_cast<PiNode*>(output.get())}) {
            _children.emplace_back(boundary);
            boundary->_parent = this;
        }
    }
}

PiGroupNode::~PiGroupNode() {
    for (const RCShdPtr<PiNode>& child : _children) {
        child->_parent = nullptr;
        static_cast<PiNode&>(*child).setGraph(nullptr);
    }
}

RCShdPtr<PiNode> PiGroupNode::findNode(const LiString& name) const {
    for (const RCShdPtr<PiNode>& child : _children) {
        if (child->getName() == name) {
            return child;
        }
    }
    return RCShdPtr<PiNode>();
}

RCShdPtr<PiNode> PiGroupNode::findNodeById(std::uint64_t id) const {
    for (const RCShdPtr<PiNode>& child : _children) {
        if (child->getId() == id) {
            return child;
        }
    }
    return RCShdPtr<PiNode>();
}

LiString PiGroupNode::makeUniqueName(const LiString& base) const {
    if (!findNode(base)) {
        return base;
    }
    for (int i = 2;; ++i) {
        // The number fits within the longest name: the base gives way, cut
        // before a character that UTF-8 continues.
        const std::string number = std::to_string(i);
        std::size_t keep = std::min(base.size(), ZnLimits::NameBytes - number.size());
        while (keep > 0 && keep < base.size() &&
               (static_cast<unsigned char>(base[keep]) & 0xC0) == 0x80) {
            --keep;
        }
        LiString candidate = base.substr(0, keep) + number;
        if (!findNode(candidate)) {
            return candidate;
        }
    }
}

void PiGroupNode::addNode(const RCShdPtr<PiNode>& node) {
    if (!node) {
        RCExUtil::throwExNullPtr(typeNameOf<PiNode>().c_str());
    }
    if (node->_parent || isWithin(this, node.get())) {
        Assertions::fail("a node of no group, not containing the group");
    }
    // A node takes its unique name as it enters: no rename event.
    static_cast<PiNode&>(*node)._name = makeUniqueName(node->getName());
    const int index = static_cast<int>(_children.size());
    insert(node, index);
    PiCommandStack* stack = getCommandStack();
    if (stack && stack->isStepOpen() && !stack->isReplaying() && rcCount() > 0) {
        const RCShdPtr<PiGroupNode> self(this);
        stack->recordChange(
            "Add Node", [self, node] { self->removeAndNotify(node); },
            [self, node, index] { self->insert(node, index); });
    }
}

int PiGroupNode::indexOf(const PiNode& node) const {
    for (std::size_t i = 0; i < _children.size(); ++i) {
        if (_children[i].get() == &node) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

void PiGroupNode::insert(const RCShdPtr<PiNode>& node, int index) {
    const auto at = std::min(static_cast<std::size_t>(std::max(index, 0)), _children.size());
    _children.insert(_children.begin() + static_cast<std::ptrdiff_t>(at), node);
    node->_parent = this;
    static_cast<PiNode&>(*node).setGraph(getGraphPtr());
}

void PiGroupNode::detach(const RCShdPtr<PiNode>& node) {
    std::erase_if(_children, [&node](const RCShdPtr<PiNode>& c) { return c.get() == node.get(); });
    node->_parent = nullptr;
    static_cast<PiNode&>(*node).setGraph(nullptr);
}

void PiGroupNode::removeAndNotify(const RCShdPtr<PiNode>& node) {
    if (!contains(*node)) {
        return;
    }
    const RCShdPtr<PiNode> keep = node;
    detach(keep);
    if (rcCount() > 0) {
        const RCShdPtr<PiNodeController> controller = getController();
        controller->fireEvent(PiNodeEvent::NodeRemovedFromGroup(keep, RCShdPtr<PiGroupNode>(this)));
    }
}

bool PiGroupNode::removeNode(const RCShdPtr<PiNode>& node) {
    if (!node || !contains(*node) || dynamic_cast<const PiBoundaryNode*>(node.get())) {
        return false;
    }
    const RCShdPtr<PiNode> keep = node;
    const int index = indexOf(*keep);
    // The step is open while the handlers answer, so that what they change
    // goes with the removal.
    std::optional<PiUndoGuard> step;
    PiCommandStack* stack = getCommandStack();
    if (stack && !stack->isReplaying() && rcCount() > 0) {
        step.emplace(*stack, "Remove Node");
        const RCShdPtr<PiGroupNode> self(this);
        stack->recordChange(
            "Remove Node", [self, keep, index] { self->insert(keep, index); },
            [self, keep] { self->removeAndNotify(keep); });
    }
    removeAndNotify(keep);
    return true;
}

void PiGroupNode::moveAndNotify(const RCShdPtr<PiNode>& node, const RCShdPtr<PiGroupNode>& to,
                                int index) {
    if (!contains(*node)) {
        return;
    }
    const RCShdPtr<PiNode> keep = node;
    detach(keep);
    static_cast<PiNode&>(*keep)._name = to->makeUniqueName(keep->getName());
    to->insert(keep, index);
    if (rcCount() > 0) {
        const RCShdPtr<PiNodeController> controller = getController();
        controller->fireEvent(
            PiNodeEvent::NodeMovedFromGroup(keep, RCShdPtr<PiGroupNode>(this), to));
    }
}

bool PiGroupNode::moveNode(const RCShdPtr<PiNode>& node, const RCShdPtr<PiGroupNode>& to) {
    if (!node || !to || to.get() == this || !contains(*node) ||
        dynamic_cast<const PiBoundaryNode*>(node.get()) || isWithin(to.get(), node.get())) {
        return false;
    }
    const RCShdPtr<PiNode> keep = node;
    const int from = indexOf(*keep);
    const int into = to->getNodeCount();
    const LiString name = keep->getName();
    std::optional<PiUndoGuard> step;
    PiCommandStack* stack = getCommandStack();
    if (stack && !stack->isReplaying() && rcCount() > 0) {
        step.emplace(*stack, "Move Node");
        const RCShdPtr<PiGroupNode> self(this);
        stack->recordChange(
            "Move Node",
            [self, keep, to, from, name] {
                to->moveAndNotify(keep, self, from);
                static_cast<PiNode&>(*keep)._name = name;
            },
            [self, keep, to, into] { self->moveAndNotify(keep, to, into); });
    }
    moveAndNotify(keep, to, into);
    return true;
}

RCShdPtr<PiBoundaryNode> PiGroupNode::getInputNode() const {
    for (const RCShdPtr<PiNode>& child : _children) {
        auto* b = dynamic_cast<PiBoundaryNode*>(child.get());
        if (b && b->getKind() == PiBoundaryNode::Input) {
            return RCShdPtr<PiBoundaryNode>(b);
        }
    }
    return RCShdPtr<PiBoundaryNode>();
}

RCShdPtr<PiBoundaryNode> PiGroupNode::getOutputNode() const {
    for (const RCShdPtr<PiNode>& child : _children) {
        auto* b = dynamic_cast<PiBoundaryNode*>(child.get());
        if (b && b->getKind() == PiBoundaryNode::Output) {
            return RCShdPtr<PiBoundaryNode>(b);
        }
    }
    return RCShdPtr<PiBoundaryNode>();
}

void PiGroupNode::setGraph(PiGraph* graph) {
    PiNode::setGraph(graph);
    for (const RCShdPtr<PiNode>& child : _children) {
        static_cast<PiNode&>(*child).setGraph(graph);
    }
}

PiBoundaryNode::PiBoundaryNode(const LiString& name, Kind kind)
    : PiNode(name)
    , _kind(kind) {}
