// A shot through the batch render against its budgets, two threads:
//
// - throughput: a sequence of UHD half-float EXR frames read, keyed with every
//   stage on and written as matte and composite (TsShotRender), at most 1.3
//   times the input-output floor: the same frames read and written as the
//   render writes them (matte and composite) through OpenImageIO by the same
//   kind of pipeline, timed in the same run (floor_ratio; fps);
// - scrubbing: one step to a frame the timeline read ahead into the frame
//   cache, to the viewer's image at 1920 wide, within 16 ms (budget_share);
//   the plate read of a frame that is not cached is reported on its own
//   (read_ms);
// - memory: a render of 1,000 frames holds no more than one of 10 (the growth
//   of the peak resident size across the long render, rss_growth_mb).
//
// TESSERA_BENCH_SHOT="FRAMES WIDTH HEIGHT" changes the throughput shot
// (default "48 3840 2160"); its frames are generated once into a temporary
// directory.
#include "support/benchShot.h"

#include <tesseraCore/io/tsFrameCache.h>
#include <tesseraCore/io/tsSequenceClip.h>
#include <tesseraCore/render/tsShotRender.h>
#include <tesseraCore/render/tsViewRender.h>
#include <tesseraCore/tsKeyerScene.h>

#include <OpenImageIO/imageio.h>
#include <benchmark/benchmark.h>
#include <oneapi/tbb/global_control.h>
#include <oneapi/tbb/parallel_pipeline.h>

#include <sys/resource.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <sstream>

