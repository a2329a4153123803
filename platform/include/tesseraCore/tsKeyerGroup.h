#pragma once

#include <base/rcShdPtr.h>
#include <pluginAPI/piGroupNode.h>
#include <pluginAPI/piInput.h>
#include <tesseraCore/tesseraCoreExport.h>
#include <tesseraCore/tsKeyerNode.h>

#include <array>

// A keyer group node: boundary input and output nodes, keyer nodes, six
// slots and the selected node. Its controller (the group's interface) is a
// TsInterface for generation 1 and a TsInterface3 for generation 2; both
// implement TsGroupInterface, whose comments say what the operations do.
//
// Generation 1 keeps each slot in a node-reference input of its own
// ("slot1" .. "slot6") and the selected node in the selected-nodes value;
// generation 2 keeps all seven in the selected-nodes value, a list of node
// references (the selected node, then slots 1 to 6), so that its panel,
// which follows that value, hears of every change of a slot.
class TS_CORE_API TsKeyerGroup : public PiGroupNode {
public:
    // A group holding `keyerNodes` keyer nodes named "keyer1", "keyer2", ...
    static RCShdPtr<TsKeyerGroup> create(const LiString& name, int generation = 1,
                                         int keyerNodes = 1);
    ~TsKeyerGroup() override;

    int getGeneration() const { return _generation; }

    int getKeyerNodeCount() const;
    RCShdPtr<TsKeyerNode> getKeyerNode(int index) const;
    RCShdPtr<TsKeyerNode> findKeyerNode(const LiString& name) const;
    // Adds a keyer node (its name made unique in the group).
    RCShdPtr<TsKeyerNode> addKeyerNode(const LiString& name);
    // Removes a node of the group (not a boundary node) as one undo step,
    // "Remove Node": the node first leaves the slots that hold it and, when
    // it was the selected node, the selection moves to the first other keyer
    // node, so that undo brings the node back before the slots and the
    // selection refer to it again. False when the node cannot be removed.
    bool removeKeyerNode(const RCShdPtr<PiNode>& node);

    RCShdPtr<PiNode> getSlotNode(int slot) const;
    int getNodeSlot(const PiNode* node) const;
    bool setSlotNode(int slot, const RCShdPtr<PiNode>& node);
    LiString getSlotName(int slot) const;
    // The input that holds the slot (the selected-nodes value in generation
    // 2); empty for a slot out of range.
    RCShdPtr<PiInput> getSlotInput(int slot) const;

    RCShdPtr<PiNode> getSelectedNode() const;
    bool setSelectedNode(const RCShdPtr<PiNode>& node);
    const RCShdPtr<PiInput>& getSelectedNodesInput() const { return _selected; }

    // The colour space of the plate and of the background the group keys: a
    // list of one name, or empty for automatic (the file's own). The host
    // reads its files in them (TsKeyerScene); saved with the group's setup.
    const RCShdPtr<PiInput>& getPlateColorSpaceInput() const { return _plateSpace; }
    const RCShdPtr<PiInput>& getBackgroundColorSpaceInput() const { return _backgroundSpace; }

    // The group itself or one of its direct children, by identity; empty
    // otherwise.
    RCShdPtr<PiNode> resolve(const PiNodeRef& ref) const;
    // True for an input whose changes select (a slot or the selected node).
    bool isSelectionInput(const PiInput& input) const;

private:
    // What the group refers to: the selected node, then slots 1 to 6.
    using Refs = std::array<PiNodeRef, 7>;

    TsKeyerGroup(const LiString& name, int generation);
    bool acceptsForSlot(const PiNode* node) const;
    Refs getRefs() const;
    // Writes what changed (one write of the selected-nodes value in
    // generation 2).
    bool setRefs(const Refs& refs);

    int _generation;
    std::array<RCShdPtr<PiInput>, 6> _slots; // generation 1
    RCShdPtr<PiInput> _selected;
    RCShdPtr<PiInput> _plateSpace;
    RCShdPtr<PiInput> _backgroundSpace;
};
