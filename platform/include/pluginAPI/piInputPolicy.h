#pragma once

#include <base/rcBase.h>

#include <algorithm>
#include <cmath>

// What an input accepts beyond its type. The host attaches a policy to an
// input (PiInput::setPolicy); tools read it through
// PiToolInterface::getInputPolicy.
class PiInputPolicy : public RCBase<LkCounter<int>> {
public:
    ~PiInputPolicy() override = default;
};

// A closed range [min, max] of a numeric input. Writes outside the range are
// clamped into it (the write still succeeds). min <= max.
template <class T>
class PiRangeInputPolicy : public PiInputPolicy {
public:
    PiRangeInputPolicy(T min, T max)
        : _min(std::min(min, max))
        , _max(std::max(min, max)) {}

    // The lower bound, then the upper bound.
    T getMin() const { return _min; }
    T getMax() const { return _max; }

    T clamp(T value) const { return std::clamp(value, _min, _max); }
    bool contains(T value) const { return value >= _min && value <= _max; }

private:
    T _min;
    T _max;
};
