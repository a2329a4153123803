#pragma once

#include <pluginAPI/piClip.h>
#include <tesseraCore/tesseraCoreExport.h>

#include <string>
#include <vector>

// A numbered image sequence: files that differ only in a frame number, named
// by a pattern in which the frame number's place is written
//   name.####.exr    one # per digit (#### is 0001, 0002, ... 10000)
//   name.@@@@.exr    the same with @
//   name.%04d.exr    printf style: %d for no padding, %0Nd for N digits
// Frame numbers wider than the padding are written in full. Negative frames
// are not part of sequences.
//
// The range is given (FIRST-LAST, as in "1001-1100") or found on disk: the
// files in the pattern's directory that match it, from the lowest frame to
// the highest. Frames of the range that have no file are the sequence's
// missing frames.
class TS_CORE_API TsSequence {
public:
    // Whether a file name is a pattern (holds a frame number's place).
    static bool isPattern(const std::string& name);

    // Parses a pattern without looking at the disk (its range stays
    // unbounded): enough to name the files of frames to write.
    static bool parse(const std::string& pattern, TsSequence& out, std::string& error);
    // Parses a pattern and finds its frames. `range` is "" (found on disk) or
    // "FIRST-LAST". False, with `error` naming the pattern and what is wrong,
    // for a name that is no pattern, a bad range, or a pattern that matches
    // no file.
    static bool open(const std::string& pattern, const std::string& range, TsSequence& out,
                     std::string& error);

    // A range as written: "1001-1100" (or a single frame, "1001"); false for
    // anything else, or a last frame before the first.
    static bool parseRange(const std::string& text, PiFrameRange& range);

    const std::string& getPattern() const { return _pattern; }
    const PiFrameRange& getRange() const { return _range; }
    // The file of a frame (whether it exists or not).
    std::string pathOf(int frame) const;
    // Frames of the range without a file, in order.
    const std::vector<int>& getMissing() const { return _missing; }
    bool isMissing(int frame) const;

private:
    std::string _pattern;
    std::string _directory; // "" for the current one
    std::string _prefix;    // the file name before the number
    std::string _suffix;    // and after it
    int _padding = 0;
    PiFrameRange _range;
    std::vector<int> _missing;
};
