#pragma once

#include <algorithm>
#include <vector>

template <class T>
class ObSubject;

// An observer of ObSubject<T> notifications. An observer leaves every subject
// it is attached to when destroyed, and a subject detaches its observers when
// destroyed, so neither side dangles.
template <class T>
class ObObserver {
public:
    ObObserver() = default;
    ObObserver(const ObObserver&) = delete;
    ObObserver& operator=(const ObObserver&) = delete;
    virtual ~ObObserver();

    // The subject changed; `subject` is what changed.
    virtual void update(const T& subject) = 0;

private:
    friend class ObSubject<T>;
    std::vector<ObSubject<T>*> _subjects;
};

// Something observable: notifies its observers, in attachment order, with
// itself as T.
template <class T>
class ObSubject {
public:
    ObSubject() = default;
    ObSubject(const ObSubject&) = delete;
    ObSubject& operator=(const ObSubject&) = delete;
    virtual ~ObSubject() {
        for (ObObserver<T>* observer : _observers) {
            auto& s = observer->_subjects;
            s.erase(std::find(s.begin(), s.end(), this));
        }
    }

    void attachObserver(ObObserver<T>* observer) {
        if (!observer || isAttached(observer)) {
            return;
        }
        _observers.push_back(observer);
        observer->_subjects.push_back(this);
    }
    void detachObserver(ObObserver<T>* observer) {
        auto it = std::find(_observers.begin(), _observers.end(), observer);
        if (it == _observers.end()) {
            return;
        }
        _observers.erase(it);
        auto& s = observer->_subjects;
        s.erase(std::find(s.begin(), s.end(), this));
    }
    bool isAttached(const ObObserver<T>* observer) const {
        return std::find(_observers.begin(), _observers.end(), observer) != _observers.end();
    }
    std::size_t observerCount() const { return _observers.size(); }

protected:
    // Observers detached during the notification are not notified afterwards.
    void notifyObservers(const T& subject) {
        const std::vector<ObObserver<T>*> snapshot(_observers);
        for (ObObserver<T>* observer : snapshot) {
            if (isAttached(observer)) {
                observer->update(subject);
            }
        }
    }

private:
    std::vector<ObObserver<T>*> _observers;
};

template <class T>
ObObserver<T>::~ObObserver() {
    while (!_subjects.empty()) {
        _subjects.back()->detachObserver(this);
    }
}
