#include "tsOcioConfig.h"

#include <tesseraCore/colour/tsColour.h>
#include <tesseraCore/colour/tsDisplayTransform.h>

#include <base/exReporter.h>
#include <pluginAPI/piImage.h>

#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_for.h>

#include <algorithm>
#include <cmath>

namespace {

bool holds(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

} // namespace

class TsDisplayTransform::Processor {
public:
    OCIO::ConstCPUProcessorRcPtr cpu; // null when the configuration could not make one
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
        OCIO::PackedImageDesc src(const_cast<float*>(rgba), width, 1, OCIO::CHANNEL_ORDERING_RGBA,
                                  OCIO::BIT_DEPTH_F32, sizeof(float), 4 * sizeof(float),
                                  static_cast<std::ptrdiff_t>(4 * sizeof(float) * count));
        OCIO::PackedImageDesc dst(out, width, 1, OCIO::CHANNEL_ORDERING_RGBA, OCIO::BIT_DEPTH_UINT8,
                                  1, 4, static_cast<std::ptrdiff_t>(4 * count));
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
        made->cpu = c.config->getProcessor(group)->getOptimizedCPUProcessor(
            OCIO::BIT_DEPTH_F32, OCIO::BIT_DEPTH_UINT8, OCIO::OPTIMIZATION_DEFAULT);
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
