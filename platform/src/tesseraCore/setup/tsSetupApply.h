#pragma once

#include "tsSetupDocument.h"

#include <pluginAPI/piNode.h>

// A parsed setup against a keyer (a TsKeyerGroup or a TsKeyerNode): checked
// whole against scratch nodes of the same kinds first (every input known,
// of its type, taking its state; node references resolvable), then applied
// as one undo step ("Load Setup"). Checking throws
// TsSetupSyntax::SetupError naming the line; applying cannot fail.
namespace TsSetupApply {

void check(PiNode& keyer, const TsSetupDocument::SetupDocument& setup);
void apply(PiNode& keyer, const TsSetupDocument::SetupDocument& setup);

} // namespace TsSetupApply
