#include "frameList.h"

#include <tesseraCore/io/tsSequence.h>

#include <algorithm>

namespace {

std::string rangeText(const PiFrameRange& r) {
    return r.first == r.last ? std::to_string(r.first)
                             : std::to_string(r.first) + "-" + std::to_string(r.last);
}

} // namespace

bool FrameList::parse(const std::string& text, FrameList& out, std::string& error) {
    FrameList list;
    std::size_t start = 0;
    while (true) {
        const std::size_t comma = std::min(text.find(',', start), text.size());
        const std::string part = text.substr(start, comma - start);
        PiFrameRange range;
        if (!TsSequence::parseRange(part, range)) {
            error = "bad frames \"" + text + "\": \"" + part +
                    "\" is no frame or range (expected FIRST-LAST, as in 1001-1100, or a list "
                    "of them, as in 1005,1017-1018)";
            return false;
        }
        list.add(range);
        if (comma == text.size()) {
            break;
        }
        start = comma + 1;
    }
    out = std::move(list);
    return true;
}

FrameList FrameList::of(std::vector<int> frames) {
    std::sort(frames.begin(), frames.end());
    FrameList list;
    for (const int f : frames) {
        list.add(PiFrameRange{f, f, false});
    }
    return list;
}

void FrameList::add(PiFrameRange range) {
    auto at = std::lower_bound(
        _ranges.begin(), _ranges.end(), range,
        [](const PiFrameRange& a, const PiFrameRange& b) { return a.first < b.first; });
    at = _ranges.insert(at, range);
    // Join it with the ranges it overlaps or touches, before and after.
    if (at != _ranges.begin() && std::prev(at)->last >= at->first - 1) {
        std::prev(at)->last = std::max(std::prev(at)->last, at->last);
        at = std::prev(_ranges.erase(at));
    }
    while (std::next(at) != _ranges.end() &&
           std::next(at)->first <= static_cast<long long>(at->last) + 1) {
        at->last = std::max(at->last, std::next(at)->last);
        _ranges.erase(std::next(at));
    }
}

void FrameList::add(const FrameList& other) {
    for (const PiFrameRange& r : other._ranges) {
        add(r);
    }
}

int FrameList::count() const {
    int n = 0;
    for (const PiFrameRange& r : _ranges) {
        n += r.count();
    }
    return n;
}

std::vector<int> FrameList::frames() const {
    std::vector<int> out;
    for (const PiFrameRange& r : _ranges) {
        for (int f = r.first; f <= r.last; ++f) {
            out.push_back(f);
        }
    }
    return out;
}

std::string FrameList::toString() const {
    std::string text;
    for (const PiFrameRange& r : _ranges) {
        text += (text.empty() ? "" : ",") + rangeText(r);
    }
    return text;
}

std::vector<PiFrameRange> FrameList::chunks(int size) const {
    std::vector<PiFrameRange> out;
    for (const PiFrameRange& r : _ranges) {
        for (int f = r.first; f <= r.last; f += size) {
            // Differences only: near the largest int, f + size would overflow.
            if (r.last - f < size) {
                out.push_back({f, r.last, false});
                break;
            }
            out.push_back({f, f + (size - 1), false});
        }
    }
    return out;
}
