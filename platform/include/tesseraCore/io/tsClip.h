#pragma once

#include <pluginAPI/piClip.h>
#include <pluginAPI/piImage.h>
#include <tesseraCore/tesseraCoreExport.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

// What the keyer's clips share: frames made on demand (read from files,
// generated) and kept in the frame cache (TsFrameCache) for viewing, or made
// afresh for a batch render, which must not fill the cache. A time outside
// the range shows the nearest frame of it (the first before, the last
// after).
class TS_CORE_API TsClip : public PiClip {
public:
    ~TsClip() override;

    // The name in messages and listings: a pattern, a file, "demo".
    const std::string& getName() const { return _name; }

    // --- PiClip: frames through the cache
    PiImagePtr getImageAt(double time, std::string* error = nullptr) const override;
    PiFrameRange getFrameRange() const override { return _range; }
    int getClipWidth() const override { return _width; }
    int getClipHeight() const override { return _height; }
    // Kept in the cache beside the frame; the factor asked last is the one
    // frames read ahead come with.
    PiImagePtr getReducedAt(double time, int factor) const override;

    // The frame made afresh, without the cache; empty (and `error`) when it
    // cannot be made.
    PiImagePtr readFrame(int frame, std::string* error = nullptr) const;
    // The frame the clip shows for a frame number (clamped to the range).
    int clampFrame(int frame) const;

    // Reads `count` frames from `frame` on into the cache in the background
    // (wrapping round the range, as a player does).
    void readAhead(int frame, int count) const;
    // The frames held in the cache now.
    std::vector<int> getCachedFrames() const;

protected:
    // A frame maker may run on any thread; it must not refer to the clip
    // itself, which may be gone by the time a read ahead runs.
    using Maker = std::function<PiImagePtr(int frame, std::string& error)>;
    TsClip(std::string name, PiFrameRange range, int width, int height, Maker make);

private:
    std::uint64_t _id;
    std::string _name;
    PiFrameRange _range;
    int _width;
    int _height;
    Maker _make;
    mutable std::atomic<int> _viewFactor{1};
};
