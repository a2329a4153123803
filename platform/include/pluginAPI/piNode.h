#pragma once

#include <base/rcShdPtr.h>
#include <pluginAPI/piGraphObject.h>
#include <pluginAPI/piInput.h>
#include <pluginAPI/piNodeController.h>
#include <pluginAPI/pluginAPIExport.h>
#include <resmgt/liString.h>

#include <unordered_map>
#include <vector>

class PiGraph;
class PiGroupNode;
class PiCommandStack;

// A node of the processing graph: a name, an ordered set of inputs (its
// values) and a controller (its behaviour). A node belongs to at most one
// group; the graph of the outermost group is the node's graph, and the
// graph's command stack records every change to the node's inputs.
class TS_PLUGIN_API PiNode : public PiGraphObject {
public:
    explicit PiNode(const LiString& name);
    ~PiNode() override;

    const LiString& getName() const { return _name; }
    // Renaming fires PiNodeEvent::NameChanged on the node's controller and on
    // its group's. A name another node of the group has gets a number
    // appended (PiGroupNode::makeUniqueName). In a graph a rename is an undo
    // step, "Rename Node" (or joins the step that is open), with the changes
    // the event's handlers make. A name that is not valid (checkName) is an
    // assertion failure: whoever takes a name from a user checks it first.
    void setName(const LiString& name);

    // The one rule for a node's name, wherever a name is made or changed
    // (rename, setups, scripts, the studio): 1 to ZnLimits::NameBytes bytes,
    // no '/' (it separates a node from its input in scripts), no control
    // character (a newline, a tab, ...). Answers "" for a valid name, else
    // what is wrong with it.
    static LiString checkName(const LiString& name);

    // The controller; a plain PiNodeController until a library sets its own.
    const RCShdPtr<PiNodeController>& getController() const { return _controller; }
    void setController(const RCShdPtr<PiNodeController>& controller);

    // Inputs, in the order they were added. Names are unique within a node.
    int getInputCount() const { return static_cast<int>(_inputs.size()); }
    const RCShdPtr<PiInput>& getInput(int index) const { return _inputs.at(index); }
    // Empty when the node has no input of that name. Constant time: a keyer
    // node with ten thousand patches has a hundred and fifty thousand inputs.
    RCShdPtr<PiInput> getInput(const LiString& name) const;
    // Adds an input; a second input of the same name, or an input that
    // already belongs to a node, is an assertion failure.
    void addInput(const RCShdPtr<PiInput>& input);
    // Takes an input of this node away again (the undo of a change of the
    // node's structure that added it); it lives on with whoever holds it.
    void removeInput(const RCShdPtr<PiInput>& input);

    // The group that holds the node, or null.
    PiGroupNode* getParent() const { return _parent; }
    // The graph the node belongs to; empty for a node outside any graph.
    RCShdPtr<PiGraph> getGraph() const;
    PiGraph* getGraphPtr() const { return _graph; }
    // The graph's command stack (null outside a graph). The usual way in:
    // node->getGraph()->getCommandStack(), which answers a reference and
    // throws ExNullPtr for a node outside any graph.
    PiCommandStack* getCommandStack() const;

    // Called by the inputs after each change: first tells the controller (so
    // that state it derives from its inputs is right when anyone hears of
    // the change) ...
    void inputChanged(PiInput& input);
    // ... and, after the input's own handlers, fires PiNodeEvent::ValueChanged
    // on it.
    void fireValueChanged(PiInput& input);

private:
    friend class PiGroupNode;
    friend class PiGraph;
    virtual void setGraph(PiGraph* graph) { _graph = graph; }

    LiString _name;
    RCShdPtr<PiNodeController> _controller;
    std::vector<RCShdPtr<PiInput>> _inputs;
    std::unordered_map<LiString, std::size_t> _inputIndex; // name -> index in _inputs
    PiGroupNode* _parent = nullptr;
    PiGraph* _graph = nullptr;
};
