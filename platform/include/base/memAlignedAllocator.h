#pragma once

#include <cstddef>
#include <new>

// A standard allocator whose blocks start on an Alignment-byte boundary. Image
// rows that begin on a cache line let the pixel loops read and write whole
// lines with the widest vector instructions.
template <class T, std::size_t Alignment>
struct MemAlignedAllocator {
    static_assert(Alignment >= alignof(T) && (Alignment & (Alignment - 1)) == 0);
    using value_type = T;
    template <class U>
    struct rebind {
        using other = MemAlignedAllocator<U, Alignment>;
    };

    MemAlignedAllocator() = default;
    template <class U>
    MemAlignedAllocator(const MemAlignedAllocator<U, Alignment>&) noexcept {}

    T* allocate(std::size_t n) {
        return static_cast<T*>(::operator new (n * sizeof(T), std::align_val_t{Alignment}));
    }
    void deallocate(T* p, std::size_t) noexcept {
        ::operator delete (p, std::align_val_t{Alignment});
    }

    template <class U>
    bool operator==(const MemAlignedAllocator<U, Alignment>&) const noexcept {
        return true;
    }
};
