#pragma once

#include <base/evEvent.h>
#include <base/evKeyCode.h>
#include <base/prdPredicate.h>
#include <gfx/gfxExport.h>

// The leaf tests of viewer event predicates. Each call makes a new predicate;
// combine them with !, && and ||.
class TS_GFX_API MfEventPredicates {
public:
    // A pointer button press of the left button.
    static PrdPredicate<EvEvent> isPointerDownButtonLeft();
    // A pointer move, with or without a button held.
    static PrdPredicate<EvEvent> isPointerMove();
    // Any pointer event: a move, a button press or a release.
    static PrdPredicate<EvEvent> isPointerEvent();
    // A device event during which every modifier of the mask is held
    // (EvKeyboardState: Shift 1, Alt 2, Ctrl 4, Meta 8).
    static PrdPredicate<EvEvent> isKeyModifierOn(unsigned modifierMask);
    // A device event whose keyboard state holds the key (a key press of that
    // key included): a state test, not an event-type test.
    static PrdPredicate<EvEvent> isKeyDown(EvKeyCode::KeyCode key);
    // A hotkey event (EvHotkeyEvent).
    static PrdPredicate<EvEvent> isHotkey();
    // An event of exactly the prototype's type; the prototype is copied.
    static PrdPredicate<EvEvent> isEventType(const EvEvent& prototype);
};
