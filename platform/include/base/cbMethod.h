#pragma once

#include <base/cbEmptyType.h>
#include <base/cbHandler.h>

// A handler that calls a member function of its owner: void (Owner::*)(T&).
// With the empty payload the member function takes no argument. A handler
// with no owner set ignores calls.
template <class Owner, class T>
class CbMethod : public CbHandler<T> {
public:
    using Method = void (Owner::*)(T&);

    CbMethod() = default;
    CbMethod(Owner* owner, Method method)
        : _owner(owner)
        , _method(method) {}
    void set(Owner* owner, Method method) {
        _owner = owner;
        _method = method;
    }
    void callback(T& data) override {
        if (_owner && _method) {
            (_owner->*_method)(data);
        }
    }

private:
    Owner* _owner = nullptr;
    Method _method = nullptr;
};

template <class Owner>
class CbMethod<Owner, CbEmptyType> : public CbHandler<CbEmptyType> {
public:
    using Method = void (Owner::*)();

    CbMethod() = default;
    CbMethod(Owner* owner, Method method)
        : _owner(owner)
        , _method(method) {}
    void set(Owner* owner, Method method) {
        _owner = owner;
        _method = method;
    }
    void callback(CbEmptyType&) override {
        if (_owner && _method) {
            (_owner->*_method)();
        }
    }

private:
    Owner* _owner = nullptr;
    Method _method = nullptr;
};
