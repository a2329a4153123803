#pragma once

#include <base/exReporter.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

// The factories registered for one purpose (a stage's viewer handler, a
// stage's panel): the one registered last is used; registering one again
// moves it last; withdrawing removes it.
template <class Factory>
class TsFactoryRegistry {
public:
    explicit TsFactoryRegistry(std::string purpose)
        : _purpose(std::move(purpose)) {}

    void add(Factory f) {
        if (!f) {
            return;
        }
        remove(f);
        _factories.push_back(f);
    }
    void remove(Factory f) { std::erase(_factories, f); }
    Factory get() const { return _factories.empty() ? nullptr : _factories.back(); }

    // The factory to call; null, with a report, when there is none.
    Factory require() const {
        Factory f = get();
        if (!f) {
            ExReporter::getInstance().report(
                "keyer", "no factory registered for " + _purpose +
                             ": is the keyer's user-interface module loaded and started?");
        }
        return f;
    }

private:
    std::string _purpose;
    std::vector<Factory> _factories;
};
