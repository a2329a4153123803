#pragma once

#include <pluginAPI/piDisplayTransform.h>
#include <tesseraCore/tesseraCoreExport.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

// What a viewer shows the working space through: the configuration's display
// and view (TsColour), after an exposure (stops, on the scene-linear values)
// and before a gamma (a power of 1/gamma on the display's values), as 8 bits
// a component. It changes only what is shown.
//
// It starts on the configuration's default display and view. When another
// configuration comes into use and lacks the display or the view, the
// transform falls back to that configuration's default display and view.
class TS_CORE_API TsDisplayTransform : public PiDisplayTransform {
public:
    TsDisplayTransform();
    ~TsDisplayTransform() override;

    // An empty view is the display's default one. False and `error` (naming
    // the configuration and listing what it has) for a display or view it
    // does not hold; nothing changes then.
    bool setDisplay(const std::string& display, const std::string& view, std::string& error);
    // Exposure: any finite number of stops. Gamma: finite and above 0.
    bool setExposure(double stops, std::string& error);
    bool setGamma(double gamma, std::string& error);

    std::string getDisplay() const;
    std::string getView() const;
    double getExposure() const { return _exposure; }
    double getGamma() const { return _gamma; }

    void apply(const float* rgba, unsigned char* out, std::size_t count) const override;
    void applyImage(const PiImage& image, unsigned char* out, std::size_t outStride) const override;

private:
    class Processor;
    // The processor for the current settings and configuration, made when
    // either changed.
    std::shared_ptr<const Processor> processor() const;
    // The same under the lock; a failure to make one is left in `failure`
    // for the caller to report once the lock is released.
    std::shared_ptr<const Processor> make(std::string& failure) const;

    mutable std::string _display;
    mutable std::string _view;
    double _exposure = 0.0;
    double _gamma = 1.0;
    mutable std::mutex _mutex;
    mutable std::shared_ptr<const Processor> _processor;
};
