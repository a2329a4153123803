#pragma once

#include <pluginAPI/piNode.h>
#include <pluginAPI/pluginAPIExport.h>

#include <cstdint>
#include <vector>

class PiBoundaryNode;

// A node that holds other nodes. A group made with boundary nodes holds, as
// its first two children, an input node and an output node where the
// group's connections enter and leave.
//
// Events: removing a child fires PiNodeEvent::NodeRemovedFromGroup, moving a
// child to another group PiNodeEvent::NodeMovedFromGroup, both on this
// group's controller.
//
// History: in a graph, removing and moving a child are undo steps ("Remove
// Node", "Move Node", or they join the step that is open) with the changes
// the events' handlers make; undo puts the child back in its place. Adding a
// child joins the open step (a setup load that adds nodes takes them back on
// undo); outside a step adding is building the graph and is not recorded.
class TS_PLUGIN_API PiGroupNode : public PiNode {
public:
    explicit PiGroupNode(const LiString& name, bool withBoundaryNodes = false);
    ~PiGroupNode() override;

    int getNodeCount() const { return static_cast<int>(_children.size()); }
    const RCShdPtr<PiNode>& getNode(int index) const { return _children.at(index); }
    const std::vector<RCShdPtr<PiNode>>& getNodes() const { return _children; }
    // Direct children only; empty when there is none.
    RCShdPtr<PiNode> findNode(const LiString& name) const;
    RCShdPtr<PiNode> findNodeById(std::uint64_t id) const;
    bool contains(const PiNode& node) const { return node.getParent() == this; }

    // Adds a node that belongs to no group. A name already used in this group
    // gets a number appended ("keyer" -> "keyer2"); the name the node ends up
    // with is the node's name afterwards.
    void addNode(const RCShdPtr<PiNode>& node);
    // False when the node is not a child of this group, or is a boundary node.
    bool removeNode(const RCShdPtr<PiNode>& node);
    bool moveNode(const RCShdPtr<PiNode>& node, const RCShdPtr<PiGroupNode>& to);

    // The boundary nodes, or empty for a group without them.
    RCShdPtr<PiBoundaryNode> getInputNode() const;
    RCShdPtr<PiBoundaryNode> getOutputNode() const;

    // The group's interface lookup: the object through which libraries drive
    // the group, which is the group's controller (a keyer group answers its
    // keyer interface).
    const RCShdPtr<PiNodeController>& getInterface() const { return getController(); }

    // A name not used by any child: `base` itself, or base followed by the
    // first free number from 2.
    LiString makeUniqueName(const LiString& base) const;

private:
    void setGraph(PiGraph* graph) override;
    // The child's place, or -1.
    int indexOf(const PiNode& node) const;
    void insert(const RCShdPtr<PiNode>& node, int index);
    void detach(const RCShdPtr<PiNode>& node);
    // Takes the child out and tells the group's handlers.
    void removeAndNotify(const RCShdPtr<PiNode>& node);
    void moveAndNotify(const RCShdPtr<PiNode>& node, const RCShdPtr<PiGroupNode>& to, int index);

    std::vector<RCShdPtr<PiNode>> _children;
};

// The input or output node of a group.
class PiBoundaryNode : public PiNode {
public:
    enum Kind { Input = 0, Output = 1 };
    TS_PLUGIN_API PiBoundaryNode(const LiString& name, Kind kind);
    Kind getKind() const { return _kind; }

private:
    Kind _kind;
};
