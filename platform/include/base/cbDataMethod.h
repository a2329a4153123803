#pragma once

#include <base/cbEmptyType.h>
#include <base/cbHandler.h>

// A handler that calls a member function of its owner with one stored datum
// (a slot, parameter or tool index): void (Owner::*)(T&, const D&). With the
// empty payload the member function takes the datum alone.
template <class Owner, class T, class D>
class CbDataMethod : public CbHandler<T> {
public:
    using Method = void (Owner::*)(T&, const D&);

    CbDataMethod() = default;
    CbDataMethod(Owner* owner, Method method, const D& data)
        : _owner(owner)
        , _method(method)
        , _data(data) {}
    void set(Owner* owner, Method method, const D& data) {
        _owner = owner;
        _method = method;
        _data = data;
    }
    const D& getData() const { return _data; }
    void callback(T& payload) override {
        if (_owner && _method) {
            (_owner->*_method)(payload, _data);
        }
    }

private:
    Owner* _owner = nullptr;
    Method _method = nullptr;
    D _data{};
};

template <class Owner, class D>
class CbDataMethod<Owner, CbEmptyType, D> : public CbHandler<CbEmptyType> {
public:
    using Method = void (Owner::*)(const D&);

    CbDataMethod() = default;
    CbDataMethod(Owner* owner, Method method, const D& data)
        : _owner(owner)
        , _method(method)
        , _data(data) {}
    void set(Owner* owner, Method method, const D& data) {
        _owner = owner;
        _method = method;
        _data = data;
    }
    const D& getData() const { return _data; }
    void callback(CbEmptyType&) override {
        if (_owner && _method) {
            (_owner->*_method)(_data);
        }
    }

private:
    Owner* _owner = nullptr;
    Method _method = nullptr;
    D _data{};
};
