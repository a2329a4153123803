#pragma once

#include <base/evEvent.h>
#include <base/gePoint2.h>

#include <stdexcept>
#include <string>
#include <vector>

// The words of one script line after its command, read front to back by the
// commands. Anything that does not fit throws SessionArgs::Error with a
// message that says what was expected; the interpreter adds the file and the
// line.
class SessionArgs {
public:
    class Error : public std::runtime_error {
    public:
        using std::runtime_error::runtime_error;
    };

    SessionArgs(const std::vector<std::string>& words, const std::vector<bool>& quoted,
                std::size_t first = 1);

    bool atEnd() const { return _at >= _words.size(); }
    std::size_t remaining() const { return _words.size() - _at; }
    std::size_t position() const { return _at; }
    // The words from `position` up to the next one to be read, joined by
    // single blanks (quoted where they need it).
    std::string wordsFrom(std::size_t position) const;
    // The next word without taking it; "" at the end.
    const std::string& peek() const;
    bool peekQuoted() const;

    // The next word; `what` names it in the error when there is none.
    std::string word(const std::string& what);
    // Takes the next word when it equals `w` (unquoted).
    bool take(const std::string& w);
    // One of `choices`; anything else is an error listing them.
    std::string choice(const std::string& what, const std::vector<std::string>& choices);
    double number(const std::string& what);
    int integer(const std::string& what);
    GePoint2<double> point(const std::string& what);
    // Every word left, joined by single blanks ("" when none).
    std::string rest();
    std::vector<std::string> restWords();
    // Modifier words (shift, ctrl, alt, meta) and a button word (left,
    // middle, right) in any order, until the end of the line; anything else
    // is an error.
    void modifiersAndButton(unsigned& modifiers, EvButton* button);
    // The end of the line; a word left over is an error.
    void end();

    // A number as scripts write it: a decimal, possibly signed, with an
    // optional exponent; nothing else (no "nan", "inf", hex or trailing
    // characters).
    static bool parseNumber(const std::string& text, double& value);
    // The shortest text that reads back to the same number.
    static std::string format(double value);
    static std::string format(float value);

private:
    const std::vector<std::string>& _words;
    const std::vector<bool>& _quoted;
    std::size_t _at;
};
