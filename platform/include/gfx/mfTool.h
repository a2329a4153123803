#pragma once

#include <base/evEvent.h>
#include <base/rcShdPtr.h>
#include <gfx/gfxExport.h>
#include <gfx/mfManipulator.h>
#include <gfx/wsCursor.h>
#include <resmgt/liString.h>

#include <memory>
#include <vector>

class PiCommandStack;
class PiEventContext;
class PiViewer;
class VwView;

// A viewer tool: a set of manipulators and what happens when the user takes
// hold of one of them.
//
// handleEvent runs the protocol:
// - grasp: a device event for which some manipulator is graspable (see
//   MfManipulator; the tool's manipulators are searched depth first in the
//   order added, the first one found wins): prepareManipulation, the
//   manipulator's grasp, initiateManipulation;
// - monitor: each pointer move while grasped: the manipulator follows, then
//   monitorManipulation;
// - release: a pointer button release (a move to the release point first
//   when the pointer moved since the last event), a focus loss or a lost
//   grab: finalizeManipulation, then the manipulator lets go;
// - feedback, when nothing is grasped and no grasp happened:
//   handleFeedback, which finds the first manipulator whose feedback
//   predicate holds and that the pointer hits and calls giveFeedback
//   (highlight and cursor), or endFeedback when the feedback ends.
// Events used by the protocol are marked processed; handleEvent answers
// whether the event is processed. Feedback uses up pointer events only: a
// key that changes or ends the feedback goes on to whatever else takes
// keys (the tool's own keys, the viewer's).
//
// Undo: everything a manipulation changes, from grasp to release, is one
// step on the command stack of the viewer's graph (PiViewer::getCommandStack),
// named by setUndoString ("Viewer Tool" when unset): begun (transition 1) at
// the grasp, continued (2) by each move, ended (3) at the release. A step that
// changed nothing is dropped by the stack.
//
// If a tool operation throws, the manipulation is abandoned (the
// manipulator lets go, the step is closed) and the exception goes on to the
// host, which reports it.
class TS_GFX_API MfTool : public RCBase<LkCounter<int>> {
public:
    using Manipulators = std::vector<RCShdPtr<MfManipulator>>;
    using const_iterator = Manipulators::const_iterator;

    MfTool();
    ~MfTool() override;

    virtual bool handleEvent(const PiEventContext& context);
    // Draws the manipulators (the scene pass of the viewer).
    virtual void draw(const VwView& view) const;
    // Draws over everything (the window pass); the default draws nothing.
    virtual void drawDecorations(const VwView& view) const;
    virtual void selectionUpdate(PiViewer& viewer);
    // The tool's own cursor; empty for the viewer's default.
    virtual RCShdPtr<WsCursor> getCursor() const;
    virtual void prepareManipulation(const PiEventContext& context);
    virtual void initiateManipulation(const PiEventContext& context);
    virtual void monitorManipulation(const PiEventContext& context);
    virtual void finalizeManipulation(const PiEventContext& context);
    virtual void handleFeedback(const PiEventContext& context);
    virtual void giveFeedback(const PiEventContext& context, MfManipulator& manipulator);
    virtual void endFeedback(const PiEventContext& context);

    // The top-level manipulators, in the order added.
    void addManipulator(const RCShdPtr<MfManipulator>& manipulator);
    int size() const { return static_cast<int>(_manipulators.size()); }
    const_iterator begin() const { return _manipulators.begin(); }
    const_iterator end() const { return _manipulators.end(); }

    // The name of the undo step of each manipulation.
    void setUndoString(const LiString& text) { _undoString = text; }
    const LiString& getUndoString() const { return _undoString; }

    bool isManipulating() const { return _grasped != nullptr; }
    // The manipulator held, or null.
    MfManipulator* getGraspedManipulator() const { return _grasped; }
    // The manipulator giving feedback, or null.
    MfManipulator* getFeedbackManipulator() const { return _feedback; }
    // What the viewer shows: the grasped or feedback manipulator's cursor,
    // else the tool's.
    RCShdPtr<WsCursor> getActiveCursor() const;

    // Ends a manipulation under way as if the pointer were released where it
    // last was (a tool change, a viewer going away). Nothing when idle. While
    // the command stack replays a step, or once the viewer's node has left
    // the graph the drag began in, the manipulation is abandoned instead
    // (nothing is written).
    void interruptManipulation();

private:
    void grasp(const PiEventContext& context, MfManipulator& manipulator);
    void monitor(const PiEventContext& context);
    void release(const PiEventContext& context);
    void abandon();
    void remember(const PiEventContext& context);
    const LiString& undoName() const;
    // Marks a pointer event processed (see the class comment).
    static void usedForFeedback(EvEvent& event);

    Manipulators _manipulators;
    LiString _undoString;
    MfManipulator* _grasped = nullptr;
    MfManipulator* _feedback = nullptr;
    PiViewer* _viewer = nullptr;         // of the manipulation under way
    PiCommandStack* _stack = nullptr;    // where its undo step is open
    std::unique_ptr<EvEvent> _lastEvent; // its last device event
};
