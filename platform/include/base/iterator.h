#pragma once

#include <base/iteratorImp.h>

#include <utility>

// A bidirectional iterator over a sequence of T, forwarding every operation
// to its implementation object. Copies clone the position.
template <class T>
class Iterator {
public:
    explicit Iterator(const RCShdPtr<IteratorImp<T>>& imp)
        : _imp(imp) {}
    Iterator(const Iterator& other)
        : _imp(other._imp ? other._imp->clone() : RCShdPtr<IteratorImp<T>>()) {}
    Iterator& operator=(const Iterator& other) {
        if (this != &other) {
            _imp = other._imp ? other._imp->clone() : RCShdPtr<IteratorImp<T>>();
        }
        return *this;
    }
    Iterator(Iterator&&) noexcept = default;
    Iterator& operator=(Iterator&&) noexcept = default;
    ~Iterator() = default;

    void first() { _imp->first(); }
    void last() { _imp->last(); }
    void next() { _imp->next(); }
    void previous() { _imp->previous(); }
    void end() { _imp->end(); }
    bool atBegin() const { return _imp->atBegin(); }
    bool atEnd() const { return _imp->atEnd(); }
    int getCardinality() const { return _imp->getCardinality(); }
    T& item() { return _imp->item(); }
    const T& item() const { return std::as_const(*_imp).item(); }

    Iterator& operator++() {
        next();
        return *this;
    }
    Iterator& operator--() {
        previous();
        return *this;
    }
    T& operator*() { return item(); }
    const T& operator*() const { return item(); }
    T* operator->() { return &item(); }
    const T* operator->() const { return &item(); }

    bool operator==(const Iterator& other) const { return _imp->compare(*other._imp); }

private:
    RCShdPtr<IteratorImp<T>> _imp;
};
