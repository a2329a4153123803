#include <pluginAPI/piGraph.h>

namespace {

RCShdPtr<PiNode> findIn(const PiGroupNode& group, std::uint64_t id) {
    for (const RCShdPtr<PiNode>& child : group.getNodes()) {
        if (child->getId() == id) {
            return child;
        }
        if (const auto* inner = dynamic_cast<const PiGroupNode*>(child.get())) {
            if (RCShdPtr<PiNode> found = findIn(*inner, id)) {
                return found;
            }
        }
    }
    return RCShdPtr<PiNode>();
}

} // namespace

RCShdPtr<PiGraph> PiGraph::create() {
    return RCShdPtr<PiGraph>(new PiGraph);
}

PiGraph::PiGraph()
    : _root(new PiGroupNode("root")) {
    static_cast<PiNode&>(*_root).setGraph(this);
}

PiGraph::~PiGraph() {
    // Nodes held elsewhere outlive the graph; their edits are no longer
    // recorded.
    static_cast<PiNode&>(*_root).setGraph(nullptr);
}

RCShdPtr<PiNode> PiGraph::findNodeById(std::uint64_t id) const {
    if (_root->getId() == id) {
        return _root;
    }
    return findIn(*_root, id);
}
