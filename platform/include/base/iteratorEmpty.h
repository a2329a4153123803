#pragma once

#include <base/iteratorEx.h>
#include <base/iteratorImp.h>

// The iterator over no items: always at its beginning and at its end; moving
// or asking for the item throws IteratorEx::ExOutOfRange.
template <class T>
class IteratorEmpty : public IteratorImp<T> {
public:
    void first() override {}
    void last() override {}
    void next() override {
        throw IteratorEx::ExOutOfRange("base/containers/src/iteratorEmpty.imp", 102);
    }
    void previous() override {
        throw IteratorEx::ExOutOfRange("base/containers/src/iteratorEmpty.imp", 110);
    }
    void end() override {}
    bool atBegin() const override { return true; }
    bool atEnd() const override { return true; }
    int getCardinality() const override { return 0; }
    T& item() override { throw IteratorEx::ExOutOfRange("base/containers/src/iteratorEmpty", 106); }
    const T& item() const override {
        throw IteratorEx::ExOutOfRange("base/containers/src/iteratorEmpty", 113);
    }
    RCShdPtr<IteratorImp<T>> clone() const override {
        return RCShdPtr<IteratorImp<T>>(new IteratorEmpty<T>);
    }
    bool compare(const IteratorImp<T>& other) const override {
        return dynamic_cast<const IteratorEmpty<T>*>(&other) != nullptr;
    }
};
