#pragma once

#include <base/evEvent.h>
#include <base/gePoint2.h>
#include <pluginAPI/pluginAPIExport.h>

class PiViewer;

// One event on its way through a viewer's event handler: the event and the
// viewer it happened in. Handlers mark the event processed through
// getEvent().setProcessed().
class TS_PLUGIN_API PiEventContext {
public:
    // A device event that carries a screen position (getGlobalCoord) gets its
    // coordinate set to the viewer's window position of that point, so that
    // handlers always see window coordinates of this viewer; this is how an
    // event delivered through a grab (in screen coordinates) is handed to a
    // viewer. Events without a screen position are left as they are.
    PiEventContext(PiViewer& viewer, EvEvent& event);

    EvEvent& getEvent() const { return _event; }
    PiViewer& getViewer() const { return _viewer; }

    bool hasDeviceEvent() const { return _device != nullptr; }
    // The event as a device event; ExCastFailed when it is not one (a focus
    // change, a lost grab).
    EvDeviceEvent& getDeviceEvent() const;

    // The device event's position in the viewer's world (plate pixels);
    // ExCastFailed when the event is not a device event.
    GePoint2<float> getWorldPoint() const;

private:
    PiViewer& _viewer;
    EvEvent& _event;
    EvDeviceEvent* _device;
};
