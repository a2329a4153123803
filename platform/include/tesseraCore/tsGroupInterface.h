#pragma once

#include <base/rcShdPtr.h>
#include <pluginAPI/piGroupNode.h>
#include <pluginAPI/piInput.h>
#include <pluginAPI/piNodeController.h>
#include <pluginAPI/piTimePath.h>
#include <resmgt/liString.h>

class PiWidget;
class TsKeyerNode;

// What both generations of keyer group offer (TsInterface, TsInterface3):
// the keyer nodes it holds beside its boundary nodes, six slots that each
// refer to one node, and the keyer's selected node.
//
// Slots and the selected node are node-reference inputs of the group (in
// generation 1 "slot1" .. "slot6" and the selected-nodes value; in
// generation 2 all in the selected-nodes value), so they are undoable and
// saved with setups. Whenever one of them changes (an edit, an undo, a redo,
// a load), the group's controller fires a TsNodeSelectChangedEvent.
class TsGroupInterface : public virtual PiNodeController {
public:
    using InstanceDataFactory = RCShdPtr<RCBase<LkCounter<int>>> (*)(
        const RCShdPtr<PiWidget>&, const RCShdPtr<PiGroupNode>&, const RCShdPtr<const PiTimePath>&);

    static constexpr int SlotCount = 6;

    // The node in slot i, or empty (an empty slot, a slot out of range, or a
    // node no longer in the group).
    virtual RCShdPtr<PiNode> getSlotNode(int slot) const = 0;
    // The first slot that holds the node, or -1.
    virtual int getNodeSlot(const RCShdPtr<const PiNode>& node) const = 0;
    // Puts the node in slot i (a null node empties the slot). The node must
    // be the group itself or a node directly inside it; a node that was in
    // another slot leaves it. One undo step ("Assign Slot") unless the caller
    // has one open. A refused assignment is reported and answers false.
    virtual bool setSlotNode(int slot, const RCShdPtr<PiNode>& node) = 0;
    // The name of the node in slot i, or "" for an empty slot.
    virtual LiString getSlotName(int slot) const = 0;
    virtual RCShdPtr<PiInput> getSlotInput(int slot) const = 0;

    virtual int getKeyerNodeCount() const = 0;
    virtual RCShdPtr<TsKeyerNode> getKeyerNode(int index) const = 0;

    // The node the keyer shows (empty when none); setting it is undoable.
    virtual RCShdPtr<PiNode> getSelectedNode() const = 0;
    virtual bool setSelectedNode(const RCShdPtr<PiNode>& node) = 0;
    virtual RCShdPtr<PiInput> getSelectedNodesInput() const = 0;

protected:
    TsGroupInterface() = default;
};
