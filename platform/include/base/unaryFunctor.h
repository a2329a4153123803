#pragma once

#include <base/rcBase.h>

// A counted function object of one argument: the leaf tests of predicates.
template <class A, class R>
class UnaryFunctor : public RCBase<LkCounter<int>> {
public:
    virtual R operator()(const A& argument) const = 0;
};
