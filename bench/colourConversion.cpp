// Colour conversion against its budget, two threads: a UHD float RGBA plate
// converted from ACEScg into the working space (as a plate is on read) in at
// most 1.5 times a plain copy of the same bytes (copy_ratio; the copy is
// timed in every iteration beside the conversion, copy_ms).
//
// The plate is the demo plate generated at 3840 x 2160, taken to ACEScg
// once.
#include "plainCopy.h"

#include <tesseraCore/colour/tsColour.h>
#include <tesseraCore/colour/tsDisplayTransform.h>
#include <tesseraCore/demo/tsDemoPlate.h>

#include <benchmark/benchmark.h>
#include <oneapi/tbb/global_control.h>

#include <chrono>
#include <stdexcept>
#include <vector>

namespace {

const tbb::global_control twoThreads(tbb::global_control::max_allowed_parallelism, 2);

const PiImage& acesCgPlate() {
    static const PiImagePtr plate = [] {
        const TsDemoPlate demo(TsDemoPlate::Options{3840, 2160, 1});
        auto image = rcMake<PiImage>(*demo.getPlate());
        std::string error;
        if (!TsColour::convert(*image, TsColour::getWorkingSpace(), "ACEScg", error)) {
            throw std::runtime_error(error);
        }
        return image;
    }();
    return *plate;
}

// Each iteration copies the ACEScg plate afresh (timed apart, as the
// baseline) and converts the copy in place.
void BM_AcesCgToWorkingSpace(benchmark::State& state) {
    const PiImage& plate = acesCgPlate();
    const std::string working = TsColour::getWorkingSpace();
    PiImage work(plate.getWidth(), plate.getHeight());
    double convertSeconds = 0.0, copySeconds = 0.0;
    std::string error;
    for (auto _ : state) {
        state.PauseTiming();
        auto start = std::chrono::steady_clock::now();
        copyImage(plate, work);
        copySeconds +=
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        benchmark::DoNotOptimize(work.data());
        state.ResumeTiming();
        start = std::chrono::steady_clock::now();
        if (!TsColour::convert(work, "ACEScg", working, error)) {
            state.SkipWithError(error.c_str());
            break;
        }
        convertSeconds +=
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        benchmark::DoNotOptimize(work.data());
    }
    state.counters["copy_ms"] = 1e3 * copySeconds / static_cast<double>(state.iterations());
    state.counters["copy_ratio"] = convertSeconds / copySeconds;
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(plate.getPixelCount()) * 16);
}

// The viewer's display transform alone, on a 1920 x 1080 image: its share
// of the drag step's budget (the drag step itself, with it, is in
// bench_keyerPass).
void BM_DisplayTransform1920(benchmark::State& state) {
    PiImage image(1920, 1080);
    const PiImage& plate = acesCgPlate();
    for (int j = 0; j < image.getHeight(); ++j) {
        std::copy(plate.row(j), plate.row(j) + 4 * 1920, image.row(j));
    }
    const TsDisplayTransform display;
    std::vector<unsigned char> shown(4 * image.getPixelCount());
    for (auto _ : state) {
        display.applyImage(image, shown.data(), 4 * 1920);
        benchmark::DoNotOptimize(shown.data());
    }
}

BENCHMARK(BM_AcesCgToWorkingSpace)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_DisplayTransform1920)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
