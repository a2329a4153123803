// One pointer event through the viewer side of the host: the event handler,
// the current tool, its range manipulator, an input write, the undo stack and
// the input's callbacks (budget: median 20 us, p99 100 us; no render).
//
// A drag of the spill bar of a keyer node, one move per iteration, the value
// changing at every move:
// - BM_PointerEventThroughHandler: an Ev event delivered to the handler as
//   the host does (MfEventHandlerUtil::deliver), on a viewer without a
//   window;
// - BM_PointerEventThroughViewerWidget: a Qt mouse move sent to the viewer
//   widget (offscreen), which adds the translation of the event, the
//   containment, the request queue and the cursor update.
// Each reports the median and the 99th percentile of single events (median_us,
// p99_us), and their ratio to the baseline measured in the same run: the
// same input write through the command stack alone (baseline_us,
// median_ratio).
#include <base/cbMethod.h>
#include <base/exReporter.h>
#include <base/vwUtils.h>
#include <gfx/mfCurrentToolEventHandler.h>
#include <gfx/mfEventHandlerUtil.h>
#include <gfx/mfRangeManipulator.h>
#include <gfx/mfToolset.h>
#include <pluginAPI/piCommandStack.h>
#include <pluginAPI/piEventContext.h>
#include <pluginAPI/piGraph.h>
#include <pluginAPI/piInputValue.h>
#include <pluginAPI/piTimePath.h>
#include <pluginAPI/piViewer.h>
#include <tesseraCore/tsKeyerNode.h>
#include <ui/uiApplication.h>
#include <ui/uiViewer.h>

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QMouseEvent>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

// The spill bar: 300 window pixels at the plate's centre, [-150, 150] onto
// [0, 1].
class SpillTool : public MfTool {
public:
    SpillTool(const RCShdPtr<PiInput>& input, const RCShdPtr<const PiTimePath>& timePath)
        : bar(new MfRangeManipulator(GeRectangle<float>(-150, 150, -10, 10), "Spill"))
        , value(PiInputValue<double>::createTyped(input, timePath)) {
        bar->setScalingBehaviour(1);
        bar->setBaseTransform(GeAffineMatrix3<float>::translation(32.0f, 24.0f));
        addManipulator(bar);
        setUndoString("Set Spill");
    }
    void monitorManipulation(const PiEventContext&) override {
        value->setValue((bar->getValue() + 150.0) / 300.0);
    }
    RCShdPtr<MfRangeManipulator> bar;
    RCShdPtr<PiInputValue<double>> value;
};

// A viewer without a window: 400 x 300, the 64 x 48 plate four times
// enlarged at its centre.
class BenchViewer : public PiViewer {
public:
    explicit BenchViewer(const RCShdPtr<PiNode>& n)
        : node(n)
        , path(rcMake<PiPath>(n))
        , view(400, 300, 4.0f, {72.0f, 246.0f}) {}
    const VwView& getView() const override { return view; }
    void redraw() override { ++redraws; }
    const TmTimeClient* getTimeClient() const override { return &time; }
    RCShdPtr<PiNode> getNode() const override { return node; }
    RCShdPtr<PiPath> getPath() const override { return path; }
    PiCommandStack* getCommandStack() const override { return node->getCommandStack(); }
    RCShdPtr<PiEventHandler> getCurrentEventHandler() const override { return handler; }

    RCShdPtr<PiNode> node;
    RCShdPtr<PiPath> path;
    VwView view;
    TmTimeClient time;
    RCShdPtr<PiEventHandler> handler;
    int redraws = 0;
};

// A keyer node in a graph, with a listener on its spill input as a panel
// would have.
struct Scene {
    Scene() {
        graph = PiGraph::create();
        keyer = TsKeyerNode::create("keyer");
        keyer->getImageInput()->setValue(0.0, PiValue(PiImagePtr(rcMake<PiImage>(64, 48))));
        graph->getRoot()->addNode(keyer);
        keyer->getSpillInput(0)->addValueChangedCb(&listener);
    }
    void heard() { ++changes; }

    RCShdPtr<PiGraph> graph;
    RCShdPtr<TsKeyerNode> keyer;
    int changes = 0;
    CbMethod<Scene, CbEmptyType> listener{this, &Scene::heard};
};

double percentile(std::vector<double> samples, double p) {
    if (samples.empty()) {
        return 0.0;
    }
    const auto k = static_cast<std::size_t>(p * static_cast<double>(samples.size() - 1));
    std::nth_element(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(k),
                     samples.end());
    return samples[k];
}

double microseconds(Clock::duration d) {
    return std::chrono::duration<double, std::micro>(d).count();
}

