#include <tesseraCore/setup/tsValueText.h>

#include <charconv>

namespace {

template <class T>
std::string shortest(T value) {
    char buffer[64];
    const auto [ptr, ec] = std::to_chars(buffer, buffer + sizeof(buffer), value);
    return ec == std::errc() ? std::string(buffer, ptr) : std::to_string(value);
}

bool needsQuotes(const std::string& text) {
    if (text.empty()) {
        return true;
    }
    for (const char c : text) {
        if (c == ' ' || c == '\t' || c == '"' || c == '#' || c == '\\' ||
            static_cast<unsigned char>(c) < 0x20 || c == 0x7f) {
            return true;
        }
    }
    return false;
}

} // namespace

std::string TsValueText::quote(const std::string& text, Quote when) {
    if (when == Quote::WhenNeeded && !needsQuotes(text)) {
        return text;
    }
    std::string out = "\"";
    for (const char c : text) {
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

std::string TsValueText::number(double value) {
    return shortest(value);
}

std::string TsValueText::number(float value) {
    return shortest(value);
}

std::string TsValueText::number(int value) {
    return std::to_string(value);
}

std::string TsValueText::scalar(const PiValue& value) {
    if (const double* d = std::get_if<double>(&value)) {
        return number(*d);
    }
    if (const int* i = std::get_if<int>(&value)) {
        return number(*i);
    }
    if (const bool* b = std::get_if<bool>(&value)) {
        return *b ? "true" : "false";
    }
    if (const auto* c = std::get_if<CoRgbColorTyped<float>>(&value)) {
        return number(c->r) + " " + number(c->g) + " " + number(c->b);
    }
    return "";
}
