#pragma once

#include <base/rcShdPtr.h>
#include <pluginAPI/pluginAPIExport.h>
#include <resmgt/liString.h>

class PiNode;
class PiGroupNode;
class PiInput;

// An event of the graph, fired on a node's controller
// (PiNodeController::fireEvent) and delivered to the handlers registered for
// its exact type. The event types below are the host's; libraries add their
// own by deriving from PiNodeEvent. Each event type has an out-of-line
// destructor, so that its type information lives in one library.
class TS_PLUGIN_API PiNodeEvent {
public:
    explicit PiNodeEvent(const RCShdPtr<PiNode>& node);
    PiNodeEvent(const PiNodeEvent&) = default;
    PiNodeEvent& operator=(const PiNodeEvent&) = delete;
    virtual ~PiNodeEvent();

    // The node the event is about.
    const RCShdPtr<PiNode>& getNode() const { return _node; }

    class ValueChanged;
    class NameChanged;
    class NodeMovedFromGroup;
    class NodeRemovedFromGroup;

private:
    RCShdPtr<PiNode> _node;
};

// An input of the node changed (an edit, an undo, a redo, a load). Fired on
// the controller of the node that holds the input, after the input's own
// value-changed handlers.
class TS_PLUGIN_API PiNodeEvent::ValueChanged : public PiNodeEvent {
public:
    ValueChanged(const RCShdPtr<PiNode>& node, const RCShdPtr<PiInput>& value);
    ~ValueChanged() override;
    // The input whose value changed (compare with PiGraphObject::areEqual).
    const RCShdPtr<PiInput>& getValue() const { return _value; }

private:
    RCShdPtr<PiInput> _value;
};

// The node was renamed. Fired on the renamed node's controller and on the
// controller of the group that holds it.
class TS_PLUGIN_API PiNodeEvent::NameChanged : public PiNodeEvent {
public:
    NameChanged(const RCShdPtr<PiNode>& node, const LiString& oldName);
    ~NameChanged() override;
    const LiString& getOldName() const { return _oldName; }

private:
    LiString _oldName;
};

// A node left a group for another one. Fired on the controller of the group
// it left; getNode() is the node that moved.
class TS_PLUGIN_API PiNodeEvent::NodeMovedFromGroup : public PiNodeEvent {
public:
    NodeMovedFromGroup(const RCShdPtr<PiNode>& node, const RCShdPtr<PiGroupNode>& from,
                       const RCShdPtr<PiGroupNode>& to);
    ~NodeMovedFromGroup() override;
    const RCShdPtr<PiGroupNode>& getFrom() const { return _from; }
    const RCShdPtr<PiGroupNode>& getTo() const { return _to; }

private:
    RCShdPtr<PiGroupNode> _from;
    RCShdPtr<PiGroupNode> _to;
};

// A node was removed from a group (and from the graph). Fired on the
// controller of the group; getNode() is the removed node, still alive while
// the handlers run.
class TS_PLUGIN_API PiNodeEvent::NodeRemovedFromGroup : public PiNodeEvent {
public:
    NodeRemovedFromGroup(const RCShdPtr<PiNode>& node, const RCShdPtr<PiGroupNode>& group);
    ~NodeRemovedFromGroup() override;
    const RCShdPtr<PiGroupNode>& getGroup() const { return _group; }

private:
    RCShdPtr<PiGroupNode> _group;
};
