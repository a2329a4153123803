#pragma once

#include <pluginAPI/piTrackball.h>
#include <ui/uiExport.h>
#include <ui/uiWidgetAdapter.h>

class UiTrackballWidget;

// A trackball of the toolkit. See PiTrackball.
class TS_UI_API UiTrackball : public PiTrackball, public UiWidgetAdapter {
public:
    explicit UiTrackball(UiTrackballWidget* widget);

    void getDelta(float& dx, float& dy) const override;
    bool isDragging() const override { return _dragging; }

    // A user's drag by (dx, dy) pixels (x right, y up) in `steps` moves, with
    // the given keyboard state (session scripts replay drags this way):
    // DragBegin, `steps` DragMove with the delta growing evenly to (dx, dy),
    // DragEnd. Nothing happens on a disabled trackball or during a drag.
    void drag(float dx, float dy, int steps = 1, const EvKeyboardState& keys = EvKeyboardState());

    // The pointer's side (window pixels of the widget, y down).
    void press(const GePoint2<float>& at, const EvKeyboardState& keys);
    void move(const GePoint2<float>& at, const EvKeyboardState& keys);
    void release(const GePoint2<float>& at, const EvKeyboardState& keys);

private:
    void step(int kind, const GePoint2<float>& at, const EvKeyboardState& keys);

    bool _dragging = false;
    GePoint2<float> _pressedAt;
    float _dx = 0.0f;
    float _dy = 0.0f;
};
