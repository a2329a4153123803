#pragma once

#include <pluginAPI/piImage.h>
#include <tesseraCore/tesseraCoreExport.h>

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

// The frames of clips read so far, within a memory budget: what makes
// scrubbing and playing a shot fast. Frames used least recently leave first
// when the budget is reached. One cache serves every clip of the process;
// entries are keyed by the clip's identity and the frame.
//
// Reading ahead: a background thread of the cache's own reads the frames a
// viewer will ask for next (the frames after the current one while playing).
// A newer request replaces what an older one has not read yet, and nothing is
// read ahead that would push out frames read for the current request.
//
// The budget: $TESSERA_FRAME_CACHE_MB megabytes when set, else 2048 MB (about
// 15 UHD frames of float RGBA, 60 HD frames). Safe to use from any thread.
class TS_CORE_API TsFrameCache {
public:
    using Loader = std::function<PiImagePtr(int frame, std::string& error)>;

    static TsFrameCache& getInstance();
    ~TsFrameCache();
    TsFrameCache(const TsFrameCache&) = delete;
    TsFrameCache& operator=(const TsFrameCache&) = delete;

    void setBudget(std::size_t bytes);
    std::size_t getBudget() const;
    std::size_t getUsed() const;

    // The frame from the cache, or loaded and kept. A frame that another
    // thread is loading is waited for, not loaded twice. Empty when the
    // loader fails (`error`, when given, says why); failures are not kept.
    PiImagePtr get(std::uint64_t clip, int frame, const Loader& load, std::string* error);
    // The frame reduced by `factor` for a viewer (TsKeyerPass::reduce), kept
    // beside the frame and counted in the budget; one factor per frame.
    PiImagePtr getReduced(std::uint64_t clip, int frame, int factor, const Loader& load,
                          std::string* error);
    bool contains(std::uint64_t clip, int frame) const;
    // The frames of a clip held now, in order.
    std::vector<int> getFrames(std::uint64_t clip) const;

    // Reads the frames in the background, in order, as far as they fit, each
    // with its copy reduced by `factor` when that is above 1.
    void readAhead(std::uint64_t clip, std::vector<int> frames, Loader load, int factor = 1);
    // Stops reading ahead and lets the clip's frames go (a clip that goes).
    void forget(std::uint64_t clip);
    // Waits until the reading ahead asked for so far is done (tests).
    void waitForReadAhead();

private:
    TsFrameCache();

    using Key = std::pair<std::uint64_t, int>;
    struct Entry {
        Key key;
        PiImagePtr image;
        std::size_t bytes = 0; // with the reduced copy
        PiImagePtr reduced;
        int factor = 1;
    };

    void insert(const Key& key, const PiImagePtr& image, const PiImagePtr& reduced, int factor,
                std::unique_lock<std::mutex>& lock);
    void touch(std::list<Entry>::iterator it);
    void evict(std::unique_lock<std::mutex>& lock);
    void readAheadLoop();

    mutable std::mutex _mutex;
    std::condition_variable _loaded;
    std::list<Entry> _entries; // most recently used first
    std::map<Key, std::list<Entry>::iterator> _index;
    std::set<Key> _loading;
    std::size_t _budget;
    std::size_t _used = 0;

    // Reading ahead.
    std::condition_variable _work;
    std::condition_variable _idle;
    std::uint64_t _aheadClip = 0;
    std::vector<int> _aheadFrames;
    Loader _aheadLoad;
    int _aheadFactor = 1;
    bool _aheadBusy = false;
    bool _stopping = false;
    std::thread _reader;
};
