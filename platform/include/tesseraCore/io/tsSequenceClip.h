#pragma once

#include <tesseraCore/io/tsClip.h>
#include <tesseraCore/io/tsSequence.h>
#include <tesseraCore/tesseraCoreExport.h>

#include <base/rcShdPtr.h>

#include <string>

// What a sequence does with a frame of its range that has no file:
//   Refuse  the sequence does not open (the default: a gap is usually a
//           render that has not finished, and keying over it loses work);
//   Hold    the nearest earlier frame is shown (the next one before the
//           first frame of a gap at the start);
//   Black   a transparent black frame of the sequence's size.
enum class TsMissingFrames { Refuse, Hold, Black };

// How a sequence is opened: its range ("" to find it on disk, or
// "FIRST-LAST") and what it does with the frames of the range that have no
// file.
struct TS_CORE_API TsSequenceOptions {
    std::string range;
    TsMissingFrames missing = TsMissingFrames::Refuse;
};

// A plate that is an image sequence (TsSequence): each frame read from its
// file through TsPlateIO, into the working space from the colour space given
// ("" for each file's own: the configuration's file rules, else its header).
// Opening checks the whole range: every frame that has a file has the size of
// the first (the files' headers are read), and missing frames are refused
// unless the policy fills them.
class TsSequenceClip : public TsClip {
public:
    // Null, with `error` naming the frame and the file, for a sequence that
    // cannot be opened. `used`, when given, receives the colour space of the
    // first frame's file.
    TS_CORE_API static RCShdPtr<TsSequenceClip>
    open(const std::string& pattern, const TsSequenceOptions& options,
         const std::string& colourSpace, std::string& error, std::string* used = nullptr);

    // "refuse", "hold", "black".
    TS_CORE_API static bool parseMissing(const std::string& word, TsMissingFrames& missing);

    const TsSequence& getSequence() const { return _sequence; }

private:
    TS_CORE_API TsSequenceClip(const TsSequence& sequence, int width, int height, Maker make);

    TsSequence _sequence;
};
