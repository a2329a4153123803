#pragma once

#include <base/rcBase.h>
#include <base/rcShdPtr.h>
#include <base/rcWeakPtr.h>
#include <pluginAPI/pluginAPIExport.h>
#include <resmgt/liString.h>

#include <vector>

class PiNode;

// Where a node sits in the graph: the names of the groups from the root down
// to the node, and the node itself (not kept alive by the path).
class PiPath : public RCBase<LkCounter<int>> {
public:
    TS_PLUGIN_API explicit PiPath(const RCShdPtr<PiNode>& node);

    // The node, or empty once it is gone.
    TS_PLUGIN_API RCShdPtr<PiNode> getNode() const;
    // The names from the outermost group (the graph's root excluded) to the
    // node itself, as they were when the path was made.
    const std::vector<LiString>& getNames() const { return _names; }
    // "/group/node".
    TS_PLUGIN_API LiString toString() const;

private:
    RCWeakPtr<PiNode> _node;
    std::vector<LiString> _names;
};
