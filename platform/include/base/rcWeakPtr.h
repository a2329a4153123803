#pragma once

#include <base/rcStrongPtr.h>

// A weak pointer to a counted object: it does not keep the object alive, and
// lock() answers an empty strong pointer once the object is gone (or while it
// is being destroyed).
template <class T>
class RCWeakPtr {
public:
    RCWeakPtr() noexcept = default;
    RCWeakPtr(std::nullptr_t) noexcept {}
    template <class U>
    requires std::is_convertible_v<U*, T*> RCWeakPtr(const RCBasePtr<U>& strong) {
        assign(strong.get());
    }
    explicit RCWeakPtr(T* object) { assign(object); }
    RCWeakPtr(const RCWeakPtr& other) noexcept
        : _p(other._p)
        , _block(other._block) {
        if (_block) {
            _block->addRef();
        }
    }
    RCWeakPtr& operator=(const RCWeakPtr& other) noexcept {
        RCWeakPtr copy(other);
        std::swap(_p, copy._p);
        std::swap(_block, copy._block);
        return *this;
    }
    ~RCWeakPtr() {
        if (_block) {
            _block->release();
        }
    }

    RCStrongPtr<T> lock() const {
        if (!_block || !_block->isAlive() || static_cast<const RCCounted*>(_p)->rcCount() <= 0) {
            return RCStrongPtr<T>();
        }
        return RCStrongPtr<T>(_p);
    }
    bool expired() const noexcept { return !_block || !_block->isAlive(); }

private:
    void assign(T* object) {
        if (object) {
            _p = object;
            _block = static_cast<const RCCounted*>(object)->rcWeakBlock();
            _block->addRef();
        }
    }

    T* _p = nullptr;
    RCWeakBlock* _block = nullptr;
};
