#pragma once

#include <base/cbDispatcher.h>
#include <base/cbEmptyType.h>
#include <base/rcShdPtr.h>
#include <pluginAPI/piInput.h>
#include <pluginAPI/pluginAPIExport.h>
#include <resmgt/liString.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

// How a PiUndoGuard takes part in a step. Transition 0 (the default): the
// guard opens a step named by its text, or joins the step already open; the
// step closes when the outermost guard goes. 1 begins a named step that stays
// open after the guard (an interactive drag); 2 continues it (the guard's
// text is ignored); 3 ends it: the step closes when the guard goes.
class TS_PLUGIN_API PiExecParam {
public:
    enum Transition { None = 0, Begin = 1, Continue = 2, End = 3 };

    PiExecParam(int transition = None)
        : _transition(transition) {}
    int getTransition() const { return _transition; }

private:
    int _transition;
};

// The undo history of a graph: a list of named steps, each the set of inputs
// it changed with their state before and after, and the changes of the
// graph's structure made in it (nodes removed, renamed, added within a step).
//
// Recording. Every change to an input of the graph is recorded into the open
// step. A change made when no step is open makes a step of its own, named
// after the input (unless the node names what the change means: nameStep). Within a step each input
// has one record that keeps the state before the step's first change of it and, once the step
// closes, the state after its last change (animation keys and lock included), so a drag of ten
// thousand writes holds as much memory as a drag of one. Closing a step drops the records of inputs
// that ended as they began, and the step itself when none is left; a new step discards the steps
// that were undone.
//
// Structure. A change that is not an input's is recorded with the functions
// that undo and redo it (recordChange), in its place among the step's inputs.
//
// Replaying. undo() puts every input of the last step back to its state
// before and undoes its changes, the last first; redo() puts the inputs to
// their state after and redoes the changes, the first first; both fire the
// inputs' value-changed handlers and ValueChanged events (and the nodes'
// events) as an edit does. An input write while a step is being replayed is a programming
// error (an assertion failure) and changes nothing; the replay still puts
// every input of the step back before the failure is passed on. Undo and redo
// close a step that is still open first.
//
// Recovery. The host contains exceptions from plugin code (exContain) and then
// runs ExReporter's recovery hooks; the command stacks register one that
// closes every open step with what was done, so no step stays open.
class TS_PLUGIN_API PiCommandStack {
public:
    PiCommandStack();
    PiCommandStack(const PiCommandStack&) = delete;
    PiCommandStack& operator=(const PiCommandStack&) = delete;
    ~PiCommandStack();

    bool undo();
    bool redo();
    bool canUndo() const { return _current > 0; }
    bool canRedo() const { return _current < _steps.size(); }

    // All steps, oldest first: the first getUndoCount() of them are done,
    // the rest undone (redoable).
    std::vector<LiString> getStepNames() const;
    int getStepCount() const { return static_cast<int>(_steps.size()); }
    int getUndoCount() const { return static_cast<int>(_current); }
    int getRedoCount() const { return static_cast<int>(_steps.size() - _current); }
    // "" when there is nothing to undo (redo).
    LiString getUndoName() const;
    LiString getRedoName() const;
    // How many inputs the step at `index` (0 the oldest) records.
    int getRecordCount(int index) const;
    // What the step at `index` did to inputs, in the order it first changed
    // them: each input with its state before and after the step. (Changes of
    // the structure are not listed; empty for an index out of range.)
    struct InputChange {
        RCShdPtr<PiInput> input;
        PiInputState before;
        PiInputState after;
    };
    std::vector<InputChange> getStepChanges(int index) const;

    // The clean index: the undo count at which the graph matched its saved
    // file (0 for a new graph); -1 once that state was discarded.
    int getCleanIndex() const { return _cleanIndex; }
    void setClean() {
        _cleanIndex = static_cast<int>(_current);
        notify();
    }
    bool isClean() const { return _cleanIndex == static_cast<int>(_current) && !_open; }

