#include <gfx/wsFont.h>
#include <gfx/wsFontUtils.h>

#include <vector>

WsFont::~WsFont() = default;

const LiString WsFontUtils::Ellipsis = "...";

namespace {

// UTF-8 continuation bytes (10xxxxxx) never start a character: a text is cut
// only before a byte that does.
bool isCharacterStart(unsigned char c) {
    return (c & 0xC0u) != 0x80u;
}

} // namespace

LiString WsFontUtils::truncateAtTheEnd(const RCShdPtr<WsFont>& font, const LiString& text,
                                       int width) {
    const WsFont& f = *font;
    if (f.getTextWidth(text) <= width) {
        return text;
    }
    if (f.getTextWidth(Ellipsis) > width) {
        return LiString();
    }
    // Character boundaries, then a binary search for the longest beginning
    // that fits with the ellipsis (widths grow with the length).
    std::vector<std::size_t> cuts;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isCharacterStart(static_cast<unsigned char>(text[i]))) {
            cuts.push_back(i);
        }
    }
    auto candidate = [&](std::size_t n) {
        LiString head = text.substr(0, cuts[n]);
        while (!head.empty() && (head.back() == ' ' || head.back() == '\t')) {
            head.pop_back();
        }
        return head + Ellipsis;
    };
    std::size_t lo = 0;           // cuts[0] == 0: "..." alone fits
    std::size_t hi = cuts.size(); // exclusive
    while (hi - lo > 1) {
        const std::size_t mid = (lo + hi) / 2;
        if (f.getTextWidth(candidate(mid)) <= width) {
            lo = mid;
        } else {
            hi = mid;
        }
    }
    return candidate(lo);
}
