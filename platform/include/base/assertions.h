#pragma once

#include <source_location>
#include <string>

// Programming errors: an internal invariant that does not hold. The host
// catches the exception (ExAssertionFailed) at its entry point and reports
// the path, the line and the expression text.
class Assertions {
public:
    // At the caller's place in the source, which the compiler supplies: its
    // path from the project's root and its line. What the platform uses.
    [[noreturn]] static void fail(const char* expression,
                                  std::source_location where = std::source_location::current());

    // With a path and a line of the caller's choosing: for texts that are
    // part of a contract, which callers and reports match as they stand.
    [[noreturn]] static void throwAssertionFailed(const char* path, int line,
                                                  const char* expression);

    // A source file's path from the project's root, however the build named
    // it (relative to the build directory, or absolute).
    static std::string projectPath(const char* file);
};
