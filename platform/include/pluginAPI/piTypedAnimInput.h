#pragma once

#include <base/rcCast.h>
#include <base/rcExUtil.h>
#include <base/typeName.h>
#include <pluginAPI/piInput.h>

// A typed reader of an input at any time. T must be the input's value type:
// a null input throws ExNullPtr, an input of another type ExCastFailed.
template <class T>
class PiTypedAnimSocket {
public:
    explicit PiTypedAnimSocket(const RCShdPtr<PiInput>& input)
        : _input(input) {
        if (!_input) {
            RCExUtil::throwExNullPtr(typeNameOf<PiInput>().c_str());
        }
        if (_input->getType() != PiValueTypeOf<T>::value) {
            RCExUtil::throwExCastFailed(
                (LiString("PiInput of ") + PiValueUtil::getTypeName(_input->getType())).c_str(),
                typeNameOf<PiTypedAnimSocket<T>>().c_str());
        }
    }
    PiTypedAnimSocket(const PiTypedAnimSocket&) = delete;
    PiTypedAnimSocket& operator=(const PiTypedAnimSocket&) = delete;
    virtual ~PiTypedAnimSocket() = default;

    T getValue(double time) const { return _input->getTypedValue<T>(time); }
    bool isAnimated() const { return _input->hasKeys(); }
    const RCShdPtr<PiInput>& getInput() const { return _input; }

protected:
    RCShdPtr<PiInput> _input;
};

// A typed reader and writer of an input at any time (see PiInput for what a
// write at a time does: the constant value without keys, the key at that
// time with keys).
template <class T>
class PiTypedAnimInput : public PiTypedAnimSocket<T> {
public:
    explicit PiTypedAnimInput(const RCShdPtr<PiInput>& input)
        : PiTypedAnimSocket<T>(input) {}

    bool setValue(double time, const T& value) {
        return this->_input->setValue(time, PiValue(value));
    }
    bool setKey(double time, const T& value) { return this->_input->setKey(time, PiValue(value)); }
    bool removeKey(double time) { return this->_input->removeKey(time); }
};
