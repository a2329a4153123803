#pragma once

#include <tesseraCore/tsGroupInterface.h>

// The keyer group of the second generation. Beside what every keyer group
// offers, its panel follows the selected-nodes value (the group's input
// named TsTool3::getSelectedNodesName()) through ValueChanged events.
class TsInterface3 : public TsGroupInterface {
public:
    // As TsInterface's, for the second generation.
    static void setInstanceDataFactory(InstanceDataFactory factory);
    static InstanceDataFactory getInstanceDataFactory();
    // The factory, or null with a report.
    static InstanceDataFactory requireInstanceDataFactory();
    static RCShdPtr<RCBase<LkCounter<int>>>
    createInstanceData(const RCShdPtr<PiWidget>& widget, const RCShdPtr<PiGroupNode>& group,
                       const RCShdPtr<const PiTimePath>& timePath);

protected:
    TsInterface3() = default;
};
