#pragma once

#include <tesseraCore/tesseraCoreExport.h>
#include <tesseraCore/tsGroupInterface.h>

// The keyer group of generation 2. Beside what every keyer group offers, its
// panel follows the selected-nodes value (the group's input named
// TsTool3::getSelectedNodesName()) through ValueChanged events.
//
// Generation 2 has one name in the code: "generation 2" (TsKeyerGroup's
// generation, setups' "group ... generation 2", scripts' "keyer variant 2",
// the module's TsUiImpGeneration2, the panel description
// tsMainPanelGeneration2.ui). The two names the module resolves are fixed by
// its contract and keep their numeral: TsInterface3 (this interface) and
// TsTool3 (its names).
class TsInterface3 : public TsGroupInterface {
public:
    // As TsInterface's, for generation 2.
    TS_CORE_API static void setInstanceDataFactory(InstanceDataFactory factory);
    TS_CORE_API static InstanceDataFactory getInstanceDataFactory();
    // The factory, or null with a report.
    TS_CORE_API static InstanceDataFactory requireInstanceDataFactory();
    TS_CORE_API static RCShdPtr<RCBase<LkCounter<int>>>
    createInstanceData(const RCShdPtr<PiWidget>& widget, const RCShdPtr<PiGroupNode>& group,
                       const RCShdPtr<const PiTimePath>& timePath);

protected:
    TsInterface3() = default;
};
