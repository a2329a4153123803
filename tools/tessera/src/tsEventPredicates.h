#pragma once

#include <base/evEvent.h>
#include <base/prdPredicate.h>

// The event predicates that the module's slider-bar tools share. Each call
// builds a new predicate tree from the host's leaf tests; the tools keep the
// predicates they use in module-wide variables set by their source file's
// initialiser.
class TsEventPredicates {
public:
    // Samples on a click: a press of the left pointer button.
    static PrdPredicate<EvEvent> makeSampleOnClick();
    // Samples again on a move: Ctrl held (modifier mask 4) and a pointer move,
    // tested in that order.
    static PrdPredicate<EvEvent> makeSampleOnMove();
    // Hides what a sample showed: (a left press or Escape (key 15) held) or a
    // loss of the focus.
    static PrdPredicate<EvEvent> makeDismiss();
};
