#pragma once

#include <base/rcBase.h>
#include <base/rcExUtil.h>
#include <base/typeName.h>

#include <cstddef>
#include <ostream>
#include <type_traits>
#include <utility>

// The common part of the host's counted pointers: holds one reference on a
// counted object (any class derived from RCBase<...>) and destroys the object
// when the last reference goes. Dereferencing an empty pointer throws
// ExNullPtr naming T.
template <class T>
class RCBasePtr {
public:
    using element_type = T;

    RCBasePtr() noexcept = default;
    RCBasePtr(std::nullptr_t) noexcept {}
    explicit RCBasePtr(T* object) noexcept
        : _p(object) {
        addRef();
    }
    RCBasePtr(const RCBasePtr& other) noexcept
        : _p(other._p) {
        addRef();
    }
    RCBasePtr(RCBasePtr&& other) noexcept
        : _p(std::exchange(other._p, nullptr)) {}
    template <class U>
    requires std::is_convertible_v<U*, T*> RCBasePtr(const RCBasePtr<U>& other)
    noexcept
        : _p(other.get()) {
        addRef();
    }
    ~RCBasePtr() { release(); }

    RCBasePtr& operator=(const RCBasePtr& other) noexcept {
        RCBasePtr copy(other);
        swap(copy);
        return *this;
    }
    RCBasePtr& operator=(RCBasePtr&& other) noexcept {
        RCBasePtr moved(std::move(other));
        swap(moved);
        return *this;
    }

    T* get() const noexcept { return _p; }
    T& operator*() const {
        if (!_p) {
            RCExUtil::throwExNullPtr(typeNameOf<T>().c_str());
        }
        return *_p;
    }
    T* operator->() const { return &**this; }
    explicit operator bool() const noexcept { return _p != nullptr; }
    bool isNull() const noexcept { return _p == nullptr; }

    void reset() noexcept {
        RCBasePtr empty;
        swap(empty);
    }
    void swap(RCBasePtr& other) noexcept { std::swap(_p, other._p); }

    // Writes, on one line: the pointee's dynamic type (or "null"), the static
    // type T, the reference count, the pointee's address and the address of
    // its counted base (the RCBase<...> part, which holds the count).
    void dump(std::ostream& os) const {
        const RCCounted* counted = _p ? static_cast<const RCCounted*>(_p) : nullptr;
        os << "Pointee type = " << (_p ? dynamicTypeNameOf(*_p) : std::string("null"))
           << ", T type = " << typeNameOf<T>() << ", ref: " << (counted ? counted->rcCount() : 0)
           << ", pointer:" << static_cast<const void*>(_p) << ", RCBase pointer: " << countedBase();
    }

    template <class U>
    bool operator==(const RCBasePtr<U>& other) const noexcept {
        return static_cast<const void*>(_p) == static_cast<const void*>(other.get());
    }
    bool operator==(std::nullptr_t) const noexcept { return _p == nullptr; }

private:
    // The RCBase<...> subobject of the pointee; its counted root when it
    // derives from no single one.
    const void* countedBase() const noexcept {
        if (!_p) {
            return nullptr;
        }
        if constexpr (std::is_convertible_v<const T*, const RCBase<LkCounter<int>>*>) {
            return static_cast<const RCBase<LkCounter<int>>*>(_p);
        } else if constexpr (std::is_convertible_v<const T*, const RCBase<int>*>) {
            return static_cast<const RCBase<int>*>(_p);
        } else {
            return static_cast<const RCCounted*>(_p);
        }
    }

    void addRef() const noexcept {
        if (_p) {
            static_cast<const RCCounted*>(_p)->rcAddRef();
        }
    }
    void release() noexcept {
        if (_p && static_cast<const RCCounted*>(_p)->rcRelease()) {
            delete static_cast<const RCCounted*>(_p);
        }
        _p = nullptr;
    }

    T* _p = nullptr;
};
