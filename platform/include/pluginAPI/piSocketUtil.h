#pragma once

#include <base/rcShdPtr.h>
#include <pluginAPI/piInput.h>
#include <pluginAPI/pluginAPIExport.h>
#include <resmgt/liString.h>

class PiGroupNode;

// Names of inputs (sockets) for people.
class TS_PLUGIN_API PiSocketUtil {
public:
    // The input's name with up to `depth` parts of its place in the graph,
    // joined by `separator` ("." when null): depth 1 is the socket name alone
    // ("spill.amount"), 2 adds the node ("keyer1.spill.amount"), and so on up
    // to the groups below `relativeTo` (the graph's root when null); depth 0
    // or less means all of them. An input without a node answers its own
    // name; a null input "".
    static LiString getName(const RCShdPtr<const PiInput>& input, int depth,
                            const PiGroupNode* relativeTo = nullptr,
                            const char* separator = nullptr);
};
