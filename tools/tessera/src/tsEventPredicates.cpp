#include "tsEventPredicates.h"

#include <gfx/mfEventPredicates.h>

PrdPredicate<EvEvent> TsEventPredicates::makeSampleOnClick() {
    return MfEventPredicates::isPointerDownButtonLeft();
}

PrdPredicate<EvEvent> TsEventPredicates::makeSampleOnMove() {
    return MfEventPredicates::isKeyModifierOn(4) && MfEventPredicates::isPointerMove();
}

PrdPredicate<EvEvent> TsEventPredicates::makeDismiss() {
    return (MfEventPredicates::isPointerDownButtonLeft() ||
            MfEventPredicates::isKeyDown(static_cast<EvKeyCode::KeyCode>(15))) ||
           MfEventPredicates::isEventType(EvFocusOutEvent());
}
