#pragma once

#include <base/assertions.h>
#include <base/cbDispatcher.h>
#include <base/cbEmptyType.h>
#include <base/rcShdPtr.h>
#include <pluginAPI/piGraphObject.h>
#include <pluginAPI/piInputPolicy.h>
#include <pluginAPI/piValue.h>
#include <pluginAPI/pluginAPIExport.h>

#include <algorithm>
#include <cstdint>
#include <type_traits>
#include <variant>
#include <vector>

class PiNode;
class PiCommandStack;

// How the value runs from one key to the next (the key's own setting is that
// of the stretch after it):
//   Linear  a straight line between the two keys;
//   Smooth  a cubic through the keys whose slope at each key is the mean of
//           the slopes of the lines to its neighbours, limited so that the
//           curve never overshoots (flat at a key that is a peak or a dip,
//           and at the first and the last key: the value eases in and out).
// New keys are smooth; keys of setups saved before keys had a setting are
// linear.
enum class PiInterpolation { Linear, Smooth };

// One animation key: the input's value at a frame.
struct TS_PLUGIN_API PiAnimKey {
    double time = 0.0;
    PiValue value;
    PiInterpolation interpolation = PiInterpolation::Smooth;
};

// Everything an input holds that an edit can change: what the command stack
// keeps before and after a step, and what a setup saves.
struct TS_PLUGIN_API PiInputState {
    PiValue constant;            // the value at every time while there are no keys
    std::vector<PiAnimKey> keys; // sorted by time, times distinct
    bool locked = false;

    bool operator==(const PiInputState& other) const;
    // An estimate of the bytes this state occupies (the undo history's
    // memory).
    std::size_t memoryUse() const;
};

// A value of a node: typed, animatable, lockable, observable.
//
// Reading at a time: without keys the input holds its constant value at every
// time; with keys, doubles and colours interpolate between the two keys
// around the time as the first of them says (PiInterpolation), integers and
// flags hold the value of the last key at or before it, and before the first
// key (after the last) the first (last) key's value holds.
//
// Writing: every change goes through the command stack of the graph that
// holds the input's node (PiCommandStack), so it is undoable; an input of a
// node outside any graph changes without history. A write to a locked input,
// of a value that is not finite, or of one the node's controller refuses
// (PiNodeController::getValueRefusal), is refused: the edit answers false
// and nothing changes, and the input's value-changed handlers are called as
// after a change once the step under way closes (at once when none is
// open), so that whatever showed the value asked for shows the input's
// again. Numbers are clamped into the input's range policy. A write that
// leaves the input as it was succeeds and changes nothing (no callbacks).
//
// After every change (an edit, an undo, a redo, a load) the node's controller
// is told, then the input's value-changed handlers are called, then the node
// fires PiNodeEvent::ValueChanged.
class TS_PLUGIN_API PiInput : public PiGraphObject {
public:
    PiInput(const LiString& name, const PiValue& defaultValue);
    ~PiInput() override;

    // The socket name, unique among the inputs of one node.
    const LiString& getName() const { return _name; }
    PiValueType getType() const { return _type; }
    const PiValue& getDefault() const { return _default; }
    // Whether keys may be set: numbers, flags and colours, unless the input was
    // made static (one value at all times, such as a list of names or an
    // index).
    bool isAnimatable() const { return _animatable; }
    void setStatic() { _animatable = false; }

    // --- Reading
    PiValue getValue(double time) const;
    // The value as T, which must be the input's type (an assertion otherwise).
    template <class T>
    T getTypedValue(double time) const;
    const PiInputState& getState() const { return _state; }
    bool hasKeys() const { return !_state.keys.empty(); }
    int getKeyCount() const { return static_cast<int>(_state.keys.size()); }
    const std::vector<PiAnimKey>& getKeys() const { return _state.keys; }
    bool hasKeyAt(double time) const;
    bool isLocked() const { return _state.locked; }
    // Grows by one at every change; views compare it to tell a stale cache.
    std::uint64_t getRevision() const { return _revision; }

