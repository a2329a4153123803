// One pick of the sample-patch tool over a 1000 x 1000 drag (budget 40 ms):
// a Ctrl-Shift drag across the plate, handed to the matte-generation handler
// of a keyer node (made by the module, loaded as the host loads it); its
// release collects the million picked colours, keeps the distinct ones, fits
// the patch's box, writes it and, the patch's mode being undecided at every
// pick, classifies the sample, as one undo step.
//
// The plate is a grainy float green screen with a subject at one side, so
// that nearly every picked colour is distinct (the hard case). Reported per
// pick: the median time (median_ms), the share of the budget (budget_share,
// 1 = 40 ms) and the ratio to the baseline measured in the same run: the fit
// alone (distinct colours and box) of the same colours (baseline_ms, ratio).
#include "host/hostPackages.h"

#include <base/exReporter.h>
#include <base/rcCast.h>
#include <base/vwUtils.h>
#include <gfx/mfEventHandlerUtil.h>
#include <pluginAPI/piCurrentToolEventHandler.h>
#include <pluginAPI/piEventContext.h>
#include <pluginAPI/piGraph.h>
#include <pluginAPI/piImgPick.h>
#include <pluginAPI/piPath.h>
#include <tesseraCore/tsKeyerGroup.h>
#include <tesseraCore/tsMgTool.h>
#include <tesseraUtil/tsUtils.h>
#include <ui/uiApplication.h>
#include <ui/uiViewer.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <random>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr double BudgetSeconds = 0.040;
constexpr int PlateSize = 1024;
constexpr float DragSize = 1000.0f;
const CoRgbColorTyped<float> Screen(0.1f, 0.5f, 0.12f);

PiImagePtr makePlate() {
    std::mt19937 rng(3);
    std::normal_distribution<float> grain(0.0f, 0.01f);
    auto plate = rcMake<PiImage>(PlateSize, PlateSize);
    for (int j = 0; j < PlateSize; ++j) {
        for (int i = 0; i < PlateSize; ++i) {
            const float t = i < 700 ? 0.0f : std::min(1.0f, static_cast<float>(i - 700) / 100.0f);
            plate->setPixel(i, j,
                            {Screen.r + 0.5f * t + grain(rng), Screen.g - 0.1f * t + grain(rng),
                             Screen.b + 0.2f * t + grain(rng), 1.0f});
        }
    }
    return plate;
}

double seconds(Clock::duration d) {
    return std::chrono::duration<double>(d).count();
}

void BM_SamplePatchPick(benchmark::State& state) {
    UiApplication::getInstance();
    auto graph = PiGraph::create();
    auto group = TsKeyerGroup::create("keyer");
    graph->getRoot()->addNode(group);
    auto node = group->getKeyerNode(0);
    const PiImagePtr plate = makePlate();
    node->getImageInput()->setValue(0.0, PiValue(plate));
    node->getKeyColorInput(TsTypes::KeyColor1)->setValue(0.0, PiValue(Screen));
    node->getKeyColorInput(TsTypes::KeyColor2)->setValue(0.0, PiValue(Screen));
    node->createPatch();
    PiCommandStack& stack = graph->getCommandStack();
    stack.clear();

    UiViewer viewer(nullptr, "bench viewer");
    viewer.resize(1100, 1100);
    viewer.setNode(node);
    viewer.getMutableView().setZoom(1.0f);
    viewer.getMutableView().setPan({40.0f, 1060.0f});
    const RCShdPtr<PiEventHandler> handler = viewer.getCurrentEventHandler();
    if (!handler) {
        state.SkipWithError("no matte-generation handler: the module did not load");
        return;
    }
    refCast<PiCurrentToolEventHandler>(*handler).setCurrentTool(TsMgTool::getManipToolName(3));

    // Ctrl and Shift: the swept rectangle replaces the box.
    const EvKeyboardState keys(EvKeyboardState::CtrlMask | EvKeyboardState::ShiftMask);
    const GePoint2<float> from = VwUtils::worldToWindowOrtho(viewer.getView(), {10.0f, 10.0f});
    const GePoint2<float> to =
        VwUtils::worldToWindowOrtho(viewer.getView(), {10.0f + DragSize, 10.0f + DragSize});
    const auto deliver = [&](EvEvent& event) {
        MfEventHandlerUtil::deliver(*handler, PiEventContext(viewer, event));
    };

    // The baseline: the fit of the same colours.
    List<CoRgbaColorTyped<float>> picked;
    PiImgPick::pickColors(
        *plate, GeRectangle<float>(10.0f, 10.0f + DragSize, 10.0f, 10.0f + DragSize), picked);
    double baseline = 1e30;
    for (int i = 0; i < 5; ++i) {
        const Clock::time_point t0 = Clock::now();
        const CoAffineMatrixTyped<float> box =
            TsUtils::computeMinimalBoxMatrix(TsUtils::makeUnique(picked));
        baseline = std::min(baseline, seconds(Clock::now() - t0));
        benchmark::DoNotOptimize(box);
    }

    std::vector<double> picks;
    for (auto _ : state) {
        EvPointerButtonDownEvent press(from, keys, EvButton::Left);
        EvPointerMoveEvent move(to, keys, EvButton::Left);
        EvPointerButtonUpEvent release(to, keys, EvButton::Left);
        const Clock::time_point t0 = Clock::now();
        deliver(press);
        deliver(move);
        deliver(release);
        picks.push_back(seconds(Clock::now() - t0));
        // Each pick is the patch's first: it also classifies the sample.
        state.PauseTiming();
        node->getPatchModeInput(0)->setValue(0.0, PiValue(0));
        stack.clear();
        state.ResumeTiming();
    }
    std::sort(picks.begin(), picks.end());
    const double median = picks.empty() ? 0.0 : picks[picks.size() / 2];
    state.counters["picked"] = static_cast<double>(picked.size());
    state.counters["mode"] = node->getPatchModeInput(0)->getTypedValue<int>(0.0);
    state.counters["median_ms"] = median * 1e3;
    state.counters["budget_share"] = median / BudgetSeconds;
    state.counters["baseline_ms"] = baseline * 1e3;
    state.counters["ratio"] = baseline > 0.0 ? median / baseline : 0.0;
}

BENCHMARK(BM_SamplePatchPick)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    ExReporter::getInstance().setEcho(false);
    if (!HostPackages::loadAndStart(HostPackages::defaultModulePath())) {
        for (const auto& r : ExReporter::getInstance().getReports()) {
            std::cerr << r.text() << "\n";
        }
        return 1;
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    HostPackages::shutdownAndUnload();
    return 0;
}
