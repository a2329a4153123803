#pragma once

#include "tsUiImp.h"

#include <tesseraCore/tsInterface3.h>

// The second variant of the main panel (see tsUiImp.h): for TsInterface3
// groups. It follows the group's selected-nodes value
// (TsTool3::getSelectedNodesName()) through ValueChanged events instead of
// TsNodeSelectChangedEvent, and ignores the changes it makes itself. Every
// node directly inside the group counts as one of its nodes, boundary nodes
// included. Its names and tool-name list are its own.
struct TsUiImpSecond {
    using Interface = TsInterface3;
    static constexpr bool FollowsSelectedNodesValue = true;
    static const TsUiImpNames& getNames();
    // Filled at start-up (tsUiImp3Initialise).
    static std::vector<std::string>& getToolNames();
};

// The instance-data factory of the second variant, registered with
// TsInterface3.
RCShdPtr<RCBase<LkCounter<int>>> tsUiImp3Factory(const RCShdPtr<PiWidget>& widget,
                                                 const RCShdPtr<PiGroupNode>& group,
                                                 const RCShdPtr<const PiTimePath>& timePath);

// Start-up sets the factory and fills the variant's tool-name list; shut-down
// leaves the factory in place.
void tsUiImp3Initialise();
void tsUiImp3Finalise();
