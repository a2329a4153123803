// The load of a setup whose keyer node has 10,000 patches (150,000 patch
// inputs; budget: 1 s): the text is parsed, every input checked against a
// scratch node of the same kind and applied to the group's node in one undo
// step. Each input is found by its name, so a lookup that is not constant
// time makes this quadratic.
//
// BM_SetupLoad reports the load's time (load_ms), its share of the budget
// (budget_share; 1 = 1 s) and its ratio to the baseline measured in the same
// run (baseline_ms, ratio): writing the same setup's text from the loaded
// keyer, which visits the same inputs in order without looking any up.
#include <pluginAPI/piGraph.h>
#include <tesseraCore/tsKeyerGroup.h>
#include <tesseraCore/tsKeyerNode.h>
#include <tesseraCore/tsSetup.h>

#include <base/exReporter.h>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <string>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int Patches = 10000;
constexpr double BudgetMilliseconds = 1000.0;

struct Keyer {
    RCShdPtr<PiGraph> graph = PiGraph::create();
    RCShdPtr<TsKeyerGroup> group = TsKeyerGroup::create("keyer", 1, 1);
    Keyer() { graph->getRoot()->addNode(group); }
};

// The setup of a keyer node with 10,000 named patches: a box, a mode, a range
// and a softness that differ from patch to patch.
std::string makeSetup() {
    const Keyer keyer;
    const RCShdPtr<TsKeyerNode> node = keyer.group->getKeyerNode(0);
    PiStringList names;
    for (int p = 1; p <= Patches; ++p) {
        names.push_back("Patch " + std::to_string(p));
    }
    node->getPatchNamesInput()->setValue(0.0, PiValue(names));
    for (int p = 1; p <= Patches; ++p) {
        const std::string prefix = "patch" + std::to_string(p);
        node->getInput(prefix + ".box_0_3")->setValue(0.0, PiValue(0.001 * (p % 997)));
        node->getInput(prefix + ".mode")->setValue(0.0, PiValue(p % 4));
        node->getInput(prefix + ".softness")->setValue(0.0, PiValue(0.5));
    }
    LiString text;
    std::string error;
    TsSetup::write(*keyer.group, text, error);
    return text;
}

double milliseconds(Clock::duration d) {
    return std::chrono::duration<double, std::milli>(d).count();
}

void BM_SetupLoad(benchmark::State& state) {
    const std::string setup = makeSetup();
    double load = 0.0;
    double baseline = 0.0;
    int runs = 0;
    for (auto _ : state) {
        state.PauseTiming();
        auto keyer = std::make_unique<Keyer>();
        state.ResumeTiming();
        Clock::time_point t0 = Clock::now();
        LiString error;
        if (!TsSetup::read(*keyer->group, setup, "bench.setup", error)) {
            state.SkipWithError(error.c_str());
            return;
        }
        load += milliseconds(Clock::now() - t0);
        state.PauseTiming();
        t0 = Clock::now();
        LiString again;
        TsSetup::write(*keyer->group, again, error);
        baseline += milliseconds(Clock::now() - t0);
        if (again != setup) {
            state.SkipWithError("the loaded setup does not write back the same text");
            return;
        }
        keyer.reset();
        state.ResumeTiming();
        ++runs;
    }
    state.counters["patches"] = Patches;
    state.counters["bytes"] = static_cast<double>(setup.size());
    state.counters["load_ms"] = load / runs;
    state.counters["baseline_ms"] = baseline / runs;
    state.counters["ratio"] = baseline > 0.0 ? load / baseline : 0.0;
    state.counters["budget_share"] = load / runs / BudgetMilliseconds;
}

BENCHMARK(BM_SetupLoad)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace

int main(int argc, char** argv) {
    ExReporter::getInstance().setEcho(false);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
