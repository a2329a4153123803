#include "imageCommands.h"

#include "colourSpaceCommands.h"
#include "hostSession.h"
#include "outputWriter.h"
#include "sessionArgs.h"
#include "sessionInterpreter.h"

#include <tesseraCore/demo/tsDemoPlate.h>
#include <tesseraCore/demo/tsDemoShot.h>
#include <tesseraCore/io/tsPlateIO.h>
#include <tesseraCore/io/tsSequence.h>
#include <tesseraCore/io/tsSequenceClip.h>
#include <tesseraCore/render/tsViewRender.h>

#include <ui/uiViewer.h>

#include <cmath>
#include <optional>

namespace {

// "colorspace NAME" ("auto" for automatic) at the end of a line, when there.
std::optional<std::string> colourSpace(SessionArgs& a) {
    if (!a.take("colorspace")) {
        return std::nullopt;
    }
    const std::string name = a.word("colour space name (or auto)");
    return name == "auto" ? std::string() : name;
}

// `plate` and `background` with a file: FILE [colorspace NAME], or
// colorspace NAME alone for the file there is. A frame pattern reads a
// sequence: FILE [FIRST-LAST] [missing refuse|hold|black] [colorspace NAME].
void readSource(SessionInterpreter& in, SessionArgs& a, TsKeyerScene::Source source,
                const std::string& what) {
    HostSession& s = in.getSession();
    std::string error;
    if (a.peek() == "colorspace" && !a.peekQuoted()) {
        const std::optional<std::string> space = colourSpace(a);
        a.end();
        if (!s.setColourSpace(source, *space, error)) {
            throw SessionArgs::Error(error);
        }
        return;
    }
    const std::string file = a.word(what);
    std::optional<std::string> space;
    TsSequenceOptions sequence;
    sequence.missing = in.getMissingFrames();
    while (!a.atEnd()) {
        if (a.peek() == "colorspace" && !a.peekQuoted()) {
            space = colourSpace(a);
        } else if (TsSequence::isPattern(file) && a.take("missing")) {
            TsSequenceClip::parseMissing(a.choice("missing frames", {"refuse", "hold", "black"}),
                                         sequence.missing);
        } else if (TsSequence::isPattern(file) && sequence.range.empty()) {
            sequence.range = a.word("frame range");
        } else {
            a.end();
        }
    }
    if (!s.readSource(source, in.inputPath(file), file, space ? &*space : nullptr, error,
                      sequence)) {
        throw SessionArgs::Error(error);
    }
}

constexpr int MaxDemoFrames = 10000;

// The demo plate's options after its size, in any order: seed N, grain G,
// uneven U, spill S (multipliers from 0 to 10), subject NAME, frames N (a
// shot of N frames; a still without).
void takeDemoOptions(SessionArgs& a, TsDemoPlate::Options& options, int& frames) {
    auto multiplier = [&a](const std::string& what) {
        const double v = a.number(what);
        if (!(v >= 0.0 && v <= 10.0)) {
            throw SessionArgs::Error("the demo plate's " + what + " is a multiplier from 0 to 10");
        }
        return v;
    };
    while (!a.atEnd()) {
        const std::string option = a.choice(
            "demo plate option", {"seed", "grain", "uneven", "spill", "subject", "frames"});
        if (option == "seed") {
            const int seed = a.integer("seed");
            if (seed < 0) {
                throw SessionArgs::Error("a seed is 0 or more");
            }
            options.seed = static_cast<std::uint64_t>(seed);
        } else if (option == "frames") {
            frames = a.integer("frames");
            if (frames < 1 || frames > MaxDemoFrames) {
                throw SessionArgs::Error("a demo shot has 1 to " + std::to_string(MaxDemoFrames) +
                                         " frames");
            }
        } else if (option == "grain") {
            options.grain = multiplier("grain");
        } else if (option == "uneven") {
            options.uneven = multiplier("uneven");
        } else if (option == "spill") {
            options.spill = multiplier("spill");
        } else {
            const std::string name = a.choice("subject", TsDemoPlate::getSubjectNames());
            TsDemoPlate::parseSubject(name, options.subject);
        }
    }
}

} // namespace

