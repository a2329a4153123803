#include "sessionArgs.h"

#include <tesseraCore/setup/tsValueText.h>

#include <base/evKeyboardState.h>

#include <charconv>
#include <cmath>
#include <limits>

SessionArgs::SessionArgs(const std::vector<std::string>& words, const std::vector<bool>& quoted,
                         std::size_t first)
    : _words(words)
    , _quoted(quoted)
    , _at(first) {}

std::string SessionArgs::wordsFrom(std::size_t position) const {
    std::string out;
    for (std::size_t i = position; i < _at && i < _words.size(); ++i) {
        const bool quoted = i < _quoted.size() && _quoted[i];
        out += (out.empty() ? "" : " ") + (quoted ? "\"" + _words[i] + "\"" : _words[i]);
    }
    return out;
}

const std::string& SessionArgs::peek() const {
    static const std::string none;
    return atEnd() ? none : _words[_at];
}

bool SessionArgs::peekQuoted() const {
    return !atEnd() && _at < _quoted.size() && _quoted[_at];
}

std::string SessionArgs::word(const std::string& what) {
    if (atEnd()) {
        throw Error("missing " + what);
    }
    return _words[_at++];
}

bool SessionArgs::take(const std::string& w) {
    if (!atEnd() && !peekQuoted() && _words[_at] == w) {
        ++_at;
        return true;
    }
    return false;
}

std::string SessionArgs::choice(const std::string& what, const std::vector<std::string>& choices) {
    const std::string w = word(what);
    for (const std::string& c : choices) {
        if (w == c) {
            return w;
        }
    }
    std::string list;
    for (std::size_t i = 0; i < choices.size(); ++i) {
        list += (i ? (i + 1 == choices.size() ? " or " : ", ") : "") + choices[i];
    }
    throw Error("unknown " + what + " \"" + w + "\" (expected " + list + ")");
}

bool SessionArgs::parseNumber(const std::string& text, double& value) {
    if (text.empty()) {
        return false;
    }
    const char* begin = text.data();
    const char* end = begin + text.size();
    if (*begin == '+') {
        ++begin;
    }
    // Only decimal forms: from_chars in general format takes no "0x", but
    // does take "inf" and "nan".
    for (const char* c = begin; c != end; ++c) {
        if (!((*c >= '0' && *c <= '9') || *c == '.' || *c == '-' || *c == 'e' || *c == 'E' ||
              *c == '+')) {
            return false;
        }
    }
    const auto [ptr, ec] = std::from_chars(begin, end, value);
    return ec == std::errc() && ptr == end && std::isfinite(value);
}

std::string SessionArgs::format(double value) {
    return TsValueText::number(value);
}

std::string SessionArgs::format(float value) {
    return TsValueText::number(value);
}

double SessionArgs::number(const std::string& what) {
    const std::string w = word(what);
    double value = 0.0;
    if (!parseNumber(w, value)) {
        throw Error("bad number \"" + w + "\" for " + what);
    }
    return value;
}

int SessionArgs::integer(const std::string& what) {
    const std::string w = word(what);
    double value = 0.0;
    if (!parseNumber(w, value) || value != std::floor(value) ||
        std::fabs(value) > std::numeric_limits<int>::max()) {
        throw Error("bad whole number \"" + w + "\" for " + what);
    }
    return static_cast<int>(value);
}

GePoint2<double> SessionArgs::point(const std::string& what) {
    const double x = number(what + " x");
    const double y = number(what + " y");
    return {x, y};
}

std::string SessionArgs::rest() {
    std::string out;
    while (!atEnd()) {
        out += (out.empty() ? "" : " ") + _words[_at++];
    }
    return out;
}

std::vector<std::string> SessionArgs::restWords() {
    std::vector<std::string> out(_words.begin() + static_cast<std::ptrdiff_t>(_at), _words.end());
    _at = _words.size();
    return out;
}

void SessionArgs::modifiersAndButton(unsigned& modifiers, EvButton* button) {
    while (!atEnd()) {
        const std::string w = word("modifier");
        if (w == "shift") {
            modifiers |= EvKeyboardState::ShiftMask;
        } else if (w == "ctrl") {
            modifiers |= EvKeyboardState::CtrlMask;
        } else if (w == "alt") {
            modifiers |= EvKeyboardState::AltMask;
        } else if (w == "meta") {
            modifiers |= EvKeyboardState::MetaMask;
        } else if (button && w == "left") {
            *button = EvButton::Left;
        } else if (button && w == "middle") {
            *button = EvButton::Middle;
        } else if (button && w == "right") {
            *button = EvButton::Right;
        } else {
            throw Error("unknown modifier \"" + w + "\" (expected shift, ctrl, alt or meta" +
                        std::string(button ? ", or a button: left, middle or right)" : ")"));
        }
    }
}

void SessionArgs::end() {
    if (!atEnd()) {
        throw Error("unexpected \"" + _words[_at] + "\" at the end of the line");
    }
}
