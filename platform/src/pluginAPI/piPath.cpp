#include <pluginAPI/piGroupNode.h>
#include <pluginAPI/piPath.h>

#include <algorithm>

PiPath::PiPath(const RCShdPtr<PiNode>& node)
    : _node(node) {
    for (const PiNode* n = node.get(); n; n = n->getParent()) {
        // The graph's root is no part of a path.
        if (!n->getParent() && n->getGraphPtr()) {
            break;
        }
        _names.push_back(n->getName());
    }
    std::reverse(_names.begin(), _names.end());
}

RCShdPtr<PiNode> PiPath::getNode() const {
    return _node.lock();
}

LiString PiPath::toString() const {
    LiString text;
    for (const LiString& name : _names) {
        text += "/" + name;
    }
    return text.empty() ? LiString("/") : text;
}
