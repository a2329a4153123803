// The replay of a session script of 10,000 user events by the interpreter
// (budget: 1 s, renders excluded): the script is parsed, each line carried
// out as tessera-run does, each event sent to the viewer widget as the
// window system's event and handled by the keyer's matte-generation tools,
// whose drags write the matte parameters through the command stack.
//
// The session: a key colour picked, the sample-matte tool by its hotkey,
// then samples on the plate each followed by a drag of the top bar and
// Escape. The viewer is never painted (no event loop runs), so the keyer's
// image processing is not part of it.
//
// BM_Replay reports the replay's time per 10,000 events (replay_ms) and its
// ratio to the baseline measured in the same run (baseline_ms, ratio): the
// same events sent to the viewer by the driver directly, without script
// text, parsing or the interpreter.
#include "host/hostSession.h"
#include "host/imageCommands.h"
#include "host/outputWriter.h"
#include "host/sessionArgs.h"
#include "host/sessionInterpreter.h"
#include "host/sessionScript.h"
#include "host/viewerDriver.h"
#include "host/widgetCommands.h"

#include <base/exReporter.h>
#include <ui/uiApplication.h>
#include <ui/uiHotkeyRegistry.h>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int EventCount = 10000;

// One gesture of the session, as the driver sends it and as a script line.
struct Gesture {
    std::string line;
    std::function<void(ViewerDriver&)> send;
    int events;
};

std::vector<Gesture> makeSession() {
    std::vector<Gesture> g;
    g.push_back({"drag 4 176 20 160 steps 4",
                 [](ViewerDriver& d) {
                     d.drag({4, 176}, {20, 160}, 4, 0);
                 },
                 6});
    g.push_back({"hotkey \"Sample Matte\"",
                 [](ViewerDriver& d) {
                     d.hotkey(UiHotkeyRegistry::getInstance().findEntry(
                         UiHotkeyRegistry::TesseraDomain, "Sample Matte"));
                 },
                 2});
    int events = 8;
    for (int block = 0; events < EventCount; ++block) {
        // A sample, its top bar dragged right, the column dismissed.
        const double x = 60.0 + (block * 37) % 200;
        const double y = 40.0 + (block * 23) % 100;
        g.push_back({"click " + SessionArgs::format(x) + " " + SessionArgs::format(y),
                     [x, y](ViewerDriver& d) {
                         d.click({x, y}, 0);
                     },
                     2});
        g.push_back({"press " + SessionArgs::format(x) + " " + SessionArgs::format(y),
                     [x, y](ViewerDriver& d) {
                         d.press({x, y}, 0);
                     },
                     1});
        events += 3;
        const int moves = std::min(92, EventCount - events - 3);
        for (int m = 1; m <= moves; ++m) {
            const double mx = x + m * 0.4;
            g.push_back({"move " + SessionArgs::format(mx) + " " + SessionArgs::format(y),
                         [mx, y](ViewerDriver& d) {
                             d.move({mx, y}, 0);
                         },
                         1});
        }
        events += moves;
        const double end = x + moves * 0.4;
        g.push_back({"release " + SessionArgs::format(end) + " " + SessionArgs::format(y),
                     [end, y](ViewerDriver& d) {
                         d.release({end, y}, 0);
                     },
                     1});
        g.push_back({"key Escape",
                     [](ViewerDriver& d) {
                         d.keyDown(EvKeyCode::KeyEscape, 0);
                         d.keyUp(EvKeyCode::KeyEscape, 0);
                     },
                     2});
        events += 3;
    }
    return g;
}

// A session on the plate, ready for the gestures.
struct Scene {
    Scene() {
        interpreter = std::make_unique<SessionInterpreter>(*session, options());
        ImageCommands::add(*interpreter, writer);
        WidgetCommands::add(*interpreter);
        interpreter->execute("plate demo 320 180");
    }
    static SessionInterpreter::Options options() {
        SessionInterpreter::Options o;
        o.out = &sink;
        return o;
    }

    static std::ostringstream sink;
    std::unique_ptr<HostSession> session = std::make_unique<HostSession>(nullptr, 960, 540);
    OutputWriter writer{*session};
    std::unique_ptr<SessionInterpreter> interpreter;
};
std::ostringstream Scene::sink;

double milliseconds(Clock::duration d) {
    return std::chrono::duration<double, std::milli>(d).count();
}

double baselineMilliseconds(const std::vector<Gesture>& gestures) {
    Scene scene;
    ViewerDriver& driver = scene.interpreter->getDriver();
    const Clock::time_point t0 = Clock::now();
    for (const Gesture& g : gestures) {
        g.send(driver);
        HostSession::settle();
    }
    return milliseconds(Clock::now() - t0);
}

void BM_Replay(benchmark::State& state) {
    UiApplication::getInstance();
    const std::vector<Gesture> gestures = makeSession();
    std::string text;
    int events = 0;
    for (const Gesture& g : gestures) {
        text += g.line + "\n";
        events += g.events;
    }
    const double baseline = baselineMilliseconds(gestures);

    double total = 0.0;
    int runs = 0;
    int steps = 0;
    for (auto _ : state) {
        state.PauseTiming();
        auto scene = std::make_unique<Scene>();
        state.ResumeTiming();
        const Clock::time_point t0 = Clock::now();
        scene->interpreter->run(SessionScript::parse(text, "bench.tss"));
        total += milliseconds(Clock::now() - t0);
        ++runs;
        state.PauseTiming();
        steps = scene->session->getCommandStack().getStepCount();
        scene.reset();
        state.ResumeTiming();
    }
    const double replay = total / runs * EventCount / events;
    state.counters["events"] = events;
    state.counters["lines"] = static_cast<double>(gestures.size());
    state.counters["undo_steps"] = steps;
    state.counters["replay_ms"] = replay;
    state.counters["baseline_ms"] = baseline * EventCount / events;
    state.counters["ratio"] = baseline > 0.0 ? replay / (baseline * EventCount / events) : 0.0;
}

BENCHMARK(BM_Replay)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace

int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    ExReporter::getInstance().setEcho(false);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    HostSession::startPackages();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
