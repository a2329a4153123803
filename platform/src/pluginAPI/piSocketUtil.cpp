#include <pluginAPI/piGroupNode.h>
#include <pluginAPI/piSocketUtil.h>

#include <vector>

LiString PiSocketUtil::getName(const RCShdPtr<const PiInput>& input, int depth,
                               const PiGroupNode* relativeTo, const char* separator) {
    if (!input) {
        return LiString();
    }
    const LiString sep = separator ? separator : ".";
    std::vector<LiString> parts{input->getName()};
    for (const PiNode* n = input->getNode(); n; n = n->getParent()) {
        if (n == relativeTo || (!n->getParent() && n->getGraphPtr())) {
            break; // the graph's root is no part of a name
        }
        parts.push_back(n->getName());
    }
    const std::size_t count =
        depth <= 0 ? parts.size() : std::min(parts.size(), static_cast<std::size_t>(depth));
    LiString name;
    for (std::size_t i = count; i-- > 0;) {
        name += parts[i];
        if (i > 0) {
            name += sep;
        }
    }
    return name;
}
