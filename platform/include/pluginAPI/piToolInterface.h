#pragma once

#include <base/rcBase.h>
#include <base/rcShdPtr.h>
#include <pluginAPI/piInput.h>
#include <pluginAPI/piInputPolicy.h>
#include <pluginAPI/pluginAPIExport.h>

// What a node offers to the tools that edit it: the policy of each input
// (its range, for the slider bars that map onto it). Implemented by node
// controllers next to their own interfaces.
class TS_PLUGIN_API PiToolInterface : public virtual RCBase<LkCounter<int>> {
public:
    ~PiToolInterface() override;

    // The input's policy; empty when it has none. The default answers the
    // policy attached to the input.
    virtual RCShdPtr<const PiInputPolicy>
    getInputPolicy(const RCShdPtr<const PiInput>& input) const;
};
