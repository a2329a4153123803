#pragma once

#include <base/rcShdPtr.h>
#include <base/rcStrongPtr.h>
#include <pluginAPI/pluginAPIExport.h>

#include <string>
#include <vector>

class PiEventHandler;
class PiNode;
class PiPath;
class PiViewer;

// Offered by a node's controller whose node can be edited in a viewer in
// several stages, each with its own event handler and tools (the keyer:
// "matte", "degrain", "spill"). The viewer shows one stage at a time; it asks
// here for the stage's handler, and which stage owns a tool that is asked for
// by name.
class TS_PLUGIN_API PiViewerStageInterface {
public:
    PiViewerStageInterface() = default;
    PiViewerStageInterface(const PiViewerStageInterface&) = delete;
    PiViewerStageInterface& operator=(const PiViewerStageInterface&) = delete;
    virtual ~PiViewerStageInterface();

    // The stages, the default first.
    virtual std::vector<std::string> getViewerStages() const = 0;
    // A new handler of the stage for this viewer and node; empty for an
    // unknown stage or when the stage cannot make one (reported).
    virtual RCStrongPtr<PiEventHandler> createViewerEventHandler(const std::string& stage,
                                                                 PiViewer& viewer,
                                                                 const RCShdPtr<PiNode>& node,
                                                                 const RCShdPtr<PiPath>& path) = 0;
    // The stage that owns the named tool, or "" when none does.
    virtual std::string getViewerStageOfTool(const std::string& toolName) const = 0;
};