// The median of the same write through the command stack alone, within one
// open step, the value changing each time.
double baselineMicroseconds(Scene& scene) {
    auto value = PiInputValue<double>::createTyped(scene.keyer->getSpillInput(0), nullptr);
    PiCommandStack& stack = scene.graph->getCommandStack();
    std::vector<double> samples;
    samples.reserve(20000);
    { PiUndoGuard begin(stack, "Set Spill", PiExecParam(PiExecParam::Begin)); }
    for (int i = 0; i < 20000; ++i) {
        const Clock::time_point t0 = Clock::now();
        {
            PiUndoGuard step(stack, "", PiExecParam(PiExecParam::Continue));
            value->setValue((i % 200) / 200.0);
        }
        samples.push_back(microseconds(Clock::now() - t0));
    }
    { PiUndoGuard end(stack, "", PiExecParam(PiExecParam::End)); }
    return percentile(samples, 0.5);
}

void report(benchmark::State& state, const std::vector<double>& samples, double baseline) {
    const double median = percentile(samples, 0.5);
    state.counters["median_us"] = median;
    state.counters["p99_us"] = percentile(samples, 0.99);
    state.counters["baseline_us"] = baseline;
    state.counters["median_ratio"] = baseline > 0.0 ? median / baseline : 0.0;
}

void BM_PointerEventThroughHandler(benchmark::State& state) {
    const double baseline = baselineMicroseconds(*std::make_unique<Scene>());
    Scene scene;
    BenchViewer viewer(scene.keyer);
    auto timePath = RCShdPtr<const PiTimePath>(new PiTimePath(&viewer.time, viewer.path));
    auto handler = rcMake<MfCurrentToolEventHandler>(rcMake<MfToolset>(viewer));
    handler->appendTool("Adjust Spill", rcMake<SpillTool>(scene.keyer->getSpillInput(0), timePath));
    viewer.handler = handler;

    const GePoint2<float> centre = VwUtils::worldToWindowOrtho(viewer.view, {32.0f, 24.0f});
    EvPointerButtonDownEvent press(centre, EvKeyboardState(), EvButton::Left);
    MfEventHandlerUtil::deliver(*handler, PiEventContext(viewer, press));

    std::vector<double> samples;
    samples.reserve(1 << 20);
    int i = 0;
    for (auto _ : state) {
        EvPointerMoveEvent move({centre.x - 100.0f + static_cast<float>(i++ % 200), centre.y},
                                EvKeyboardState(), EvButton::Left);
        const Clock::time_point t0 = Clock::now();
        MfEventHandlerUtil::deliver(*handler, PiEventContext(viewer, move));
        samples.push_back(microseconds(Clock::now() - t0));
    }
    // Released where the last move was: the drag stays one step of one record.
    EvPointerButtonUpEvent release(
        {centre.x - 100.0f + static_cast<float>((i - 1) % 200), centre.y}, EvKeyboardState(),
        EvButton::Left);
    MfEventHandlerUtil::deliver(*handler, PiEventContext(viewer, release));
    report(state, samples, baseline);
    state.counters["undo_steps"] = scene.graph->getCommandStack().getStepCount();
    state.counters["value_changes"] = scene.changes;
    state.counters["undo_bytes"] =
        static_cast<double>(scene.graph->getCommandStack().getMemoryUse());
}

void BM_PointerEventThroughViewerWidget(benchmark::State& state) {
    UiApplication::getInstance();
    const double baseline = baselineMicroseconds(*std::make_unique<Scene>());
    Scene scene;
    UiViewer viewer(nullptr, "bench viewer");
    viewer.resize(400, 300);
    viewer.setNode(scene.keyer);
    auto timePath =
        RCShdPtr<const PiTimePath>(new PiTimePath(viewer.getTimeClient(), viewer.getPath()));
    auto handler = rcMake<MfCurrentToolEventHandler>(rcMake<MfToolset>(viewer));
    handler->appendTool("Adjust Spill", rcMake<SpillTool>(scene.keyer->getSpillInput(0), timePath));
    viewer.setEventHandler(handler);

    const GePoint2<float> c = VwUtils::worldToWindowOrtho(viewer.getView(), {32.0f, 24.0f});
    const QPointF centre(c.x, c.y);
    auto send = [&](QEvent::Type type, const QPointF& at) {
        QMouseEvent event(type, at, viewer.mapToGlobal(at),
                          type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(&viewer, &event);
    };
    send(QEvent::MouseButtonPress, centre);

    std::vector<double> samples;
    samples.reserve(1 << 20);
    int i = 0;
    for (auto _ : state) {
        const QPointF at(centre.x() - 100.0 + (i++ % 200), centre.y());
        const Clock::time_point t0 = Clock::now();
        send(QEvent::MouseMove, at);
        samples.push_back(microseconds(Clock::now() - t0));
    }
    send(QEvent::MouseButtonRelease, QPointF(centre.x() - 100.0 + ((i - 1) % 200), centre.y()));
    report(state, samples, baseline);
    state.counters["undo_steps"] = scene.graph->getCommandStack().getStepCount();
    state.counters["value_changes"] = scene.changes;
}

BENCHMARK(BM_PointerEventThroughHandler)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_PointerEventThroughViewerWidget)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv) {
    // The viewer widget needs no display; the keyer's stage handlers are not
    // loaded here, which the viewer would report at every run.
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    ExReporter::getInstance().setEcho(false);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
