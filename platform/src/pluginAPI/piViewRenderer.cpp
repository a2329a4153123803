#include <pluginAPI/piDisplayTransform.h>
#include <pluginAPI/piImage.h>
#include <pluginAPI/piViewRenderer.h>

PiViewRenderer::~PiViewRenderer() = default;

PiViewRenderInterface::~PiViewRenderInterface() = default;

PiDisplayTransform::~PiDisplayTransform() = default;

void PiDisplayTransform::applyImage(const PiImage& image, unsigned char* out,
                                    std::size_t outStride) const {
    const int h = image.getHeight();
    for (int j = 0; j < h; ++j) {
        apply(image.row(j), out + static_cast<std::size_t>(h - 1 - j) * outStride,
              static_cast<std::size_t>(image.getWidth()));
    }
}
