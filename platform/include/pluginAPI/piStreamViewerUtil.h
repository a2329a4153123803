#pragma once

#include <pluginAPI/pluginAPIExport.h>

class PiViewer;

class TS_PLUGIN_API PiStreamViewerUtil {
public:
    // The output stream of the viewed node that the viewer's tools pick from
    // and work on (0 for a node with one stream).
    static int getInteractionStream(const PiViewer& viewer);
};
