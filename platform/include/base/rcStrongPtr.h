#pragma once

#include <base/rcShdPtr.h>

// A strong counted pointer: the owning side of a strong/weak pair. It counts on
// the same counter as RCShdPtr, so the two convert freely; the difference is
// one of intent (a weak pointer is expected to observe the object).
template <class T>
class RCStrongPtr : public RCBasePtr<T> {
public:
    using RCBasePtr<T>::RCBasePtr;
    RCStrongPtr() noexcept = default;
    RCStrongPtr(const RCBasePtr<T>& other) noexcept
        : RCBasePtr<T>(other) {}
    template <class U>
    requires std::is_convertible_v<U*, T*> RCStrongPtr(const RCBasePtr<U>& other)
    noexcept
        : RCBasePtr<T>(other) {}
};
