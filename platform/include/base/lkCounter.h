#pragma once

#include <atomic>

// A counter whose increments and decrements are atomic: the count of objects
// that may be shared between threads.
template <class T>
class LkCounter {
public:
    LkCounter() noexcept = default;
    explicit LkCounter(T value) noexcept
        : _value(value) {}

    T increment() noexcept { return _value.fetch_add(1, std::memory_order_relaxed) + 1; }
    T decrement() noexcept { return _value.fetch_sub(1, std::memory_order_acq_rel) - 1; }
    T get() const noexcept { return _value.load(std::memory_order_acquire); }

private:
    std::atomic<T> _value{0};
};
