#include <pluginAPI/piStreamViewerUtil.h>
#include <pluginAPI/piViewer.h>
#include <pluginAPI/piViewerStageInterface.h>

PiViewer::~PiViewer() = default;

int PiViewer::getInteractionStream() const {
    return 0;
}

GePoint2<float> PiViewer::mapFromGlobal(const GePoint2<float>& global) const {
    return global;
}

bool PiViewer::offerTool(const std::string&) {
    return false;
}

int PiStreamViewerUtil::getInteractionStream(const PiViewer& viewer) {
    return viewer.getInteractionStream();
}

PiViewerStageInterface::~PiViewerStageInterface() = default;
