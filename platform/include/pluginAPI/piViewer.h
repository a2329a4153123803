#pragma once

#include <base/gePoint2.h>
#include <base/rcShdPtr.h>
#include <pluginAPI/pluginAPIExport.h>

#include <string>

class VwView;
class PiNode;
class PiPath;
class PiCommandStack;
class PiEventHandler;
class TmTimeClient;

// A viewer as plug-ins see it: a window that shows a node of the graph, takes
// the pointer and the keyboard and hands them to its current event handler.
// The host's viewer widget implements it; tests implement it without a
// window.
class TS_PLUGIN_API PiViewer {
public:
    PiViewer() = default;
    PiViewer(const PiViewer&) = delete;
    PiViewer& operator=(const PiViewer&) = delete;
    virtual ~PiViewer();

    // The view: zoom, pan, viewport, and while the viewer paints, the painter.
    virtual const VwView& getView() const = 0;
    // Asks for a repaint soon; cheap, may be called for every event.
    virtual void redraw() = 0;

    // The time source of the viewer (its current frame); inputs are read and
    // written at that time through a PiTimePath.
    virtual const TmTimeClient* getTimeClient() const = 0;

    // The node shown and its path; empty when the viewer shows nothing.
    virtual RCShdPtr<PiNode> getNode() const = 0;
    virtual RCShdPtr<PiPath> getPath() const = 0;
    // The command stack of the graph of the node shown, on which viewer tools
    // open their undo steps; null when the viewer shows no node.
    virtual PiCommandStack* getCommandStack() const = 0;

    // The handler that receives this viewer's events; may be empty.
    virtual RCShdPtr<PiEventHandler> getCurrentEventHandler() const = 0;

    // The output stream of the node that interaction (picking) works on.
    virtual int getInteractionStream() const;

    // The window position of a screen position (see PiEventContext). A
    // viewer without a window answers the point unchanged.
    virtual GePoint2<float> mapFromGlobal(const GePoint2<float>& global) const;

    // A tool that the current handler does not hold was asked for: a viewer
    // that offers several stages of its node switches to the stage that owns
    // the tool and makes it current there. Answers whether the tool is now
    // current. The default changes nothing.
    virtual bool offerTool(const std::string& toolName);
};
