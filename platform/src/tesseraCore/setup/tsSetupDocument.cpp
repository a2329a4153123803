#include "tsSetupDocument.h"

#include "tsSetupSyntax.h"

#include <tesseraCore/tsGroupInterface.h>
#include <tesseraCore/tsTool3.h>

#include <base/znLimits.h>
#include <pluginAPI/piNode.h>

#include <sstream>
#include <unordered_set>

namespace TsSetupDocument {

using TsSetupSyntax::Cursor;
using TsSetupSyntax::SetupError;
using TsSetupSyntax::Token;

const char* const Magic = "tessera-setup";

namespace {

std::optional<PiValueType> typeOf(const std::string& name) {
    for (int t = 0; t <= static_cast<int>(PiValueType::NodeRefList); ++t) {
        if (name == PiValueUtil::getTypeName(static_cast<PiValueType>(t))) {
            return static_cast<PiValueType>(t);
        }
    }
    return std::nullopt;
}

RefName readRef(Cursor& c) {
    const Token& t = c.take("a node");
    RefName ref;
    if (t.quoted) {
        ref = {RefName::Named, t.text};
    } else if (t.text == "self") {
        ref.kind = RefName::Self;
    } else if (t.text != "-") {
        c.fail("expected a node name in double quotes, - or self, found " + t.text);
    }
    return ref;
}

PiValue readValue(Cursor& c, PiValueType type, std::vector<RefName>& refs) {
    switch (type) {
    case PiValueType::Double:
        return c.num<double>("a number");
    case PiValueType::Int:
        return c.num<int>("an integer");
    case PiValueType::Bool: {
        const std::string w = c.word("true or false");
        if (w != "true" && w != "false") {
            c.fail("expected true or false, found " + w);
        }
        return w == "true";
    }
    case PiValueType::RgbColor: {
        const float r = c.num<float>("a red component");
        const float g = c.num<float>("a green component");
        const float b = c.num<float>("a blue component");
        return CoRgbColorTyped<float>(r, g, b);
    }
    case PiValueType::StringList: {
        const int n = c.num<int>("the number of names");
        if (n < 0 || n > ZnLimits::ListNames) {
            c.fail("a list of " + std::to_string(n) + " names");
        }
        PiStringList list;
        for (int i = 0; i < n; ++i) {
            list.push_back(c.name("a name"));
        }
        return list;
    }
    case PiValueType::NodeRef:
        refs.push_back(readRef(c));
        return PiNodeRef{};
    case PiValueType::NodeRefList: {
        const int n = c.num<int>("the number of nodes");
        if (n < 0 || n > 100000) {
            c.fail("a list of " + std::to_string(n) + " nodes");
        }
        for (int i = 0; i < n; ++i) {
            refs.push_back(readRef(c));
        }
        // Resolved once the file is checked.
        return PiNodeRefList(static_cast<std::size_t>(n));
    }
    case PiValueType::Image:
        break;
    }
    c.fail("image inputs are not part of setups");
}

// Keys of version 1 and 2 setups carry no interpolation: they were linear.
InputLine readInput(Cursor& c, int version) {
    InputLine in;
    in.line = c.line();
    in.name = c.name("an input name");
    const std::string typeName = c.word("a type");
    const auto type = typeOf(typeName);
    if (!type) {
        c.fail("unknown type " + typeName);
    }
    in.type = *type;
    if (c.peekWord("locked")) {
        c.word("locked");
        in.state.locked = true;
    }
    in.state.constant = readValue(c, in.type, in.refs);
    if (c.peekWord("keys")) {
        c.word("keys");
        const int n = c.num<int>("the number of keys");
        if (n < 1 || n > ZnLimits::AnimKeys) {
            c.fail("a list of " + std::to_string(n) + " keys");
        }
        for (int i = 0; i < n; ++i) {
            const double time = c.num<double>("a key time");
            PiAnimKey key{time, readValue(c, in.type, in.refs), PiInterpolation::Linear};
            if (version >= 3) {
                const std::string interpolation = c.word("linear or smooth");
                if (interpolation != "linear" && interpolation != "smooth") {
                    c.fail("expected linear or smooth after a key's value, not " + interpolation);
                }
                key.interpolation =
                    interpolation == "smooth" ? PiInterpolation::Smooth : PiInterpolation::Linear;
            }
            in.state.keys.push_back(std::move(key));
        }
    }
    c.end();
    return in;
}

void checkNodeName(const Cursor& c, const std::string& name) {
    const LiString wrong = PiNode::checkName(name);
    if (!wrong.empty()) {
        c.fail("node \"" + name + "\": " + wrong);
    }
}

} // namespace

SetupDocument parse(const std::string& text, int maxVersion) {
    SetupDocument setup;
    std::istringstream is(text);
    std::string line;
    int number = 0;
    bool header = false;
    bool ended = false;
    Section* current = nullptr;
    std::unordered_set<std::string> nodeNames;
    while (std::getline(is, line)) {
        ++number;
        std::vector<Token> tokens = TsSetupSyntax::tokenize(line, number);
        if (tokens.empty()) {
            continue;
        }
        Cursor c(std::move(tokens), number);
        if (ended) {
            c.fail("text after the end of the setup");
        }
        if (!header) {
            if (!c.peekWord(Magic)) {
                c.fail("this is not a keyer setup (it does not begin with \"" + std::string(Magic) +
                       "\")");
            }
            c.word(Magic);
            setup.version = c.num<int>("a version number");
            if (setup.version < 1 || setup.version > maxVersion) {
                c.fail("setup version " + std::to_string(setup.version) +
                       " is not readable (this keyer reads versions 1 to " +
                       std::to_string(maxVersion) + ")");
            }
            c.end();
            header = true;
            continue;
        }
        const std::string keyword = c.word("a statement");
        if (keyword == "group") {
            if (setup.group || !setup.nodes.empty()) {
                c.fail("a group section must come first, and only once");
            }
            Section g;
            g.line = number;
            g.name = c.name("the group's name");
            checkNodeName(c, g.name);
            if (c.word("generation") != "generation") {
                c.fail("expected generation after the group's name");
            }
            g.generation = c.num<int>("a generation");
            if (g.generation != 1 && g.generation != 2) {
                c.fail("keyer groups are of generation 1 or 2, not " +
                       std::to_string(g.generation));
            }
            c.end();
            setup.group = std::move(g);
            current = &*setup.group;
        } else if (keyword == "node") {
            Section n;
            n.line = number;
            n.name = c.name("the node's name");
            checkNodeName(c, n.name);
            c.end();
            if (!nodeNames.insert(n.name).second) {
                c.fail("node \"" + n.name + "\" appears twice");
            }
            if (setup.nodes.size() == ZnLimits::SetupNodes) {
                c.fail("more than " + std::to_string(ZnLimits::SetupNodes) + " keyer nodes");
            }
            setup.nodes.push_back(std::move(n));
            current = &setup.nodes.back();
        } else if (keyword == "patches") {
            if (!current || (setup.group && current == &*setup.group)) {
                c.fail("patches belong to a node section");
            }
            current->patches = c.num<int>("a number of patches");
            if (current->patches < 1 || current->patches > ZnLimits::Patches) {
                c.fail("a node has 1 to " + std::to_string(ZnLimits::Patches) +
                       " patch inputs, not " + std::to_string(current->patches));
            }
            c.end();
        } else if (keyword == "input") {
            if (!current) {
                c.fail("an input outside any group or node section");
            }
            InputLine in = readInput(c, setup.version);
            if (!current->inputIndex.emplace(in.name, current->inputs.size()).second) {
                c.fail("input \"" + in.name + "\" appears twice");
            }
            current->inputs.push_back(std::move(in));
        } else if (keyword == "end") {
            c.end();
            ended = true;
        } else {
            c.fail("unknown statement " + keyword);
        }
    }
    if (!header) {
        throw SetupError(number, "the file is empty: not a keyer setup");
    }
    if (!ended) {
        throw SetupError(number, "the setup ends early (no end line): the file is truncated");
    }
    if (setup.nodes.empty()) {
        throw SetupError(number, "the setup holds no keyer node");
    }
    return setup;
}

void upgradeGeneration2Slots(Section& group) {
    InputLine refs;
    refs.line = group.line;
    refs.name = TsTool3::getSelectedNodesName();
    refs.type = PiValueType::NodeRefList;
    refs.refs.resize(1 + TsGroupInterface::SlotCount);
    refs.state.constant = PiNodeRefList(refs.refs.size());
    std::vector<InputLine> others;
    for (InputLine& in : group.inputs) {
        std::size_t at = refs.refs.size();
        for (std::size_t i = 0; i < refs.refs.size(); ++i) {
            if (in.name == (i == 0 ? refs.name : "slot" + std::to_string(i))) {
                at = i;
            }
        }
        if (at == refs.refs.size() || in.type != PiValueType::NodeRef || in.refs.size() != 1) {
            others.push_back(std::move(in));
            continue;
        }
        refs.refs[at] = in.refs.front();
        refs.line = in.line;
    }
    others.push_back(std::move(refs));
    group.inputs = std::move(others);
    group.inputIndex.clear();
    for (std::size_t i = 0; i < group.inputs.size(); ++i) {
        group.inputIndex.emplace(group.inputs[i].name, i);
    }
}

const InputLine* find(const Section& section, const std::string& name) {
    const auto it = section.inputIndex.find(name);
    return it == section.inputIndex.end() ? nullptr : &section.inputs[it->second];
}

} // namespace TsSetupDocument
