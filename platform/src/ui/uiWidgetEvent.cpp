#include <pluginAPI/piWidget.h>
#include <ui/uiWidgetEvent.h>

UiWidgetEvent::UiWidgetEvent(int kind, const LiString& widgetName, const EvKeyboardState& keys,
                             const GePoint2<float>& coord)
    : EvEventImpl(coord, keys)
    , _kind(kind)
    , _widgetName(widgetName) {}

UiStateChanged::UiStateChanged(bool state, const LiString& widgetName, const EvKeyboardState& keys)
    : EvEventImpl(PiWidget::StateChanged, widgetName, keys)
    , _state(state) {}
