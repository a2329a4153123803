#pragma once

#include <base/evEvent.h>
#include <base/evKeyCode.h>
#include <base/gePoint2.h>
#include <base/vwView.h>

#include <string>

class UiViewer;

// Drives a viewer widget as the user's hand does: pointer presses, moves and
// releases, key presses and releases, and hotkeys, given in plate pixels and
// sent to the widget as the window system's events, so that they take the
// path of real input (grabs, hotkey routing, the viewer's own navigation,
// containment of the handler's failures).
//
// Plate points (doubles, as scripts write them) become window points through
// the viewer's view at the time of the event (plateToWindow, in double
// precision, then rounded to the window's float); the recorder of the studio
// goes the other way with windowToPlate, which answers the plate point with
// the fewest digits that replays to the very same window position.
//
// Modifiers are EvKeyboardState masks.
class ViewerDriver {
public:
    explicit ViewerDriver(UiViewer& viewer);

    UiViewer& getViewer() const { return _viewer; }

    void press(const GePoint2<double>& plate, unsigned modifiers, EvButton button = EvButton::Left);
    void move(const GePoint2<double>& plate, unsigned modifiers);
    void release(const GePoint2<double>& plate, unsigned modifiers,
                 EvButton button = EvButton::Left);
    // A press and release at one point.
    void click(const GePoint2<double>& plate, unsigned modifiers, EvButton button = EvButton::Left);
    // A press at `from`, `steps` moves evenly to `to` (the last at `to`), a
    // release at `to`.
    void drag(const GePoint2<double>& from, const GePoint2<double>& to, int steps,
              unsigned modifiers, EvButton button = EvButton::Left);

    // Key presses and releases at the pointer's last position; false for a
    // key the window system has no code for.
    bool keyDown(EvKeyCode::KeyCode key, unsigned modifiers);
    bool keyUp(EvKeyCode::KeyCode key, unsigned modifiers);

    // The hotkey entry: a tap (press and release) of the key it is bound to,
    // as the user would give it, or for an entry without a key of its own the
    // hotkey event itself. False (nothing delivered) when the viewer's
    // handler is not registered for the entry.
    bool hotkey(unsigned entry);

    // Buttons held now (pressed through this driver and not released).
    bool isButtonDown(EvButton button) const;

    // The window position of a plate point under a view, and back. The way
    // back answers the plate point with the fewest significant digits that
    // plateToWindow maps to exactly `window`, so that what a recorder writes
    // (SessionArgs::format) replays to the same window position.
    static GePoint2<float> plateToWindow(const VwView& view, const GePoint2<double>& plate);
    static GePoint2<double> windowToPlate(const VwView& view, const GePoint2<float>& window);

    // The pan that puts plate point `centre` at the middle of a window of
    // `width` x `height` at the view's zoom (in double precision, then
    // rounded), and back: the plate point at the middle, with the fewest
    // digits that panFor maps to exactly the view's pan.
    static GePoint2<float> panFor(const VwView& view, int width, int height,
                                  const GePoint2<double>& centre);
    static GePoint2<double> centreOf(const VwView& view, int width, int height);

    // The window system's key of a host key; 0 when there is none.
    static int toQtKey(EvKeyCode::KeyCode key);

private:
    void pointer(int type, const GePoint2<double>& plate, unsigned modifiers, EvButton button);
    bool key(int type, EvKeyCode::KeyCode key, unsigned modifiers);

    UiViewer& _viewer;
    unsigned _buttons = 0; // Qt::MouseButtons held
};
