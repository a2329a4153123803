#pragma once

#include <pluginAPI/piClip.h>

#include <string>
#include <vector>

// The frames of a farm render, as a wrangler writes them: a range
// ("1001-1100"), a frame ("1005"), or several of either separated by commas
// ("1005,1017-1018"). Kept as ranges in order, overlapping and touching ones
// joined, so that a list is written back the same whatever order it was
// given in.
class FrameList {
public:
    // False, with `error` naming the part that is wrong, for anything else.
    static bool parse(const std::string& text, FrameList& out, std::string& error);
    // The frames given, in any order, as ranges.
    static FrameList of(std::vector<int> frames);

    const std::vector<PiFrameRange>& getRanges() const { return _ranges; }
    bool empty() const { return _ranges.empty(); }
    int count() const;
    int first() const { return _ranges.front().first; }
    int last() const { return _ranges.back().last; }
    std::vector<int> frames() const;
    void add(const FrameList& other);

    // "1005,1017-1018"
    std::string toString() const;
    // The ranges cut into runs of at most `size` frames: a farm task each.
    std::vector<PiFrameRange> chunks(int size) const;

private:
    void add(PiFrameRange range);

    std::vector<PiFrameRange> _ranges;
};
