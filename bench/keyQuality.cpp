// The keyer's quality against ground truth: generated demo plates of every
// kind (seeds, sizes, heavier grain, stronger unevenness, more spill, dark
// and light hair, white fur, a lattice and a veil, a stem near the screen's
// hue) keyed through the host as an artist would, by two sessions:
//
//   demo   the built-in demo session (apps/run/demoSession.tss: a key colour
//          picked, a slider bar dragged, a patch, degrain, spill, blend),
//          its points scaled to the plate, its checks and writes left out;
//          on the portraits only, where its actions mean what they say;
//   pick   one key-colour pick at the screen's top-left corner, nothing else.
//
// Per plate and session it prints the four errors of TsMatteScore (mean
// absolute alpha error over all, on the edges, in the hair, outside the
// subject) and three counts of what an artist sees: speckles (screen pixels
// away from the subject with alpha above 0.01), crushed (the share of pixels
// whose true alpha is between 0.2 and 0.8 that the matte puts at 0 or 1,
// within 0.01) and spill (the mean excess of the key's chroma in the
// premultiplied despilled foreground over the true one, on the edge band, in
// colour units).
//
//   bench_keyQuality [--small] [--check FILE] [--write FILE]
//
// --small runs the quick set (every kind at 384 x 216) that the test suite
// runs; --write writes the scores as a baseline; --check compares them with
// one and fails (exit status 1) when any of the four errors is worse than the
// baseline by more than Tolerance (relative) plus Slack (absolute).
#include "host/hostPackages.h"
#include "host/hostSession.h"
#include "host/imageCommands.h"
#include "host/outputWriter.h"
#include "host/sessionArgs.h"
#include "host/sessionInterpreter.h"
#include "host/sessionScript.h"
#include "host/widgetCommands.h"

#include <tesseraCore/demo/tsDemoPlate.h>
#include <tesseraCore/render/tsViewRender.h>
#include <tesseraCore/setup/tsValueText.h>
#include <tesseraUtil/tsMgUtils.h>
#include <ui/uiApplication.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr double Tolerance = 0.05;
constexpr double Slack = 1e-4;

struct Plate {
    std::string name;
    TsDemoPlate::Options options;
    bool portrait; // the demo session's actions fit it
};

struct Result {
    TsMatteScore score;
    std::size_t speckles = 0;
    double crushed = 0.0;
    double spill = 0.0;
};

std::string plateLine(const TsDemoPlate::Options& o) {
    std::ostringstream line;
    line << "plate demo " << o.width << " " << o.height << " seed " << o.seed << " grain "
         << o.grain << " uneven " << o.uneven << " spill " << o.spill << " subject "
         << TsDemoPlate::getSubjectNames()[static_cast<int>(o.subject)];
    return line.str();
}

// The demo session's line with its plate points scaled from 1280 x 720 to the
// plate (the subject scales with the height and stays centred).
std::string scaled(const SessionScript::Line& line, const TsDemoPlate::Options& o) {
    const double f = o.height / 720.0;
    std::ostringstream out;
    out << line.words[0];
    const std::string& command = line.words[0];
    const bool points = command == "click" || command == "drag" || command == "press" ||
                        command == "move" || command == "release";
    bool x = true;
    for (std::size_t k = 1; k < line.words.size(); ++k) {
        const std::string& w = line.words[k];
        double v = 0.0;
        if (points && SessionArgs::parseNumber(w, v) && line.words[k - 1] != "steps") {
            v = x ? 0.5 * o.width + (v - 640.0) * f : v * f;
            x = !x;
            out << " " << SessionArgs::format(v);
        } else {
            out << " " << TsValueText::quoteWord(w);
        }
    }
    return out.str();
}

std::string demoSession(const TsDemoPlate::Options& o) {
    const SessionScript script = SessionScript::read(TESSERA_DEMO_SESSION);
    std::string text;
    for (const SessionScript::Line& line : script.getLines()) {
        const std::string& command = line.words[0];
        if (command == "expect" || command == "write" || command == "print") {
            continue;
        }
        text += (command == "plate" ? plateLine(o) : scaled(line, o)) + "\n";
    }
    return text;
}

std::string pickSession(const TsDemoPlate::Options& o) {
    SessionScript::Line drag;
    drag.words = {"drag", "8", "712", "60", "660", "steps", "6"};
    drag.quoted.assign(drag.words.size(), false);
    return plateLine(o) + "\ntool \"Pick Key Colour 1\"\n" + scaled(drag, o) + "\n";
}

