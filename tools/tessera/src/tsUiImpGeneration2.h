#pragma once

#include "tsUiImp.h"

#include <tesseraCore/tsInterface3.h>

// The main panel of generation 2 (see tsUiImp.h): for TsInterface3
// groups. It follows the group's selected-nodes value
// (TsTool3::getSelectedNodesName()) through ValueChanged events instead of
// TsNodeSelectChangedEvent, and ignores the changes it makes itself. Every
// node directly inside the group counts as one of its nodes, boundary nodes
// included. Its names and tool-name list are its own.
struct TsUiImpGeneration2 {
    using Interface = TsInterface3;
    static constexpr bool FollowsSelectedNodesValue = true;
    static const TsUiImpNames& getNames();
    // Filled at start-up (tsUiImpGeneration2Initialise).
    static std::vector<std::string>& getToolNames();
};

// The instance-data factory of generation 2, registered with
// TsInterface3.
RCShdPtr<RCBase<LkCounter<int>>>
tsUiImpGeneration2Factory(const RCShdPtr<PiWidget>& widget, const RCShdPtr<PiGroupNode>& group,
                          const RCShdPtr<const PiTimePath>& timePath);

// Start-up sets the factory and fills the variant's tool-name list; shut-down
// leaves the factory in place.
void tsUiImpGeneration2Initialise();
void tsUiImpGeneration2Finalise();
