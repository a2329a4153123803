#include <tesseraCore/demo/tsDemoShot.h>

#include <algorithm>

TsDemoShot::TsDemoShot(const TsDemoPlate::Options& options, int frames)
    : _options(options)
    , _frames(std::max(frames, 0)) {
    _options.frame = 0;
}

TsDemoShot::TsDemoShot(std::shared_ptr<const TsDemoPlate> still)
    : _options(still->getOptions())
    , _frames(0) {
    _kept.emplace_back(1, std::move(still));
}

std::shared_ptr<const TsDemoPlate> TsDemoShot::plateAt(int frame) const {
    frame = _frames == 0 ? 1 : std::clamp(frame, 1, _frames);
    const std::lock_guard<std::mutex> lock(_mutex);
    const auto it = std::find_if(_kept.begin(), _kept.end(),
                                 [frame](const auto& kept) { return kept.first == frame; });
    if (it != _kept.end()) {
        auto kept = *it;
        _kept.erase(it);
        _kept.push_back(kept);
        return kept.second;
    }
    TsDemoPlate::Options options = _options;
    options.frame = frame - 1;
    auto plate = std::make_shared<const TsDemoPlate>(options);
    if (_kept.size() >= KeptFrames) {
        _kept.erase(_kept.begin());
    }
    _kept.emplace_back(frame, plate);
    return plate;
}

PiImagePtr TsDemoShot::getImageAt(double time, std::string*) const {
    return plateAt(frameOf(time))->getPlate();
}

PiFrameRange TsDemoShot::getFrameRange() const {
    return _frames == 0 ? PiFrameRange() : PiFrameRange{1, _frames, false};
}
