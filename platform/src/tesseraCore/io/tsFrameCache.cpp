#include <tesseraCore/io/tsFrameCache.h>

#include <tesseraCore/img/tsKeyerPass.h>

#include <cstdlib>

namespace {

std::size_t bytesOf(const PiImagePtr& image) {
    return image ? image->getPixelCount() * 4 * sizeof(float) : 0;
}

std::size_t defaultBudget() {
    std::size_t megabytes = 2048;
    if (const char* env = std::getenv("TESSERA_FRAME_CACHE_MB")) {
        char* end = nullptr;
        const unsigned long long value = std::strtoull(env, &end, 10);
        if (end != env && *end == '\0') {
            megabytes = static_cast<std::size_t>(value);
        }
    }
    return megabytes << 20;
}

} // namespace

TsFrameCache& TsFrameCache::getInstance() {
    static TsFrameCache cache;
    return cache;
}

TsFrameCache::TsFrameCache()
    : _budget(defaultBudget())
    , _reader([this] { readAheadLoop(); }) {}

TsFrameCache::~TsFrameCache() {
    {
        const std::lock_guard lock(_mutex);
        _stopping = true;
    }
    _work.notify_all();
    _reader.join();
}

void TsFrameCache::setBudget(std::size_t bytes) {
    std::unique_lock lock(_mutex);
    _budget = bytes;
    evict(lock);
}

std::size_t TsFrameCache::getBudget() const {
    const std::lock_guard lock(_mutex);
    return _budget;
}

std::size_t TsFrameCache::getUsed() const {
    const std::lock_guard lock(_mutex);
    return _used;
}

void TsFrameCache::touch(std::list<Entry>::iterator it) {
    _entries.splice(_entries.begin(), _entries, it);
}

void TsFrameCache::evict(std::unique_lock<std::mutex>&) {
    while (_used > _budget && !_entries.empty()) {
        const Entry& last = _entries.back();
        _used -= last.bytes;
        _index.erase(last.key);
        _entries.pop_back();
    }
}

void TsFrameCache::insert(const Key& key, const PiImagePtr& image, const PiImagePtr& reduced,
                          int factor, std::unique_lock<std::mutex>& lock) {
    const std::size_t bytes = bytesOf(image) + bytesOf(reduced);
    if (bytes > _budget || _index.count(key)) {
        return;
    }
    _entries.push_front(Entry{key, image, bytes, reduced, factor});
    _index[key] = _entries.begin();
    _used += bytes;
    evict(lock);
}

PiImagePtr TsFrameCache::get(std::uint64_t clip, int frame, const Loader& load,
                             std::string* error) {
    const Key key{clip, frame};
    std::unique_lock lock(_mutex);
    _loaded.wait(lock, [&] { return !_loading.count(key); });
    if (const auto it = _index.find(key); it != _index.end()) {
        touch(it->second);
        return it->second->image;
    }
    _loading.insert(key);
    lock.unlock();
    std::string why;
    PiImagePtr image;
    try {
        image = load(frame, why);
    } catch (...) {
        lock.lock();
        _loading.erase(key);
        _loaded.notify_all();
        throw;
    }
    lock.lock();
    _loading.erase(key);
    if (image) {
        insert(key, image, PiImagePtr(), 1, lock);
    } else if (error) {
        *error = why;
    }
    _loaded.notify_all();
    return image;
}

PiImagePtr TsFrameCache::getReduced(std::uint64_t clip, int frame, int factor, const Loader& load,
                                    std::string* error) {
    const PiImagePtr image = get(clip, frame, load, error);
    if (!image || factor <= 1) {
        return image;
    }
    const Key key{clip, frame};
    {
        const std::lock_guard lock(_mutex);
        if (const auto it = _index.find(key); it != _index.end() && it->second->factor == factor &&
                                              it->second->image.get() == image.get()) {
            return it->second->reduced;
        }
    }
    PiImagePtr reduced = TsKeyerPass::reduce(*image, factor);
    std::unique_lock lock(_mutex);
    if (const auto it = _index.find(key);
        it != _index.end() && it->second->image.get() == image.get()) {
        Entry& entry = *it->second;
        _used += bytesOf(reduced) - bytesOf(entry.reduced);
        entry.bytes += bytesOf(reduced) - bytesOf(entry.reduced);
        entry.reduced = reduced;
        entry.factor = factor;
        evict(lock);
    }
    return reduced;
}

bool TsFrameCache::contains(std::uint64_t clip, int frame) const {
    const std::lock_guard lock(_mutex);
    return _index.count({clip, frame}) != 0;
}

std::vector<int> TsFrameCache::getFrames(std::uint64_t clip) const {
    const std::lock_guard lock(_mutex);
    std::vector<int> frames;
    for (auto it = _index.lower_bound({clip, INT32_MIN});
         it != _index.end() && it->first.first == clip; ++it) {
        frames.push_back(it->first.second);
    }
    return frames;
}

void TsFrameCache::readAhead(std::uint64_t clip, std::vector<int> frames, Loader load, int factor) {
    {
        const std::lock_guard lock(_mutex);
        _aheadFactor = factor;
        _aheadClip = clip;
        _aheadFrames = std::move(frames);
        _aheadLoad = std::move(load);
    }
    _work.notify_all();
}

void TsFrameCache::forget(std::uint64_t clip) {
    std::unique_lock lock(_mutex);
    if (_aheadClip == clip) {
        _aheadFrames.clear();
        _aheadLoad = Loader();
    }
    _idle.wait(lock, [&] { return !_aheadBusy || _aheadClip != clip; });
    for (auto it = _entries.begin(); it != _entries.end();) {
        if (it->key.first == clip) {
            _used -= it->bytes;
            _index.erase(it->key);
            it = _entries.erase(it);
        } else {
            ++it;
        }
    }
}

void TsFrameCache::waitForReadAhead() {
    std::unique_lock lock(_mutex);
    _idle.wait(lock, [&] { return _aheadFrames.empty() && !_aheadBusy; });
}

void TsFrameCache::readAheadLoop() {
    std::unique_lock lock(_mutex);
    while (true) {
        _work.wait(lock, [&] { return _stopping || !_aheadFrames.empty(); });
        if (_stopping) {
            return;
        }
        const std::uint64_t clip = _aheadClip;
        const int frame = _aheadFrames.front();
        _aheadFrames.erase(_aheadFrames.begin());
        const Key key{clip, frame};
        // Only what fits beside what is there: reading ahead never pushes a
        // frame out.
        const bool fits = _entries.empty() || _used + _entries.front().bytes <= _budget;
        if (_index.count(key) || _loading.count(key) || !fits) {
            if (!fits) {
                _aheadFrames.clear();
            }
            if (_aheadFrames.empty()) {
                _idle.notify_all();
            }
            continue;
        }
        Loader load = _aheadLoad;
        const int factor = _aheadFactor;
        _aheadBusy = true;
        _loading.insert(key);
        lock.unlock();
        std::string error;
        PiImagePtr image;
        PiImagePtr reduced;
        try {
            image = load(frame, error);
            if (image && factor > 1) {
                reduced = TsKeyerPass::reduce(*image, factor);
            }
        } catch (...) {
            image.reset();
        }
        load = Loader();
        lock.lock();
        _loading.erase(key);
        if (image) {
            insert(key, image, reduced, reduced ? factor : 1, lock);
        }
        _aheadBusy = false;
        _loaded.notify_all();
        _idle.notify_all();
    }
}
