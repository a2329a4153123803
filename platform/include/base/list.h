#pragma once

#include <vector>

// An ordered sequence that grows at its end. Stored contiguously: the keyer
// hands lists of a million picked colours around.
template <class T>
class List : public std::vector<T> {
public:
    using std::vector<T>::vector;
    List() = default;
    void append(const T& value) { this->push_back(value); }
    void append(T&& value) { this->push_back(std::move(value)); }
    bool isEmpty() const { return this->empty(); }
};
