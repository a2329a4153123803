#include "tsUndoStep.h"

#include <tesseraCore/tsGroupInterface.h>
#include <tesseraCore/tsKeyerGroup.h>
#include <tesseraCore/tsKeyerNode.h>
#include <tesseraCore/tsSetup.h>
#include <tesseraCore/tsTool3.h>

#include <base/exReporter.h>
#include <base/fsAtomicFile.h>
#include <base/fsInputFile.h>
#include <base/znLimits.h>

#include <charconv>
#include <cmath>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace {

const char* const magic = "tessera-setup";

// --- Writing

std::string quote(const std::string& s) {
    std::string out = "\"";
    for (char c : s) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (c == '\n') {
            out += "\\n";
        } else {
            out += c;
        }
    }
    return out + "\"";
}

template <class T>
std::string number(T value) {
    char buffer[64];
    auto result = std::to_chars(buffer, buffer + sizeof(buffer), value);
    return std::string(buffer, result.ptr);
}

// Node references are written by name, relative to the group.
std::string nodeRefText(const PiNodeRef& ref, const TsKeyerGroup* group) {
    if (ref.isNone() || !group) {
        return "-";
    }
    if (ref.id == group->getId()) {
        return "self";
    }
    const RCShdPtr<PiNode> node = group->findNodeById(ref.id);
    return node ? quote(node->getName()) : "-";
}

