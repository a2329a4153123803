// One input write through the command stack, as a tool's drag makes it: the
// write, its record in the open step, the input's value-changed handler and
// the node's ValueChanged event (budget: well under 1 us; budget_share
// 1 = 1 us). The baseline is the same write, with the same listeners, to an
// input outside any graph: what the history adds is the difference.
#include <pluginAPI/piGraph.h>
#include <pluginAPI/piInputValue.h>
#include <tesseraCore/tsKeyerGroup.h>

#include <base/cbMethod.h>

#include <benchmark/benchmark.h>

namespace {

constexpr double BudgetSeconds = 1e-6;

// A keyer node in a graph with a listener on the written input (a view's
// value-changed handler) and on the node (a panel's ValueChanged handler).
struct Scene {
    Scene() {
        graph = PiGraph::create();
        group = TsKeyerGroup::create("keyer");
        graph->getRoot()->addNode(group);
        input = group->getKeyerNode(0)->getInput("overall");
        view = PiInputValue<double>::createTyped(input, nullptr);
        view->addValueChangedCb(&changed);
        group->getKeyerNode(0)->getController()->addCallback<PiNodeEvent::ValueChanged>(&event);
    }
    void onChanged() { ++changes; }
    void onEvent(const PiNodeEvent&) { ++events; }

    RCShdPtr<PiGraph> graph;
    RCShdPtr<TsKeyerGroup> group;
    RCShdPtr<PiInput> input;
    RCShdPtr<PiInputValue<double>> view;
    long changes = 0;
    long events = 0;
    CbMethod<Scene, CbEmptyType> changed{this, &Scene::onChanged};
    CbMethod<Scene, const PiNodeEvent> event{this, &Scene::onEvent};
};

void report(benchmark::State& state) {
    state.counters["budget_share"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * BudgetSeconds,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// A drag: a step begun with transition 1, one continuing guard and one write
// per pointer event, the step ended with transition 3.
void BM_InputWriteInDrag(benchmark::State& state) {
    Scene scene;
    PiCommandStack& stack = scene.graph->getCommandStack();
    { PiUndoGuard begin(stack, "Drag", PiExecParam(1)); }
    double v = 0.0;
    for (auto _ : state) {
        PiUndoGuard step(stack, "", PiExecParam(2));
        v = v < 0.5 ? v + 1e-6 : 0.0;
        benchmark::DoNotOptimize(scene.view->setValue(v));
    }
    { PiUndoGuard end(stack, "", PiExecParam(3)); }
    state.counters["records"] = stack.getRecordCount(stack.getStepCount() - 1);
    report(state);
}

// A write with no step open: a step of its own, opened, recorded and closed.
void BM_InputWriteOwnStep(benchmark::State& state) {
    Scene scene;
    PiCommandStack& stack = scene.graph->getCommandStack();
    double v = 0.0;
    long n = 0;
    for (auto _ : state) {
        v = v < 0.5 ? v + 1e-6 : 0.0;
        benchmark::DoNotOptimize(scene.view->setValue(v));
        if (++n % 4096 == 0) {
            state.PauseTiming();
            stack.clear();
            state.ResumeTiming();
        }
    }
    report(state);
}

// Undo and redo of a one-input step, with the same listeners.
void BM_UndoRedo(benchmark::State& state) {
    Scene scene;
    PiCommandStack& stack = scene.graph->getCommandStack();
    scene.view->setValue(0.25);
    for (auto _ : state) {
        stack.undo();
        stack.redo();
    }
    report(state);
}

// The baseline: the same write and listeners on an input of a node outside any
// graph.
void BM_InputWriteWithoutHistory(benchmark::State& state) {
    Scene scene;
    scene.group->getParent()->removeNode(scene.group);
    double v = 0.0;
    for (auto _ : state) {
        v = v < 0.5 ? v + 1e-6 : 0.0;
        benchmark::DoNotOptimize(scene.view->setValue(v));
    }
    report(state);
}

BENCHMARK(BM_InputWriteWithoutHistory);
BENCHMARK(BM_InputWriteInDrag);
BENCHMARK(BM_InputWriteOwnStep);
BENCHMARK(BM_UndoRedo);

} // namespace

BENCHMARK_MAIN();
