#pragma once

#include <base/rcBase.h>
#include <base/rcShdPtr.h>
#include <pluginAPI/piCommandStack.h>
#include <pluginAPI/piGroupNode.h>
#include <pluginAPI/pluginAPIExport.h>

#include <cstdint>

// A processing graph: a root group that holds the nodes, and the command
// stack that records every change to their inputs.
class TS_PLUGIN_API PiGraph : public RCBase<LkCounter<int>> {
public:
    static RCShdPtr<PiGraph> create();
    ~PiGraph() override;

    PiCommandStack& getCommandStack() { return _commandStack; }
    const PiCommandStack& getCommandStack() const { return _commandStack; }

    const RCShdPtr<PiGroupNode>& getRoot() const { return _root; }
    // Anywhere in the graph; empty when there is none.
    RCShdPtr<PiNode> findNodeById(std::uint64_t id) const;

private:
    PiGraph();

    PiCommandStack _commandStack;
    RCShdPtr<PiGroupNode> _root;
};
