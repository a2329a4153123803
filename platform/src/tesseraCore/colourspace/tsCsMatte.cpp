#include <tesseraCore/colourspace/tsCsMatte.h>

#include <tesseraCore/img/tsMatteStage.h>

TsCsMatte::TsCsMatte(const TsKeyerSettings& settings)
    : _stage(std::make_unique<const TsMatteStage>(settings)) {}

TsCsMatte::~TsCsMatte() = default;

float TsCsMatte::alphaOf(const CoRgbColorTyped<float>& c) const {
    return _stage->alphaOf(c.r, c.g, c.b);
}

void TsCsMatte::alphas(const float* r, const float* g, const float* b, float* alpha, int n) const {
    _stage->computeAlpha(r, g, b, alpha, n);
}

const CoRgbColorTyped<float>& TsCsMatte::getKeyColour() const {
    return _stage->getKeyColour();
}
