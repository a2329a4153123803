#pragma once

#include <base/cbDispatcher.h>
#include <base/cbEmptyType.h>
#include <base/rcShdPtr.h>
#include <pluginAPI/pluginAPIExport.h>

#include <vector>

class PiEventHandler;
class PiViewer;

// The application's view of viewer event handling (one per application): the
// current viewer and its event handler, and listeners that are called when
// the current viewer changes or its handler is replaced.
//
// Viewers report themselves: viewerCreated when made (the first one made
// becomes current), setCurrentViewer when a viewer becomes current (it gets
// the focus), handlerReplaced when a viewer installs another handler,
// viewerDestroyed when it goes. When the current viewer goes, the viewer
// that was current before it (or else the one made last) takes its place,
// as the focus would go back to it.
class TS_PLUGIN_API PiEventHandlingInterface {
public:
    static PiEventHandlingInterface& getInstance();

    // The current viewer's handler; empty with no current viewer.
    RCShdPtr<PiEventHandler> getCurrentEventHandler() const;
    PiViewer* getCurrentViewer() const { return _viewer; }

    void addCurrentEventHandlerChangedCallback(CbHandler<CbEmptyType>* handler);
    void removeCurrentEventHandlerChangedCallback(CbHandler<CbEmptyType>* handler);

    // Host side. Listeners are called, their exceptions contained and
    // reported, when the current handler may have changed.
    void viewerCreated(PiViewer& viewer);
    void setCurrentViewer(PiViewer* viewer);
    void handlerReplaced(PiViewer& viewer);
    void viewerDestroyed(PiViewer& viewer);

private:
    PiEventHandlingInterface() = default;
    void notify();

    PiViewer* _viewer = nullptr;
    // Every live viewer, the most recently current last.
    std::vector<PiViewer*> _recent;
    CbDispatcher<CbEmptyType> _changed;
};
