#pragma once

#include <algorithm>
#include <type_traits>
#include <vector>

template <class T>
class CbDispatcher;

// A listener of CbDispatcher<T> broadcasts. A handler may listen to several
// dispatchers; the handler's list of dispatchers and each dispatcher's list of
// handlers are kept mirror images. Destroying (or resetting) a handler takes
// it out of every dispatcher, so an object that owns its handlers disconnects
// from everything simply by being destroyed.
template <class T>
class CbHandler {
public:
    CbHandler() = default;
    CbHandler(const CbHandler&) = delete;
    CbHandler& operator=(const CbHandler&) = delete;
    virtual ~CbHandler() { reset(); }

    // The broadcast: T is usually const, so this takes the payload by
    // constant reference.
    virtual void callback(T& data) = 0;

    // Leaves every dispatcher, the most recent first.
    void reset() {
        for (auto i = _dispatchers.size(); i-- > 0;) {
            if (i < _dispatchers.size()) {
                CbDispatcher<T>* dispatcher = _dispatchers[i];
                if (dispatcher->holds(this)) {
                    dispatcher->removeHandler(this);
                }
            }
        }
        _dispatchers.clear();
    }

    bool isConnected() const { return !_dispatchers.empty(); }
    const std::vector<CbDispatcher<T>*>& getDispatchers() const { return _dispatchers; }

private:
    friend class CbDispatcher<T>;

    void addDispatcher(CbDispatcher<T>* dispatcher) {
        if (std::find(_dispatchers.begin(), _dispatchers.end(), dispatcher) == _dispatchers.end()) {
            _dispatchers.push_back(dispatcher);
        }
    }
    void removeDispatcher(CbDispatcher<T>* dispatcher) {
        auto it = std::find(_dispatchers.begin(), _dispatchers.end(), dispatcher);
        if (it != _dispatchers.end()) {
            _dispatchers.erase(it);
        }
    }

    std::vector<CbDispatcher<T>*> _dispatchers;
};

// A typed broadcast: calls every registered handler, in registration order,
// with the payload. It does not own its handlers.
//
// A call works on a snapshot of the handler list: a handler removed during the
// call (by itself or another) is not called afterwards in that pass, and a
// handler added during the call waits for the next call.
template <class T>
class CbDispatcher {
public:
    CbDispatcher() = default;
    CbDispatcher(const CbDispatcher&) = delete;
    CbDispatcher& operator=(const CbDispatcher&) = delete;

    // The handlers forget this dispatcher; they are neither called nor
    // destroyed.
    virtual ~CbDispatcher() {
        for (CbHandler<T>* handler : _handlers) {
            handler->removeDispatcher(this);
        }
    }

    // Null and already registered handlers are ignored.
    void addHandler(CbHandler<T>* handler) {
        if (!handler || holds(handler)) {
            return;
        }
        _handlers.push_back(handler);
        handler->addDispatcher(this);
    }

    // Null and unknown handlers are ignored.
    void removeHandler(CbHandler<T>* handler) {
        if (!handler || !holds(handler)) {
            return;
        }
        handler->removeDispatcher(this);
        _handlers.erase(std::find(_handlers.begin(), _handlers.end(), handler));
    }

    void call(T& value) {
        const std::vector<CbHandler<T>*> snapshot(_handlers);
        for (CbHandler<T>* handler : snapshot) {
            if (holds(handler)) {
                handler->callback(value);
            }
        }
    }

    // For payloads without data (CbEmptyType): broadcasts a default value.
    void call() requires std::is_default_constructible_v<std::remove_const_t<T>> {
        std::remove_const_t<T> value{};
        call(value);
    }

    bool holds(const CbHandler<T>* handler) const {
        return std::find(_handlers.begin(), _handlers.end(), handler) != _handlers.end();
    }
    std::size_t size() const { return _handlers.size(); }
    bool isEmpty() const { return _handlers.empty(); }

private:
    std::vector<CbHandler<T>*> _handlers;
};
