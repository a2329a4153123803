#pragma once

#include <base/rcShdPtr.h>
#include <pluginAPI/piNode.h>
#include <pluginAPI/piNodeEvent.h>
#include <tesseraCore/tesseraCoreExport.h>

// Fired on a keyer group's controller when its selected node or one of its
// slots changed. getNode() is the group; getSelectedNode() the node the keyer
// now shows (empty when none).
class TsNodeSelectChangedEvent : public PiNodeEvent {
public:
    TS_CORE_API TsNodeSelectChangedEvent(const RCShdPtr<PiNode>& group,
                                         const RCShdPtr<PiNode>& selected);
    const RCShdPtr<PiNode>& getSelectedNode() const { return _selected; }

private:
    RCShdPtr<PiNode> _selected;
};
