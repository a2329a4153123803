#pragma once

#include <base/rcBasePtr.h>

// A shared counted pointer: the host's everyday way of holding a counted
// object. Copies share the object.
template <class T>
class RCShdPtr : public RCBasePtr<T> {
public:
    using RCBasePtr<T>::RCBasePtr;
    RCShdPtr() noexcept = default;
    RCShdPtr(const RCBasePtr<T>& other) noexcept
        : RCBasePtr<T>(other) {}
    template <class U>
    requires std::is_convertible_v<U*, T*> RCShdPtr(const RCBasePtr<U>& other)
    noexcept
        : RCBasePtr<T>(other) {}
};

// Makes a counted object and takes the first reference for the caller.
template <class T, class... Args>
RCShdPtr<T> rcMake(Args&&... args) {
    return RCShdPtr<T>(new T(std::forward<Args>(args)...));
}
