#pragma once

#include <pluginAPI/piWidget.h>
#include <pluginAPI/pluginAPIExport.h>

// A toggle: a widget that is on or off (a check box, a checkable button).
//
// A user's press fires Activated first, with the keyboard state of the press;
// then the state flips and StateChanged fires with the new state. When the
// Activated handlers set the state themselves (or take the pointer grab),
// the press ends there and the state does not flip again: such a toggle
// shows what the program says, not what the click would have made it. A
// toggle whose new state nothing takes (no StateChanged handler, no bound
// input) never flips under a press: it shows the state its controller gives
// it, also when the controller ignores the press.
// Toggles of an exclusive group (radio-like) cannot be switched off by a
// click, only by switching another one on.
class TS_PLUGIN_API PiDualState : public virtual PiWidget {
public:
    ~PiDualState() override;

    virtual bool getState() const = 0;
    // Sets the state. Without notification (the default) no callback fires,
    // not even on the other toggles of an exclusive group that this one
    // switches off; an exclusive toggle can be switched off this way. With
    // notification StateChanged fires when the state changed.
    virtual void setState(bool on, bool notify = false) = 0;
};
