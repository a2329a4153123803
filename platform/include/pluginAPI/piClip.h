#pragma once

#include <base/rcBase.h>
#include <base/rcShdPtr.h>
#include <pluginAPI/pluginAPIExport.h>

#include <string>

class PiImage;
using PiImagePtr = RCShdPtr<const PiImage>;

// The frames a clip holds, first to last, whole numbers. A still holds every
// frame: its range is unbounded.
struct TS_PLUGIN_API PiFrameRange {
    int first = 0;
    int last = -1;
    bool unbounded = true;

    int count() const { return unbounded ? 0 : last - first + 1; }
    bool contains(int frame) const { return unbounded || (frame >= first && frame <= last); }
    bool operator==(const PiFrameRange&) const = default;
};

// Images over time: what an image input holds. A still image is a clip of its
// own, the same image at every frame (PiImage derives from PiClip); a
// sequence answers the image of the frame a time falls on. Clips are
// immutable once made and safe to read from any thread.
class TS_PLUGIN_API PiClip : public RCBase<LkCounter<int>> {
public:
    ~PiClip() override;

    // The frame a time falls on: the nearest whole frame.
    static int frameOf(double time);

    // The image at `time`; empty when there is none (a frame that cannot be
    // read: `error`, when given, says which file and why).
    virtual PiImagePtr getImageAt(double time, std::string* error = nullptr) const = 0;
    virtual PiFrameRange getFrameRange() const { return PiFrameRange(); }
    // The size every image of the clip has (0 x 0 for an empty still).
    virtual int getClipWidth() const = 0;
    virtual int getClipHeight() const = 0;
    // The image at `time` reduced by an integer factor for viewing, when the
    // clip keeps such copies (frames read ahead come with theirs, so that
    // stepping to them costs no reduction); null when it does not.
    virtual PiImagePtr getReducedAt(double time, int factor) const;
};

using PiClipPtr = RCShdPtr<const PiClip>;