Result measure(const HostSession& session) {
    const TsDemoPlate& demo = *session.getDemo();
    const TsKeyerNode& node = *session.getShownNode();
    const PiImagePtr matte = TsViewRender::render(node, session.getFrame(), TsViewMode::Matte);
    const PiImagePtr fg = TsViewRender::render(node, session.getFrame(), TsViewMode::Foreground);
    Result r;
    r.score = demo.score(*matte);
    const PiImage& truth = *demo.getTruthAlpha();
    const PiImage& truthFg = *demo.getTruthForeground();
    const TsMgUtils::KeyAxes axes = TsMgUtils::getKeyAxes(demo.getScreenColour());
    const CoRgbColorTyped<float> u = axes.axis[0] * -1.0f;
    const int w = truth.getWidth(), h = truth.getHeight();
    const int radius = TsMatteScore::EdgeBandRadius;
    std::size_t mid = 0, crushed = 0, band = 0;
    double spill = 0.0;
    for (int j = 0; j < h; ++j) {
        for (int i = 0; i < w; ++i) {
            const float t = truth.row(j)[4 * i];
            const float a = matte->row(j)[4 * i];
            if (t >= 0.2f && t <= 0.8f) {
                ++mid;
                crushed += a <= 0.01f || a >= 0.99f;
            }
            // Near the subject: any partial truth within the band's radius.
            bool near = false;
            for (int y = std::max(0, j - radius); y <= std::min(h - 1, j + radius) && !near; ++y) {
                for (int x = std::max(0, i - radius); x <= std::min(w - 1, i + radius); ++x) {
                    const float v = truth.row(y)[4 * x];
                    if (v > 0.0f && v < 1.0f) {
                        near = true;
                        break;
                    }
                }
            }
            if (t == 0.0f && !near) {
                r.speckles += a > 0.01f;
            }
            if (near) {
                const float* f = fg->row(j) + 4 * i;
                const float* g = truthFg.row(j) + 4 * i;
                const double ours = a * (u.r * f[0] + u.g * f[1] + u.b * f[2]);
                const double real = t * (u.r * g[0] + u.g * g[1] + u.b * g[2]);
                spill += std::max(0.0, ours - real);
                ++band;
            }
        }
    }
    r.crushed = mid ? static_cast<double>(crushed) / mid : 0.0;
    r.spill = band ? spill / band : 0.0;
    return r;
}

Result key(const std::string& text) {
    HostSession session;
    OutputWriter writer(session);
    SessionInterpreter::Options options;
    std::ostringstream printed;
    options.out = &printed;
    SessionInterpreter interpreter(session, options);
    ImageCommands::add(interpreter, writer);
    WidgetCommands::add(interpreter);
    interpreter.run(SessionScript::parse(text, "keyQuality"));
    return measure(session);
}

std::vector<Plate> plates(bool small) {
    using S = TsDemoPlate::Subject;
    std::vector<Plate> out;
    const int w = small ? 384 : 1280, h = small ? 216 : 720;
    auto add = [&](const std::string& name, int width, int height, std::uint64_t seed, double grain,
                   double uneven, double spill, S subject) {
        out.push_back(
            {name,
             {width, height, seed, grain, uneven, spill, subject},
             subject == S::Portrait || subject == S::DarkHair || subject == S::LightHair});
    };
    add("portrait", w, h, 1, 1, 1, 1, S::Portrait);
    add("portrait-seed2", w, h, 2, 1, 1, 1, S::Portrait);
    if (!small) {
        add("portrait-seed3", w, h, 3, 1, 1, 1, S::Portrait);
        add("portrait-640", 640, 360, 4, 1, 1, 1, S::Portrait);
        add("portrait-1920", 1920, 1080, 5, 1, 1, 1, S::Portrait);
    }
    add("portrait-grain", w, h, 6, 2.5, 1, 1, S::Portrait);
    add("portrait-uneven", w, h, 7, 1, 4, 1, S::Portrait);
    add("portrait-spill", w, h, 8, 1, 1, 2, S::Portrait);
    add("darkhair", w, h, 9, 1, 1, 1, S::DarkHair);
    add("lighthair", w, h, 10, 1, 1, 1, S::LightHair);
    // The hard plates: every subject over a grainier, unevenly lit screen with
    // more spill, as real composites are.
    const char* const subjects[] = {"portrait", "darkhair", "lighthair", "fur", "lattice", "stem"};
    for (int k = 0; k < 6; ++k) {
        add(std::string(subjects[k]) + "-hard", w, h, 11 + k, 2, 4, 1.5, static_cast<S>(k));
    }
    if (!small) {
        add("fur", w, h, 17, 1, 1, 1, S::Fur);
        add("lattice", w, h, 18, 1, 1, 1, S::Lattice);
        add("stem", w, h, 19, 1, 1, 1, S::Stem);
    }
    return out;
}

