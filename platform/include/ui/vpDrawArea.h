#pragma once

#include <base/rcShdPtr.h>
#include <ui/uiExport.h>

class PiEventHandler;
class PiViewer;

// The drawing area of a viewer: what the main window's widget lookup
// (UiMainWindow::getWidgetAt) answers over a viewer, and the way from a
// window position to the viewer and its current event handler.
class TS_UI_API VpDrawArea {
public:
    VpDrawArea() = default;
    VpDrawArea(const VpDrawArea&) = delete;
    VpDrawArea& operator=(const VpDrawArea&) = delete;
    virtual ~VpDrawArea();

    virtual PiViewer& getViewer() = 0;
    virtual RCShdPtr<PiEventHandler> getCurrentEventHandler() const = 0;
};
