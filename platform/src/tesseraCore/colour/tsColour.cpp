#include <tesseraCore/colour/tsColour.h>

#include <algorithm>
#include <cmath>

namespace {

unsigned char toByte(float v) {
    return static_cast<unsigned char>(std::lround(std::clamp(v, 0.0f, 1.0f) * 255.0f));
}

class DisplayTransform : public PiDisplayTransform {
public:
    void apply(const float* rgba, unsigned char* out, std::size_t count) const override {
        for (std::size_t i = 0; i < count; ++i, rgba += 4, out += 4) {
            for (int c = 0; c < 3; ++c) {
                const float v = rgba[c];
                out[c] = !(v > 0.0f) ? 0 : v >= 1.0f ? 255 : toByte(TsColour::encode(v));
            }
            out[3] = toByte(rgba[3]);
        }
    }
};

} // namespace

float TsColour::decode(float v) {
    return v <= 0.04045f ? v / 12.92f : std::pow((v + 0.055f) / 1.055f, 2.4f);
}

float TsColour::encode(float v) {
    return v <= 0.0031308f ? v * 12.92f : 1.055f * std::pow(v, 1.0f / 2.4f) - 0.055f;
}

const PiDisplayTransform& TsColour::getDisplayTransform() {
    static const DisplayTransform transform;
    return transform;
}
