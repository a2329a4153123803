#pragma once

#include <pluginAPI/piValue.h>
#include <tesseraCore/tesseraCoreExport.h>

#include <string>

// How values are written as text, the same in setups and in session scripts:
// numbers in the shortest form that reads back to the same value, colours as
// three numbers, flags as true or false, names in double quotes with the
// quote, the backslash and the newline escaped (\", \\ and \n). Readers of
// both take \n inside quotes as a newline and \x as the character x.
class TS_CORE_API TsValueText {
public:
    enum class Quote { Always, WhenNeeded };

    // A name in double quotes; with WhenNeeded, a word that needs none (not
    // empty, no blank, quote, #, backslash or control character) stays bare.
    static std::string quote(const std::string& text, Quote when = Quote::Always);
    // A word of a session script: quoted only when it needs to be.
    static std::string quoteWord(const std::string& text) { return quote(text, Quote::WhenNeeded); }

    static std::string number(double value);
    static std::string number(float value);
    static std::string number(int value);

    // A double, an int, a flag or a colour; "" for the other kinds, which
    // each format writes in its own way (lists, node references, images).
    static std::string scalar(const PiValue& value);
};
