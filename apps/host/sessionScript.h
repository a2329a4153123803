#pragma once

#include <stdexcept>
#include <string>
#include <vector>

// A session script read into lines of words: one action a line, words
// separated by blanks, "double quotes" around a word that holds blanks (a
// backslash in a quoted word escapes the next character, \n is a newline),
// '#' at the start of a word outside quotes starting a comment. Blank and comment-only lines are
// dropped; each kept line remembers its number in the file.
class SessionScript {
public:
    struct Line {
        int number = 0;   // 1 for the first line of the file
        std::string text; // as written, without the comment
        std::vector<std::string> words;
        std::vector<bool> quoted; // per word: it was written in quotes
    };

    // `source` names the script in messages (its path, or a built-in name).
    // A quote left open is a SessionError at its line.
    static SessionScript parse(const std::string& text, const std::string& source);
    // Reads the file ("-": standard input, named "standard input"); a file
    // that cannot be read, is not a regular file or is larger than
    // ZnLimits::ScriptBytes is a SessionError naming it, at line 0.
    static SessionScript read(const std::string& path);

    const std::string& getSource() const { return _source; }
    const std::vector<Line>& getLines() const { return _lines; }

    // Splits one line into words (see above); false and `error` set for an
    // open quote. Words are written back with TsValueText::quoteWord.
    static bool split(const std::string& line, Line& out, std::string& error);

private:
    std::string _source;
    std::vector<Line> _lines;
};

// What stops a session: a script line that cannot be carried out, or an
// expectation that does not hold. what() is "SOURCE:LINE: message".
class SessionError : public std::runtime_error {
public:
    SessionError(const std::string& source, int line, const std::string& message);

    const std::string& getSource() const { return _source; }
    int getLine() const { return _line; }
    const std::string& getMessage() const { return _message; }

private:
    std::string _source;
    int _line;
    std::string _message;
};
