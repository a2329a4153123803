// The keyer's image processing against its budgets, two threads:
//
// - the keyer pass on a UHD float RGBA plate, one RGBA view out, at most 1.5
//   times a plain copy of the same bytes (copy_ratio; the copy is timed in
//   every iteration beside the pass, copy_ms). The composite over a
//   background reads that image too: its copy is of both inputs;
// - one drag step (a matte parameter changes, the viewer image at 1920 wide
//   is rendered again from the kept proxy and shown through the display
//   transform) within 16 ms (budget_share).
//
// The plate is the demo plate generated at 3840 x 2160.
#include "plainCopy.h"

#include <tesseraCore/colour/tsDisplayTransform.h>
#include <tesseraCore/demo/tsDemoPlate.h>
#include <tesseraCore/img/tsKeyerPass.h>

#include <tesseraUtil/tsUtils.h>

#include <benchmark/benchmark.h>
#include <oneapi/tbb/global_control.h>

#include <chrono>
#include <vector>

namespace {

const tbb::global_control twoThreads(tbb::global_control::max_allowed_parallelism, 2);

constexpr double DragBudgetSeconds = 0.016;

const TsDemoPlate& uhdDemo() {
    static const TsDemoPlate demo(TsDemoPlate::Options{3840, 2160, 1});
    return demo;
}

// Settings with every stage at work: the demo's default key, two patches, the
// degrain box, spill and a light wrap.
TsKeyerSettings busySettings() {
    TsKeyerSettings settings = uhdDemo().makeDefaultSettings();
    const CoRgbColorTyped<float> key = settings.keyColors[0];
    settings.patches.push_back(
        {TsUtils::computeMinimalBoxMatrix({{0.5f, 0.3f, 0.2f, 1}, {0.6f, 0.4f, 0.3f, 1}}), 2, 0.2,
         0.3});
    settings.patches.push_back(
        {TsUtils::computeMinimalBoxMatrix({{key.r, key.g, key.b, 1}, {0.3f, 0.25f, 0.15f, 1}}), 1,
         0.0, 0.5});
    settings.degrainBox = TsUtils::arrangeMatrixForPatchEdge(
        key, TsUtils::computeMinimalBoxMatrix(
                 {{key.r - 0.02f, key.g - 0.03f, key.b - 0.02f, 1}, {key.r, key.g, key.b, 1}}));
    settings.degrainOn = true;
    settings.spill = {0.8, 0.6};
    settings.blend = {0.5, 0.5};
    return settings;
}

void BM_PlainCopy(benchmark::State& state) {
    const PiImage& plate = *uhdDemo().getPlate();
    PiImage out(plate.getWidth(), plate.getHeight());
    for (auto _ : state) {
        copyImage(plate, out);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(plate.getPixelCount()) * 16);
}

// Each iteration also times a plain copy of the bytes the pass reads (outside
// the measured time), so that the ratio compares the two under the same load
// of the machine.
void keyerPass(benchmark::State& state, TsViewMode mode, bool busy) {
    TsKeyerPass pass;
    pass.setPlate(uhdDemo().getPlate());
    const bool withBackground = mode == TsViewMode::Composite;
    if (withBackground) {
        pass.setBackground(uhdDemo().getBackground());
    }
    pass.setSettings(busy ? busySettings() : uhdDemo().makeDefaultSettings());
    const PiImage& plate = *uhdDemo().getPlate();
    const PiImage& background = *uhdDemo().getBackground();
    PiImage out(plate.getWidth(), plate.getHeight());
    PiImage copy(plate.getWidth(), plate.getHeight());
    PiImage backgroundCopy(background.getWidth(), background.getHeight());
    double passSeconds = 0.0, copySeconds = 0.0;
    for (auto _ : state) {
        state.PauseTiming();
        auto start = std::chrono::steady_clock::now();
        copyImage(plate, copy);
        if (withBackground) {
            copyImage(background, backgroundCopy);
        }
        copySeconds +=
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        benchmark::DoNotOptimize(copy.data());
        benchmark::DoNotOptimize(backgroundCopy.data());
        state.ResumeTiming();
        start = std::chrono::steady_clock::now();
        pass.render(mode, out);
        passSeconds +=
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        benchmark::DoNotOptimize(out.data());
    }
    state.counters["copy_ms"] = 1e3 * copySeconds / static_cast<double>(state.iterations());
    state.counters["copy_ratio"] = passSeconds / copySeconds;
}

void BM_KeyerPassForeground(benchmark::State& state) {
    keyerPass(state, TsViewMode::Foreground, false);
}
void BM_KeyerPassForegroundAllStages(benchmark::State& state) {
    keyerPass(state, TsViewMode::Foreground, true);
}
void BM_KeyerPassMatte(benchmark::State& state) {
    keyerPass(state, TsViewMode::Matte, false);
}
void BM_KeyerPassCompositeAllStages(benchmark::State& state) {
    keyerPass(state, TsViewMode::Composite, true);
}

// One step of a drag on a slider bar: the parameter moves, the viewer image
// is keyed again from the proxy (built once, before the drag).
void dragStep(benchmark::State& state, TsViewMode mode) {
    TsKeyerPass pass;
    pass.setPlate(uhdDemo().getPlate());
    pass.setBackground(uhdDemo().getBackground());
    TsKeyerSettings settings = busySettings();
    pass.setSettings(settings);
    PiImage viewer;
    pass.renderViewer(mode, 1920, viewer); // the proxy, as when the drag begins
    const TsDisplayTransform display;
    std::vector<unsigned char> shown(4 * viewer.getPixelCount());
    int step = 0;
    for (auto _ : state) {
        settings.matte[0] = 0.3 + 0.4 * ((step++ % 100) / 100.0);
        pass.setSettings(settings);
        pass.renderViewer(mode, 1920, viewer);
        display.applyImage(viewer, shown.data(), 4 * static_cast<std::size_t>(viewer.getWidth()));
        benchmark::DoNotOptimize(shown.data());
    }
    state.counters["width"] = viewer.getWidth();
    state.counters["budget_share"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * DragBudgetSeconds,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_DragStepComposite(benchmark::State& state) {
    dragStep(state, TsViewMode::Composite);
}
void BM_DragStepMatte(benchmark::State& state) {
    dragStep(state, TsViewMode::Matte);
}

BENCHMARK(BM_PlainCopy)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_KeyerPassForeground)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_KeyerPassForegroundAllStages)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_KeyerPassMatte)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_KeyerPassCompositeAllStages)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_DragStepComposite)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_DragStepMatte)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
