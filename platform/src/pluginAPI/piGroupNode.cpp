#include <pluginAPI/piGraph.h>
#include <pluginAPI/piGroupNode.h>

#include <base/assertions.h>

namespace {

const char* const sourcePath = "platform/src/pluginAPI/piGroupNode.cpp";

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
        LiString candidate = base + std::to_string(i);
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
        Assertions::throwAssertionFailed(sourcePath, __LINE__,
                                         "a node of no group, not containing the group");
    }
    // A node takes its unique name as it enters: no rename event.
    static_cast<PiNode&>(*node)._name = makeUniqueName(node->getName());
    _children.push_back(node);
    node->_parent = this;
    static_cast<PiNode&>(*node).setGraph(getGraphPtr());
}

void PiGroupNode::detach(const RCShdPtr<PiNode>& node) {
    std::erase_if(_children, [&node](const RCShdPtr<PiNode>& c) { return c.get() == node.get(); });
    node->_parent = nullptr;
    static_cast<PiNode&>(*node).setGraph(nullptr);
}

bool PiGroupNode::removeNode(const RCShdPtr<PiNode>& node) {
    if (!node || !contains(*node) || dynamic_cast<const PiBoundaryNode*>(node.get())) {
        return false;
    }
    const RCShdPtr<PiNode> keep = node;
    detach(keep);
    if (rcCount() > 0) {
        const RCShdPtr<PiNodeController> controller = getController();
        controller->fireEvent(PiNodeEvent::NodeRemovedFromGroup(keep, RCShdPtr<PiGroupNode>(this)));
    }
    return true;
}

bool PiGroupNode::moveNode(const RCShdPtr<PiNode>& node, const RCShdPtr<PiGroupNode>& to) {
    if (!node || !to || to.get() == this || !contains(*node) ||
        dynamic_cast<const PiBoundaryNode*>(node.get()) || isWithin(to.get(), node.get())) {
        return false;
    }
    const RCShdPtr<PiNode> keep = node;
    detach(keep);
    to->addNode(keep);
    if (rcCount() > 0) {
        const RCShdPtr<PiNodeController> controller = getController();
        controller->fireEvent(
            PiNodeEvent::NodeMovedFromGroup(keep, RCShdPtr<PiGroupNode>(this), to));
    }
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
