#include <pluginAPI/piDisplayTransform.h>
#include <pluginAPI/piViewRenderer.h>

PiViewRenderer::~PiViewRenderer() = default;

PiViewRenderInterface::~PiViewRenderInterface() = default;

PiDisplayTransform::~PiDisplayTransform() = default;
