#pragma once

#include <base/baseExport.h>
#include <string>
#include <version>

#if defined(__cpp_lib_source_location)
#include <source_location>
using SourcePlace = std::source_location;
#else
// What std::source_location answers, built on the same compiler built-ins,
// for the standard libraries and compilers that do not offer it together
// (clang 14 with libstdc++ 12).
struct TS_BASE_API SourcePlace {
    static constexpr SourcePlace current(const char* file = __builtin_FILE(),
                                         unsigned line = __builtin_LINE()) noexcept {
        return SourcePlace{file, line};
    }
    constexpr const char* file_name() const noexcept { return _file; }
    constexpr unsigned line() const noexcept { return _line; }

    const char* _file;
    unsigned _line;
};
#endif

// Programming errors: an internal invariant that does not hold. The host
// catches the exception (ExAssertionFailed) at its entry point and reports
// the path, the line and the expression text.
class TS_BASE_API Assertions {
public:
    // At the caller's place in the source, which the compiler supplies: its
    // path from the project's root and its line. What the platform uses.
    [[noreturn]] static void fail(const char* expression,
                                  SourcePlace where = SourcePlace::current());

    // With a path and a line of the caller's choosing: for texts that are
    // part of a contract, which callers and reports match as they stand.
    [[noreturn]] static void throwAssertionFailed(const char* path, int line,
                                                  const char* expression);

    // A source file's path from the project's root, however the build named
    // it (relative to the build directory, or absolute).
    static std::string projectPath(const char* file);
};
