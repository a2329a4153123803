#include "sessionProbe.h"

#include <tesseraCore/setup/tsValueText.h>

#include "hostSession.h"
#include "sessionArgs.h"
#include "sessionScript.h"

std::string SessionProbe::list(const std::vector<std::string>& items, const char* none) {
    if (items.empty()) {
        return none;
    }
    std::string out;
    for (const std::string& item : items) {
        out += (out.empty() ? "" : ", ") + item;
    }
    return out;
}

std::string SessionProbe::orNone(const std::string& text) {
    return text.empty() ? "none" : text;
}

SessionProbe::SessionProbe(HostSession& session)
    : _session(session) {}

void SessionProbe::addQuery(const std::string& word, Query query, Listing listing,
                            bool listingTakesArguments) {
    _queries[word] = Entry{std::move(query), std::move(listing), listingTakesArguments};
}

std::string SessionProbe::value(SessionArgs& args) {
    const std::string what = args.word("what to read");
    const auto it = _queries.find(what);
    if (it == _queries.end()) {
        throw SessionArgs::Error("unknown state \"" + what + "\"");
    }
    return it->second.value(args);
}

std::vector<std::string> SessionProbe::listing(SessionArgs& args) {
    const std::string what = args.peek();
    const auto it = _queries.find(what);
    if (it != _queries.end() && it->second.listing &&
        (it->second.listingTakesArguments || args.remaining() == 1)) {
        args.word("what to read");
        return it->second.listing(args);
    }
    const std::size_t from = args.position();
    const std::string answer = value(args);
    return {args.wordsFrom(from) + " = " + answer};
}

// --- arguments

double SessionProbe::frameArg(SessionArgs& args) const {
    if (args.take("at")) {
        return args.number("frame");
    }
    return _session.getFrame();
}

RCShdPtr<PiNode> SessionProbe::nodeArg(SessionArgs& args) const {
    const std::string name = args.word("node name");
    RCShdPtr<PiNode> node = _session.findNode(name);
    if (!node) {
        throw SessionArgs::Error("no node \"" + name + "\" in the keyer");
    }
    return node;
}

RCShdPtr<PiInput> SessionProbe::findInput(const std::string& reference) const {
    const std::size_t slash = reference.find('/');
    RCShdPtr<PiNode> node;
    std::string name = reference;
    if (slash != std::string::npos) {
        const std::string nodeName = reference.substr(0, slash);
        node = _session.findNode(nodeName);
        if (!node) {
            throw SessionArgs::Error("no node \"" + nodeName + "\" in the keyer");
        }
        name = reference.substr(slash + 1);
    } else {
        node = _session.getShownNode();
        if (!node) {
            throw SessionArgs::Error("the viewer shows no keyer node");
        }
    }
    RCShdPtr<PiInput> input = node->getInput(name);
    if (!input) {
        throw SessionArgs::Error("node \"" + node->getName() + "\" has no input \"" + name + "\"");
    }
    return input;
}

RCShdPtr<PiInput> SessionProbe::inputArg(SessionArgs& args) const {
    return findInput(args.word("input name"));
}

// --- values

