#pragma once

#include <tesseraCore/tesseraCoreExport.h>
#include <tesseraCore/tsGroupInterface.h>

// The keyer group of the first generation: the interface its group node
// answers (PiGroupNode::getInterface).
class TsInterface : public TsGroupInterface {
public:
    // The factory of the main keyer panel's instance data. Setting it again
    // replaces it; null withdraws it.
    TS_CORE_API static void setInstanceDataFactory(InstanceDataFactory factory);
    TS_CORE_API static InstanceDataFactory getInstanceDataFactory();
    // The factory, or null with a report.
    TS_CORE_API static InstanceDataFactory requireInstanceDataFactory();
    // What the factory makes for a keyer group; empty, and a report, without
    // a factory.
    TS_CORE_API static RCShdPtr<RCBase<LkCounter<int>>>
    createInstanceData(const RCShdPtr<PiWidget>& widget, const RCShdPtr<PiGroupNode>& group,
                       const RCShdPtr<const PiTimePath>& timePath);

protected:
    TsInterface() = default;
};
