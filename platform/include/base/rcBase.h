#pragma once

#include <base/baseExport.h>
#include <base/lkCounter.h>

#include <atomic>

// Liveness record shared between a counted object and its weak pointers. It
// outlives the object as long as a weak pointer refers to it.
class TS_BASE_API RCWeakBlock {
public:
    void addRef() noexcept { _refs.fetch_add(1, std::memory_order_relaxed); }
    void release() noexcept;
    bool isAlive() const noexcept { return _alive.load(std::memory_order_acquire); }
    void expire() noexcept { _alive.store(false, std::memory_order_release); }

private:
    std::atomic<int> _refs{1};
    std::atomic<bool> _alive{true};
};

// The polymorphic root of every counted object. Counted objects are made with
// new, start with a count of 0 and are destroyed when the last counted pointer
// lets go. The counter type is the subclass's choice (RCBase<C>).
class TS_BASE_API RCCounted {
public:
    RCCounted() = default;
    RCCounted(const RCCounted&) noexcept {}
    RCCounted& operator=(const RCCounted&) noexcept { return *this; }
    virtual ~RCCounted();

    virtual void rcAddRef() const noexcept = 0;
    // Answers true when the count dropped to zero: the caller destroys.
    virtual bool rcRelease() const noexcept = 0;
    virtual int rcCount() const noexcept = 0;

    // The liveness record, made on first use by a weak pointer; the object
    // holds one reference on it.
    RCWeakBlock* rcWeakBlock() const;

private:
    mutable std::atomic<RCWeakBlock*> _weak{nullptr};
};

template <class Counter>
class RCBase;

// The counted base with an atomic count: objects that threads may share.
template <>
class RCBase<LkCounter<int>> : public virtual RCCounted {
public:
    RCBase() = default;
    // A copy is a new object: it starts uncounted.
    RCBase(const RCBase&) noexcept
        : RCCounted() {}
    RCBase& operator=(const RCBase&) noexcept { return *this; }

    void rcAddRef() const noexcept final { _count.increment(); }
    bool rcRelease() const noexcept final { return _count.decrement() == 0; }
    int rcCount() const noexcept final { return _count.get(); }

private:
    mutable LkCounter<int> _count;
};

// The counted base with a plain count: objects that never leave one thread.
template <>
class RCBase<int> : public virtual RCCounted {
public:
    RCBase() = default;
    RCBase(const RCBase&) noexcept
        : RCCounted() {}
    RCBase& operator=(const RCBase&) noexcept { return *this; }

    void rcAddRef() const noexcept final { ++_count; }
    bool rcRelease() const noexcept final { return --_count == 0; }
    int rcCount() const noexcept final { return _count; }

private:
    mutable int _count = 0;
};

using RCObject = RCBase<LkCounter<int>>;
