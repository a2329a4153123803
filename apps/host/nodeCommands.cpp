#include "nodeCommands.h"

#include "hostSession.h"
#include "sessionArgs.h"
#include "sessionInterpreter.h"

#include <internalAPI/snSelection.h>

void NodeCommands::add(SessionInterpreter& interpreter) {
    SessionInterpreter& in = interpreter;
    HostSession& s = interpreter.getSession();
    SessionProbe& probe = interpreter.getProbe();

    auto nodeArg = [&s](SessionArgs& a) {
        const std::string name = a.word("node name");
        RCShdPtr<PiNode> node = s.findNode(name);
        if (!node) {
            throw SessionArgs::Error("no node \"" + name + "\" in the keyer");
        }
        return node;
    };
    in.addCommand("select", [&s, nodeArg](SessionArgs& a) {
        if (a.take("none")) {
            a.end();
            s.select(RCShdPtr<PiNode>());
            return;
        }
        const RCShdPtr<PiNode> node = nodeArg(a);
        a.end();
        s.select(node);
    });
    in.addCommand("rename", [&s, nodeArg](SessionArgs& a) {
        const RCShdPtr<PiNode> node = nodeArg(a);
        const std::string name = a.word("new name");
        a.end();
        const LiString wrong = PiNode::checkName(name);
        if (!wrong.empty()) {
            throw SessionArgs::Error(wrong);
        }
        s.rename(node, name);
    });
    in.addCommand("remove", [&s, nodeArg](SessionArgs& a) {
        const RCShdPtr<PiNode> node = nodeArg(a);
        a.end();
        if (!s.remove(node)) {
            throw SessionArgs::Error("node \"" + node->getName() + "\" cannot be removed");
        }
    });

    probe.addQuery("node", [&s](SessionArgs&) {
        return s.getShownNode() ? s.getShownNode()->getName() : "none";
    });
    probe.addQuery("nodes", [&s](SessionArgs&) {
        std::vector<std::string> names;
        for (const auto& node : s.getKeyer()->getNodes()) {
            if (!dynamic_cast<const PiBoundaryNode*>(node.get())) {
                names.push_back(node->getName());
            }
        }
        return SessionProbe::list(names);
    });
    probe.addQuery("selection", [](SessionArgs&) {
        std::vector<std::string> names;
        for (const auto& item : SnSelection::getCurrent()->getItems()) {
            names.push_back(item->describe());
        }
        return SessionProbe::list(names);
    });
    probe.addQuery("selected", [&s](SessionArgs&) {
        const RCShdPtr<PiNode> node = s.getKeyer()->getSelectedNode();
        return node ? node->getName() : "none";
    });
    probe.addQuery("slot", [&s](SessionArgs& args) {
        const int slot = args.integer("slot number (1 to 6)");
        if (slot < 1 || slot > TsGroupInterface::SlotCount) {
            throw SessionArgs::Error("there is no slot " + std::to_string(slot) +
                                     " (slots are 1 to 6)");
        }
        return SessionProbe::orNone(s.getKeyer()->getSlotName(slot - 1));
    });
}
