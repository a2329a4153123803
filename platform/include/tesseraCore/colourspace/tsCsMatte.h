#pragma once

#include <tesseraCore/tesseraCoreExport.h>
#include <tesseraCore/tsKeyerSettings.h>

#include <base/coRgbColorTyped.h>

#include <memory>

class TsMatteStage;

// The matte of single colours, as the colour-space view shows it: the one
// place where the view asks the keyer's matte model, so that a new model
// changes this file and nothing else of the view.
class TS_CORE_API TsCsMatte {
public:
    explicit TsCsMatte(const TsKeyerSettings& settings);
    ~TsCsMatte();
    TsCsMatte(const TsCsMatte&) = delete;
    TsCsMatte& operator=(const TsCsMatte&) = delete;

    float alphaOf(const CoRgbColorTyped<float>& c) const;
    // The alpha of n colours given as three planes.
    void alphas(const float* r, const float* g, const float* b, float* alpha, int n) const;
    // The blended key colour the matte is measured from.
    const CoRgbColorTyped<float>& getKeyColour() const;

private:
    std::unique_ptr<const TsMatteStage> _stage;
};