namespace {

const tbb::global_control twoThreads(tbb::global_control::max_allowed_parallelism, 2);

namespace fs = std::filesystem;

struct ShotSize {
    int frames = 48;
    int width = 3840;
    int height = 2160;
};

ShotSize shotSize() {
    ShotSize size;
    if (const char* env = std::getenv("TESSERA_BENCH_SHOT")) {
        std::istringstream(env) >> size.frames >> size.width >> size.height;
    }
    return size;
}

const BenchShot& uhdShot() {
    static const ShotSize size = shotSize();
    static const BenchShot shot("shot", size.frames, size.width, size.height);
    return shot;
}

double seconds(std::chrono::steady_clock::time_point since) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

// The floor: each frame read and written as the render writes it, the matte
// as its one channel A and the composite as RGBA, in a pipeline of the same
// shape and tokens.
double ioFloor(const BenchShot& shot, const std::string& outDir) {
    const auto start = std::chrono::steady_clock::now();
    int next = shot.first();
    oneapi::tbb::parallel_pipeline(
        4,
        oneapi::tbb::make_filter<void, int>(oneapi::tbb::filter_mode::serial_in_order,
                                            [&](oneapi::tbb::flow_control& fc) {
                                                if (next > shot.last()) {
                                                    fc.stop();
                                                    return 0;
                                                }
                                                return next++;
                                            }) &
            oneapi::tbb::make_filter<int, void>(oneapi::tbb::filter_mode::parallel, [&](int frame) {
                auto in = OIIO::ImageInput::open(shot.path(frame));
                const OIIO::ImageSpec spec = in->spec();
                std::vector<float> pixels(spec.image_pixels() * 4);
                in->read_image(0, 0, 0, 4, OIIO::TypeDesc::FLOAT, pixels.data());
                in->close();
                for (const int channels : {1, 4}) {
                    const std::string path = outDir + "/" + (channels == 1 ? "matte" : "comp") +
                                             "." + std::to_string(frame) + ".exr";
                    auto out = OIIO::ImageOutput::create(path);
                    OIIO::ImageSpec outSpec(spec.width, spec.height, channels,
                                            OIIO::TypeDesc::FLOAT);
                    if (channels == 1) {
                        outSpec.channelnames = {"A"};
                    }
                    out->open(path, outSpec);
                    // The matte: the plate's alpha, every fourth float.
                    out->write_image(OIIO::TypeDesc::FLOAT, pixels.data() + (4 - channels),
                                     4 * sizeof(float));
                    out->close();
                }
            }));
    return seconds(start);
}

void BM_ShotRender(benchmark::State& state) {
    const BenchShot& shot = uhdShot();
    TsKeyerScene scene;
    std::string error;
    scene.setPlate(TsSequenceClip::open(shot.pattern(), {"", TsMissingFrames::Refuse}, "", error),
                   "shot");
    const RCShdPtr<TsKeyerNode> node = scene.getActiveNode();
    BenchShot::keyEveryStage(*node);
    const std::string outDir = shot.outputDir();
    const std::vector<TsShotRender::Output> outputs = {
        {"matte", TsViewMode::Matte, outDir + "/matte.####.exr"},
        {"comp", TsViewMode::Composite, outDir + "/comp.####.exr"}};
    double rendered = 0.0;
    double floor = 0.0;
    for (auto _ : state) {
        state.PauseTiming();
        floor += ioFloor(shot, outDir);
        state.ResumeTiming();
        const auto start = std::chrono::steady_clock::now();
        TsShotRender::Options options;
        options.frames = {shot.first(), shot.last(), false};
        const TsShotRender::Result result = TsShotRender::run(*node, outputs, options);
        if (!result.ok) {
            state.SkipWithError(result.error.c_str());
            return;
        }
        rendered += seconds(start);
    }
    const double n = static_cast<double>(state.iterations());
    state.counters["fps"] = shot.frames() * n / rendered;
    state.counters["floor_fps"] = shot.frames() * n / floor;
    state.counters["floor_ratio"] = rendered / floor;
}

// One frame step in the viewer: the frame is in the cache; the keyed image at
// viewer resolution is made from it (its proxy, then the keyer pass).
void BM_ScrubStep(benchmark::State& state) {
    const BenchShot& shot = uhdShot();
    TsKeyerScene scene;
    std::string error;
    const RCShdPtr<TsSequenceClip> clip =
        TsSequenceClip::open(shot.pattern(), {"", TsMissingFrames::Refuse}, "", error);
    scene.setPlate(clip, "shot");
    const RCShdPtr<TsKeyerNode> node = scene.getActiveNode();
    BenchShot::keyEveryStage(*node);
    TsViewRenderer renderer(node);
    // The viewer shows one frame and the timeline reads the next one ahead,
    // which comes with its copy reduced for the viewer; the steps alternate
    // between the two. A plate read of its own is timed apart.
    const int a = shot.first();
    const int b = std::min(shot.first() + 1, shot.last());
    const auto readStart = std::chrono::steady_clock::now();
    benchmark::DoNotOptimize(clip->readFrame(b));
    const double read = seconds(readStart);
    renderer.render("composite", a, 1920);
    clip->readAhead(a, 1);
    TsFrameCache::getInstance().waitForReadAhead();
    int step = 0;
    const auto start = std::chrono::steady_clock::now();
    for (auto _ : state) {
        benchmark::DoNotOptimize(renderer.render("composite", (step++ % 2) ? b : a, 1920));
    }
    const double perStep = seconds(start) / static_cast<double>(state.iterations());
    state.counters["read_ms"] = 1e3 * read;
    state.counters["budget_share"] = perStep / 0.016;
}

long peakResidentKb() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

// The peak resident size grows by a render of 10 frames, then not (more than
// noise) by one of 1,000: memory does not grow with the range.
void BM_RenderMemory(benchmark::State& state) {
    static const BenchShot shot("memory", 1000, 512, 288);
    TsKeyerScene scene;
    std::string error;
    scene.setPlate(TsSequenceClip::open(shot.pattern(), {"", TsMissingFrames::Refuse}, "", error),
                   "memory");
    const RCShdPtr<TsKeyerNode> node = scene.getActiveNode();
    BenchShot::keyEveryStage(*node);
    const std::vector<TsShotRender::Output> outputs = {
        {"matte", TsViewMode::Matte, shot.outputDir() + "/matte.####.exr"}};
    long afterTen = 0;
    long afterThousand = 0;
    for (auto _ : state) {
        TsShotRender::Options options;
        options.frames = {1, 10, false};
        TsShotRender::run(*node, outputs, options);
        afterTen = peakResidentKb();
        options.frames = {1, 1000, false};
        TsShotRender::run(*node, outputs, options);
        afterThousand = peakResidentKb();
    }
    state.counters["rss_after_10_mb"] = afterTen / 1024.0;
    state.counters["rss_growth_mb"] = (afterThousand - afterTen) / 1024.0;
}

} // namespace

BENCHMARK(BM_ShotRender)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_ScrubStep)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RenderMemory)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_MAIN();
