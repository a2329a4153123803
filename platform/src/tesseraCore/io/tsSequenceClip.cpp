#include <tesseraCore/io/tsSequenceClip.h>

#include <tesseraCore/io/tsPlateIO.h>

namespace {

std::string sizeText(int width, int height) {
    return std::to_string(width) + "x" + std::to_string(height);
}

} // namespace

bool TsSequenceClip::parseMissing(const std::string& word, TsMissingFrames& missing) {
    if (word == "refuse") {
        missing = TsMissingFrames::Refuse;
    } else if (word == "hold") {
        missing = TsMissingFrames::Hold;
    } else if (word == "black") {
        missing = TsMissingFrames::Black;
    } else {
        return false;
    }
    return true;
}

TsSequenceClip::TsSequenceClip(const TsSequence& sequence, int width, int height, Maker make)
    : TsClip(sequence.getPattern(), sequence.getRange(), width, height, std::move(make))
    , _sequence(sequence) {}

RCShdPtr<TsSequenceClip> TsSequenceClip::open(const std::string& pattern,
                                              const TsSequenceOptions& options,
                                              const std::string& colourSpace, std::string& error,
                                              std::string* used) {
    const TsMissingFrames missing = options.missing;
    TsSequence sequence;
    if (!TsSequence::open(pattern, options.range, sequence, error)) {
        return {};
    }
    const PiFrameRange frames = sequence.getRange();
    if (missing == TsMissingFrames::Refuse && !sequence.getMissing().empty()) {
        const int frame = sequence.getMissing().front();
        const std::size_t count = sequence.getMissing().size();
        error = "frame " + std::to_string(frame) + " of \"" + pattern + "\" is missing (" +
                sequence.pathOf(frame) + ")" +
                (count > 1 ? ", and " + std::to_string(count - 1) + " more" : "") +
                "; fill gaps with --missing hold or black, or `plate ... missing hold`";
        return {};
    }
    int width = 0;
    int height = 0;
    int first = -1;
    for (int f = frames.first; f <= frames.last; ++f) {
        if (sequence.isMissing(f)) {
            continue;
        }
        int w = 0;
        int h = 0;
        if (!TsPlateIO::probe(sequence.pathOf(f), w, h, error, colourSpace,
                              first < 0 ? used : nullptr)) {
            error = "frame " + std::to_string(f) + ": " + error;
            return {};
        }
        if (first < 0) {
            width = w;
            height = h;
            first = f;
        } else if (w != width || h != height) {
            error = "frame " + std::to_string(f) + " of \"" + pattern + "\" (" +
                    sequence.pathOf(f) + ") is " + sizeText(w, h) + ", but frame " +
                    std::to_string(first) + " is " + sizeText(width, height) +
                    ": the frames of a sequence have one size";
            return {};
        }
    }
    // The maker holds what it needs by value: it may outlive the clip.
    Maker make = [sequence, missing, width, height, colourSpace](int frame,
                                                                 std::string& why) -> PiImagePtr {
        int f = frame;
        if (sequence.isMissing(f)) {
            if (missing == TsMissingFrames::Black) {
                return PiImagePtr(new PiImage(width, height));
            }
            while (f > sequence.getRange().first && sequence.isMissing(f)) {
                --f;
            }
            while (f < sequence.getRange().last && sequence.isMissing(f)) {
                ++f;
            }
        }
        const std::string path = sequence.pathOf(f);
        PiImagePtr image = TsPlateIO::read(path, why, colourSpace);
        if (image && (image->getWidth() != width || image->getHeight() != height)) {
            why = "frame " + std::to_string(f) + " (" + path + ") is " +
                  sizeText(image->getWidth(), image->getHeight()) + ", not " +
                  sizeText(width, height) + " as the sequence";
            image.reset();
        }
        return image;
    };
    return RCShdPtr<TsSequenceClip>(new TsSequenceClip(sequence, width, height, std::move(make)));
}