using Scores = std::map<std::string, std::vector<double>>;

Scores readBaseline(const std::string& path) {
    Scores scores;
    std::ifstream in(path);
    if (!in) {
        std::cerr << "bench_keyQuality: cannot read the baseline \"" << path << "\"\n";
        std::exit(2);
    }
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        std::istringstream words(line);
        std::string plate, session;
        std::vector<double> values(4);
        if (!(words >> plate >> session >> values[0] >> values[1] >> values[2] >> values[3])) {
            std::cerr << "bench_keyQuality: " << path << ": a line is not"
                      << " \"PLATE SESSION ALL EDGE HAIR OUTSIDE\": " << line << "\n";
            std::exit(2);
        }
        scores[plate + " " + session] = values;
    }
    return scores;
}

} // namespace

int main(int argc, char** argv) {
    bool small = false;
    std::string check, write;
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        if (a == "--small") {
            small = true;
        } else if (a == "--check" && i + 1 < argc) {
            check = argv[++i];
        } else if (a == "--write" && i + 1 < argc) {
            write = argv[++i];
        } else {
            std::cerr << "usage: bench_keyQuality [--small] [--check FILE] [--write FILE]\n";
            return 2;
        }
    }
    ::setenv("QT_QPA_PLATFORM", "offscreen", 0);
    UiApplication::getInstance();
    if (!HostPackages::loadAndStart(HostPackages::defaultModulePath())) {
        std::cerr << "bench_keyQuality: the keyer's module did not start\n";
        return 2;
    }
    const Scores baseline = check.empty() ? Scores() : readBaseline(check);

    std::cout << std::left << std::setw(18) << "plate" << std::setw(7) << "session" << std::right
              << std::setw(9) << "all" << std::setw(9) << "edge" << std::setw(9) << "hair"
              << std::setw(10) << "outside" << std::setw(10) << "speckles" << std::setw(9)
              << "crushed" << std::setw(9) << "spill"
              << "\n";
    std::ostringstream written;
    written << "# bench_keyQuality" << (small ? " --small" : "")
            << ": plate session all edge hair outside\n";
    int worse = 0;
    for (const Plate& plate : plates(small)) {
        for (const std::string session : {"demo", "pick"}) {
            if (session == "demo" && !plate.portrait) {
                continue;
            }
            const Result r =
                key(session == "demo" ? demoSession(plate.options) : pickSession(plate.options));
            const std::vector<double> values{r.score.all, r.score.edge, r.score.hair,
                                             r.score.outside};
            std::cout << std::left << std::setw(18) << plate.name << std::setw(7) << session
                      << std::right << std::fixed << std::setprecision(5) << std::setw(9)
                      << values[0] << std::setw(9) << values[1] << std::setw(9) << values[2]
                      << std::setw(10) << values[3] << std::setw(10) << r.speckles
                      << std::setprecision(3) << std::setw(9) << r.crushed << std::setw(9)
                      << r.spill << "\n";
            written << plate.name << " " << session << std::setprecision(6) << std::scientific;
            for (const double v : values) {
                written << " " << v;
            }
            written << std::defaultfloat << "\n";
            if (!check.empty()) {
                const auto it = baseline.find(plate.name + " " + session);
                if (it == baseline.end()) {
                    std::cout << "  not in the baseline\n";
                    ++worse;
                    continue;
                }
                const char* const names[] = {"all", "edge", "hair", "outside"};
                for (int k = 0; k < 4; ++k) {
                    const double limit = it->second[k] * (1.0 + Tolerance) + Slack;
                    if (values[k] > limit) {
                        std::cout << "  " << names[k] << " " << values[k]
                                  << " is worse than the baseline " << it->second[k] << "\n";
                        ++worse;
                    }
                }
            }
        }
    }
    if (!write.empty()) {
        std::ofstream out(write);
        out << written.str();
        if (!out.flush()) {
            std::cerr << "bench_keyQuality: cannot write \"" << write << "\"\n";
            return 2;
        }
    }
    if (worse > 0) {
        std::cout << worse << " scores worse than the baseline\n";
        return 1;
    }
    return 0;
}
