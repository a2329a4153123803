#include <resmgt/liStringUtil.h>

#include <cctype>

LiString LiStringUtil::convertNb(int number) {
    return std::to_string(number);
}

LiString LiStringUtil::sanitise(const LiString& text, const LiString& replacement) {
    LiString out;
    bool pending = false;
    for (unsigned char c : text) {
        const bool keep = std::isalnum(c) || c == ' ' || c >= 0x80;
        if (!keep) {
            pending = true;
            continue;
        }
        if (pending && !out.empty()) {
            out += replacement;
        }
        pending = false;
        out += static_cast<char>(c);
    }
    return out;
}

LiString LiStringUtil::trim(const LiString& text) {
    const auto first = text.find_first_not_of(" \t\r\n");
    if (first == LiString::npos) {
        return "";
    }
    const auto last = text.find_last_not_of(" \t\r\n");
    return text.substr(first, last - first + 1);
}
