#pragma once

#include <base/cbDispatcher.h>
#include <base/cbEmptyType.h>
#include <base/cbMethod.h>
#include <base/rcBase.h>
#include <base/rcExUtil.h>
#include <base/rcShdPtr.h>
#include <base/typeName.h>
#include <pluginAPI/piInput.h>
#include <pluginAPI/piTimePath.h>

#include <cstdint>

// A live, typed view of one input at the time of a time path: what panels and
// tools bind to.
//
// getValue answers the input's value at the time path's current time, always
// up to date. The view also keeps a cached copy: needsUpdate() is true when
// the input changed or the time moved since the last update(), which brings
// the cache up to date; callers use the pair to refresh what they show only
// when something changed.
//
// Value-changed handlers run after every change of the input (edits from
// anywhere, undo, redo, loads); update handlers run when the time path's
// client changes its time. Handlers are CbHandler<CbEmptyType> and leave by
// themselves when destroyed.
//
// update() also leaves whatever shows the view's value up to date: when the
// value it brings in is not the one the view's value-changed handlers last
// heard of (the time moved to another value, or they have heard of none
// yet), it calls them, after the cache is up to date. Edits are announced by
// the input itself, and not again.
template <class T>
class PiInputValue : public RCBase<LkCounter<int>> {
public:
    // A view of `input` (which must hold T: ExNullPtr for a null input,
    // ExCastFailed for another type). A null time path reads at frame 0.
    static RCShdPtr<PiInputValue> createTyped(const RCShdPtr<PiInput>& input,
                                              const RCShdPtr<const PiTimePath>& timePath) {
        if (!input) {
            RCExUtil::throwExNullPtr(typeNameOf<PiInput>().c_str());
        }
        if (input->getType() != PiValueTypeOf<T>::value) {
            RCExUtil::throwExCastFailed(
                (LiString("PiInput of ") + PiValueUtil::getTypeName(input->getType())).c_str(),
                typeNameOf<PiInputValue<T>>().c_str());
        }
        return RCShdPtr<PiInputValue>(new PiInputValue(input, timePath));
    }

    T getValue() const {
        if (_revision == _input->getRevision() && _time == getTime()) {
            return _cached;
        }
        return _input->getTypedValue<T>(getTime());
    }
    // Writes at the view's time. False, with nothing changed, when the input
    // is locked or the value is not finite.
    bool setValue(const T& value) { return _input->setValue(getTime(), PiValue(value)); }

    void addValueChangedCb(CbHandler<CbEmptyType>* handler) {
        _input->addValueChangedCb(handler);
        _handlers.addHandler(handler);
    }
    void removeValueChangedCb(CbHandler<CbEmptyType>* handler) {
        _input->removeValueChangedCb(handler);
        _handlers.removeHandler(handler);
    }
    void addUpdateCb(CbHandler<CbEmptyType>* handler) {
        if (_timePath) {
            _timePath->addTimeChangedCb(handler);
        }
    }
    void removeUpdateCb(CbHandler<CbEmptyType>* handler) {
        if (_timePath) {
            _timePath->removeTimeChangedCb(handler);
        }
    }

    bool needsUpdate() const { return _revision != _input->getRevision() || _time != getTime(); }
    void update() {
        _time = getTime();
        _cached = _input->getTypedValue<T>(_time);
        _revision = _input->getRevision();
        if (_heardAny && _heard == _cached) {
            return;
        }
        _heard = _cached;
        _heardAny = true;
        _handlers.call();
    }

    bool isLocked() const { return _input->isLocked(); }

    const RCShdPtr<PiInput>& getInput() const { return _input; }
    const RCShdPtr<const PiTimePath>& getTimePath() const { return _timePath; }
    double getTime() const { return _timePath ? _timePath->getTime() : 0.0; }

private:
    PiInputValue(const RCShdPtr<PiInput>& input, const RCShdPtr<const PiTimePath>& timePath)
        : _input(input)
        , _timePath(timePath)
        , _time(getTime())
        , _cached(input->getTypedValue<T>(_time))
        , _revision(input->getRevision()) {
        // First among the view's handlers on the input: whoever hears of an
        // edit from the input has heard of the value it left.
        _input->addValueChangedCb(&_inputChanged);
    }

    void inputChanged() {
        _heard = _input->getTypedValue<T>(getTime());
        _heardAny = true;
    }

    RCShdPtr<PiInput> _input;
    RCShdPtr<const PiTimePath> _timePath;
    double _time;
    T _cached;
    std::uint64_t _revision;
    // The value the view's handlers last heard of.
    T _heard{};
    bool _heardAny = false;
    CbDispatcher<CbEmptyType> _handlers;
    CbMethod<PiInputValue, CbEmptyType> _inputChanged{this, &PiInputValue::inputChanged};
};
