#include <tesseraCore/io/tsClip.h>

#include <tesseraCore/io/tsFrameCache.h>

#include <algorithm>
#include <atomic>

namespace {

std::uint64_t nextClipId() {
    static std::atomic<std::uint64_t> next{1};
    return next++;
}

} // namespace

TsClip::TsClip(std::string name, PiFrameRange range, int width, int height, Maker make)
    : _id(nextClipId())
    , _name(std::move(name))
    , _range(range)
    , _width(width)
    , _height(height)
    , _make(std::move(make)) {}

TsClip::~TsClip() {
    TsFrameCache::getInstance().forget(_id);
}

int TsClip::clampFrame(int frame) const {
    return _range.unbounded ? frame : std::clamp(frame, _range.first, _range.last);
}

PiImagePtr TsClip::getImageAt(double time, std::string* error) const {
    return TsFrameCache::getInstance().get(_id, clampFrame(frameOf(time)), _make, error);
}

PiImagePtr TsClip::getReducedAt(double time, int factor) const {
    _viewFactor = std::max(factor, 1);
    return TsFrameCache::getInstance().getReduced(_id, clampFrame(frameOf(time)), factor, _make,
                                                  nullptr);
}

PiImagePtr TsClip::readFrame(int frame, std::string* error) const {
    std::string why;
    PiImagePtr image = _make(clampFrame(frame), why);
    if (!image && error) {
        *error = why;
    }
    return image;
}

void TsClip::readAhead(int frame, int count) const {
    std::vector<int> frames;
    for (int i = 1; i <= count; ++i) {
        int f = frame + i;
        if (!_range.unbounded && _range.count() > 0) {
            f = _range.first +
                ((f - _range.first) % _range.count() + _range.count()) % _range.count();
        }
        if (std::find(frames.begin(), frames.end(), f) == frames.end() && f != frame) {
            frames.push_back(f);
        }
    }
    TsFrameCache::getInstance().readAhead(_id, std::move(frames), _make, _viewFactor);
}

std::vector<int> TsClip::getCachedFrames() const {
    return TsFrameCache::getInstance().getFrames(_id);
}
