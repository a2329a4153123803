#pragma once

#include <base/rcBase.h>
#include <base/rcShdPtr.h>

// The implementation behind an Iterator<T>: a position in a sequence of T.
template <class T>
class IteratorImp : public RCBase<LkCounter<int>> {
public:
    virtual void first() = 0;
    virtual void last() = 0;
    virtual void next() = 0;
    virtual void previous() = 0;
    // Moves past the last item.
    virtual void end() = 0;
    virtual bool atBegin() const = 0;
    virtual bool atEnd() const = 0;
    virtual int getCardinality() const = 0;
    virtual T& item() = 0;
    virtual const T& item() const = 0;
    virtual RCShdPtr<IteratorImp<T>> clone() const = 0;
    virtual bool compare(const IteratorImp<T>& other) const = 0;
};
