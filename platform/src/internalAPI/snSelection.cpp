#include <internalAPI/snSelection.h>

#include <algorithm>

namespace {

Sn::Items distinct(const Sn::Items& items) {
    Sn::Items out;
    for (const auto& item : items) {
        if (!item) {
            continue;
        }
        const bool seen = std::any_of(out.begin(), out.end(),
                                      [&item](const auto& o) { return o->isSame(*item); });
        if (!seen) {
            out.push_back(item);
        }
    }
    return out;
}

bool sameItems(const Sn::Items& a, const Sn::Items& b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(),
                      [](const auto& x, const auto& y) { return x->isSame(*y); });
}

} // namespace

bool Sn::contains(const SnItem& item) const {
    return std::any_of(_items.begin(), _items.end(),
                       [&item](const auto& i) { return i->isSame(item); });
}

RCShdPtr<SnSelection> SnSelection::create() {
    return RCShdPtr<SnSelection>(new SnSelection);
}

RCShdPtr<SnSelection> SnSelection::create(const RCShdPtr<const SnItem>& item) {
    return create(Items{item});
}

RCShdPtr<SnSelection> SnSelection::create(const Items& items) {
    RCShdPtr<SnSelection> selection(new SnSelection);
    selection->_items = distinct(items);
    return selection;
}

const RCShdPtr<SnSelection>& SnSelection::getCurrent() {
    // Never destroyed: observers may detach during static termination.
    static auto* current = new RCShdPtr<SnSelection>(create());
    return *current;
}

void SnSelection::setItems(const Items& items) {
    Items next = distinct(items);
    if (sameItems(next, _items)) {
        return;
    }
    _items = std::move(next);
    notifyObservers(*this);
}

void SnSelection::add(const RCShdPtr<const SnItem>& item) {
    Items next = _items;
    next.push_back(item);
    setItems(next);
}

void SnSelection::remove(const SnItem& item) {
    Items next = _items;
    std::erase_if(next, [&item](const auto& i) { return i->isSame(item); });
    setItems(next);
}

RCShdPtr<SnSelection>
SnSelection::filter(const PrdPredicate<RCShdPtr<const SnItem>>& predicate) const {
    Items kept;
    for (const auto& item : _items) {
        if (predicate(item)) {
            kept.push_back(item);
        }
    }
    return create(kept);
}
