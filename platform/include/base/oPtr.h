#pragma once

#include <base/rcExUtil.h>
#include <base/typeName.h>

#include <cstddef>
#include <utility>

// An owning pointer that can give its object away (release). Not copyable.
template <class T>
class OPtr {
public:
    OPtr() noexcept = default;
    OPtr(std::nullptr_t) noexcept {}
    explicit OPtr(T* object) noexcept
        : _p(object) {}
    OPtr(OPtr&& other) noexcept
        : _p(other.release()) {}
    template <class U>
    OPtr(OPtr<U>&& other) noexcept
        : _p(other.release()) {}
    OPtr& operator=(OPtr&& other) noexcept {
        reset(other.release());
        return *this;
    }
    OPtr(const OPtr&) = delete;
    OPtr& operator=(const OPtr&) = delete;
    ~OPtr() { delete _p; }

    T* get() const noexcept { return _p; }
    T* release() noexcept { return std::exchange(_p, nullptr); }
    void reset(T* object = nullptr) noexcept { delete std::exchange(_p, object); }
    T& operator*() const {
        if (!_p) {
            RCExUtil::throwExNullPtr(typeNameOf<T>().c_str());
        }
        return *_p;
    }
    T* operator->() const { return &**this; }
    explicit operator bool() const noexcept { return _p != nullptr; }

private:
    T* _p = nullptr;
};
