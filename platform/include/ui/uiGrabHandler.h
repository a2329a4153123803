#pragma once

#include <base/cbHandler.h>
#include <base/evEvent.h>
#include <resmgt/liString.h>
#include <ui/uiExport.h>

class UiWidget;

// Something that receives events from the toolkit outside the usual delivery
// to a widget: the events of a grab (UiGrab), the hotkeys of the entries it
// is registered for (UiHotkeyRegistry), and, for the handler of a widget, the
// events that widget passes on. Its event operation is the callback of
// CbHandler<EvEvent>; it marks the events it uses processed.
//
// Device events reach it in the coordinates of its process origin: the
// widget it belongs to, or the screen for a handler without one (such as a
// grab that picks from any window). getGlobalCoord always holds the screen
// position.
//
// A handler that is destroyed lets go of the grabs it holds and leaves the
// hotkey entries it is registered for.
class TS_UI_API UiGrabHandler : public CbHandler<EvEvent> {
public:
    explicit UiGrabHandler(const LiString& name = LiString());
    ~UiGrabHandler() override;

    // The widget whose coordinates device events are given in; null for
    // screen coordinates.
    virtual UiWidget* getProcessOrigin() const;
    // While this handler holds the pointer grab, a pointer event that it
    // leaves unprocessed goes on to the widget under the pointer when this
    // is on (off by default: a grab takes every pointer event).
    virtual void setAllowPtrHandlingInGrab(bool allow);
    virtual bool allowPtrHandlingInGrab() const;
    // For reports.
    virtual const LiString& getName() const;

private:
    LiString _name;
    bool _allowPtr = false;
};
