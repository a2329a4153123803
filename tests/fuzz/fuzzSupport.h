#pragma once

// What the fuzz targets share: the process set up as a headless host, a
// scratch directory of the process's own, and the check that stops a run
// (and keeps the input) when an invariant does not hold.

#include "host/hostSession.h"

#include <base/exReporter.h>
#include <ui/uiApplication.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <unistd.h>

namespace fuzz {

// The host's reports are read by the targets, not echoed: a fuzz run makes
// thousands. Qt draws offscreen.
inline void initProcess() {
    ::setenv("QT_QPA_PLATFORM", "offscreen", 0);
    ExReporter::getInstance().setEcho(false);
}

// With TESSERA_FUZZ_TRACE set, targets say what they do on standard error
// (to follow the replay of one input).
inline bool tracing() {
    static const bool on = std::getenv("TESSERA_FUZZ_TRACE") != nullptr;
    return on;
}

// A directory of this process's own, made on first use and removed at exit.
inline const std::filesystem::path& scratch() {
    struct Dir {
        std::filesystem::path path;
        Dir() {
            path = std::filesystem::temp_directory_path() /
                   ("tessera-fuzz-" + std::to_string(::getpid()));
            std::filesystem::remove_all(path);
            std::filesystem::create_directories(path);
        }
        ~Dir() {
            std::error_code ec;
            std::filesystem::remove_all(path, ec);
        }
    };
    static const Dir dir;
    return dir.path;
}

inline void writeFile(const std::filesystem::path& path, const std::string& text) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text;
}

inline std::string readFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream os;
    os << in.rdbuf();
    return os.str();
}

// An invariant that does not hold: say which, with the host's last reports,
// and abort, so that the fuzzer keeps the input that broke it.
[[noreturn]] inline void fail(const std::string& what, const char* file, int line) {
    std::cerr << file << ":" << line << ": invariant broken: " << what << "\n";
    for (const ExReporter::Report& r : ExReporter::getInstance().getReports()) {
        std::cerr << "  report: " << r.text() << "\n";
    }
    std::cerr.flush();
    std::abort();
}

// The start of a target that drives the host: the process set up, the
// application made and every package of the module started.
inline void startHost() {
    initProcess();
    UiApplication::getInstance();
    if (!HostSession::startPackages()) {
        fail("the module did not start", __FILE__, __LINE__);
    }
}

} // namespace fuzz

#define FUZZ_CHECK(condition, what)                                                                \
    do {                                                                                           \
        if (!(condition)) {                                                                        \
            std::ostringstream fuzzCheckText_;                                                     \
            fuzzCheckText_ << #condition << ": " << what;                                          \
            ::fuzz::fail(fuzzCheckText_.str(), __FILE__, __LINE__);                                \
        }                                                                                          \
    } while (false)
