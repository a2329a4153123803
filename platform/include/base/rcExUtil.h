#pragma once

// Raising the counted-pointer failures. Both functions never return.
class RCExUtil {
public:
    [[noreturn]] static void throwExNullPtr(const char* typeName);
    [[noreturn]] static void throwExCastFailed(const char* from, const char* to);
};
