#pragma once

#include <string>

// Names of the second keyer generation (TsInterface3).
class TsTool3 {
public:
    // The keyer group's selected-nodes value ("selectedNodes"): a node
    // reference input naming the keyer node that the keyer shows.
    static const std::string& getSelectedNodesName();
};