    // --- Editing (undoable; see the class comment)
    // At a time: an input without keys takes the value as its constant; an
    // input with keys sets the key at that time, adding one if there is none.
    bool setValue(double time, const PiValue& value);
    template <class T>
    bool setTypedValue(double time, const T& value) {
        return setValue(time, PiValue(value));
    }
    // Sets (or adds) the key at the time; the first key of an input turns it
    // from constant to animated. Refused for kinds that do not animate. A new
    // key is smooth; a key that was there keeps its interpolation.
    bool setKey(double time, const PiValue& value);
    // Sets the interpolation of every key (one change); false without keys.
    bool setInterpolation(PiInterpolation interpolation);
    // Removes the key at exactly that time; false when there is none. The last
    // key's value becomes the constant value when the last key goes.
    bool removeKey(double time);
    // Removes every key and holds the value.
    bool setConstant(const PiValue& value);
    bool resetToDefault() { return setConstant(_default); }
    // Locking is an edit too (undoable, saved with setups). A locked input
    // refuses value edits until unlocked.
    void setLocked(bool locked);
    // Replaces the whole state (a setup being loaded): neither the current
    // lock nor the controller refuses it. False when a value is of the wrong
    // type or not finite, or the keys are not in strictly increasing time.
    bool setState(const PiInputState& state);
    // Why an edit writing `value` would be refused, or "" when it would be
    // taken: the input is locked, the value is not finite, or the node's
    // controller refuses it.
    LiString getRefusal(const PiValue& value) const;

    // Used by the command stack to undo and redo: puts the state back without
    // recording anything, then notifies as an edit does.
    void restoreState(const PiInputState& state);

    // --- Policy
    const RCShdPtr<const PiInputPolicy>& getPolicy() const { return _policy; }
    void setPolicy(const RCShdPtr<const PiInputPolicy>& policy);

    // --- Observers: called after every change of the input.
    void addValueChangedCb(CbHandler<CbEmptyType>* handler) { _valueChanged.addHandler(handler); }
    void removeValueChangedCb(CbHandler<CbEmptyType>* handler) {
        _valueChanged.removeHandler(handler);
    }

    // The node that holds the input (null for a free input or once the node
    // is gone).
    PiNode* getNode() const { return _node; }
    // The command stack edits go through: the one of the node's graph, or
    // null.
    PiCommandStack* getCommandStack() const;

private:
    friend class PiNode;
    friend class PiCommandStack;
    class Edit;

    void setNode(PiNode* node) { _node = node; }
    bool accepts(const PiValue& value) const;
    // A write was refused: announced when the step under way closes.
    void refused();
    // The value-changed handlers, called without a change.
    void announce() { _valueChanged.call(); }
    void constrain(PiValue& value) const;
    void notifyChanged();
    // An assertion at the caller's place: a read or write of the wrong type.
    [[noreturn]] void wrongType(const char* expression,
                                SourcePlace where = SourcePlace::current()) const;

    LiString _name;
    PiValueType _type;
    PiValue _default;
    PiInputState _state;
    std::uint64_t _revision = 0;
    RCShdPtr<const PiInputPolicy> _policy;
    const PiRangeInputPolicy<double>* _rangeDouble = nullptr;
    const PiRangeInputPolicy<int>* _rangeInt = nullptr;
    PiNode* _node = nullptr;
    bool _animatable;
    CbDispatcher<CbEmptyType> _valueChanged;
};

// A structured input: a colour of three components (red, green, blue), read
// and written as one value so that a change of colour is one change.
class PiStructuredInput : public PiInput {
public:
    TS_PLUGIN_API PiStructuredInput(const LiString& name,
                                    const CoRgbColorTyped<float>& defaultValue);

    static constexpr int ComponentCount = 3;
    // "red", "green", "blue".
    TS_PLUGIN_API static const char* getComponentName(int component);
};

template <class T>
inline T PiInput::getTypedValue(double time) const {
    if (_type != PiValueTypeOf<T>::value) {
        wrongType("_type == PiValueTypeOf<T>::value");
    }
    if (_state.keys.empty()) {
        return std::get<T>(_state.constant);
    }
    return std::get<T>(getValue(time));
}
