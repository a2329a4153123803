#include <tesseraCore/render/tsShotRender.h>

#include <tesseraCore/io/tsClip.h>
#include <tesseraCore/io/tsPlateIO.h>
#include <tesseraCore/io/tsSequence.h>
#include <tesseraCore/render/tsViewRender.h>
#include <tesseraCore/tsKeyerNode.h>

#include <oneapi/tbb/info.h>
#include <oneapi/tbb/parallel_pipeline.h>

#include <chrono>
#include <filesystem>
#include <mutex>
#include <set>

namespace {

PiImagePtr frameOf(const RCShdPtr<PiInput>& input, int frame, std::string& error) {
    const PiClipPtr clip = input ? input->getTypedValue<PiClipPtr>(0.0) : PiClipPtr();
    if (!clip) {
        return PiImagePtr();
    }
    // Clips of files are read afresh: a render must not fill the cache.
    if (const auto* own = dynamic_cast<const TsClip*>(clip.get())) {
        return own->readFrame(frame, &error);
    }
    return clip->getImageAt(frame, &error);
}

// One frame through the pipeline (trivial, as the pipeline's tokens must be).
struct Work {
    int frame;
    bool skip; // already complete (resume)
    bool done; // every output written
};

} // namespace

std::string TsShotRender::framePath(const std::string& pattern, int frame) {
    TsSequence sequence;
    std::string error;
    return TsSequence::parse(pattern, sequence, error) ? sequence.pathOf(frame) : pattern;
}

bool TsShotRender::isComplete(const std::string& path, int width, int height) {
    int w = 0;
    int h = 0;
    std::string error;
    return TsPlateIO::probe(path, w, h, error) && w == width && h == height;
}

TsShotRender::Result TsShotRender::run(const TsKeyerNode& node, const std::vector<Output>& outputs,
                                       const Options& options) {
    Result result;
    const PiFrameRange range = options.frames;
    if (range.unbounded || range.count() <= 0) {
        result.error = "no frames to render";
        return result;
    }
    const PiClipPtr plate = node.getImageInput()->getTypedValue<PiClipPtr>(0.0);
    if (!plate) {
        result.error = "there is no plate to key";
        return result;
    }
    const int width = plate->getClipWidth();
    const int height = plate->getClipHeight();

    const auto start = std::chrono::steady_clock::now();
    std::mutex failureMutex;
    std::set<int> unfinished;
    for (int f = range.first; f <= range.last; ++f) {
        unfinished.insert(f);
    }
    bool failed = false;
    auto fail = [&](const std::string& why) {
        const std::lock_guard lock(failureMutex);
        if (!failed) {
            failed = true;
            result.error = why;
        }
    };

    int next = range.first;
    const int inFlight = options.inFlight > 0
                             ? options.inFlight
                             : 2 * std::max(1, oneapi::tbb::info::default_concurrency());
    Progress progress;
    progress.total = range.count();

    oneapi::tbb::parallel_pipeline(
        static_cast<std::size_t>(inFlight),
        oneapi::tbb::make_filter<void, Work>(
            oneapi::tbb::filter_mode::serial_in_order,
            [&](oneapi::tbb::flow_control& control) -> Work {
                const bool stopping = options.stop && options.stop->load();
                if (next > range.last || stopping || failed) {
                    result.interrupted = stopping && next <= range.last;
                    control.stop();
                    return Work{0, true, false};
                }
                Work work{next++, false, false};
                if (options.resume) {
                    work.skip = true;
                    for (const Output& out : outputs) {
                        work.skip = work.skip &&
                                    isComplete(framePath(out.pattern, work.frame), width, height);
                    }
                }
                return work;
            }) &
            oneapi::tbb::make_filter<Work, Work>(
                oneapi::tbb::filter_mode::parallel,
                [&](Work work) -> Work {
                    if (work.skip || failed) {
                        return work;
                    }
                    std::string error;
                    const PiImagePtr image = frameOf(node.getImageInput(), work.frame, error);
                    if (!image) {
                        fail("frame " + std::to_string(work.frame) + ": " +
                             (error.empty() ? "there is no plate" : error));
                        return work;
                    }
                    const PiImagePtr background =
                        frameOf(node.getBackgroundInput(), work.frame, error);
                    if (!error.empty()) {
                        fail("frame " + std::to_string(work.frame) + ": " + error);
                        return work;
                    }
                    const TsKeyerSettings settings = node.getSettings(work.frame);
                    PiImage keyed;
                    for (const Output& out : outputs) {
                        TsKeyerPass::run(*image, background.get(), settings, out.mode, keyed);
                        const std::string path = framePath(out.pattern, work.frame);
                        if (!TsViewRender::write(keyed, out.mode, path, error, out.colourSpace)) {
                            fail("frame " + std::to_string(work.frame) + ": " + error);
                            return work;
                        }
                    }
                    work.done = true;
                    return work;
                }) &
            oneapi::tbb::make_filter<Work, void>(
                oneapi::tbb::filter_mode::serial_out_of_order, [&](Work work) {
                    if (!work.skip && !work.done) {
                        return; // failed, or not started after a failure
                    }
                    unfinished.erase(work.frame);
                    ++(work.skip ? progress.skipped : progress.done);
                    progress.seconds =
                        std::chrono::duration<double>(std::chrono::steady_clock::now() - start)
                            .count();
                    if (options.progress) {
                        options.progress(progress);
                    }
                }));

    result.written = progress.done;
    result.skipped = progress.skipped;
    result.unfinished.assign(unfinished.begin(), unfinished.end());
    result.ok = !failed && result.unfinished.empty();
    return result;
}