    bool isStepOpen() const { return _open; }
    const LiString& getOpenStepName() const { return _openStep.name; }
    bool isReplaying() const { return _replaying; }
    // Closes the open step, if any, with what it recorded; guards still
    // alive then no longer count.
    void closeOpenStep();
    // Forgets every step (the clean index becomes 0 when nothing is open).
    void clear();

    // An estimate of the bytes the history holds.
    std::size_t getMemoryUse() const;

    // Handlers run when the history changes: a step added, undone, redone,
    // the clean index set, the history cleared.
    void addChangedCb(CbHandler<CbEmptyType>* handler) { _changed.addHandler(handler); }
    void removeChangedCb(CbHandler<CbEmptyType>* handler) { _changed.removeHandler(handler); }

    // Closes the open step of every command stack (the recovery hook).
    static void closeAllOpenSteps();

    // For PiInput: records that `input` is about to change. Opens a step of
    // its own when none is open and then answers true and sets `epoch`: the
    // caller ends that step with endWrite(epoch) once the change is notified.
    bool beginWrite(PiInput& input, std::uint64_t& epoch);
    void endWrite(std::uint64_t epoch) { endGuard(epoch); }

    // For the graph's nodes: records a change of the graph's structure into
    // the open step, or into a step of its own named `name` when none is
    // open; undo and redo make it again (they are called while the stack
    // replays, when nothing is recorded). Ignored while a step is replayed.
    void recordChange(const LiString& name, std::function<void()> undo, std::function<void()> redo);
    // For the graph's nodes: names the open step after what an edit of an
    // input means to the node (a names edit that adds patches is "New
    // Patch"), when only the input has named it.
    void nameStep(const LiString& name);

    // For PiInput: the input refused a write in the open step; its
    // value-changed handlers are called once the step has closed.
    void announceWhenClosed(PiInput& input);

private:
    friend class PiUndoGuard;

    struct Change {
        std::function<void()> undo;
        std::function<void()> redo;
    };
    // An input's record, or (input empty) a change of the structure.
    struct Record {
        RCShdPtr<PiInput> input;
        PiInputState before;
        PiInputState after;
        std::shared_ptr<const Change> change;
    };
    struct Step {
        LiString name;
        std::vector<Record> records;
        bool namedByInput = false; // the name is the first input's
    };

    // Guards: begin answers the epoch the guard belongs to; end ignores a
    // guard of an earlier epoch (its step was closed by force meanwhile).
    std::uint64_t beginGuard(const LiString& text, int transition, bool& counted);
    void endGuard(std::uint64_t epoch);
    void open(const LiString& name);
    void close();
    void closeStep();
    void replay(const Step& step, bool forward);
    void notify() { _changed.call(); }
    Record* findRecord(const PiInput& input);

    std::vector<Step> _steps;
    // Where each input's record of the open step is, once the step is big
    // enough for a linear search to cost.
    std::unordered_map<const PiInput*, std::size_t> _index;
    std::size_t _current = 0;
    int _cleanIndex = 0;

    Step _openStep;
    bool _open = false;
    bool _held = false; // a transition step stays open after its guards
    int _depth = 0;     // live guards (and writes) in the open step
    std::uint64_t _epoch = 0;
    bool _replaying = false;
    // Inputs that refused a write in the open step.
    std::vector<RCShdPtr<PiInput>> _refused;

    CbDispatcher<CbEmptyType> _changed;
};

// Opens (or joins) a step of a command stack for as long as it lives; see
// PiExecParam for the transitions. The text names the step (an empty name is
// replaced by the name of the first input the step changes).
class TS_PLUGIN_API PiUndoGuard {
public:
    PiUndoGuard(PiCommandStack& stack, const LiString& text,
                const PiExecParam& param = PiExecParam());
    PiUndoGuard(const PiUndoGuard&) = delete;
    PiUndoGuard& operator=(const PiUndoGuard&) = delete;
    ~PiUndoGuard();

private:
    PiCommandStack& _stack;
    std::uint64_t _epoch = 0;
    bool _counted = false;
};
