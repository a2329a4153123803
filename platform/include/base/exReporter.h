#pragma once

#include <base/baseExport.h>
#include <exception>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

// The host's error reporting: every failure that the host contains (a bad
// file, a package that did not start, an exception out of plugin code) ends
// up here, with where it happened and what it was. Listeners (the status line
// of the studio, standard error of the headless runner) show them; the last
// reports are kept for tests and for the session summary.
class TS_BASE_API ExReporter {
public:
    struct Report {
        std::string source;  // where: a file and line, a package, a widget, ...
        std::string message; // what, in one line
        std::string text() const { return source.empty() ? message : source + ": " + message; }
    };
    using Listener = std::function<void(const Report&)>;

    static ExReporter& getInstance();

    void report(const std::string& source, const std::string& message);
    // Reports an exception: its text, and for assertion failures the path,
    // line and expression.
    void reportException(const std::string& source, const std::exception& ex);

    int addListener(Listener listener);
    void removeListener(int id);
    // Standard error gets every report unless switched off.
    void setEcho(bool echo);

    std::vector<Report> getReports() const;
    std::size_t getReportCount() const;
    void clear();

    // Work to run after a contained exception (closing an open undo step, for
    // one); hooks run in registration order.
    int addRecoveryHook(std::function<void()> hook);
    void removeRecoveryHook(int id);
    void runRecoveryHooks();

private:
    ExReporter() = default;

    mutable std::mutex _mutex;
    std::vector<Report> _reports;
    std::vector<std::pair<int, Listener>> _listeners;
    std::vector<std::pair<int, std::function<void()>>> _hooks;
    int _nextId = 1;
    bool _echo = true;
};

// Runs f, containing what it throws: the exception is reported under `source`
// and the recovery hooks run. Answers true when f returned normally.
template <class F>
bool exContain(const std::string& source, F&& f) {
    try {
        f();
        return true;
    } catch (const std::exception& ex) {
        ExReporter::getInstance().reportException(source, ex);
    } catch (...) {
        ExReporter::getInstance().report(source, "unknown exception");
    }
    ExReporter::getInstance().runRecoveryHooks();
    return false;
}
