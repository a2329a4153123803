#pragma once

#include <stdexcept>
#include <string>
#include <vector>

// The words of a setup's lines: bare words and quoted names ('#' outside
// quotes ends the line), read left to right with what each must be. A line
// that does not fit throws SetupError with its line; the error stays inside
// the setup's reader, which answers it as a message.
namespace TsSetupSyntax {

class SetupError : public std::runtime_error {
public:
    SetupError(int line, const std::string& what)
        : std::runtime_error(what)
        , line(line) {}
    int line;
};

struct Token {
    std::string text;
    bool quoted = false;
};

// Every word and name is at most ZnLimits::NameBytes long.
std::vector<Token> tokenize(const std::string& line, int lineNumber);

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
    const Token& take(const char* what);
    // A bare word; a name in quotes is an error.
    std::string word(const char* what);
    // A name in quotes; a bare word is an error.
    std::string name(const char* what);
    // A finite number of type T, written as to_chars writes it.
    template <class T>
    T num(const char* what);
    void end();
    [[noreturn]] void fail(const std::string& what) const { throw SetupError(_line, what); }

private:
    std::vector<Token> _tokens;
    std::size_t _next = 0;
    int _line;
};

} // namespace TsSetupSyntax
