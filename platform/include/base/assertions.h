#pragma once

// Programming errors: an internal invariant that does not hold. The host
// catches the exception at its entry point and reports the path, the line and
// the expression text.
class Assertions {
public:
    [[noreturn]] static void throwAssertionFailed(const char* path, int line,
                                                  const char* expression);
};
