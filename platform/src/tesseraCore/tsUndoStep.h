#pragma once

#include <pluginAPI/piCommandStack.h>
#include <pluginAPI/piNode.h>

#include <optional>

// An undo step of the node's graph for as long as it lives, when the node is
// in a graph (outside one, edits have no history to join).
class TsUndoStep {
public:
    TsUndoStep(const PiNode& node, const LiString& text) {
        if (PiCommandStack* stack = node.getCommandStack()) {
            _guard.emplace(*stack, text);
        }
    }

private:
    std::optional<PiUndoGuard> _guard;
};
