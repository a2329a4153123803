#pragma once

#include <base/iteratorEx.h>
#include <base/iteratorImp.h>

#include <vector>

// An iterator over a copy of a vector of items.
template <class T>
class IteratorVector : public IteratorImp<T> {
public:
    explicit IteratorVector(std::vector<T> items)
        : _items(std::move(items)) {}

    void first() override { _pos = 0; }
    void last() override { _pos = _items.empty() ? 0 : _items.size() - 1; }
    void next() override {
        if (_pos >= _items.size()) {
            throw IteratorEx::ExOutOfRange("base/containers/src/iteratorVector", __LINE__);
        }
        ++_pos;
    }
    void previous() override {
        if (_pos == 0) {
            throw IteratorEx::ExOutOfRange("base/containers/src/iteratorVector", __LINE__);
        }
        --_pos;
    }
    void end() override { _pos = _items.size(); }
    bool atBegin() const override { return _pos == 0; }
    bool atEnd() const override { return _pos >= _items.size(); }
    int getCardinality() const override { return static_cast<int>(_items.size()); }
    T& item() override {
        if (_pos >= _items.size()) {
            throw IteratorEx::ExOutOfRange("base/containers/src/iteratorVector", __LINE__);
        }
        return _items[_pos];
    }
    const T& item() const override {
        if (_pos >= _items.size()) {
            throw IteratorEx::ExOutOfRange("base/containers/src/iteratorVector", __LINE__);
        }
        return _items[_pos];
    }
    RCShdPtr<IteratorImp<T>> clone() const override {
        return RCShdPtr<IteratorImp<T>>(new IteratorVector<T>(*this));
    }
    bool compare(const IteratorImp<T>& other) const override {
        auto* o = dynamic_cast<const IteratorVector<T>*>(&other);
        return o && o->_pos == _pos && o->_items.size() == _items.size();
    }

private:
    std::vector<T> _items;
    std::size_t _pos = 0;
};