void ImageCommands::add(SessionInterpreter& interpreter, OutputWriter& writer) {
    SessionInterpreter& in = interpreter;
    HostSession& s = interpreter.getSession();

    in.addCommand("plate", [&in, &s](SessionArgs& a) {
        if (a.take("demo")) {
            TsDemoPlate::Options options;
            double size = 0.0;
            if (SessionArgs::parseNumber(a.peek(), size)) {
                options.width = a.integer("plate width");
                options.height = a.integer("plate height");
                if (options.width < 64 || options.height < 64 || options.width > 8192 ||
                    options.height > 8192) {
                    throw SessionArgs::Error("a demo plate is 64 to 8192 pixels each way");
                }
            }
            int frames = 0;
            takeDemoOptions(a, options, frames);
            a.end();
            s.setDemoShot(rcMake<TsDemoShot>(options, frames));
            return;
        }
        readSource(in, a, TsKeyerScene::Source::Plate, "plate file (or demo)");
    });
    in.addCommand("background", [&in, &s](SessionArgs& a) {
        if (a.take("none")) {
            a.end();
            s.setBackground(PiImagePtr(), "");
            return;
        }
        if (a.take("demo")) {
            a.end();
            if (!s.getDemo()) {
                throw SessionArgs::Error("the demo background goes with the demo plate "
                                         "(plate demo first)");
            }
            s.setBackground(s.getDemo()->getBackground(), "demo");
            return;
        }
        readSource(in, a, TsKeyerScene::Source::Background, "background file (demo or none)");
    });
    in.addCommand("view", [&s](SessionArgs& a) {
        const std::string name = a.choice("view mode", TsViewRender::getViewNames());
        a.end();
        if (!s.getViewer().setViewMode(name)) {
            throw SessionArgs::Error("the viewer's node has no view \"" + name + "\"");
        }
    });
    in.addCommand("write", [&in, &writer](SessionArgs& a) {
        if (a.take("colorspace")) {
            ColourSpaceCommands::write(in, a, writer);
            return;
        }
        const std::string kind = a.choice("output", OutputWriter::getKinds());
        const std::string path = in.outputPath(a.word("output file"));
        const std::string space = colourSpace(a).value_or("");
        a.end();
        std::string error;
        if (!writer.write(kind, path, error, space)) {
            throw SessionArgs::Error(error);
        }
    });

    // render [FIRST-LAST] [resume]: the frame-pattern writes so far, over the
    // range (the plate's by default); they are done with then.
    in.addCommand("render", [&writer](SessionArgs& a) {
        TsShotRender::Options options;
        while (!a.atEnd()) {
            if (a.take("resume")) {
                options.resume = true;
            } else {
                const std::string text = a.word("frame range");
                if (!TsSequence::parseRange(text, options.frames)) {
                    throw SessionArgs::Error("bad frame range \"" + text +
                                             "\" (expected FIRST-LAST, as in 1001-1100)");
                }
            }
        }
        if (writer.getShotOutputs().empty()) {
            throw SessionArgs::Error(
                "nothing to render: no output is written to a frame pattern (NAME.####.exr)");
        }
        const TsShotRender::Result result = writer.renderShot(options);
        if (!result.ok) {
            throw SessionArgs::Error(result.error);
        }
        writer.clearShotOutputs();
    });

    SessionProbe& probe = interpreter.getProbe();
    probe.addQuery("plate", [&s, &probe](SessionArgs&) {
        const PiClipPtr& plate = s.getPlate();
        return plate ? s.getPlateName() + " " + probe.format(PiValue(plate)) : "none";
    });
    probe.addQuery("background", [&s, &probe](SessionArgs&) {
        const PiClipPtr& background = s.getBackground();
        return background ? s.getBackgroundName() + " " + probe.format(PiValue(background))
                          : "none";
    });
    probe.addQuery("mode", [&s](SessionArgs&) { return s.getViewer().getViewMode(); });
    probe.addQuery("pixel", [&s](SessionArgs& a) {
        TsViewMode mode = TsViewMode::Composite;
        TsViewRender::parseView(a.choice("view mode", TsViewRender::getViewNames()), mode);
        const GePoint2<double> p = a.point("plate pixel");
        const RCShdPtr<TsKeyerNode> node = s.getShownNode();
        const PiImagePtr image =
            node ? TsViewRender::render(*node, s.getFrame(), mode) : PiImagePtr();
        if (!image) {
            throw SessionArgs::Error("there is no plate to key");
        }
        const int i = static_cast<int>(std::floor(p.x));
        const int j = static_cast<int>(std::floor(p.y));
        if (!image->contains(i, j)) {
            throw SessionArgs::Error("pixel " + std::to_string(i) + " " + std::to_string(j) +
                                     " is outside the plate");
        }
        const CoRgbaColorTyped<float> c = image->getPixel(i, j);
        return SessionArgs::format(c.r) + " " + SessionArgs::format(c.g) + " " +
               SessionArgs::format(c.b) + " " + SessionArgs::format(c.a);
    });
    probe.addQuery("score", [&s](SessionArgs& a) {
        const std::string region = a.choice("region", {"inside", "outside", "edge", "hair", "all"});
        const std::optional<TsMatteScore> score = SessionSummary::score(s);
        if (!score) {
            throw SessionArgs::Error("there is no ground truth: the plate is not the demo plate");
        }
        const double value = region == "inside"    ? score->inside
                             : region == "outside" ? score->outside
                             : region == "edge"    ? score->edge
                             : region == "hair"    ? score->hair
                                                   : score->all;
        return SessionArgs::format(value);
    });
}
