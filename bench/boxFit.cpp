// The sample-patch fit of a large pick: the distinct colours of 1,000,000
// picked colours and the tightest box around them (budget 30 ms).
//
// Two picks: a float plate, where grain makes nearly every colour distinct
// (the hard case for the hash table), and an 8-bit plate, where the million
// colours fall on a few thousand values. Each reports its time as a share of
// the budget (budget_share; 1 = 30 ms).
#include <tesseraUtil/tsUtils.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

namespace {

constexpr int PickSize = 1000000;
constexpr double BudgetSeconds = 0.030;

List<CoRgbaColorTyped<float>> makePick(bool quantised) {
    std::mt19937 rng(3);
    std::normal_distribution<float> grain(0.0f, 0.01f);
    List<CoRgbaColorTyped<float>> pick;
    pick.reserve(PickSize);
    // A 1000 x 1000 drag across a green screen and into a subject.
    for (int j = 0; j < 1000; ++j) {
        for (int i = 0; i < 1000; ++i) {
            const float t = i < 700 ? 0.0f : std::min(1.0f, (i - 700) / 100.0f);
            float r = 0.1f + 0.5f * t + grain(rng);
            float g = 0.5f - 0.1f * t + grain(rng);
            float b = 0.12f + 0.2f * t + grain(rng);
            if (quantised) {
                r = std::round(r * 255.0f) / 255.0f;
                g = std::round(g * 255.0f) / 255.0f;
                b = std::round(b * 255.0f) / 255.0f;
            }
            pick.append({r, g, b, 1.0f});
        }
    }
    return pick;
}

void fit(benchmark::State& state, bool quantised) {
    const List<CoRgbaColorTyped<float>> pick = makePick(quantised);
    std::size_t distinct = 0;
    for (auto _ : state) {
        const Vector<CoRgbaColorTyped<float>> unique = TsUtils::makeUnique(pick);
        const CoAffineMatrixTyped<float> box = TsUtils::computeMinimalBoxMatrix(unique);
        benchmark::DoNotOptimize(box);
        distinct = unique.size();
    }
    state.counters["distinct"] = static_cast<double>(distinct);
    // Seconds per iteration over the budget: the rate of (iterations x budget)
    // per second, inverted.
    state.counters["budget_share"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * BudgetSeconds,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_BoxFitFloatPick(benchmark::State& state) {
    fit(state, false);
}
void BM_BoxFitEightBitPick(benchmark::State& state) {
    fit(state, true);
}

BENCHMARK(BM_BoxFitFloatPick)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_BoxFitEightBitPick)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
