#include <ui/uiPixelReadout.h>

#include <cstdio>

namespace {

std::string number(float v) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.4f", static_cast<double>(v));
    // Trailing zeros say nothing: 1.0000 reads 1, 0.5000 reads 0.5.
    std::string s = buffer;
    while (s.find('.') != std::string::npos && (s.back() == '0' || s.back() == '.')) {
        const bool dot = s.back() == '.';
        s.pop_back();
        if (dot) {
            break;
        }
    }
    return s == "-0" ? "0" : s;
}

} // namespace

std::string UiPixelReadout::format() const {
    if (!overImage) {
        return {};
    }
    std::string text = "x " + std::to_string(x) + "  y " + std::to_string(y) + "    R " +
                       number(rgba.r) + "  G " + number(rgba.g) + "  B " + number(rgba.b) + "  A " +
                       number(rgba.a);
    if (hasMatte) {
        text += "    matte " + number(matte);
    }
    return text;
}
