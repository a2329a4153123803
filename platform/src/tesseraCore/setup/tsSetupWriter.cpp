#include "tsSetupWriter.h"

#include "tsSetupDocument.h"

#include <tesseraCore/setup/tsValueText.h>
#include <tesseraCore/tsKeyerGroup.h>
#include <tesseraCore/tsKeyerNode.h>

#include <sstream>

namespace TsSetupWriter {

namespace {

// Node references are written by name, relative to the group.
std::string nodeRefText(const PiNodeRef& ref, const TsKeyerGroup* group) {
    if (ref.isNone() || !group) {
        return "-";
    }
    if (ref.id == group->getId()) {
        return "self";
    }
    const RCShdPtr<PiNode> node = group->findNodeById(ref.id);
    return node ? TsValueText::quote(node->getName()) : "-";
}

// Numbers, flags and colours as TsValueText writes them; lists with their
// length first; node references by name.
std::string valueText(const PiValue& v, const TsKeyerGroup* group) {
    std::string out = TsValueText::scalar(v);
    if (!out.empty()) {
        return out;
    }
    std::visit(
        [&](const auto& value) {
            using T = std::decay_t<decltype(value)>;
            if constexpr (std::is_same_v<T, PiStringList>) {
                out = std::to_string(value.size());
                for (const std::string& s : value) {
                    out += " " + TsValueText::quote(s);
                }
            } else if constexpr (std::is_same_v<T, PiNodeRef>) {
                out = nodeRefText(value, group);
            } else if constexpr (std::is_same_v<T, PiNodeRefList>) {
                out = std::to_string(value.size());
                for (const PiNodeRef& ref : value) {
                    out += " " + nodeRefText(ref, group);
                }
            }
        },
        v);
    return out;
}

void writeInputs(std::ostream& os, const PiNode& node, const TsKeyerGroup* group) {
    for (int i = 0; i < node.getInputCount(); ++i) {
        const PiInput& in = *node.getInput(i);
        if (in.getType() == PiValueType::Image) {
            continue; // plates belong to the host's session
        }
        const PiInputState& s = in.getState();
        os << "input " << TsValueText::quote(in.getName()) << " "
           << PiValueUtil::getTypeName(in.getType()) << (s.locked ? " locked " : " ")
           << valueText(s.constant, group);
        if (!s.keys.empty()) {
            os << " keys " << s.keys.size();
            for (const PiAnimKey& k : s.keys) {
                os << " " << TsValueText::number(k.time) << " " << valueText(k.value, group)
                   << (k.interpolation == PiInterpolation::Linear ? " linear" : " smooth");
            }
        }
        os << "\n";
    }
}

void writeNode(std::ostream& os, const TsKeyerNode& node, const TsKeyerGroup* group) {
    os << "node " << TsValueText::quote(node.getName()) << "\n";
    os << "patches " << node.getPatchInputCount() << "\n";
    writeInputs(os, node, group);
}

} // namespace

bool write(const PiNode& keyer, int version, std::string& text, std::string& error) {
    std::ostringstream os;
    os << TsSetupDocument::Magic << " " << version << "\n";
    if (const auto* group = dynamic_cast<const TsKeyerGroup*>(&keyer)) {
        os << "group " << TsValueText::quote(group->getName()) << " generation "
           << group->getGeneration() << "\n";
        writeInputs(os, *group, group);
        for (int i = 0; i < group->getKeyerNodeCount(); ++i) {
            writeNode(os, *group->getKeyerNode(i), group);
        }
    } else if (const auto* node = dynamic_cast<const TsKeyerNode*>(&keyer)) {
        writeNode(os, *node, nullptr);
    } else {
        error = "node \"" + keyer.getName() + "\" is not a keyer";
        return false;
    }
    os << "end\n";
    text = os.str();
    return true;
}

} // namespace TsSetupWriter
