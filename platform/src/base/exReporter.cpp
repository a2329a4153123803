#include <base/exBase.h>
#include <base/exReporter.h>

#include <iostream>
#include <new>

ExReporter& ExReporter::getInstance() {
    // Never destroyed: plugin statics may report while the program exits.
    static ExReporter* instance = new ExReporter;
    return *instance;
}

void ExReporter::report(const std::string& source, const std::string& message) {
    Report r{source, message};
    std::vector<Listener> listeners;
    bool echo = false;
    {
        std::lock_guard lock(_mutex);
        _reports.push_back(r);
        if (_reports.size() > 1000) {
            _reports.erase(_reports.begin(), _reports.begin() + 500);
        }
        for (auto& [id, l] : _listeners) {
            listeners.push_back(l);
        }
        echo = _echo;
    }
    if (echo) {
        std::cerr << "tessera: " << r.text() << std::endl;
    }
    for (auto& l : listeners) {
        l(r);
    }
}

void ExReporter::reportException(const std::string& source, const std::exception& ex) {
    if (auto* a = dynamic_cast<const ExAssertionFailed*>(&ex)) {
        report(source, "assertion failed: \"" + a->getExpression() + "\" at " + a->getPath() +
                           ", line " + std::to_string(a->getLine()));
        return;
    }
    if (dynamic_cast<const std::bad_alloc*>(&ex)) {
        report(source, "not enough memory");
        return;
    }
    report(source, ex.what());
}

int ExReporter::addListener(Listener listener) {
    std::lock_guard lock(_mutex);
    const int id = _nextId++;
    _listeners.emplace_back(id, std::move(listener));
    return id;
}

void ExReporter::removeListener(int id) {
    std::lock_guard lock(_mutex);
    std::erase_if(_listeners, [id](const auto& e) { return e.first == id; });
}

void ExReporter::setEcho(bool echo) {
    std::lock_guard lock(_mutex);
    _echo = echo;
}

std::vector<ExReporter::Report> ExReporter::getReports() const {
    std::lock_guard lock(_mutex);
    return _reports;
}

std::size_t ExReporter::getReportCount() const {
    std::lock_guard lock(_mutex);
    return _reports.size();
}

void ExReporter::clear() {
    std::lock_guard lock(_mutex);
    _reports.clear();
}

int ExReporter::addRecoveryHook(std::function<void()> hook) {
    std::lock_guard lock(_mutex);
    const int id = _nextId++;
    _hooks.emplace_back(id, std::move(hook));
    return id;
}

void ExReporter::removeRecoveryHook(int id) {
    std::lock_guard lock(_mutex);
    std::erase_if(_hooks, [id](const auto& e) { return e.first == id; });
}

void ExReporter::runRecoveryHooks() {
    std::vector<std::function<void()>> hooks;
    {
        std::lock_guard lock(_mutex);
        for (auto& [id, h] : _hooks) {
            hooks.push_back(h);
        }
    }
    for (auto& h : hooks) {
        try {
            h();
        } catch (const std::exception& ex) {
            report("recovery", ex.what());
        }
    }
}
