#include "sessionScript.h"

#include <base/fsInputFile.h>
#include <base/znLimits.h>

#include <sstream>

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v';
}

std::string withoutTrailingBlanks(const std::string& text) {
    std::size_t end = text.size();
    while (end > 0 && isBlank(text[end - 1])) {
        --end;
    }
    std::size_t begin = 0;
    while (begin < end && isBlank(text[begin])) {
        ++begin;
    }
    return text.substr(begin, end - begin);
}

} // namespace

SessionError::SessionError(const std::string& source, int line, const std::string& message)
    : std::runtime_error(source + ":" + std::to_string(line) + ": " + message)
    , _source(source)
    , _line(line)
    , _message(message) {}

bool SessionScript::split(const std::string& line, Line& out, std::string& error) {
    out.words.clear();
    out.quoted.clear();
    std::size_t i = 0;
    std::size_t commentAt = line.size();
    while (i < line.size()) {
        if (isBlank(line[i])) {
            ++i;
            continue;
        }
        if (line[i] == '#') {
            commentAt = i;
            break;
        }
        std::string word;
        if (line[i] == '"') {
            const std::size_t open = i++;
            bool closed = false;
            while (i < line.size()) {
                const char c = line[i++];
                if (c == '\\' && i < line.size()) {
                    // The escapes of TsValueText::quote: \n a newline, \x x.
                    const char e = line[i++];
                    word += e == 'n' ? '\n' : e;
                } else if (c == '"') {
                    closed = true;
                    break;
                } else {
                    word += c;
                }
            }
            if (!closed) {
                error = "the quote opened at column " + std::to_string(open + 1) + " is not closed";
                return false;
            }
            out.words.push_back(word);
            out.quoted.push_back(true);
            continue;
        }
        // A # inside a word is part of it: frame patterns (name.####.exr).
        while (i < line.size() && !isBlank(line[i]) && line[i] != '"') {
            word += line[i++];
        }
        out.words.push_back(word);
        out.quoted.push_back(false);
    }
    out.text = withoutTrailingBlanks(line.substr(0, commentAt));
    return true;
}

SessionScript SessionScript::parse(const std::string& text, const std::string& source) {
    SessionScript script;
    script._source = source;
    std::istringstream in(text);
    std::string raw;
    int number = 0;
    while (std::getline(in, raw)) {
        ++number;
        Line line;
        line.number = number;
        std::string error;
        if (!split(raw, line, error)) {
            throw SessionError(source, number, error);
        }
        if (!line.words.empty()) {
            script._lines.push_back(std::move(line));
        }
    }
    return script;
}

SessionScript SessionScript::read(const std::string& path) {
    std::string text;
    std::string reason;
    const bool standardInput = path == "-";
    const bool read =
        standardInput
            ? FsInputFile::readStandardInput(ZnLimits::ScriptBytes, "a script", text, reason)
            : FsInputFile::read(path, ZnLimits::ScriptBytes, "a script", text, reason);
    const std::string source = standardInput ? "standard input" : path;
    if (!read) {
        throw SessionError(source, 0, "cannot read the session script: " + reason);
    }
    return parse(text, source);
}
