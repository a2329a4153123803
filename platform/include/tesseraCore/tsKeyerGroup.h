#pragma once

#include <base/rcShdPtr.h>
#include <pluginAPI/piGroupNode.h>
#include <pluginAPI/piInput.h>
#include <tesseraCore/tsKeyerNode.h>

#include <array>

// A keyer group node: boundary input and output nodes, keyer nodes, six
// slots and the selected node. Its controller (the group's interface) is a
// TsInterface for generation 1 and a TsInterface3 for generation 2; both
// implement TsGroupInterface, whose comments say what the operations do.
class TsKeyerGroup : public PiGroupNode {
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

    RCShdPtr<PiNode> getSlotNode(int slot) const;
    int getNodeSlot(const PiNode* node) const;
    bool setSlotNode(int slot, const RCShdPtr<PiNode>& node);
    LiString getSlotName(int slot) const;
    RCShdPtr<PiInput> getSlotInput(int slot) const;

    RCShdPtr<PiNode> getSelectedNode() const;
    bool setSelectedNode(const RCShdPtr<PiNode>& node);
    const RCShdPtr<PiInput>& getSelectedNodesInput() const { return _selected; }

    // The group itself or one of its direct children, by identity; empty
    // otherwise.
    RCShdPtr<PiNode> resolve(const PiNodeRef& ref) const;
    // True for an input whose changes select (a slot or the selected node).
    bool isSelectionInput(const PiInput& input) const;

private:
    TsKeyerGroup(const LiString& name, int generation);
    bool acceptsForSlot(const PiNode* node) const;

    int _generation;
    std::array<RCShdPtr<PiInput>, 6> _slots;
    RCShdPtr<PiInput> _selected;
};
