#pragma once

#include <pluginAPI/piImage.h>
#include <pluginAPI/pluginAPIExport.h>

#include <memory>
#include <string>
#include <vector>

// Renders the views of one node for one viewer, keeping what it made last so
// that a redraw with nothing changed costs nothing. Made by the node's
// PiViewRenderInterface; it holds the node for as long as it lives.
class TS_PLUGIN_API PiViewRenderer {
public:
    PiViewRenderer() = default;
    PiViewRenderer(const PiViewRenderer&) = delete;
    PiViewRenderer& operator=(const PiViewRenderer&) = delete;
    virtual ~PiViewRenderer();

    // The view named `view` at `time`: at full resolution when `width` is 0,
    // else reduced to at most `width` pixels wide (a viewer while the user
    // drags). Empty when the node has nothing to show (no plate). A view the
    // node does not offer is an assertion failure.
    virtual PiImagePtr render(const std::string& view, double time, int width) = 0;
};

// Offered by a node's controller whose node shows itself in a viewer in
// several views (the keyer: its source, matte, status, foreground and
// composite). The viewer asks here for the images it paints; without it, the
// viewer paints the image input of the node's PiImageModifier.
class TS_PLUGIN_API PiViewRenderInterface {
public:
    PiViewRenderInterface() = default;
    PiViewRenderInterface(const PiViewRenderInterface&) = delete;
    PiViewRenderInterface& operator=(const PiViewRenderInterface&) = delete;
    virtual ~PiViewRenderInterface();

    // The views, in the order a menu lists them.
    virtual std::vector<std::string> getViews() const = 0;
    // The view a viewer shows first.
    virtual std::string getDefaultView() const = 0;
    virtual std::unique_ptr<PiViewRenderer> createViewRenderer() = 0;
};
