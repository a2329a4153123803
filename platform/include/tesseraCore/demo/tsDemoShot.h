#pragma once

#include <tesseraCore/demo/tsDemoPlate.h>
#include <tesseraCore/tesseraCoreExport.h>

#include <pluginAPI/piClip.h>

#include <memory>
#include <mutex>
#include <utility>
#include <vector>

// The demo plate over time: a shot of frames 1 to N in which the subject
// sways from side to side and the screen's light drifts (TsDemoPlate::Options
// ::frame), each frame with its own grain and its own ground truth. A still
// (N = 0) is the one plate at every frame. Frames are made when asked for and
// the last few kept; the same options give the same frames, bit for bit, in
// any order. Frame 1 of a shot is the still of the same options.
class TS_CORE_API TsDemoShot : public PiClip {
public:
    TsDemoShot(const TsDemoPlate::Options& options, int frames);
    // The still of a plate already made.
    explicit TsDemoShot(std::shared_ptr<const TsDemoPlate> still);

    bool isStill() const { return _frames == 0; }
    int getFrameCount() const { return _frames; }
    const TsDemoPlate::Options& getOptions() const { return _options; }

    // The plate with its truth at `frame` (clamped to the shot's range).
    std::shared_ptr<const TsDemoPlate> plateAt(int frame) const;

    PiImagePtr getImageAt(double time, std::string* error = nullptr) const override;
    PiFrameRange getFrameRange() const override;
    int getClipWidth() const override { return _options.width; }
    int getClipHeight() const override { return _options.height; }

private:
    static constexpr std::size_t KeptFrames = 3;

    TsDemoPlate::Options _options;
    int _frames;
    mutable std::mutex _mutex;
    // The frames made last, the most recent last.
    mutable std::vector<std::pair<int, std::shared_ptr<const TsDemoPlate>>> _kept;
};
