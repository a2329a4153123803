#include <pluginAPI/piNodePredicates.h>

SnItem::~SnItem() = default;

RCShdPtr<const SnItem> PiSnItemUtil::create(const RCShdPtr<PiNode>& node) {
    return RCShdPtr<const SnItem>(new PiSnItem<PiNode>(node));
}

namespace {

template <class F>
PiNodePredicate wrap(F* functor) {
    return PiNodePredicate(RCShdPtr<UnaryFunctor<RCShdPtr<const PiNode>, bool>>(functor));
}

} // namespace

PiIsNode::PiIsNode(const RCShdPtr<const PiNode>& node)
    : _id(node ? node->getId() : 0) {}

bool PiIsNode::operator()(const RCShdPtr<const PiNode>& node) const {
    return node && node->getId() == _id;
}

PiNodePredicate PiIsNode::create(const RCShdPtr<const PiNode>& node) {
    return wrap(new PiIsNode(node));
}

PiIsNodeInGroupNode::PiIsNodeInGroupNode(const RCShdPtr<const PiGroupNode>& group, bool recursive)
    : _id(group ? group->getId() : 0)
    , _recursive(recursive) {}

bool PiIsNodeInGroupNode::operator()(const RCShdPtr<const PiNode>& node) const {
    if (!node) {
        return false;
    }
    for (const PiNode* p = node->getParent(); p; p = p->getParent()) {
        if (p->getId() == _id) {
            return true;
        }
        if (!_recursive) {
            return false;
        }
    }
    return false;
}

PiNodePredicate PiIsNodeInGroupNode::create(const RCShdPtr<const PiGroupNode>& group,
                                            bool recursive) {
    return wrap(new PiIsNodeInGroupNode(group, recursive));
}

bool PiIsBoundaryNode::operator()(const RCShdPtr<const PiNode>& node) const {
    return dynamic_cast<const PiBoundaryNode*>(node.get()) != nullptr;
}

PiNodePredicate PiIsBoundaryNode::getPredicate() {
    static const PiNodePredicate predicate = wrap(new PiIsBoundaryNode);
    return predicate;
}
