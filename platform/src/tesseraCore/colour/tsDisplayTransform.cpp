#include "tsOcioConfig.h"

#include <tesseraCore/colour/tsColour.h>
#include <tesseraCore/colour/tsDisplayTransform.h>

#include <base/exReporter.h>
#include <pluginAPI/piImage.h>

#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_for.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#if defined(__x86_64__)
#include <cpuid.h>
#include <immintrin.h>
#endif

namespace {

bool holds(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

// The library evaluates a view's curves on float input one value at a time,
// but through tables on half-float input; the processor takes half floats
// where the processor can convert to them quickly (F16C, every x86-64
// processor of the last decade), so that a viewer image fits a drag's
// budget.
#if defined(__x86_64__)
__attribute__((target("avx,f16c"))) void toHalf(const float* in, std::uint16_t* out,
                                                std::size_t count) {
    std::size_t i = 0;
    for (; i + 8 <= count; i += 8) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i),
                         _mm256_cvtps_ph(_mm256_loadu_ps(in + i), _MM_FROUND_TO_NEAREST_INT));
    }
    for (; i < count; ++i) {
        out[i] = static_cast<std::uint16_t>(
            _mm_extract_epi16(_mm_cvtps_ph(_mm_set_ss(in[i]), _MM_FROUND_TO_NEAREST_INT), 0));
    }
}

// AVX and F16C, asked of the processor itself (CPUID leaf 1: F16C is ECX
// bit 29, AVX bit 28, and the system saves the AVX registers when OSXSAVE,
// bit 27, is set and XCR0 holds the SSE and AVX state), which every compiler
// answers alike.
bool halfInput() {
    static const bool supported = [] {
        unsigned a = 0, b = 0, c = 0, d = 0;
        if (!__get_cpuid(1, &a, &b, &c, &d)) {
            return false;
        }
        const bool f16c = (c >> 29) & 1u;
        const bool avx = (c >> 28) & 1u;
        const bool osxsave = (c >> 27) & 1u;
        if (!(f16c && avx && osxsave)) {
            return false;
        }
        unsigned lo = 0, hi = 0;
        __asm__("xgetbv" : "=a"(lo), "=d"(hi) : "c"(0));
        return (lo & 6u) == 6u;
    }();
    return supported;
}
#else
void toHalf(const float*, std::uint16_t*, std::size_t) {}
bool halfInput() {
    return false;
}
#endif

} // namespace

class TsDisplayTransform::Processor {
public:
    OCIO::ConstCPUProcessorRcPtr cpu; // null when the configuration could not make one
    bool half = false;                // cpu takes half floats (toHalf)
    std::uint64_t revision = 0;

    void apply(const float* rgba, unsigned char* out, std::size_t count) const {
        if (!cpu) {
            // Shown as the values are, clamped.
            for (std::size_t i = 0; i < 4 * count; ++i) {
                out[i] = static_cast<unsigned char>(std::lround(
                    std::clamp(std::isnan(rgba[i]) ? 0.0f : rgba[i], 0.0f, 1.0f) * 255.0f));
            }
            return;
        }
        const auto width = static_cast<long>(count);
        OCIO::PackedImageDesc dst(out, width, 1, OCIO::CHANNEL_ORDERING_RGBA, OCIO::BIT_DEPTH_UINT8,
                                  1, 4, static_cast<std::ptrdiff_t>(4 * count));
        if (half) {
            thread_local std::vector<std::uint16_t> halves;
            halves.resize(4 * count);
            toHalf(rgba, halves.data(), 4 * count);
            OCIO::PackedImageDesc src(halves.data(), width, 1, OCIO::CHANNEL_ORDERING_RGBA,
                                      OCIO::BIT_DEPTH_F16, 2, 8,
                                      static_cast<std::ptrdiff_t>(8 * count));
            cpu->apply(src, dst);
            return;
        }
        OCIO::PackedImageDesc src(const_cast<float*>(rgba), width, 1, OCIO::CHANNEL_ORDERING_RGBA,
                                  OCIO::BIT_DEPTH_F32, sizeof(float), 4 * sizeof(float),
                                  static_cast<std::ptrdiff_t>(4 * sizeof(float) * count));
        cpu->apply(src, dst);
    }
};

TsDisplayTransform::TsDisplayTransform() = default;
TsDisplayTransform::~TsDisplayTransform() = default;

