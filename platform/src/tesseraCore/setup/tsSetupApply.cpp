#include "tsSetupApply.h"

#include "../tsUndoStep.h"
#include "tsSetupSyntax.h"

#include <tesseraCore/tsKeyerGroup.h>
#include <tesseraCore/tsKeyerNode.h>

#include <algorithm>

namespace TsSetupApply {

using namespace TsSetupDocument;
using TsSetupSyntax::SetupError;

namespace {

// Checks a section against a node of the same kind (a scratch node, not the
// target): every input must exist there with the same type, and its state
// must be one the input takes.
void checkSection(const Section& section, PiNode& prototype) {
    for (const InputLine& in : section.inputs) {
        const RCShdPtr<PiInput> target = prototype.getInput(in.name);
        if (!target) {
            throw SetupError(in.line, "the keyer has no input \"" + in.name + "\"");
        }
        if (target->getType() != in.type) {
            throw SetupError(in.line, "input \"" + in.name + "\" holds " +
                                          PiValueUtil::getTypeName(target->getType()) +
                                          " values, not " + PiValueUtil::getTypeName(in.type));
        }
        if (!in.state.keys.empty() && !target->isAnimatable()) {
            throw SetupError(in.line, "input \"" + in.name + "\" is not animated");
        }
        for (std::size_t k = 1; k < in.state.keys.size(); ++k) {
            if (!(in.state.keys[k - 1].time < in.state.keys[k].time)) {
                throw SetupError(in.line,
                                 "the keys of \"" + in.name + "\" are not in increasing time");
            }
        }
        if (!target->setState(in.state)) {
            throw SetupError(in.line, "input \"" + in.name + "\" does not take this value");
        }
    }
}

PiInputState defaultState(const PiInput& input) {
    PiInputState s;
    s.constant = input.getDefault();
    return s;
}

void applyNode(TsKeyerNode& node, const Section& section) {
    // One set of patch inputs per patch name: sets beyond them (which older
    // setups kept after a reset) were no patches and are not loaded.
    const InputLine* names = find(section, node.getPatchNamesInput()->getName());
    const auto patches =
        names ? std::get<PiStringList>(names->state.constant).size() : std::size_t{0};
    node.setPatchInputCount(static_cast<int>(patches));
    for (int i = 0; i < node.getInputCount(); ++i) {
        PiInput& in = *node.getInput(i);
        if (in.getType() == PiValueType::Image) {
            continue;
        }
        const InputLine* line = find(section, in.getName());
        in.setState(line ? line->state : defaultState(in));
    }
}

} // namespace

void check(PiNode& keyer, const SetupDocument& setup) {
    auto* group = dynamic_cast<TsKeyerGroup*>(&keyer);
    auto* single = dynamic_cast<TsKeyerNode*>(&keyer);
    if (single) {
        if (setup.group) {
            throw SetupError(setup.group->line, "this is the setup of a keyer group, not of "
                                                "a single keyer node");
        }
        if (setup.nodes.size() != 1) {
            throw SetupError(setup.nodes[1].line, "a keyer node's setup holds one node section");
        }
    } else {
        if (!setup.group) {
            throw SetupError(setup.nodes.front().line,
                             "this is the setup of a single keyer node, not of a keyer group");
        }
        if (setup.group->generation != group->getGeneration()) {
            throw SetupError(setup.group->line, "the setup is of a generation " +
                                                    std::to_string(setup.group->generation) +
                                                    " keyer group; this group is of generation " +
                                                    std::to_string(group->getGeneration()));
        }
    }
    for (const Section& section : setup.nodes) {
        if (group) {
            const RCShdPtr<PiNode> existing = group->findNode(section.name);
            if (existing && !dynamic_cast<TsKeyerNode*>(existing.get())) {
                throw SetupError(section.line, "\"" + section.name +
                                                   "\" names a node of the group that is "
                                                   "not a keyer node");
            }
        }
        const RCShdPtr<TsKeyerNode> prototype = TsKeyerNode::create(section.name);
        prototype->setPatchInputCount(section.patches);
        checkSection(section, *prototype);
        if (const InputLine* names = find(section, prototype->getPatchNamesInput()->getName())) {
            const auto count = std::get<PiStringList>(names->state.constant).size();
            if (count > static_cast<std::size_t>(section.patches)) {
                throw SetupError(names->line, "the node names " + std::to_string(count) +
                                                  " patches but has inputs for " +
                                                  std::to_string(section.patches));
            }
        }
    }
    if (group) {
        const RCShdPtr<TsKeyerGroup> prototype =
            TsKeyerGroup::create(group->getName(), group->getGeneration(), 0);
        for (const InputLine& in : setup.group->inputs) {
            for (const RefName& ref : in.refs) {
                if (ref.kind != RefName::Named) {
                    continue;
                }
                const bool inFile =
                    std::any_of(setup.nodes.begin(), setup.nodes.end(),
                                [&ref](const Section& s) { return s.name == ref.name; });
                if (!inFile && !group->findNode(ref.name)) {
                    throw SetupError(in.line, "input \"" + in.name + "\" refers to node \"" +
                                                  ref.name +
                                                  "\", which is neither in the group nor "
                                                  "in the setup");
                }
            }
        }
        checkSection(*setup.group, *prototype);
    }
}

void apply(PiNode& keyer, const SetupDocument& setup) {
    auto* group = dynamic_cast<TsKeyerGroup*>(&keyer);
    auto* single = dynamic_cast<TsKeyerNode*>(&keyer);
    // Everything checked: apply, as one step.
    const TsUndoStep step(keyer, "Load Setup");
    if (single) {
        applyNode(*single, setup.nodes.front());
        return;
    }
    for (const Section& section : setup.nodes) {
        RCShdPtr<TsKeyerNode> node = group->findKeyerNode(section.name);
        if (!node) {
            node = group->addKeyerNode(section.name);
        }
        applyNode(*node, section);
    }
    auto resolve = [group](const RefName& ref) {
        if (ref.kind == RefName::Self) {
            return PiNodeRef{group->getId()};
        }
        if (ref.kind == RefName::Named) {
            if (const RCShdPtr<PiNode> node = group->findNode(ref.name)) {
                return PiNodeRef{node->getId()};
            }
        }
        return PiNodeRef{};
    };
    for (int i = 0; i < group->getInputCount(); ++i) {
        PiInput& in = *group->getInput(i);
        const InputLine* line = find(*setup.group, in.getName());
        PiInputState state = line ? line->state : defaultState(in);
        if (line && in.getType() == PiValueType::NodeRef) {
            std::size_t r = 0;
            state.constant = resolve(line->refs.at(r++));
            for (PiAnimKey& k : state.keys) {
                k.value = resolve(line->refs.at(r++));
            }
        } else if (line && in.getType() == PiValueType::NodeRefList) {
            PiNodeRefList list;
            for (const RefName& ref : line->refs) {
                list.push_back(resolve(ref));
            }
            state.constant = list;
        }
        in.setState(state);
    }
}

} // namespace TsSetupApply
