// The colour-space view on a UHD plate (the demo plate at 3840 x 2160, keyed
// on its screen): building the point cloud at the default budget (the
// subsample and its matte), and one redraw of the view at 800 x 600 (points,
// level lines, boxes, axes and labels). Baselines in the same run: a plain
// copy of the whole plate (a pass over the same pixels), and a plain draw of
// an 800 x 600 picture into another (what a widget paint of a finished
// picture costs). The budget for a redraw is 16 ms.
// oneTBB before Qt, whose emit macro it would trip over.
#include "plainCopy.h"

#include "host/colourSpacePicture.h"

#include <tesseraCore/colourspace/tsCsMatte.h>
#include <tesseraCore/demo/tsDemoPlate.h>
#include <ui/uiApplication.h>

#include <QPainter>

#include <benchmark/benchmark.h>

#include <cstdlib>

namespace {

const TsDemoPlate& demo() {
    static const TsDemoPlate plate([] {
        TsDemoPlate::Options options;
        options.width = 3840;
        options.height = 2160;
        return options;
    }());
    return plate;
}

TsKeyerSettings key() {
    TsKeyerSettings settings;
    const PiImage& plate = *demo().getPlate();
    const CoRgbaColorTyped<float> screen = plate.getPixel(16, plate.getHeight() - 16);
    settings.keyColors = {CoRgbColorTyped<float>{screen.r, screen.g, screen.b},
                          CoRgbColorTyped<float>{screen.r, screen.g, screen.b}};
    return settings;
}

void BM_PlainCopyOfThePlate(benchmark::State& state) {
    const PiImage& plate = *demo().getPlate();
    PiImage copy(plate.getWidth(), plate.getHeight());
    for (auto _ : state) {
        copyImage(plate, copy);
        benchmark::DoNotOptimize(copy.data());
    }
}

void BM_BuildCloud(benchmark::State& state) {
    const PiImage& plate = *demo().getPlate();
    const TsCsMatte matte(key());
    TsCsCloud cloud;
    for (auto _ : state) {
        cloud.build(plate);
        cloud.computeMatte(matte);
        benchmark::DoNotOptimize(cloud.alpha.data());
    }
    state.counters["points"] = cloud.size();
}

void BM_PlainDrawOfAPicture(benchmark::State& state) {
    QImage from(800, 600, QImage::Format_RGB32);
    from.fill(Qt::darkGray);
    QImage to(800, 600, QImage::Format_RGB32);
    for (auto _ : state) {
        QPainter(&to).drawImage(0, 0, from);
        benchmark::DoNotOptimize(to.bits());
    }
}

void BM_Redraw(benchmark::State& state) {
    ColourSpacePicture picture;
    picture.follow(demo().getPlate(), key());
    picture.frame();
    QImage image(800, 600, QImage::Format_RGB32);
    for (auto _ : state) {
        picture.camera.azimuth += 1.0;
        picture.draw(image);
        benchmark::DoNotOptimize(image.bits());
    }
    state.counters["points"] = picture.getCloud().size();
}

} // namespace

BENCHMARK(BM_PlainCopyOfThePlate)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_BuildCloud)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_PlainDrawOfAPicture)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_Redraw)->Unit(benchmark::kMillisecond)->UseRealTime();

int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    UiApplication::getInstance();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
