#include "tsSetupSyntax.h"

#include <base/znLimits.h>

#include <charconv>
#include <cmath>
#include <type_traits>

namespace TsSetupSyntax {

namespace {

// Names (and every other word) are short: a file cannot make the loader
// carry a name of megabytes through every lookup and message.
void checkLength(const Token& t, int lineNumber) {
    if (t.text.size() > ZnLimits::NameBytes) {
        throw SetupError(lineNumber, std::string(t.quoted ? "a name" : "a word") + " of " +
                                         std::to_string(t.text.size()) + " bytes (at most " +
                                         std::to_string(ZnLimits::NameBytes) + ")");
    }
}

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r';
}

} // namespace

std::vector<Token> tokenize(const std::string& line, int lineNumber) {
    std::vector<Token> tokens;
    std::size_t i = 0;
    while (i < line.size()) {
        const char c = line[i];
        if (isBlank(c)) {
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
            while (i < line.size() && !isBlank(line[i]) && line[i] != '#') {
                t.text += line[i++];
            }
            checkLength(t, lineNumber);
            tokens.push_back(std::move(t));
        }
    }
    return tokens;
}

const Token& Cursor::take(const char* what) {
    if (atEnd()) {
        fail(std::string("the line ends where ") + what + " should be");
    }
    return _tokens[_next++];
}

std::string Cursor::word(const char* what) {
    const Token& t = take(what);
    if (t.quoted) {
        fail(std::string("expected ") + what + ", found the quoted name \"" + t.text + "\"");
    }
    return t.text;
}

std::string Cursor::name(const char* what) {
    const Token& t = take(what);
    if (!t.quoted) {
        fail(std::string("expected ") + what + " in double quotes, found " + t.text);
    }
    return t.text;
}

template <class T>
T Cursor::num(const char* what) {
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

template int Cursor::num<int>(const char*);
template float Cursor::num<float>(const char*);
template double Cursor::num<double>(const char*);

void Cursor::end() {
    if (!atEnd()) {
        fail("unexpected " + _tokens[_next].text + " at the end of the line");
    }
}

} // namespace TsSetupSyntax
