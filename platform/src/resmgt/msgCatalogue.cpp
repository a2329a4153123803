#include <resmgt/msgCatalogue.h>

#include <base/fsInputFile.h>
#include <base/znLimits.h>

#include <cctype>
#include <sstream>

std::string MsgCatalogue::Error::text() const {
    return line > 0 ? file + ":" + std::to_string(line) + ": " + message : file + ": " + message;
}

MsgCatalogue MsgCatalogue::load(const std::string& path) {
    std::string text;
    std::string reason;
    if (!FsInputFile::read(path, ZnLimits::ResourceBytes, "a catalogue", text, reason)) {
        MsgCatalogue c;
        c._name = path;
        c._readable = false;
        c._errors.push_back({path, 0, "cannot be read: " + reason});
        return c;
    }
    return parse(text, path);
}

namespace {

bool isIdChar(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
}

// Parses `ID "text"` from position 0 of the line; answers "" on success, else
// what is wrong.
std::string parseLine(const std::string& line, std::string& id, std::string& text) {
    std::size_t i = 0;
    while (i < line.size() && (line[i] == ' ' || line[i] == '\t')) {
        ++i;
    }
    const std::size_t idStart = i;
    while (i < line.size() && isIdChar(line[i])) {
        ++i;
    }
    if (i == idStart) {
        return "expected a message id (letters, digits and '_')";
    }
    id = line.substr(idStart, i - idStart);
    if (i < line.size() && line[i] != ' ' && line[i] != '\t') {
        return "unexpected character '" + std::string(1, line[i]) + "' in message id";
    }
    while (i < line.size() && (line[i] == ' ' || line[i] == '\t')) {
        ++i;
    }
    if (i >= line.size() || line[i] != '"') {
        return "expected a double-quoted text after " + id;
    }
    ++i;
    text.clear();
    bool closed = false;
    for (; i < line.size(); ++i) {
        const char c = line[i];
        if (c == '\\') {
            if (i + 1 >= line.size()) {
                return "unfinished escape at the end of the line";
            }
            const char e = line[++i];
            if (e == '"' || e == '\\') {
                text += e;
            } else if (e == 'n') {
                text += '\n';
            } else {
                return std::string("unknown escape \\") + e;
            }
        } else if (c == '"') {
            closed = true;
            ++i;
            break;
        } else {
            text += c;
        }
    }
    if (!closed) {
        return "the text of " + id + " has no closing quote";
    }
    while (i < line.size() && (line[i] == ' ' || line[i] == '\t' || line[i] == '\r')) {
        ++i;
    }
    if (i < line.size() && line[i] != '#') {
        return "unexpected text after the closing quote";
    }
    return "";
}

} // namespace

MsgCatalogue MsgCatalogue::parse(const std::string& contents, const std::string& name) {
    MsgCatalogue c;
    c._name = name;
    std::istringstream in(contents);
    std::string line;
    int number = 0;
    while (std::getline(in, line)) {
        ++number;
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        const auto first = line.find_first_not_of(" \t");
        if (first == std::string::npos || line[first] == '#') {
            continue;
        }
        std::string id;
        std::string text;
        const std::string problem = parseLine(line, id, text);
        if (!problem.empty()) {
            c._errors.push_back({name, number, problem});
            continue;
        }
        if (c._entries.count(id)) {
            c._errors.push_back({name, number, "message id " + id + " defined twice"});
            continue;
        }
        c._entries.emplace(id, text);
    }
    return c;
}

std::optional<LiString> MsgCatalogue::find(const std::string& id) const {
    auto it = _entries.find(id);
    if (it == _entries.end()) {
        return std::nullopt;
    }
    return it->second;
}
