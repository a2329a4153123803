// One sample of the sample-matte tool (budget 20 us): a pointer move with Ctrl
// held, handed to the matte-generation handler of a keyer node (made by the
// module, loaded as the host loads it), which picks the 5 x 5 pixels around
// the point, measures them against the key colour, gives the matte
// parameters their levels and lays the column of bars out.
//
// The plate is a grainy green screen with a subject and a soft edge, so that
// samples reach every kind of level; the pointer visits 64 places in turn.
// Reported: the median and 99th percentile of single samples (median_us,
// p99_us), the share of the budget (budget_share, 1 = 20 us), and the ratio to
// the baseline measured in the same run: the bare 5 x 5 pick of the same
// pixels through the image picker (baseline_us, median_ratio).
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
#include <ui/uiApplication.h>
#include <ui/uiViewer.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <random>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr double BudgetMicroseconds = 20.0;
constexpr int PlateSize = 256;
const CoRgbColorTyped<float> Screen(0.12f, 0.55f, 0.18f);

PiImagePtr makePlate() {
    std::mt19937 rng(5);
    std::normal_distribution<float> grain(0.0f, 0.015f);
    auto plate = rcMake<PiImage>(PlateSize, PlateSize);
    for (int j = 0; j < PlateSize; ++j) {
        for (int i = 0; i < PlateSize; ++i) {
            // Screen on the left, a warm subject on the right, a soft edge
            // between them; shadows towards the bottom.
            const float t = std::clamp((static_cast<float>(i) - 110.0f) / 40.0f, 0.0f, 1.0f);
            const float light = 0.6f + 0.4f * static_cast<float>(j) / PlateSize;
            plate->setPixel(i, j,
                            {light * (Screen.r + t * 0.6f) + grain(rng),
                             light * (Screen.g - t * 0.15f) + grain(rng),
                             light * (Screen.b + t * 0.25f) + grain(rng), 1.0f});
        }
    }
    return plate;
}

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

// The places the pointer visits, in plate pixels.
std::vector<GePoint2<float>> places() {
    std::vector<GePoint2<float>> out;
    for (int n = 0; n < 64; ++n) {
        out.push_back(
            {8.5f + 30.0f * static_cast<float>(n % 8), 8.5f + 30.0f * static_cast<float>(n / 8)});
    }
    return out;
}

void BM_SampleMatteSample(benchmark::State& state) {
    UiApplication::getInstance();
    auto graph = PiGraph::create();
    auto group = TsKeyerGroup::create("keyer");
    graph->getRoot()->addNode(group);
    auto node = group->getKeyerNode(0);
    const PiImagePtr plate = makePlate();
    node->getImageInput()->setValue(0.0, PiValue(plate));
    node->getKeyColorInput(TsTypes::KeyColor1)->setValue(0.0, PiValue(Screen));
    node->getKeyColorInput(TsTypes::KeyColor2)->setValue(0.0, PiValue(Screen));
    graph->getCommandStack().clear();

    UiViewer viewer(nullptr, "bench viewer");
    viewer.resize(1000, 1000);
    viewer.setNode(node);
    viewer.getMutableView().setZoom(3.0f);
    viewer.getMutableView().setPan({100.0f, 900.0f});
    const RCShdPtr<PiEventHandler> handler = viewer.getCurrentEventHandler();
    if (!handler) {
        state.SkipWithError("no matte-generation handler: the module did not load");
        return;
    }
    refCast<PiCurrentToolEventHandler>(*handler).setCurrentTool(TsMgTool::getManipToolName(2));

    std::vector<EvPointerMoveEvent> moves;
    for (const GePoint2<float>& p : places()) {
        moves.emplace_back(VwUtils::worldToWindowOrtho(viewer.getView(), p),
                           EvKeyboardState(EvKeyboardState::CtrlMask), EvButton::None);
    }

    // The baseline: the same picks alone.
    std::vector<double> baseline;
    baseline.reserve(20000);
    for (int i = 0; i < 20000; ++i) {
        const GePoint2<float> p = places()[static_cast<std::size_t>(i % 64)];
        List<CoRgbaColorTyped<float>> colours;
        const Clock::time_point t0 = Clock::now();
        PiImgPick::pickColors(
            *plate, GeRectangle<float>(p.x - 2.5f, p.x + 2.5f, p.y - 2.5f, p.y + 2.5f), colours);
        baseline.push_back(microseconds(Clock::now() - t0));
        benchmark::DoNotOptimize(colours.data());
    }

    std::vector<double> samples;
    samples.reserve(1 << 20);
    std::size_t n = 0;
    for (auto _ : state) {
        EvPointerMoveEvent& move = moves[n++ % moves.size()];
        move.setProcessed(false);
        const Clock::time_point t0 = Clock::now();
        MfEventHandlerUtil::deliver(*handler, PiEventContext(viewer, move));
        samples.push_back(microseconds(Clock::now() - t0));
    }
    const double median = percentile(samples, 0.5);
    const double base = percentile(baseline, 0.5);
    state.counters["median_us"] = median;
    state.counters["p99_us"] = percentile(samples, 0.99);
    state.counters["budget_share"] = median / BudgetMicroseconds;
    state.counters["baseline_us"] = base;
    state.counters["median_ratio"] = base > 0.0 ? median / base : 0.0;
    state.counters["undo_steps"] = graph->getCommandStack().getStepCount();
}

BENCHMARK(BM_SampleMatteSample)->Unit(benchmark::kMicrosecond);

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
