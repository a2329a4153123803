#pragma once

#include <base/evEvent.h>
#include <resmgt/liString.h>
#include <ui/uiExport.h>

// What a panel widget's callbacks receive (PiWidget::addCallback): the kind
// of callback, the widget's name, and, as a device event, the keyboard state
// of the user's action (a toggle pressed with Ctrl held shows
// isEnabled(EvKeyboardState::Ctrl)) and the pointer position in the widget
// (window pixels of the widget; 0, 0 for actions without a pointer).
class UiWidgetEvent : public EvEventImpl<UiWidgetEvent, EvDeviceEvent> {
public:
    TS_UI_API UiWidgetEvent(int kind, const LiString& widgetName, const EvKeyboardState& keys,
                            const GePoint2<float>& coord = GePoint2<float>());

    int getKind() const { return _kind; }
    const LiString& getWidgetName() const { return _widgetName; }

private:
    int _kind;
    LiString _widgetName;
};

// A toggle's state changed (PiWidget::StateChanged): the new state.
class UiStateChanged : public EvEventImpl<UiStateChanged, UiWidgetEvent> {
public:
    TS_UI_API UiStateChanged(bool state, const LiString& widgetName, const EvKeyboardState& keys);

    bool getState() const { return _state; }

private:
    bool _state;
};
