#pragma once

#include <base/rcShdPtr.h>

// Checked casts between counted pointers, references and plain pointers.
// The checked forms answer empty for empty and throw ExCastFailed (naming the
// object's dynamic type and the target type) for an object of the wrong type;
// the test forms never throw.

template <class U, class T>
RCShdPtr<U> rcCast(const RCBasePtr<T>& p) {
    if (!p) {
        return RCShdPtr<U>();
    }
    U* target = dynamic_cast<U*>(p.get());
    if (!target) {
        RCExUtil::throwExCastFailed(dynamicTypeNameOf(*p.get()).c_str(), typeNameOf<U>().c_str());
    }
    return RCShdPtr<U>(target);
}

template <class U, class T>
RCShdPtr<U> rcTestCast(const RCBasePtr<T>& p) noexcept {
    return RCShdPtr<U>(p ? dynamic_cast<U*>(p.get()) : nullptr);
}

// Checked cast of an object that must exist: a null pointer throws ExNullPtr
// (naming U), a wrong type ExCastFailed.
template <class U, class T>
RCShdPtr<U> rcCastRequired(const RCBasePtr<T>& p) {
    if (!p) {
        RCExUtil::throwExNullPtr(typeNameOf<U>().c_str());
    }
    return rcCast<U>(p);
}

template <class U, class T>
U& refCast(T& object) {
    U* target = dynamic_cast<U*>(&object);
    if (!target) {
        RCExUtil::throwExCastFailed(dynamicTypeNameOf(object).c_str(), typeNameOf<U>().c_str());
    }
    return *target;
}

template <class U, class T>
U* ptrCast(T* p) {
    return p ? &refCast<U>(*p) : nullptr;
}
