#pragma once

#include <base/obObserver.h>
#include <base/prdPredicate.h>
#include <base/rcBase.h>
#include <base/rcShdPtr.h>
#include <internalAPI/internalAPIExport.h>
#include <pluginAPI/snItem.h>

#include <vector>

// What selection observers are told about: an ordered set of distinct
// items (SnItem::isSame), the first item first selected.
class Sn : public RCBase<LkCounter<int>> {
public:
    using Items = std::vector<RCShdPtr<const SnItem>>;

    const Items& getItems() const { return _items; }
    int size() const { return static_cast<int>(_items.size()); }
    bool isEmpty() const { return _items.empty(); }
    // The first item, or empty.
    RCShdPtr<const SnItem> first() const {
        return _items.empty() ? RCShdPtr<const SnItem>() : _items.front();
    }
    TS_INTERNAL_API bool contains(const SnItem& item) const;

protected:
    Items _items;
};

// A node selection, observable (ObSubject<Sn>): observers are told after
// every change of its items, with the selection itself.
//
// The application has one current node selection, getCurrent(): the one the
// user changes by selecting nodes and that panels observe. Selections made
// with create() are free-standing values (a filter result, a selection about
// to become current with assign()).
class SnSelection : public Sn, public ObSubject<Sn> {
public:
    TS_INTERNAL_API static RCShdPtr<SnSelection> create();
    TS_INTERNAL_API static RCShdPtr<SnSelection> create(const RCShdPtr<const SnItem>& item);
    TS_INTERNAL_API static RCShdPtr<SnSelection> create(const Items& items);

    // The application's current node selection (one object for the whole
    // process).
    TS_INTERNAL_API static const RCShdPtr<SnSelection>& getCurrent();

    // Each changes the items and notifies the observers when the items
    // changed (null items and repeats are dropped).
    TS_INTERNAL_API void setItems(const Items& items);
    void assign(const Sn& other) { setItems(other.getItems()); }
    TS_INTERNAL_API void add(const RCShdPtr<const SnItem>& item);
    TS_INTERNAL_API void remove(const SnItem& item);
    void clear() { setItems({}); }

    // The items that satisfy the predicate, in order, as a new selection.
    TS_INTERNAL_API RCShdPtr<SnSelection>
    filter(const PrdPredicate<RCShdPtr<const SnItem>>& predicate) const;

private:
    SnSelection() = default;
};