std::string SessionProbe::format(const PiValue& value) const {
    switch (PiValueUtil::getType(value)) {
    case PiValueType::Double:
        return SessionArgs::format(std::get<double>(value));
    case PiValueType::Int:
        return std::to_string(std::get<int>(value));
    case PiValueType::Bool:
        return std::get<bool>(value) ? "true" : "false";
    case PiValueType::RgbColor: {
        const auto& c = std::get<CoRgbColorTyped<float>>(value);
        return SessionArgs::format(c.r) + " " + SessionArgs::format(c.g) + " " +
               SessionArgs::format(c.b);
    }
    case PiValueType::StringList: {
        std::string out;
        for (const std::string& s : std::get<PiStringList>(value)) {
            out += (out.empty() ? "" : " ") + TsValueText::quoteWord(s);
        }
        return out.empty() ? "none" : out;
    }
    case PiValueType::Image: {
        const PiClipPtr& clip = std::get<PiClipPtr>(value);
        if (!clip) {
            return "none";
        }
        const PiFrameRange range = clip->getFrameRange();
        return std::to_string(clip->getClipWidth()) + "x" + std::to_string(clip->getClipHeight()) +
               (range.unbounded
                    ? ""
                    : " " + std::to_string(range.first) + "-" + std::to_string(range.last));
    }
    case PiValueType::NodeRef: {
        const RCShdPtr<PiNode> node = _session.getKeyer()->resolve(std::get<PiNodeRef>(value));
        return node ? node->getName() : "none";
    }
    case PiValueType::NodeRefList: {
        std::string out;
        for (const PiNodeRef& ref : std::get<PiNodeRefList>(value)) {
            const RCShdPtr<PiNode> node = _session.getKeyer()->resolve(ref);
            out +=
                (out.empty() ? "" : " ") + (node ? TsValueText::quoteWord(node->getName()) : "-");
        }
        return out.empty() ? "none" : out;
    }
    }
    return "";
}

bool SessionProbe::parseValue(PiValueType type, const std::vector<std::string>& words, PiValue& out,
                              std::string& error) {
    auto numbers = [&](std::size_t count, std::vector<double>& values) {
        if (words.size() != count) {
            error = "expected " + std::to_string(count) + (count == 1 ? " number" : " numbers");
            return false;
        }
        for (const std::string& w : words) {
            double v = 0.0;
            if (!SessionArgs::parseNumber(w, v)) {
                error = "bad number \"" + w + "\"";
                return false;
            }
            values.push_back(v);
        }
        return true;
    };
    std::vector<double> v;
    switch (type) {
    case PiValueType::Double:
        if (!numbers(1, v)) {
            return false;
        }
        out = PiValue(v[0]);
        return true;
    case PiValueType::Int:
        if (!numbers(1, v)) {
            return false;
        }
        if (v[0] != static_cast<double>(static_cast<int>(v[0]))) {
            error = "bad whole number \"" + words[0] + "\"";
            return false;
        }
        out = PiValue(static_cast<int>(v[0]));
        return true;
    case PiValueType::Bool:
        if (words.size() != 1 || (words[0] != "true" && words[0] != "false")) {
            error = "expected true or false";
            return false;
        }
        out = PiValue(words[0] == "true");
        return true;
    case PiValueType::RgbColor:
        if (!numbers(3, v)) {
            return false;
        }
        out = PiValue(CoRgbColorTyped<float>{static_cast<float>(v[0]), static_cast<float>(v[1]),
                                             static_cast<float>(v[2])});
        return true;
    case PiValueType::StringList:
        out = PiValue(PiStringList(words.begin(), words.end()));
        return true;
    case PiValueType::Image:
    case PiValueType::NodeRef:
    case PiValueType::NodeRefList:
        break;
    }
    error = std::string("a value of type ") + PiValueUtil::getTypeName(type) +
            " cannot be written from a script";
    return false;
}

// --- listings

std::vector<std::string> SessionProbe::inputs(SessionArgs& args) {
    RCShdPtr<PiNode> node = _session.getShownNode();
    if (!args.atEnd() && args.peek() != "at") {
        node = nodeArg(args);
    }
    if (!node) {
        throw SessionArgs::Error("the viewer shows no keyer node");
    }
    const double frame = frameArg(args);
    std::vector<std::string> lines;
    for (int i = 0; i < node->getInputCount(); ++i) {
        const RCShdPtr<PiInput>& input = node->getInput(i);
        std::string line =
            node->getName() + "/" + input->getName() + " = " + format(input->getValue(frame));
        if (input->hasKeys()) {
            line += " (" + std::to_string(input->getKeyCount()) + " keys)";
        }
        if (input->isLocked()) {
            line += " (locked)";
        }
        lines.push_back(line);
    }
    return lines;
}