std::string valueText(const PiValue& v, const TsKeyerGroup* group) {
    std::string out;
    std::visit(
        [&](const auto& value) {
            using T = std::decay_t<decltype(value)>;
            if constexpr (std::is_same_v<T, double> || std::is_same_v<T, int>) {
                out = number(value);
            } else if constexpr (std::is_same_v<T, bool>) {
                out = value ? "true" : "false";
            } else if constexpr (std::is_same_v<T, CoRgbColorTyped<float>>) {
                out = number(value.r) + " " + number(value.g) + " " + number(value.b);
            } else if constexpr (std::is_same_v<T, PiStringList>) {
                out = std::to_string(value.size());
                for (const std::string& s : value) {
                    out += " " + quote(s);
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
        os << "input " << quote(in.getName()) << " " << PiValueUtil::getTypeName(in.getType())
           << (s.locked ? " locked " : " ") << valueText(s.constant, group);
        if (!s.keys.empty()) {
            os << " keys " << s.keys.size();
            for (const PiAnimKey& k : s.keys) {
                os << " " << number(k.time) << " " << valueText(k.value, group)
                   << (k.interpolation == PiInterpolation::Linear ? " linear" : " smooth");
            }
        }
        os << "\n";
    }
}

void writeNode(std::ostream& os, const TsKeyerNode& node, const TsKeyerGroup* group) {
    os << "node " << quote(node.getName()) << "\n";
    os << "patches " << node.getPatchInputCount() << "\n";
    writeInputs(os, node, group);
}

// --- Reading

struct Token {
    std::string text;
    bool quoted = false;
};

class SetupError : public std::runtime_error {
public:
    SetupError(int line, const std::string& what)
        : std::runtime_error(what)
        , line(line) {}
    int line;
};

// Names (and every other word) are short: a file cannot make the loader
// carry a name of megabytes through every lookup and message.
void checkLength(const Token& t, int lineNumber) {
    if (t.text.size() > ZnLimits::NameBytes) {
        throw SetupError(lineNumber, std::string(t.quoted ? "a name" : "a word") + " of " +
                                         std::to_string(t.text.size()) + " bytes (at most " +
                                         std::to_string(ZnLimits::NameBytes) + ")");
    }
}

std::vector<Token> tokenize(const std::string& line, int lineNumber) {
    std::vector<Token> tokens;
    std::size_t i = 0;
    while (i < line.size()) {
        const char c = line[i];
        if (c == ' ' || c == '\t' || c == '\r') {
            ++i;
        } else if (c == '#') {
            break;
        } else if (c == '"') {
            Token t{"", true};
            ++i;
            bool closed = false;
            while (i < line.size()) {
                const char d = line[i++];
                if (d == '"') {
                    closed = true;
                    break;
                }
                if (d == '\\') {
                    if (i >= line.size()) {
                        break;
                    }
                    const char e = line[i++];
                    t.text += e == 'n' ? '\n' : e;
                } else {
                    t.text += d;
                }
            }
            if (!closed) {
                throw SetupError(lineNumber, "a quoted name is not closed");
            }
            checkLength(t, lineNumber);
            tokens.push_back(std::move(t));
        } else {
            Token t;
            while (i < line.size() && line[i] != ' ' && line[i] != '\t' && line[i] != '\r' &&
                   line[i] != '#') {
                t.text += line[i++];
            }
            checkLength(t, lineNumber);
            tokens.push_back(std::move(t));
        }
    }
    return tokens;
}

// The tokens of one line, read left to right.
class Cursor {
public:
    Cursor(std::vector<Token> tokens, int line)
        : _tokens(std::move(tokens))
        , _line(line) {}

    int line() const { return _line; }
    bool atEnd() const { return _next >= _tokens.size(); }
    bool peekWord(const char* word) const {
        return !atEnd() && !_tokens[_next].quoted && _tokens[_next].text == word;
    }
    const Token& take(const char* what) {
        if (atEnd()) {
            fail(std::string("the line ends where ") + what + " should be");
        }
        return _tokens[_next++];
    }
    std::string word(const char* what) {
        const Token& t = take(what);
        if (t.quoted) {
            fail(std::string("expected ") + what + ", found the quoted name \"" + t.text + "\"");
        }
        return t.text;
    }
    std::string name(const char* what) {
        const Token& t = take(what);
        if (!t.quoted) {
            fail(std::string("expected ") + what + " in double quotes, found " + t.text);
        }
        return t.text;
    }
    template <class T>
    T num(const char* what) {
        const std::string text = word(what);
        T value{};
        const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
        if (result.ec != std::errc() || result.ptr != text.data() + text.size()) {
            fail(std::string("expected ") + what + ", found " + text);
        }
        if constexpr (std::is_floating_point_v<T>) {
            if (!std::isfinite(value)) {
                fail(std::string(what) + " is not a finite number: " + text);
            }
        }
        return value;
    }
    void end() {
        if (!atEnd()) {
            fail("unexpected " + _tokens[_next].text + " at the end of the line");
        }
    }
    [[noreturn]] void fail(const std::string& what) const { throw SetupError(_line, what); }

private:
    std::vector<Token> _tokens;
    std::size_t _next = 0;
    int _line;
};

// A node reference as written: a name, none, or the group itself.
struct RefName {
    enum Kind { None, Self, Named } kind = None;
    std::string name;
};

struct InputLine {
    int line = 0;
    std::string name;
    PiValueType type = PiValueType::Double;
    PiInputState state;
    std::vector<RefName> refs; // node references: the constant's, then the keys'
};

struct Section {
    int line = 0;
    std::string name;
    int generation = 1;
    int patches = 1;
    std::vector<InputLine> inputs;
    std::unordered_map<std::string, std::size_t> inputIndex; // name -> index in inputs
};

struct Setup {
    int version = TsSetup::Version;
    std::optional<Section> group;
    std::vector<Section> nodes;
};

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

Setup parse(const std::string& text) {
    Setup setup;
    std::istringstream is(text);
    std::string line;
    int number = 0;
    bool header = false;
    bool ended = false;
    Section* current = nullptr;
    std::unordered_set<std::string> nodeNames;
    while (std::getline(is, line)) {
        ++number;
        std::vector<Token> tokens = tokenize(line, number);
        if (tokens.empty()) {
            continue;
        }
        Cursor c(std::move(tokens), number);
        if (ended) {
            c.fail("text after the end of the setup");
        }
        if (!header) {
            if (!c.peekWord(magic)) {
                c.fail("this is not a keyer setup (it does not begin with \"" + std::string(magic) +
                       "\")");
            }
            c.word(magic);
            setup.version = c.num<int>("a version number");
            if (setup.version < 1 || setup.version > TsSetup::Version) {
                c.fail("setup version " + std::to_string(setup.version) +
                       " is not readable (this keyer reads versions 1 to " +
                       std::to_string(TsSetup::Version) + ")");
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

// Version 1 kept a generation 2 group's slots in inputs of their own
// ("slot1" .. "slot6") beside its selected node; they now go, in that order
// after the selected node, into its selected-nodes value.
void upgradeSecondGenerationSlots(Section& group) {
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

// Checks a section against a node of the same kind (a scratch node, not the
// target): every input must exist there with the same type, and its state
// must be one the input takes.
void check(const Section& section, PiNode& prototype) {
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

const InputLine* find(const Section& section, const std::string& name) {
    const auto it = section.inputIndex.find(name);
    return it == section.inputIndex.end() ? nullptr : &section.inputs[it->second];
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

void reportFailure(const std::string& where, const std::string& what, LiString* error) {
    ExReporter::getInstance().report(where, what);
    if (error) {
        *error = where + ": " + what;
    }
}

bool readSetup(PiNode& keyer, const std::string& text, const std::string& source, LiString* error) {
    auto* group = dynamic_cast<TsKeyerGroup*>(&keyer);
    auto* single = dynamic_cast<TsKeyerNode*>(&keyer);
    if (!group && !single) {
        reportFailure(source, "node \"" + keyer.getName() + "\" is not a keyer", error);
        return false;
    }
    Setup setup;
    // The references of the group's inputs, resolved to nodes of the group
    // (or to names of keyer nodes the load will add).
    std::map<std::string, PiNodeRef> refs;
    try {
        setup = parse(text);
        if (setup.version == 1 && setup.group && setup.group->generation == 2) {
            upgradeSecondGenerationSlots(*setup.group);
        }
        if (single) {
            if (setup.group) {
                throw SetupError(setup.group->line, "this is the setup of a keyer group, not of "
                                                    "a single keyer node");
            }
            if (setup.nodes.size() != 1) {
                throw SetupError(setup.nodes[1].line,
                                 "a keyer node's setup holds one node section");
            }
        } else {
            if (!setup.group) {
                throw SetupError(setup.nodes.front().line,
                                 "this is the setup of a single keyer node, not of a keyer group");
            }
            if (setup.group->generation != group->getGeneration()) {
                throw SetupError(setup.group->line,
                                 "the setup is of a generation " +
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
            check(section, *prototype);
            if (const InputLine* names =
                    find(section, prototype->getPatchNamesInput()->getName())) {
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
            check(*setup.group, *prototype);
        }
    } catch (const SetupError& e) {
        reportFailure(source + ":" + std::to_string(e.line), e.what(), error);
        return false;
    }

    // Everything checked: apply, as one step.
    const TsUndoStep step(keyer, "Load Setup");
    if (single) {
        applyNode(*single, setup.nodes.front());
        return true;
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
    return true;
}

} // namespace

bool TsSetup::write(const PiNode& keyer, LiString& text, LiString* error) {
    std::ostringstream os;
    os << magic << " " << Version << "\n";
    if (const auto* group = dynamic_cast<const TsKeyerGroup*>(&keyer)) {
        os << "group " << quote(group->getName()) << " generation " << group->getGeneration()
           << "\n";
        writeInputs(os, *group, group);
        for (int i = 0; i < group->getKeyerNodeCount(); ++i) {
            writeNode(os, *group->getKeyerNode(i), group);
        }
    } else if (const auto* node = dynamic_cast<const TsKeyerNode*>(&keyer)) {
        writeNode(os, *node, nullptr);
    } else {
        reportFailure("setup", "node \"" + keyer.getName() + "\" is not a keyer", error);
        return false;
    }
    os << "end\n";
    text = os.str();
    return true;
}

bool TsSetup::save(const PiNode& keyer, const LiString& path, LiString* error) {
    LiString text;
    if (!write(keyer, text, error)) {
        return false;
    }
    std::string reason;
    if (!FsAtomicFile::write(path, text, reason)) {
        reportFailure(path, "cannot write the setup: " + reason, error);
        return false;
    }
    return true;
}

int TsSetup::getGeneration(const LiString& text) {
    try {
        const Setup setup = parse(text);
        return setup.group ? setup.group->generation : 0;
    } catch (const SetupError&) {
        return -1;
    }
}

bool TsSetup::read(PiNode& keyer, const LiString& text, const LiString& source, LiString* error) {
    return readSetup(keyer, text, source, error);
}

bool TsSetup::load(PiNode& keyer, const LiString& path, LiString* error) {
    std::string text;
    std::string reason;
    if (!FsInputFile::read(path, ZnLimits::SetupBytes, "a setup", text, reason)) {
        reportFailure(path, "cannot read the setup: " + reason, error);
        return false;
    }
    return readSetup(keyer, text, path, error);
}
