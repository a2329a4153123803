#pragma once

#include <vector>

// A growable array.
template <class T>
class Vector : public std::vector<T> {
public:
    using std::vector<T>::vector;
    Vector() = default;
    void append(const T& value) { this->push_back(value); }
    void append(T&& value) { this->push_back(std::move(value)); }
    bool isEmpty() const { return this->empty(); }
};
