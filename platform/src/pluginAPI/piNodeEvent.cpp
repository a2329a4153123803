#include <pluginAPI/piGroupNode.h>
#include <pluginAPI/piNode.h>
#include <pluginAPI/piNodeEvent.h>

PiNodeEvent::PiNodeEvent(const RCShdPtr<PiNode>& node)
    : _node(node) {}

PiNodeEvent::~PiNodeEvent() = default;

PiNodeEvent::ValueChanged::ValueChanged(const RCShdPtr<PiNode>& node,
                                        const RCShdPtr<PiInput>& value)
    : PiNodeEvent(node)
    , _value(value) {}

PiNodeEvent::ValueChanged::~ValueChanged() = default;

PiNodeEvent::NameChanged::NameChanged(const RCShdPtr<PiNode>& node, const LiString& oldName)
    : PiNodeEvent(node)
    , _oldName(oldName) {}

PiNodeEvent::NameChanged::~NameChanged() = default;

PiNodeEvent::NodeMovedFromGroup::NodeMovedFromGroup(const RCShdPtr<PiNode>& node,
                                                    const RCShdPtr<PiGroupNode>& from,
                                                    const RCShdPtr<PiGroupNode>& to)
    : PiNodeEvent(node)
    , _from(from)
    , _to(to) {}

PiNodeEvent::NodeMovedFromGroup::~NodeMovedFromGroup() = default;

PiNodeEvent::NodeRemovedFromGroup::NodeRemovedFromGroup(const RCShdPtr<PiNode>& node,
                                                        const RCShdPtr<PiGroupNode>& group)
    : PiNodeEvent(node)
    , _group(group) {}

PiNodeEvent::NodeRemovedFromGroup::~NodeRemovedFromGroup() = default;
