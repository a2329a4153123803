#pragma once

#include <string>
#include <tesseraCore/tesseraCoreExport.h>

// Names of the second keyer generation (TsInterface3).
class TS_CORE_API TsTool3 {
public:
    // The keyer group's selected-nodes value ("selectedNodes"): a list of
    // node references, the keyer node that the keyer shows and then the
    // nodes of its six slots (a first-generation group keeps only the node
    // it shows there).
    static const std::string& getSelectedNodesName();
};