bool TsDisplayTransform::setDisplay(const std::string& display, const std::string& view,
                                    std::string& error) {
    const TsOcio::Current c = TsOcio::current();
    const std::vector<std::string> displays = TsColour::getDisplays();
    if (!holds(displays, display)) {
        error = TsOcio::notFound(c, "display \"" + display + "\"", displays);
        return false;
    }
    const std::vector<std::string> views = TsColour::getViews(display);
    if (!view.empty() && !holds(views, view)) {
        error = TsOcio::notFound(c, "view \"" + view + "\" of display \"" + display + "\"", views);
        return false;
    }
    std::lock_guard lock(_mutex);
    _display = display;
    _view = view.empty() ? TsColour::getDefaultView(display) : view;
    _processor.reset();
    return true;
}

bool TsDisplayTransform::setExposure(double stops, std::string& error) {
    if (!std::isfinite(stops)) {
        error = "an exposure is a finite number of stops";
        return false;
    }
    std::lock_guard lock(_mutex);
    _exposure = stops;
    _processor.reset();
    return true;
}

bool TsDisplayTransform::setGamma(double gamma, std::string& error) {
    if (!std::isfinite(gamma) || !(gamma > 0.0)) {
        error = "a gamma is a number above 0";
        return false;
    }
    std::lock_guard lock(_mutex);
    _gamma = gamma;
    _processor.reset();
    return true;
}

std::string TsDisplayTransform::getDisplay() const {
    processor();
    std::lock_guard lock(_mutex);
    return _display;
}

std::string TsDisplayTransform::getView() const {
    processor();
    std::lock_guard lock(_mutex);
    return _view;
}

std::shared_ptr<const TsDisplayTransform::Processor> TsDisplayTransform::processor() const {
    std::string failure;
    std::shared_ptr<const Processor> p = make(failure);
    if (!failure.empty()) {
        ExReporter::getInstance().report("colour", failure);
    }
    return p;
}

std::shared_ptr<const TsDisplayTransform::Processor>
TsDisplayTransform::make(std::string& failure) const {
    const TsOcio::Current c = TsOcio::current();
    std::lock_guard lock(_mutex);
    if (_processor && _processor->revision == c.revision) {
        return _processor;
    }
    // The settings, brought into this configuration.
    const std::vector<std::string> displays = TsColour::getDisplays();
    if (!holds(displays, _display)) {
        _display = c.config->getDefaultDisplay();
        _view.clear();
    }
    if (!holds(TsColour::getViews(_display), _view)) {
        _view = c.config->getDefaultView(_display.c_str());
    }
    auto made = std::make_shared<Processor>();
    made->revision = c.revision;
    try {
        OCIO::GroupTransformRcPtr group = OCIO::GroupTransform::Create();
        if (_exposure != 0.0) {
            const double k = std::exp2(_exposure);
            const double m44[16] = {k, 0, 0, 0, 0, k, 0, 0, 0, 0, k, 0, 0, 0, 0, 1};
            OCIO::MatrixTransformRcPtr gain = OCIO::MatrixTransform::Create();
            gain->setMatrix(m44);
            group->appendTransform(gain);
        }
        OCIO::DisplayViewTransformRcPtr view = OCIO::DisplayViewTransform::Create();
        view->setSrc(TsColour::getWorkingSpace().c_str());
        view->setDisplay(_display.c_str());
        view->setView(_view.c_str());
        group->appendTransform(view);
        if (_gamma != 1.0) {
            const double p = 1.0 / _gamma;
            const double power[4] = {p, p, p, 1.0};
            OCIO::ExponentTransformRcPtr curve = OCIO::ExponentTransform::Create();
            curve->setValue(power);
            group->appendTransform(curve);
        }
        made->half = halfInput();
        made->cpu = c.config->getProcessor(group)->getOptimizedCPUProcessor(
            made->half ? OCIO::BIT_DEPTH_F16 : OCIO::BIT_DEPTH_F32, OCIO::BIT_DEPTH_UINT8,
            OCIO::OPTIMIZATION_DEFAULT);
    } catch (const OCIO::Exception& ex) {
        failure = "cannot show display \"" + _display + "\", view \"" + _view + "\" of \"" +
                  c.path + "\": " + ex.what();
    }
    _processor = made;
    return made;
}

void TsDisplayTransform::apply(const float* rgba, unsigned char* out, std::size_t count) const {
    processor()->apply(rgba, out, count);
}

void TsDisplayTransform::applyImage(const PiImage& image, unsigned char* out,
                                    std::size_t outStride) const {
    const std::shared_ptr<const Processor> p = processor();
    const int h = image.getHeight();
    const auto w = static_cast<std::size_t>(image.getWidth());
    tbb::parallel_for(tbb::blocked_range<int>(0, h), [&](const tbb::blocked_range<int>& rows) {
        for (int j = rows.begin(); j != rows.end(); ++j) {
            p->apply(image.row(j), out + static_cast<std::size_t>(h - 1 - j) * outStride, w);
        }
    });
}
