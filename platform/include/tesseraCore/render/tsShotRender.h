#pragma once

#include <tesseraCore/img/tsKeyerPass.h>
#include <tesseraCore/tesseraCoreExport.h>

#include <pluginAPI/piClip.h>

#include <atomic>
#include <functional>
#include <string>
#include <vector>

class TsKeyerNode;

// A batch render of a shot: every frame of a range keyed by one keyer node
// (its inputs read at the frame) and written to one file per output. Frames
// go through a oneTBB pipeline: taken in order, then read (plate and
// background, from their files: a render does not fill the frame cache),
// keyed and written in parallel, a few frames in flight at a time, so that
// memory does not grow with the range.
//
// Each output frame is written aside and renamed over its file, so an
// interrupted render never leaves a damaged frame; a resumed render skips the
// frames whose every output is already complete (its file opens and holds an
// image of the plate's size).
class TS_CORE_API TsShotRender {
public:
    struct Output {
        std::string kind;             // for messages: matte, comp, ...
        TsViewMode mode;              // what is written
        std::string pattern;          // the files, as a sequence pattern (name.####.exr)
        std::string colourSpace = {}; // written in ("": the file kind's default)
    };
    struct Progress {
        int done = 0;    // frames written so far (this run)
        int skipped = 0; // frames already complete (resume)
        int total = 0;   // frames of the range
        double seconds = 0.0;
    };
    struct Options {
        PiFrameRange frames;
        bool resume = false;
        // Frames in flight; 0 for twice the threads.
        int inFlight = 0;
        // Set (by a signal handler) to stop after the frames in flight.
        const std::atomic<bool>* stop = nullptr;
        // Called after every frame, on one thread at a time.
        std::function<void(const Progress&)> progress;
    };
    struct Result {
        bool ok = false;          // every frame of the range is complete
        bool interrupted = false; // stopped through Options::stop
        std::string error;        // the first failure: its frame and file
        int written = 0;
        int skipped = 0;
        // The frames that are not complete (interrupted or failed), in order.
        std::vector<int> unfinished;
    };

    static Result run(const TsKeyerNode& node, const std::vector<Output>& outputs,
                      const Options& options);

    // The file of a frame of an output pattern; the pattern itself when it
    // holds no frame number's place.
    static std::string framePath(const std::string& pattern, int frame);
    // Whether a written frame is whole: the file opens as an image of that
    // size.
    static bool isComplete(const std::string& path, int width, int height);
};
